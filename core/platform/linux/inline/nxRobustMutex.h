#ifndef CORE_PLATFORM_LINUX_INLINE_NXROBUSTMUTEX_H
#define CORE_PLATFORM_LINUX_INLINE_NXROBUSTMUTEX_H

#include <pthread.h>

#include <cerrno>
#include <climits>

/// Takes robust mutexes in a way that outlives a kill of any other waiter.
///
/// When a mutex is given back, the system wakes one waiter. If that one is killed before it has taken the mutex, while
/// somebody new has taken and freed it, nobody wakes the others, and they would sleep although the mutex is free. So
/// nobody sleeps for good: a waiter looks again twenty times a second, so that the next one is in within 100 ms.
class nxRobustMutex
{
public:
    /// Whether the system reports the death of the mutex's owner. The C library offers no query for it. The bit is part of
    /// its binary interface, on which mutexes shared by processes rely already.
    static bool IsRobust(const pthread_mutex_t& mutex) noexcept { return (mutex.__data.__kind & 16) != 0; }

    /// Takes a mutex, of whatever kind, if it is free.
    /// @return 0, EOWNERDEAD (taken as well), or why it cannot be taken.
    static int Try(pthread_mutex_t& mutex)
    {
        // The C library refuses a robust mutex that is lost for good, but writes itself in as its holder, for ever: who
        // asks later hangs, and an unlock crashes. Being lost is a state without return, so it can be seen beforehand.
        constexpr int lostOwner = INT_MAX - 1;
        if (__atomic_load_n(&mutex.__data.__owner, __ATOMIC_RELAXED) == lostOwner) [[unlikely]]
            return ENOTRECOVERABLE;
        return pthread_mutex_trylock(&mutex);
    }

    /// Waits for a mutex that the caller has just found taken, and takes it.
    /// @return 0, EOWNERDEAD (taken as well), or why it cannot be taken.
    static int Wait(pthread_mutex_t& mutex);
};

#endif
