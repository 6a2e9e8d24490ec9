// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxDirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "core/platform/linux/nxSystemCall.h"
#include "core/platform/nxNanoseconds.h"

namespace
{
int LookAt(const nxDirectory& directory, const std::string& name, struct stat& status)
{
    return fstatat(directory.GetDescriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

std::int64_t NanosecondsOf(const timespec& time)
{
    constexpr long long most = INT64_MAX / nxNanoseconds::PerSecond - 1;
    return std::clamp<long long>(time.tv_sec, -most, most) * nxNanoseconds::PerSecond + time.tv_nsec;
}
}  // namespace

int nxDirectoryReader::Open(const nxDirectory& directory)
{
    Close();
    _descriptor = nxDescriptor(nxSystemCall::RetryInterrupted(
        [&] { return openat(directory.GetDescriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); }));
    if (!_descriptor.IsOpen())
        return errno;
    if (_buffer == nullptr)
        _buffer = std::make_unique<char[]>(_capacity);
    _isEmpty = true;
    _error = 0;
    return 0;
}

void nxDirectoryReader::Close()
{
    _descriptor.Close();
    _used = _at = 0;
}

bool nxDirectoryReader::_Fill()
{
    struct stat status = {};
    if (!_descriptor.IsOpen())
        return false;
    _error = _descriptor.Check(status);
    if (_error != 0)
        return false;
    const ssize_t taken =
        nxSystemCall::RetryInterrupted([&] { return getdents64(_descriptor.Get(), _buffer.get(), _capacity); });
    _error = taken < 0 ? errno : 0;
    _used = taken > 0 ? static_cast<std::size_t>(taken) : 0;
    _at = 0;
    return _used != 0;
}

bool nxDirectoryReader::ReadNext(std::string& name)
{
    while (_at < _used || _Fill())
    {
        const char* const entry = _buffer.get() + _at;
        unsigned short size = 0;
        std::memcpy(&size, entry + offsetof(dirent64, d_reclen), sizeof size);
        _at += size;
        name = entry + offsetof(dirent64, d_name);
        if (name == "." || name == "..")
            continue;
        _isEmpty = false;
        return true;
    }
    Close();
    return false;
}

int nxDirectoryEntry::Look(const nxDirectory& directory, const std::string& name, Facts& facts)
{
    struct stat status = {};
    if (const int error = LookAt(directory, name, status); error != 0)
        return error;
    facts.isOwnFile = S_ISREG(status.st_mode) && status.st_uid == geteuid();
    facts.size = static_cast<std::uint64_t>(status.st_size);
    facts.modified = NanosecondsOf(status.st_mtim);
    return 0;
}

bool nxDirectoryEntry::Exists(const nxDirectory& directory, const std::string& name)
{
    struct stat status = {};
    return LookAt(directory, name, status) == 0;
}

int nxDirectoryEntry::RemoveFile(const nxDirectory& directory, const std::string& name)
{
    return unlinkat(directory.GetDescriptor(), name.c_str(), 0) == 0 ? 0 : errno;
}

int nxDirectoryEntry::RemoveDirectory(const nxDirectory& directory, const std::string& name)
{
    struct stat status = {};
    if (const int error = LookAt(directory, name, status); error != 0)
        return error;
    if (status.st_uid != geteuid())
        return EPERM;
    return unlinkat(directory.GetDescriptor(), name.c_str(), AT_REMOVEDIR) == 0 ? 0 : errno;
}
