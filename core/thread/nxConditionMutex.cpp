// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxConditionMutex.h"

#include <cerrno>

#include "core/thread/internal/nxThreadReport.h"

nxErrorEnum nxConditionMutex::Wait()
{
    const int result = pthread_cond_wait(&_condition, &_mutex);
    if (result == 0)
        return nxErrorEnum();
    // Unlocking an inconsistent mutex makes it unusable for ever.
    const bool ownerDied = result == EOWNERDEAD;
    if (ownerDied)
        static_cast<void>(Consistent());
    pthread_mutex_unlock(&_mutex);
    if (ownerDied)
        nxThreadReport::OwnerDiedDuringWait();
    return nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxConditionMutex::LockAndWait()
{
    if (Lock() == NX_ERR_THR_OWNER_DEAD)
    {
        static_cast<void>(Consistent());  // cannot fail: the lock has just told of the owner's death
        nxThreadReport::OwnerDiedDuringWait();
    }
    return Wait();
}
