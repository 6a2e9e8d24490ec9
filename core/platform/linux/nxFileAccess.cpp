// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxFileAccess.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace
{
constexpr char accessList[] = "system.posix_acl_access";
constexpr mode_t allPermissions = 0777;

bool HasNoAccessList(int error) { return error == ENODATA || error == EOPNOTSUPP; }

int CopyOwner(const struct stat& status, int file, nxFileAccess::Owner owner)
{
    struct stat own = {};
    if (fstat(file, &own) != 0)
        return errno;
    if (own.st_uid == status.st_uid && own.st_gid == status.st_gid)
        return 0;
    if (fchown(file, status.st_uid, status.st_gid) == 0)
        return 0;
    if (errno != EPERM || owner == nxFileAccess::Owner::Kept)
        return errno;
    if (own.st_gid == status.st_gid)
        return 0;
    return fchown(file, static_cast<uid_t>(-1), status.st_gid) == 0 ? 0 : errno;
}

// Gives `file` the list of the other file. Sets `isThere` if there was one: it holds the permissions too.
int CopyAccessList(int from, const std::string& path, int file, bool& isThere)
{
    constexpr std::size_t usualSize = 256;
    constexpr std::size_t largestSize = 65536;  // that the system has
    std::vector<char> list(usualSize);
    const auto readList = [&]
    {
        return from >= 0 ? fgetxattr(from, accessList, list.data(), list.size())
                         : lgetxattr(path.c_str(), accessList, list.data(), list.size());
    };
    ssize_t size = readList();
    if (size < 0 && errno == ERANGE)
    {
        list.resize(largestSize);
        size = readList();
    }
    isThere = size >= 0;
    if (isThere)
        return fsetxattr(file, accessList, list.data(), static_cast<std::size_t>(size), 0) == 0 ? 0 : errno;
    if (!HasNoAccessList(errno))
        return errno;
    // A list inherited from the directory would change the meaning of the group's bits.
    return fremovexattr(file, accessList) == 0 || HasNoAccessList(errno) ? 0 : errno;
}

int CopyPermissions(const struct stat& status, int file)
{
    struct stat own = {};
    if (fchmod(file, status.st_mode & allPermissions) == 0)
        return 0;
    const int error = errno;
    // Some file systems give all files the same permissions.
    return fstat(file, &own) == 0 && ((own.st_mode ^ status.st_mode) & allPermissions) == 0 ? 0 : error;
}
}  // namespace

int nxFileAccess::Copy(int from, const std::string& path, const struct stat& status, int file, Owner owner)
{
    bool hasList = false;
    int error = CopyOwner(status, file, owner);
    if (error == 0)
        error = CopyAccessList(from, path, file, hasList);
    return error != 0 || hasList ? error : CopyPermissions(status, file);
}

bool nxFileAccess::MayFollow(int directory, const struct stat& link)
{
    struct stat status = {};
    if (fstat(directory, &status) != 0)
        return false;
    const bool isShared = (status.st_mode & (S_ISVTX | S_IWOTH)) == (S_ISVTX | S_IWOTH);
    return !isShared || link.st_uid == geteuid() || link.st_uid == status.st_uid;
}
