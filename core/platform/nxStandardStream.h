// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXSTANDARDSTREAM_H
#define CORE_PLATFORM_NXSTANDARDSTREAM_H

#include <atomic>
#include <cstddef>
#include <string_view>

#include "core/nxExport.h"
#include "core/platform/nxDescriptor.h"

/// The standard output and the error stream of the process.
///
/// - Limits: a stream that takes nothing for 100 ms, or not everything within half a second, loses the rest. As long as
///   it takes nothing, later writes do not wait for it. A stopped terminal and a pipe without a reader therefore delay no
///   thread.
/// - Replaced streams: when a program closes its streams, other files may get their numbers. A stream is therefore left
///   alone if it was closed at some time since the library was loaded and is now a regular file, if it has become a
///   socket, or if programs that the process starts would not inherit it. A file that the program puts in the place of an
///   open stream by dup2() or freopen() is written to.
/// - Errors: none; what the stream does not take is lost. The signals of failed writes do not reach the process.
/// - Threads: any; texts that two threads write at the same time may mix.
class NX_CORE_API nxStandardStream
{
public:
    static nxStandardStream& GetOutput();
    static nxStandardStream& GetErrors();

    /// @return the number of bytes that the stream took.
    std::size_t Write(std::string_view text);

    /// Whether the stream is a terminal at the moment.
    bool IsTerminal() const noexcept;

    /// Checks and remembers whether the stream is closed. @return whether it may be written to.
    bool Look() noexcept;

    nxStandardStream(const nxStandardStream&) = delete;
    nxStandardStream& operator=(const nxStandardStream&) = delete;

private:
    enum class Way
    {
        Blocking,  // for files that never take long
        NotBlocking,
        Socket,
        InPieces  // to a blocking stream, after asking for room
    };

    constexpr explicit nxStandardStream(int number) : _number(number) {}
    void _Remember() noexcept;
    bool _IsOurs(struct stat& status) noexcept;
    Way _FindWay(const struct stat& status, nxDescriptor& own) const;
    int _TryWrite(Way way, int descriptor, std::string_view text, std::size_t& written) const;

    static nxStandardStream _output;
    static nxStandardStream _errors;

    const int _number;
    nxFileIdentity _original;
    bool _isRemembered = false;
    // Relaxed: what was seen of the stream, which orders no other memory.
    std::atomic<bool> _wasClosed{false};
    std::atomic<bool> _isStuck{false};
};

#endif
