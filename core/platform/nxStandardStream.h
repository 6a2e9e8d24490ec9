#ifndef CORE_PLATFORM_NXSTANDARDSTREAM_H
#define CORE_PLATFORM_NXSTANDARDSTREAM_H

#include <atomic>
#include <cstddef>
#include <string_view>

#include "core/nxExport.h"
#include "core/platform/nxDescriptor.h"

/// The standard output and the error stream of the process, as far as they still are that.
///
/// - A stream that takes nothing for 100 ms, or that half a second was not enough for, has lost the rest; while it stays
///   so it is not waited for again. So a terminal that is stopped and a pipe that nobody reads hold nobody up.
/// - A program that closes its streams may get other files of its own under their numbers. So a stream that was closed
///   when the library was loaded, or was seen closed since, and stands for a regular file is left alone; likewise one
///   that has become a socket, or that programs to be started would not inherit. What a program puts in the place of an
///   open stream by dup2() or freopen() is written to.
/// - Errors: none, what is not taken is lost. The signals of failed writes do not reach the process.
/// - Threads: any; what two of them write at the same time may mix.
class NX_CORE_API nxStandardStream
{
public:
    static nxStandardStream& GetOutput();
    static nxStandardStream& GetErrors();

    /// @return how many bytes were taken.
    std::size_t Write(std::string_view text);

    /// Looks whether the stream is closed. @return whether it may be written to.
    bool Look() noexcept;

    nxStandardStream(const nxStandardStream&) = delete;
    nxStandardStream& operator=(const nxStandardStream&) = delete;

private:
    enum class Way
    {
        Blocking,  // where that never takes long
        NotBlocking,
        Socket,
        InPieces  // a blocking one after asking for room
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
    std::atomic<bool> _wasClosed{false};
    std::atomic<bool> _isStuck{false};
};

#endif
