// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXBYTESOURCE_H
#define CORE_PLATFORM_NXBYTESOURCE_H

#include <cstddef>
#include <string>

/// A file, standard input or a pipe of the shell that is read piece by piece. It never waits without a limit.
///
/// - Errors: operations return the system's error number, 0 when they succeed.
/// - Ownership: owns the descriptor. Threads: like an int.
class nxByteStream
{
public:
    nxByteStream() = default;
    ~nxByteStream();
    nxByteStream(const nxByteStream&) = delete;
    nxByteStream& operator=(const nxByteStream&) = delete;

    /// @param name must not hold a NUL: the system would open another file, so such a name is ENOENT.
    /// @pre Nothing is open.
    [[nodiscard]] int Open(const std::string& name);
    bool IsOpen() const { return _descriptor >= 0; }
    /// Whether it is a pipe with or without a name.
    bool IsPipe() const;
    /// Reads what there is, and waits while there is nothing.
    /// @param read receives how many bytes came; 0 at the end and after an error.
    /// @return ETIMEDOUT when nothing came for nxByteSource::LongestSilence seconds.
    [[nodiscard]] int Read(char* buffer, std::size_t size, std::size_t& read);

private:
    int _descriptor = -1;
};

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
