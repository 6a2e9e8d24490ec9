#include "core/thread/nxConditionMutex.h"

#include <cerrno>

nxErrorEnum nxConditionMutex::Wait()
{
    const int result = pthread_cond_wait(&_condition, &_mutex);
    if (result == 0)
        return nxErrorEnum();
    if (result == EOWNERDEAD)
        pthread_mutex_consistent(&_mutex);
    pthread_mutex_unlock(&_mutex);
    return nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxConditionMutex::LockAndWait()
{
    Lock();
    return Wait();
}
