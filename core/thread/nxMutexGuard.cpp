// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxMutexGuard.h"

#include "core/thread/internal/nxThreadReport.h"

bool nxMutexGuard::_IsHeldDespite(const nxErrorEnum& error, nxMutex& mutex)
{
    if (!(error == NX_ERR_THR_OWNER_DEAD))
        return false;
    // Unlocking an inconsistent mutex makes it unusable for ever.
    mutex.AssertHeld();
    const nxErrorEnum repaired = mutex.Consistent();
    nxThreadReport::OwnerDiedBeforeLock(repaired.IsOK());
    return true;
}
