#include "core/platform/nxFile.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <utility>

#include "core/platform/nxClock.h"
#include "core/platform/nxEnvironment.h"
#include "core/platform/nxUninterrupted.h"

namespace
{
// The group of a program with rights of its own may be that of whoever started it.
mode_t FileMode() { return nxEnvironment::IsSecureExecution() ? 0600 : 0640; }
mode_t DirectoryMode() { return nxEnvironment::IsSecureExecution() ? 0700 : 0750; }

// Keeps from the process the signals with which the system accompanies a failed write. One that was waiting to be
// delivered before stays waiting.
class WriteSignals
{
public:
    WriteSignals()
    {
        sigemptyset(&_signals);
        sigaddset(&_signals, SIGXFSZ);
        sigaddset(&_signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &_signals, &_before);
    }
    WriteSignals(const WriteSignals&) = delete;
    WriteSignals& operator=(const WriteSignals&) = delete;
    ~WriteSignals() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }

    // write(2), less the signal.
    ssize_t Write(int descriptor, const char* data, std::size_t size) const
    {
        sigset_t waiting;
        sigpending(&waiting);
        const ssize_t written = write(descriptor, data, size);
        if (written >= 0)
            return written;
        const int error = errno;
        if (error == EFBIG)
            Consume(SIGXFSZ, waiting);
        else if (error == EPIPE)
            Consume(SIGPIPE, waiting);
        errno = error;
        return written;
    }

private:
    static void Consume(int signal, const sigset_t& waitingBefore)
    {
        if (sigismember(&waitingBefore, signal) == 1)
            return;
        sigset_t one;
        sigemptyset(&one);
        sigaddset(&one, signal);
        const timespec noTime{};
        nxUninterrupted::Do([&] { return sigtimedwait(&one, nullptr, &noTime); });
    }

    sigset_t _signals;
    sigset_t _before;
};

// For a stream that somebody else has set not to block. False when it has taken nothing for a second.
bool WaitForRoom(int descriptor)
{
    constexpr std::int64_t patience = 1'000'000'000;
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + patience;
    pollfd stream{descriptor, POLLOUT, 0};
    for (std::int64_t left = patience; left > 0; left = deadline - nxClock::MonotonicNanoseconds())
    {
        const int result = poll(&stream, 1, static_cast<int>(left / 1'000'000 + 1));
        if (result >= 0 || errno != EINTR)
            return result == 1;
    }
    return false;
}

// The same open file under a number above those of the standard streams: where these were closed, a new file would
// take their place and receive what other code prints.
int MoveAboveStandardStreams(int descriptor)
{
    if (descriptor < 0 || descriptor > STDERR_FILENO)
        return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(descriptor);
    errno = error;
    return moved;
}

int OpenAbove(const char* path, int flags, mode_t mode)
{
    return MoveAboveStandardStreams(nxUninterrupted::Do([&] { return open(path, flags | O_CLOEXEC, mode); }));
}
}  // namespace

nxFile::~nxFile() { Close(); }

int nxFile::CreateNew(const std::string& path)
{
    Close();
    const int descriptor = OpenAbove(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_APPEND, FileMode());
    if (descriptor < 0)
        return errno;
    _descriptor = descriptor;
    return 0;
}

int nxFile::Write(const char* data, std::size_t size, std::size_t& written)
{
    return WriteTo(_descriptor, data, size, written);
}

int nxFile::WriteTo(int descriptor, const char* data, std::size_t size, std::size_t& written)
{
    const WriteSignals signals;
    written = 0;
    int roomsThatWereNone = 0;
    while (written < size)
    {
        const ssize_t taken =
            nxUninterrupted::Do([&] { return signals.Write(descriptor, data + written, size - written); });
        if (taken == 0)
            return ENOSPC;  // a device that takes nothing and gives no reason is full
        if (taken > 0)
        {
            written += static_cast<std::size_t>(taken);
            roomsThatWereNone = 0;
            continue;
        }
        const int error = errno;
        if (error != EAGAIN || ++roomsThatWereNone == nxUninterrupted::Attempts || !WaitForRoom(descriptor))
            return error;
    }
    return 0;
}

int nxFile::Truncate(std::uint64_t size) { return ftruncate(_descriptor, static_cast<off_t>(size)) == 0 ? 0 : errno; }

void nxFile::Close()
{
    if (_descriptor >= 0)
        close(std::exchange(_descriptor, -1));
}

bool nxFile::IsUnlinked() const
{
    struct stat status = {};
    return IsOpen() && fstat(_descriptor, &status) == 0 && status.st_nlink == 0;
}

int nxFile::ReadAll(const char* path, std::span<char> content, std::size_t& size)
{
    // Not blocking, so that opening a pipe that somebody put there does not hang.
    nxFile file;
    file._descriptor = OpenAbove(path, O_RDONLY | O_NONBLOCK | O_NOCTTY, 0);
    if (!file.IsOpen())
        return errno;
    struct stat status = {};
    if (fstat(file._descriptor, &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    std::size_t used = 0;
    for (;;)
    {
        const ssize_t taken =
            nxUninterrupted::Do([&] { return read(file._descriptor, content.data() + used, content.size() - used); });
        if (taken < 0)
            return errno;
        used += static_cast<std::size_t>(taken);
        if (used == content.size())
            return EFBIG;
        if (taken == 0)
            break;
    }
    size = used;
    return 0;
}

int nxFile::CreateDirectories(const std::string& path)
{
    int error = ENOENT;
    for (std::size_t end = 0; end != std::string::npos;)
    {
        end = path.find('/', end + 1);
        const std::string part = path.substr(0, end);
        error = mkdir(part.c_str(), DirectoryMode()) == 0 ? 0 : errno;
    }
    if (error != EEXIST)
        return error;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return errno;
    return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
}
