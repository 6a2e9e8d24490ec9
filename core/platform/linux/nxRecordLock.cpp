// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/nxRecordLock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "core/platform/linux/nxSystemCall.h"

namespace
{
struct flock LockOf(short type, off_t byte)
{
    struct flock lock
    {
    };
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return lock;
}

bool Set(int descriptor, short type, off_t byte) noexcept
{
    struct flock lock = LockOf(type, byte);
    return nxSystemCall::RetryInterrupted([&] { return fcntl(descriptor, F_OFD_SETLK, &lock); }) == 0;
}
}  // namespace

bool nxRecordLock::TryShared(int descriptor, off_t byte) noexcept { return Set(descriptor, F_RDLCK, byte); }

bool nxRecordLock::TryExclusive(int descriptor, off_t byte) noexcept
{
    const bool isLocked = Set(descriptor, F_WRLCK, byte);
    if (!isLocked && errno == EACCES)
        errno = EAGAIN;  // POSIX allows either
    return isLocked;
}

void nxRecordLock::Unlock(int descriptor, off_t byte) noexcept
{
    const int error = errno;
    Set(descriptor, F_UNLCK, byte);
    errno = error;
}

bool nxRecordLock::IsLockedByAnother(int descriptor, off_t byte) noexcept
{
    struct flock lock = LockOf(F_WRLCK, byte);
    return fcntl(descriptor, F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}
