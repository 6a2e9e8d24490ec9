// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxReaderWriterLock.h"

#include <cerrno>

#include "core/platform/nxMonotonicWait.h"

nxErrorEnum nxReaderWriterLock::_ReadLockFor(std::int64_t nanoseconds)
{
    const int result = nxMonotonicWait::ReadLock(_lock, nanoseconds);
    if (result == ETIMEDOUT)
        return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
    return result == 0 ? nxErrorEnum() : _ReadLockError(result);
}

nxErrorEnum nxReaderWriterLock::_WriteLockFor(std::int64_t nanoseconds)
{
    const int result = nxMonotonicWait::WriteLock(_lock, nanoseconds);
    if (result == ETIMEDOUT)
        return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
    return result == 0 ? nxErrorEnum() : _WriteLockError(result);
}

// A deadlock is reported as "already locked": callers treat both alike.

nxErrorEnum nxReaderWriterLock::_ReadLockError(int result) noexcept
{
    return result == EAGAIN ? nxErrorEnum(NX_ERR_THR_RESOURCE) : _WriteLockError(result);
}

nxErrorEnum nxReaderWriterLock::_WriteLockError(int result) noexcept
{
    return result == EDEADLK ? nxErrorEnum(NX_ERR_THR_LOCKED) : nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxReaderWriterLock::_TryLockError(int result) noexcept
{
    return result == EBUSY ? nxErrorEnum(NX_ERR_THR_LOCKED) : nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxReaderWriterLock::_UnlockError(int result) noexcept
{
    return result == EPERM ? nxErrorEnum(NX_ERR_THR_PERMISSION) : nxErrorEnum(NX_ERR_UNSPECIFIED);
}
