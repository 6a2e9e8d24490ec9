// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/inline/nxNamedMutex.h"

#include <cerrno>

#include "core/platform/linux/inline/nxRobustMutex.h"

bool nxNamedMutex::Initialise()
{
    pthread_mutexattr_t attributes;
    int result = pthread_mutexattr_init(&attributes);
    if (result == 0)
    {
        result = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        if (result == 0)
            result = pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        if (result == 0)
            result = pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        if (result == 0)
            result = pthread_mutex_init(&_mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    errno = result;
    return result == 0;
}

void nxNamedMutex::FinishLock(int result)
{
    if (result == EBUSY)
        result = nxRobustMutex::Wait(_mutex);
    if (result == EOWNERDEAD)
        pthread_mutex_consistent(&_mutex);
}
