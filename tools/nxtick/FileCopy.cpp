// SPDX-License-Identifier: Apache-2.0
#include "FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <vector>

#include "core/platform/nxFile.h"

namespace nxtick
{
namespace
{
bool WriteAll(int file, std::string_view text)
{
    std::size_t written = 0;
    errno = nxFile::WriteTo(file, text.data(), text.size(), written);
    return written == text.size();
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
        if (count < 0 ? errno != EINTR : !WriteAll(to, {buffer.data(), static_cast<std::size_t>(count)}))
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
