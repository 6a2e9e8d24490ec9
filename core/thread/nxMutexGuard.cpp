#include "core/thread/nxMutexGuard.h"

#include "core/log/nxLogMacros.h"

bool nxMutexGuard::_IsHeldDespite(const nxErrorEnum& error, nxMutex& mutex)
{
    if (!(error == NX_ERR_THR_OWNER_DEAD))
        return false;
    // Unlocking a mutex that is not consistent would make it unusable for ever.
    mutex.AssertHeld();
    const nxErrorEnum repaired = mutex.Consistent();
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxMutexGuard", __LINE__)
        << "The owner of a robust mutex died while it held the mutex. Made consistent: " << repaired.IsOK();
    return true;
}
