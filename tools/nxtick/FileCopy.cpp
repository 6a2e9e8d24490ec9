// SPDX-License-Identifier: Apache-2.0
#include "FileCopy.h"

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace nxtick
{
namespace
{
constexpr char accessList[] = "system.posix_acl_access";
constexpr std::size_t largestAttribute = 65536;  // that the system has
constexpr mode_t permissions = 0777;

bool HasNone(int error) { return error == ENODATA || error == EOPNOTSUPP; }

bool WriteAll(int file, const char* data, std::size_t size)
{
    while (size > 0)
    {
        const ssize_t count = ::write(file, data, size);
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0)
        {
            data += count;
            size -= static_cast<std::size_t>(count);
        }
    }
    return true;
}

// Copies from the current position of both to the end of the first.
bool CopyRest(int from, int to)
{
    std::vector<char> buffer(std::size_t{1} << 18);
    for (;;)
    {
        const ssize_t count = ::read(from, buffer.data(), buffer.size());
        if (count == 0)
            return true;
        if (count < 0 ? errno != EINTR : !WriteAll(to, buffer.data(), static_cast<std::size_t>(count)))
            return false;
    }
}

// Allocates space for this many bytes if the file system can.
bool Reserve(int file, off_t size)
{
    struct stat before = {};
    if (size == 0 || ::fstat(file, &before) != 0 || ::fallocate(file, 0, 0, size) == 0)
        return true;
    const int error = errno;
    if (error == EOPNOTSUPP || error == ENOSYS)
        return true;
    const bool isAsBefore = ::ftruncate(file, before.st_size) == 0;
    errno = isAsBefore ? error : errno;
    return false;
}
}  // namespace

bool CopyAccess(int from, const struct stat& status, int to)
{
    struct stat own = {};
    if (::fstat(to, &own) != 0)
        return false;
    if ((own.st_uid != status.st_uid || own.st_gid != status.st_gid) && ::fchown(to, status.st_uid, status.st_gid) != 0)
        return false;
    std::vector<char> list(largestAttribute);
    const ssize_t size = ::fgetxattr(from, accessList, list.data(), list.size());
    if (size >= 0)  // it holds the permissions too
        return ::fsetxattr(to, accessList, list.data(), static_cast<std::size_t>(size), 0) == 0;
    // A list inherited from the directory would change the meaning of the group's bits.
    if (!HasNone(errno) || (::fremovexattr(to, accessList) != 0 && !HasNone(errno)))
        return false;
    return ::fchmod(to, status.st_mode & permissions) == 0 ||
           (::fstat(to, &own) == 0 && ((own.st_mode ^ status.st_mode) & permissions) == 0);
}

bool CopyContent(int from, int to, bool& isTouched)
{
    struct stat status = {};
    isTouched = false;
    if (::fstat(from, &status) != 0 || ::lseek(from, 0, SEEK_SET) != 0 || ::lseek(to, 0, SEEK_SET) != 0 ||
        !Reserve(to, status.st_size))
        return false;
    isTouched = true;
    return CopyRest(from, to) && ::ftruncate(to, status.st_size) == 0 && ::fsync(to) == 0;
}
}  // namespace nxtick
