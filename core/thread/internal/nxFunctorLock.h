// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXFUNCTORLOCK_H
#define CORE_THREAD_INTERNAL_NXFUNCTORLOCK_H

#include "core/platform/nxSpin.h"
#include "core/thread/nxMutex.h"

/// Holds the mutex of a functor queue for the length of a scope.
///
/// It is held for some tens of nanoseconds, so a thread that finds it taken tries again for about a microsecond before it sleeps.
class NX_SCOPED_CAPABILITY nxFunctorLock
{
public:
    explicit nxFunctorLock(nxMutex& mutex) NX_ACQUIRE(mutex) : _mutex(mutex) { Take(mutex); }
    ~nxFunctorLock() NX_RELEASE() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(_mutex.Unlock()); }
    nxFunctorLock(const nxFunctorLock&) = delete;
    nxFunctorLock& operator=(const nxFunctorLock&) = delete;

    /// Waits until @p mutex is free. The calling thread does not hold it, so that this cannot fail.
    static void Take(nxMutex& mutex) NX_ACQUIRE(mutex) NX_NO_THREAD_SAFETY_ANALYSIS
    {
        const auto attempt = [&mutex] { return mutex.TryLock().IsOK(); };
        if (!attempt() && !nxSpin::Until(attempt))
            static_cast<void>(mutex.Lock());
    }

private:
    nxMutex& _mutex;
};

#endif
