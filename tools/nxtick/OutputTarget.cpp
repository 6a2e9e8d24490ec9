// SPDX-License-Identifier: Apache-2.0
#include "OutputTarget.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <utility>

#include "Failure.h"
#include "core/platform/nxFileAccess.h"

namespace nxtick
{
namespace
{
bool IsSame(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

// Whether the names in the directory are the descriptors of this process.
bool HoldsOwnDescriptors(int directory)
{
    struct stat status = {};
    if (::fstat(directory, &status) != 0)
        return false;
    for (const char* const own : {"/proc/self/fd", "/proc/thread-self/fd"})
        if (struct stat each = {}; ::stat(own, &each) == 0 && IsSame(each, status))
            return true;
    return false;
}

bool IsOfProcesses(int directory)
{
    struct statfs status = {};
    return ::fstatfs(directory, &status) == 0 && status.f_type == PROC_SUPER_MAGIC;
}

// Follows links to the file or stream that a name leads to.
class Search
{
public:
    explicit Search(const std::string& shownName) : _shownName(shownName) {}

    OutputTarget Find(std::string path)
    {
        constexpr int mostLinks = 40;  // as many as the system follows
        for (int links = 0; links <= mostLinks; ++links)
        {
            _Enter(path);
            struct stat status = {};
            if (::fstatat(_target.directory.Get(), _target.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            {
                if (errno != ENOENT)
                    FailToWrite(_shownName);
                return std::move(_target);
            }
            if (!S_ISLNK(status.st_mode))
            {
                _Open(O_NOFOLLOW);
                return std::move(_target);
            }
            if (HoldsOwnDescriptors(_target.directory.Get()))
            {
                _target.stream = _Duplicate();
                return std::move(_target);
            }
            if (IsOfProcesses(_target.directory.Get()))
            {
                _Open(0);
                _target.directory.Close();
                return std::move(_target);
            }
            if (!nxFileAccess::MayFollow(_target.directory.Get(), status))
            {
                errno = EACCES;
                FailToWrite(_shownName);
            }
            path = _ReadLink();
        }
        errno = ELOOP;
        FailToWrite(_shownName);
    }

private:
    // Goes to the directory of a path, which is relative to the directory of the path before it.
    void _Enter(const std::string& path)
    {
        const std::size_t slash = path.rfind('/');
        const std::string directory =
            slash == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(1, slash));
        const int start = _target.directory.IsOpen() ? _target.directory.Get() : AT_FDCWD;
        _target.directory = FileDescriptor(::openat(start, directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!_target.directory.IsOpen())
            FailToWrite(_shownName);
        _target.name = path.substr(slash + 1);  // npos + 1 is 0
        if (_target.name.empty())
        {
            errno = EISDIR;
            FailToWrite(_shownName);
        }
    }

    // Opening alone does not change a file.
    void _Open(int flags)
    {
        FileDescriptor file(
            ::openat(_target.directory.Get(), _target.name.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC | flags));
        if (!file.IsOpen() || ::fstat(file.Get(), &_target.status) != 0)
            FailToWrite(_shownName);
        (S_ISREG(_target.status.st_mode) ? _target.file : _target.stream) = std::move(file);
    }

    FileDescriptor _Duplicate() const
    {
        int number = -1;
        std::from_chars(_target.name.data(), _target.name.data() + _target.name.size(), number);
        FileDescriptor copy(::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        if (!copy.IsOpen())
            FailToWrite(_shownName);
        return copy;
    }

    std::string _ReadLink() const
    {
        std::string path(PATH_MAX, '\0');
        const ssize_t size = ::readlinkat(_target.directory.Get(), _target.name.c_str(), path.data(), path.size());
        if (size < 0)
            FailToWrite(_shownName);
        path.resize(static_cast<std::size_t>(size));
        return path;
    }

    const std::string& _shownName;
    OutputTarget _target;
};
}  // namespace

OutputTarget FindOutputTarget(const std::string& path, const std::string& shownName)
{
    return Search(shownName).Find(path);
}
}  // namespace nxtick
