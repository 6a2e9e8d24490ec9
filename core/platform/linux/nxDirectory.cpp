// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "core/platform/linux/nxSystemCall.h"
#include "core/platform/nxEnvironment.h"

namespace
{
mode_t DirectoryMode() { return nxEnvironment::IsSecureExecution() ? 0700 : 0750; }

// Works without the right to read the directory.
nxDescriptor OpenAt(int directory, const char* name, int flags)
{
    return nxDescriptor(
        nxSystemCall::RetryInterrupted([&] { return openat(directory, name, O_PATH | O_CLOEXEC | flags, 0); }));
}

// Makes the directory and the missing ones above it. Returns 0 or the error number.
int Make(const std::string& path)
{
    int error = ENOENT;
    for (std::size_t end = 0; end != std::string::npos;)
    {
        end = path.find('/', end + 1);
        const std::string part = path.substr(0, end);
        error = mkdir(part.c_str(), DirectoryMode()) == 0 ? 0 : errno;
    }
    return error == EEXIST ? 0 : error;
}

bool IsOurs(const struct stat& status) { return status.st_uid == geteuid() || status.st_uid == 0; }

bool MayWrite(const struct stat& status, mode_t who)
{
    return (status.st_mode & who) != 0 && (status.st_mode & S_ISVTX) == 0;
}
}  // namespace

int nxDirectory::_Take(nxDescriptor&& descriptor)
{
    struct stat status = {};
    if (const int error = descriptor.Check(status); error != 0)
        return error;
    _isOpenToOthers = _isOpenToOthers || !IsOurs(status) || MayWrite(status, S_IWGRP | S_IWOTH);
    _descriptor = std::move(descriptor);
    return 0;
}

int nxDirectory::Open(const std::string& path)
{
    int error = OpenExisting(path);
    if (error != ENOENT)
        return error;
    error = Make(path);
    return error != 0 ? error : OpenExisting(path);
}

int nxDirectory::OpenExisting(const std::string& path)
{
    nxDescriptor opened = OpenAt(AT_FDCWD, path.c_str(), O_DIRECTORY);
    if (!opened.IsOpen())
        return errno;
    _isOpenToOthers = false;
    return _Take(std::move(opened));
}

int nxDirectory::Enter(const std::string& name)
{
    const int error = _EnterExisting(*this, name);
    if (error != ENOENT)
        return error;
    if (mkdirat(GetDescriptor(), name.c_str(), DirectoryMode()) != 0 && errno != EEXIST)
        return errno;
    return _EnterExisting(*this, name);
}

int nxDirectory::OpenExisting(const nxDirectory& parent, const std::string& name)
{
    const bool isOpenToOthers = std::exchange(_isOpenToOthers, parent._isOpenToOthers);
    const int error = _EnterExisting(parent, name);
    if (error != 0)
        _isOpenToOthers = isOpenToOthers;
    return error;
}

int nxDirectory::_EnterExisting(const nxDirectory& parent, const std::string& name)
{
    nxDescriptor entered = OpenAt(parent.GetDescriptor(), name.c_str(), O_NOFOLLOW);
    if (!entered.IsOpen())
        return errno;
    struct stat status = {};
    if (const int error = entered.Check(status); error != 0)
        return error;
    if (S_ISLNK(status.st_mode))
        return ELOOP;
    if (!S_ISDIR(status.st_mode))
        return ENOTDIR;
    if (!IsOurs(status) || MayWrite(status, S_IWOTH))
        return EPERM;
    return _Take(std::move(entered));
}

bool nxDirectory::IsSound() const
{
    struct stat status = {};
    return _descriptor.IsOpen() && _descriptor.Check(status) == 0;
}
