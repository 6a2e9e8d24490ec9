// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/nxNamedObjectPlace.h"

#include <fcntl.h>
#include <limits.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <string>

#include "core/platform/linux/nxScopedDescriptor.h"
#include "core/platform/nxEnvironment.h"

namespace
{
// Processes of different builds share the file, so that a change of its layout needs another name.
constexpr const char* FileName = "objects-1";
constexpr mode_t DirectoryRights = 0700;
constexpr mode_t FileRights = 0600;

// The number in a link such as "pid:[4026531836]"; 0 on a kernel without such namespaces.
std::optional<std::uint64_t> Namespace(int directory, const char* kind)
{
    char text[64];
    const ssize_t length = readlinkat(directory, kind, text, sizeof text);
    if (length < 0)
        return errno == ENOENT ? std::optional<std::uint64_t>(0) : std::nullopt;
    std::uint64_t number = 0;
    for (ssize_t i = 0; i < length; ++i)
    {
        if (text[i] >= '0' && text[i] <= '9')
            number = number * 10 + static_cast<std::uint64_t>(text[i] - '0');
    }
    return number;
}

// Whether it belongs to the user, and neither the group nor other users have any right to it.
bool IsPrivate(const struct stat& status, uid_t user) { return status.st_uid == user && (status.st_mode & 077) == 0; }

// A directory, or a file without a second name.
bool IsDirectoryOrOnlyName(const struct stat& status)
{
    return S_ISDIR(status.st_mode) || (S_ISREG(status.st_mode) && status.st_nlink == 1);
}

// Restores the rights to a directory or file of this user that was made under a umask without them.
bool GiveRights(int parent, const char* name, mode_t rights, uid_t user)
{
    const nxScopedDescriptor found(openat(parent, name, O_PATH | O_NOFOLLOW | O_CLOEXEC, 0));
    struct stat status
    {
    };
    const bool isFound = found.Get() >= 0 && fstat(found.Get(), &status) == 0;
    const bool isOurs = isFound && IsPrivate(status, user) && IsDirectoryOrOnlyName(status);
    const std::string path = "/proc/self/fd/" + std::to_string(found.Get());
    const bool isGiven = isOurs && chmod(path.c_str(), rights) == 0;
    errno = EACCES;
    return isGiven;
}

// Opens a file or directory that only this user may use. @return -1 with errno, EPERM if others may use it as well.
int OpenPrivate(int parent, const char* name, int flags, mode_t rights, uid_t user)
{
    const auto open = [&] { return openat(parent, name, flags | O_NOFOLLOW | O_CLOEXEC, rights); };
    int descriptor = open();
    if (descriptor < 0 && errno == EACCES && GiveRights(parent, name, rights, user))
        descriptor = open();
    nxScopedDescriptor opened(descriptor);
    struct stat status
    {
    };
    if (opened.Get() < 0 || fstat(opened.Get(), &status) != 0)
        return -1;
    if (!IsPrivate(status, user) || !IsDirectoryOrOnlyName(status))
    {
        errno = EPERM;
        return -1;
    }
    if ((status.st_mode & rights) != rights && fchmod(opened.Get(), rights) != 0)
        return -1;
    return opened.Release();
}

// The directory that holds those of the users, or the reason why there is none.
struct Root
{
    std::string path;
    int error = 0;
};

Root FindRoot()
{
    char chosen[PATH_MAX];
    int result = nxEnvironment::IsSecureExecution() ? ENOENT : EBUSY;
    while (result == EBUSY && (result = nxEnvironment::Copy("NX_SHARED_DIRECTORY", chosen)) == EBUSY)
        sched_yield();
    if (result == 0 && chosen[0] != '\0')
        return {chosen, chosen[0] == '/' ? 0 : ENOTDIR};
    if (result == EFBIG)
        return {"", ENAMETOOLONG};
    return {};
}

// /dev/shm, or /tmp where there is none.
Root FindUsualRoot()
{
    struct stat status
    {
    };
    if (stat("/dev/shm", &status) == 0)
        return {S_ISDIR(status.st_mode) ? "/dev/shm" : "/tmp"};
    return errno == ENOENT || errno == ENOTDIR ? Root{"/tmp"} : Root{"", errno};
}

// Opens the user's directory, or makes it.
int OpenDirectory(const nxNamedObjectPlace::Identity& identity)
{
    // Read once. The caller holds the mutex of the table, which forks wait for. Never destroyed, because destructors of other
    // objects and threads that outlive main still open named objects.
    alignas(Root) static unsigned char storage[sizeof(Root)];
    static const Root& configured = *::new (storage) Root(FindRoot());
    const Root root = configured.path.empty() && configured.error == 0 ? FindUsualRoot() : configured;
    errno = root.error;
    if (root.error != 0)
        return -1;
    const std::string path = root.path + "/nxcore-" + std::to_string(identity.user) + '-' +
                             std::to_string(identity.processNamespace) + '-' + std::to_string(identity.userNamespace);
    if (mkdir(path.c_str(), DirectoryRights) != 0 && errno != EEXIST)
        return -1;
    return OpenPrivate(AT_FDCWD, path.c_str(), O_RDONLY | O_DIRECTORY, DirectoryRights, identity.user);
}
}  // namespace

std::optional<nxNamedObjectPlace::Identity> nxNamedObjectPlace::FindIdentity()
{
    const nxScopedDescriptor directory(open("/proc/self/ns", O_PATH | O_DIRECTORY | O_CLOEXEC, 0));
    if (directory.Get() < 0)
        return std::nullopt;
    const auto processes = Namespace(directory.Get(), "pid");
    const auto users = Namespace(directory.Get(), "user");
    if (!processes || !users)
        return std::nullopt;
    return Identity{geteuid(), *processes, *users};
}

int nxNamedObjectPlace::Open(const Identity& identity)
{
    const nxScopedDescriptor directory(OpenDirectory(identity));
    if (directory.Get() < 0)
        return -1;
    const nxScopedDescriptor opened(
        OpenPrivate(directory.Get(), FileName, O_RDWR | O_CREAT, FileRights, identity.user));
    if (opened.Get() < 0)
        return -1;
    // A process may have been started without standard streams. The file must not get one of their numbers.
    return fcntl(opened.Get(), F_DUPFD_CLOEXEC, 3);
}
