// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_INLINE_NXROBUSTMUTEX_H
#define CORE_PLATFORM_LINUX_INLINE_NXROBUSTMUTEX_H

#include <pthread.h>

#include <cerrno>
#include <climits>
#include <cstdint>

/// Takes robust mutexes so that the kill of one waiter does not stop the others.
///
/// When a mutex is unlocked, the system wakes one waiter. If that waiter is killed before it has taken the mutex, while
/// another thread takes and unlocks it, the other waiters are not woken and would sleep although the mutex is free.
/// Therefore a waiter tries again twenty times a second, and the next one has the mutex within 100 ms.
class nxRobustMutex
{
public:
    /// Whether the system reports the death of the mutex's owner. The C library offers no query for it. The bit is part of
    /// its binary interface, on which mutexes shared by processes rely already.
    static bool IsRobust(const pthread_mutex_t& mutex) noexcept { return (mutex.__data.__kind & 16) != 0; }

    /// Takes a mutex of any kind if it is free.
    /// @return 0, EOWNERDEAD (taken as well), or the reason why it cannot be taken.
    static int Try(pthread_mutex_t& mutex)
    {
        // The C library refuses a robust mutex that is lost for good, but enters the caller as its holder for ever: later
        // calls hang, and an unlock crashes. A lost mutex never recovers, so the state can be tested before the call,
        // relaxed, because no other memory depends on it.
        constexpr int lostOwner = INT_MAX - 1;
        if (__atomic_load_n(&mutex.__data.__owner, __ATOMIC_RELAXED) == lostOwner) [[unlikely]]
            return ENOTRECOVERABLE;
        return pthread_mutex_trylock(&mutex);
    }

    /// Waits for a mutex that the caller has just found locked, and takes it.
    /// @return 0, EOWNERDEAD (taken as well), or the reason why it cannot be taken.
    static int Wait(pthread_mutex_t& mutex);

    /// The same until @p deadline, in nanoseconds of the monotonic clock. @return also ETIMEDOUT.
    static int WaitUntil(pthread_mutex_t& mutex, std::int64_t deadline);

    /// Takes a mutex of any kind, in one wait that ends at @p deadline, in nanoseconds of the monotonic clock.
    /// @return 0, EOWNERDEAD (taken as well), ETIMEDOUT, or the reason why it cannot be taken.
    static int LockUntil(pthread_mutex_t& mutex, std::int64_t deadline);
};

#endif
