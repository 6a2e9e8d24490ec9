#include "core/thread/nxMutexGuard.h"

bool nxMutexGuard::_IsHeldDespite(const nxErrorEnum& error, nxMutex& mutex)
{
    if (!(error == NX_ERR_THR_OWNER_DEAD))
        return false;
    // Unlocking a mutex that is not consistent would make it unusable for ever.
    mutex.AssertHeld();
    mutex.Consistent();
    return true;
}
