#include "core/thread/nxConditionMutex.h"

#include <cerrno>

#include "core/log/nxLogMacros.h"

nxErrorEnum nxConditionMutex::Wait()
{
    const int result = pthread_cond_wait(&_condition, &_mutex);
    if (result == 0)
        return nxErrorEnum();
    // Unlocking a mutex that is not consistent would make it unusable for ever.
    const bool ownerDied = result == EOWNERDEAD;
    if (ownerDied)
        pthread_mutex_consistent(&_mutex);
    pthread_mutex_unlock(&_mutex);
    if (ownerDied)
    {
        NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxConditionMutex", __LINE__)
            << "The owner of a robust mutex died while another thread waited";
    }
    return nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxConditionMutex::LockAndWait()
{
    Lock();
    return Wait();
}
