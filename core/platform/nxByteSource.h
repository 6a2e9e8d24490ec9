#ifndef CORE_PLATFORM_NXBYTESOURCE_H
#define CORE_PLATFORM_NXBYTESOURCE_H

#include <cstddef>
#include <string>

/// Reads what a user names as a file: a file, standard input, a pipe of the shell. Never waits for ever.
class nxByteSource
{
public:
    /// How reading ended.
    enum class Outcome
    {
        Complete,
        NotOpened,  ///< There is none, or it must not be read.
        NotRead,
        TooLarge,
        Silent,  ///< A pipe to which nobody writes, or that brought nothing for so long that nothing is to be expected.
    };

    /// A pipe or terminal that brings nothing for so many seconds has ended.
    static constexpr int Patience = 60;

    /// Reads all there is, at most @p limit bytes. @p content is changed in any case.
    /// @param name one that holds a NUL cannot be opened: the system would open another file.
    [[nodiscard]] static Outcome ReadAll(const std::string& name, std::size_t limit, std::string& content);
};

#endif
