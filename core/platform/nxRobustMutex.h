#ifndef CORE_PLATFORM_NXROBUSTMUTEX_H
#define CORE_PLATFORM_NXROBUSTMUTEX_H

#include <pthread.h>

/// Takes robust mutexes in a way that outlives a kill of any other waiter.
///
/// When a mutex is given back, the system wakes one waiter. If that one is killed before it has taken the mutex, while
/// somebody new has taken and freed it, nobody wakes the others, and they would sleep although the mutex is free. So
/// nobody sleeps for good: a waiter looks again twenty times a second, so that the next one is in within 100 ms.
class nxRobustMutex
{
public:
    /// Waits for a mutex that the caller has just found taken, and takes it.
    /// @return 0, EOWNERDEAD (taken as well), or why it cannot be taken.
    static int Wait(pthread_mutex_t& mutex);
};

#endif
