// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxFile.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/platform/linux/nxRecordLock.h"
#include "core/platform/linux/nxSystemCall.h"
#include "core/platform/linux/nxWriteSignals.h"
#include "core/platform/nxEnvironment.h"

namespace
{
// In secure execution the group may be that of the user who started the program.
mode_t FileMode() { return nxEnvironment::IsSecureExecution() ? 0600 : 0640; }

nxFileIdentity IdentityOf(const char* path)
{
    struct stat status = {};
    return lstat(path, &status) == 0 ? nxFileIdentity(status) : nxFileIdentity();
}

std::string AbsolutePath(const std::string& path)
{
    char current[PATH_MAX];
    if (path.starts_with('/') || getcwd(current, sizeof current) == nullptr)
        return path;
    return std::string(current) + '/' + path;
}
}  // namespace

int nxFile::CreateNew(const nxDirectory& directory, const std::string& path)
{
    std::string absolute = AbsolutePath(path);
    const char* const name = path.c_str() + path.rfind('/') + 1;  // all of it when there is none
    nxDescriptor created(nxSystemCall::RetryInterrupted(
        [&]
        {
            return openat(directory.GetDescriptor(), name,
                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_APPEND | O_CLOEXEC, FileMode());
        }));
    if (!created.IsOpen())
        return errno;
    // A file system without locks has no claims either.
    static_cast<void>(nxRecordLock::TryExclusive(created.Get(), 0));
    _descriptor = std::move(created);
    _path = std::move(absolute);
    _root = IdentityOf("/");
    // Some file systems give a file another number each time that it is looked up by name.
    if (IdentityOf(_path.c_str()) != _descriptor.GetIdentity())
        _path.clear();
    return 0;
}

int nxFile::Write(const char* data, std::size_t size, std::size_t& written)
{
    struct stat status = {};
    written = 0;
    const int error = _descriptor.Check(status);
    return error != 0 ? error : WriteTo(_descriptor.Get(), data, size, written);
}

int nxFile::WriteTo(int descriptor, const char* data, std::size_t size, std::size_t& written)
{
    const nxWriteSignals signals;
    const auto writeOn = [&] { return write(descriptor, data + written, size - written); };
    written = 0;
    while (written < size)
    {
        const ssize_t taken = nxSystemCall::RetryInterrupted([&] { return signals.Do(writeOn); });
        if (taken < 0)
            return errno;
        if (taken == 0)
            return ENOSPC;  // a device that takes nothing without an error counts as full
        written += static_cast<std::size_t>(taken);
    }
    return 0;
}

int nxFile::CutBack(std::uint64_t bytes)
{
    struct stat status = {};
    if (const int error = _descriptor.Check(status); error != 0)
        return error;
    // Another program may have cut the file as well.
    const auto size = static_cast<std::uint64_t>(status.st_size);
    return ftruncate(_descriptor.Get(), static_cast<off_t>(size - std::min(bytes, size))) == 0 ? 0 : errno;
}

bool nxFile::_HasItsName() const
{
    struct stat status = {};
    if (_path.empty())
        return true;
    if (lstat(_path.c_str(), &status) == 0)
        return nxFileIdentity(status) == _descriptor.GetIdentity();
    // After chroot the path belongs to another tree.
    return (errno != ENOENT && errno != ENOTDIR) || IdentityOf("/") != _root;
}

nxFile::Fate nxFile::Look(std::uint64_t& size) const
{
    struct stat status = {};
    const int error = _descriptor.Check(status);
    // ESTALE comes from a network file system whose server has removed the file.
    if (error == EBADF || error == ESTALE)
        return Fate::Closed;
    if (error != 0)
        return Fate::Sound;
    size = static_cast<std::uint64_t>(status.st_size);
    if (status.st_nlink == 0)
        return Fate::Removed;
    return _HasItsName() ? Fate::Sound : Fate::Renamed;
}

int nxFile::ReadAll(const char* path, std::span<char> content, std::size_t& size)
{
    // Not blocking: a pipe in the place of the file must not make this wait for a writer.
    const nxDescriptor file(
        nxSystemCall::RetryInterrupted([&] { return open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0); }));
    if (!file.IsOpen())
        return errno;
    struct stat status = {};
    if (const int error = file.Check(status); error != 0)
        return error;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    std::size_t used = 0;
    for (;;)
    {
        const ssize_t taken = nxSystemCall::RetryInterrupted(
            [&] { return read(file.Get(), content.data() + used, content.size() - used); });
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
