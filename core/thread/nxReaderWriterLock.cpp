#include "core/thread/nxReaderWriterLock.h"

#include <cerrno>

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
