// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxSpinLock.h"

#include <cerrno>

#include "core/thread/internal/nxThreadReport.h"

nxErrorEnum nxSpinLock::InitialiseAsShared()
{
    if (pthread_spin_init(&_lock, PTHREAD_PROCESS_SHARED) == 0)
        return nxErrorEnum();
    nxThreadReport::SpinLockNotShared();
    return nxErrorEnum(NX_ERR_INTERNAL);
}

nxErrorEnum nxSpinLock::_TryLockError(int result) noexcept
{
    switch (result)
    {
        case EDEADLK:
            return nxErrorEnum(NX_ERR_THR_DEADLOCK);
        case EBUSY:
            return nxErrorEnum(NX_ERR_THR_LOCKED);
        default:
            return nxErrorEnum(NX_ERR_UNSPECIFIED);
    }
}

nxErrorEnum nxSpinLock::_UnlockError(int result) noexcept
{
    return result == EPERM ? nxErrorEnum(NX_ERR_THR_MISMATCH) : nxErrorEnum();
}
