// SPDX-License-Identifier: Apache-2.0
#include "TemporaryFile.h"

#include <fcntl.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "core/text/nxAlgorithm.h"

namespace nxtick
{
namespace
{
constexpr int endingSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};
constexpr int mostAttempts = 100;
constexpr std::string_view prefix = ".nxtick-";
constexpr std::size_t randomBytes = 8;

// The file to remove, where the signal handler finds it.
std::array<char, prefix.size() + 2 * randomBytes + 1> nameToRemove{};
volatile std::sig_atomic_t directoryOfName = 0;
volatile std::sig_atomic_t hasName = 0;

void RemoveNamed(int signal)
{
    if (hasName != 0)
        ::unlinkat(directoryOfName, nameToRemove.data(), 0);
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void Remember(int directory, const std::string& name)
{
    std::copy_n(name.c_str(), name.size() + 1, nameToRemove.begin());
    directoryOfName = directory;
    hasName = 1;
    for (const int signal : endingSignals)
        if (::signal(signal, &RemoveNamed) == SIG_IGN)
            ::signal(signal, SIG_IGN);  // the caller wants it ignored
}

// A name that nobody can guess; empty when the system has no random numbers.
std::string MakeName()
{
    std::array<unsigned char, randomBytes> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        return {};
    std::string name(prefix);
    for (const unsigned char byte : bytes)
        nxAlgorithm::AppendAsHex(byte, name);
    return name;
}

std::string DescriptorPath(int file) { return "/proc/self/fd/" + std::to_string(file); }
}  // namespace

TemporaryFile::~TemporaryFile() { _Remove(); }

bool TemporaryFile::Create(int directory, mode_t mode)
{
    _directory = directory;
    // Without /proc there is no way to give it a name later.
    _file = FileDescriptor(::openat(directory, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    if (_file.IsOpen() && ::access(DescriptorPath(_file.Get()).c_str(), F_OK) == 0)
        return true;
    const bool isUnknown = errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL || errno == ENOENT;
    return (_file.IsOpen() || isUnknown) && _CreateNamed(mode);
}

bool TemporaryFile::_CreateNamed(mode_t mode)
{
    _file.Close();
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        const std::string name = MakeName();
        const SignalPause pause;
        if (!name.empty())
            _file = FileDescriptor(
                ::openat(_directory, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (_file.IsOpen())
            Remember(_directory, _name = name);
        if (_file.IsOpen() || errno != EEXIST)
            break;
    }
    return _file.IsOpen();
}

bool TemporaryFile::_Link(const std::string& name) const
{
    return ::linkat(AT_FDCWD, DescriptorPath(_file.Get()).c_str(), _directory, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

bool TemporaryFile::_RenameToFree(const std::string& name) const
{
    if (::renameat2(_directory, _name.c_str(), _directory, name.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    // Not every file system knows the flag.
    return (errno == EINVAL || errno == ENOSYS) &&
           ::linkat(_directory, _name.c_str(), _directory, name.c_str(), 0) == 0;
}

bool TemporaryFile::Publish(const std::string& name)
{
    const SignalPause pause;
    if (_name.empty())
        return _Link(name);
    const bool isDone = _RenameToFree(name);
    if (isDone)
        _Remove();  // where it was a link
    return isDone;
}

bool TemporaryFile::Replace(const std::string& name)
{
    const SignalPause pause;
    for (int attempt = 0; _name.empty(); ++attempt)
    {
        const std::string between = MakeName();
        if (!between.empty() && _Link(between))
            _name = between;
        else if (between.empty() || errno != EEXIST || attempt == mostAttempts)
            return false;
    }
    if (::renameat(_directory, _name.c_str(), _directory, name.c_str()) != 0)
    {
        const int error = errno;
        _Remove();
        errno = error;
        return false;
    }
    _name.clear();
    hasName = 0;
    return true;
}

void TemporaryFile::_Remove()
{
    if (!_name.empty())
        ::unlinkat(_directory, _name.c_str(), 0);
    _name.clear();
    hasName = 0;
}

SignalPause::SignalPause()
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : endingSignals)
        sigaddset(&ending, signal);
    ::pthread_sigmask(SIG_BLOCK, &ending, &_before);
}

SignalPause::~SignalPause() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
}  // namespace nxtick
