// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxStandardStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "core/platform/inline/nxClock.h"
#include "core/platform/linux/nxSystemCall.h"
#include "core/platform/nxFile.h"
#include "core/platform/nxNanoseconds.h"

namespace
{
constexpr int millisecondsBetweenLooks = 10;
constexpr int looksWithoutProgress = 10;
constexpr std::int64_t longestWrite = 500 * nxNanoseconds::PerMillisecond;
// A stream that has room at all has room for this many bytes.
constexpr std::size_t pieceSize = 256;

bool HasRoom(int descriptor, int milliseconds)
{
    pollfd stream{descriptor, POLLOUT, 0};
    return poll(&stream, 1, milliseconds) > 0;
}
}  // namespace

constinit nxStandardStream nxStandardStream::_output(STDOUT_FILENO);
constinit nxStandardStream nxStandardStream::_errors(STDERR_FILENO);

namespace
{
// Runs when the library is loaded, before other code of the process can close the streams.
[[gnu::constructor(101)]] void Remember()
{
    nxStandardStream::GetOutput();
    nxStandardStream::GetErrors();
}
}  // namespace

nxStandardStream& nxStandardStream::GetOutput()
{
    _output._Remember();
    return _output;
}

nxStandardStream& nxStandardStream::GetErrors()
{
    _errors._Remember();
    return _errors;
}

bool nxStandardStream::IsTerminal() const noexcept { return isatty(_number) == 1; }

void nxStandardStream::_Remember() noexcept
{
    struct stat status = {};
    if (_isRemembered)
        return;
    _isRemembered = true;
    if (fstat(_number, &status) == 0)
        _original = nxFileIdentity(status);
    else
        _wasClosed.store(true, std::memory_order_relaxed);
}

bool nxStandardStream::_IsOurs(struct stat& status) noexcept
{
    if (fstat(_number, &status) != 0)
    {
        if (errno == EBADF)
            _wasClosed.store(true, std::memory_order_relaxed);
        return false;
    }
    if (!_wasClosed.load(std::memory_order_relaxed) && nxFileIdentity(status) == _original)
        return true;
    // A file that replaces a stream on purpose is inherited by the programs that the process starts.
    if (S_ISSOCK(status.st_mode) || (fcntl(_number, F_GETFD) & FD_CLOEXEC) != 0)
        return false;
    return !(_wasClosed.load(std::memory_order_relaxed) && S_ISREG(status.st_mode));
}

bool nxStandardStream::Look() noexcept
{
    struct stat status = {};
    return _IsOurs(status);
}

// Other programs share the stream and the mode in which it is open, so the mode is not changed. Pipes and terminals are
// opened a second time for this write instead.
nxStandardStream::Way nxStandardStream::_FindWay(const struct stat& status, nxDescriptor& own) const
{
    if (S_ISSOCK(status.st_mode))
        return Way::Socket;
    if (!S_ISFIFO(status.st_mode) && !(S_ISCHR(status.st_mode) && IsTerminal()))
        return Way::Blocking;
    const int mode = fcntl(_number, F_GETFL);
    if ((mode & O_NONBLOCK) != 0 || (mode & O_ACCMODE) == O_RDONLY)
        return Way::NotBlocking;
    char name[32];
    std::snprintf(name, sizeof name, "/proc/self/fd/%d", _number);
    constexpr int flags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    nxDescriptor opened(nxSystemCall::RetryInterrupted([&] { return open(name, flags, 0); }));
    if (!opened.IsOpen() || opened.GetIdentity() != nxFileIdentity(status))
        return Way::InPieces;
    own = std::move(opened);
    return Way::NotBlocking;
}

// As nxFile::WriteTo(), without waiting for room.
int nxStandardStream::_TryWrite(Way way, int descriptor, std::string_view text, std::size_t& written) const
{
    written = 0;
    if (way == Way::InPieces)
    {
        if (!HasRoom(descriptor, 0))
            return EAGAIN;
        text = text.substr(0, pieceSize);
    }
    if (way != Way::Socket)
        return nxFile::WriteTo(descriptor, text.data(), text.size(), written);
    const ssize_t taken = nxSystemCall::RetryInterrupted(
        [&] { return send(descriptor, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL); });
    if (taken < 0)
        return errno;
    written = static_cast<std::size_t>(taken);
    return 0;
}

std::size_t nxStandardStream::Write(std::string_view text)
{
    struct stat status = {};
    if (text.empty() || !_IsOurs(status))
        return 0;
    nxDescriptor own;
    const Way way = _FindWay(status, own);
    const int descriptor = own.IsOpen() ? own.Get() : _number;
    std::size_t written = 0;
    int looks = 0;
    std::int64_t begun = 0;
    int error = 0;
    while (written < text.size())
    {
        std::size_t taken = 0;
        error = _TryWrite(way, descriptor, text.substr(written), taken);
        written += taken;
        if (error == 0)
            continue;
        if (taken != 0)
            looks = 0;
        begun = begun != 0 ? begun : nxClock::MonotonicNanoseconds();
        if (error != EAGAIN || _isStuck.load(std::memory_order_relaxed) || looks == looksWithoutProgress ||
            nxClock::MonotonicNanoseconds() - begun > longestWrite)
            break;
        // Looks are counted and not time, because the process itself may have been stopped meanwhile.
        if (!HasRoom(descriptor, millisecondsBetweenLooks))
            ++looks;
    }
    _isStuck.store(error == EAGAIN && written < text.size(), std::memory_order_relaxed);
    return written;
}
