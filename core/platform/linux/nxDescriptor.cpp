// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace
{
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
}  // namespace

nxFileIdentity::nxFileIdentity(const struct stat& status) : device(status.st_dev), inode(status.st_ino) {}

nxDescriptor::nxDescriptor(int opened) : _number(MoveAboveStandardStreams(opened))
{
    struct stat status = {};
    if (_number < 0)
        return;
    if (fstat(_number, &status) == 0)
    {
        _identity = nxFileIdentity(status);
        return;
    }
    const int error = errno;
    close(std::exchange(_number, -1));
    errno = error;
}

nxDescriptor::nxDescriptor(nxDescriptor&& other) noexcept
    : _number(std::exchange(other._number, -1)), _identity(other._identity)
{
}

nxDescriptor& nxDescriptor::operator=(nxDescriptor&& other) noexcept
{
    if (this != &other)
    {
        Close();
        _number = std::exchange(other._number, -1);
        _identity = other._identity;
    }
    return *this;
}

int nxDescriptor::Check(struct stat& status) const
{
    if (fstat(_number, &status) != 0)
        return errno;
    return nxFileIdentity(status) == _identity ? 0 : EBADF;
}

void nxDescriptor::Close()
{
    struct stat status = {};
    if (IsOpen() && Check(status) == 0)
        close(_number);
    Forget();
}
