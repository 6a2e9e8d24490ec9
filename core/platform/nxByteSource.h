// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXBYTESOURCE_H
#define CORE_PLATFORM_NXBYTESOURCE_H

#include <cstddef>
#include <string>

/// Reads the input that a user names: a file, standard input or a pipe of the shell. It never waits without a limit.
class nxByteSource
{
public:
    /// How reading ended.
    enum class Outcome
    {
        Complete,
        NotOpened,  ///< It does not exist, or may not be read.
        NotRead,
        TooLarge,
        Silent,  ///< A pipe without a writer, or an input that brought nothing for LongestSilence seconds.
    };

    /// Seconds after which a pipe or terminal that brings nothing counts as ended.
    static constexpr int LongestSilence = 60;

    /// Reads everything, at most @p limit bytes. Changes @p content also when it fails.
    /// @param name must not hold a NUL: the system would open another file, so such a name is not opened.
    [[nodiscard]] static Outcome ReadAll(const std::string& name, std::size_t limit, std::string& content);
};

#endif
