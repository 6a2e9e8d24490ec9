// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGTIMEDLOCK_H
#define CORE_LOG_INTERNAL_NXLOGTIMEDLOCK_H

#include <cstdint>
#include <limits>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/nxMutex.h"

/// Locks a mutex within a limit: the thread that holds it may be inside a device for as long as a disk or a reader takes.
///
/// Invariant: a limit of 0 never waits, and Forever never gives up.
///
/// Threads: no state.
class nxLogTimedLock
{
public:
    nxLogTimedLock() = delete;

    static constexpr std::int64_t Forever = std::numeric_limits<std::int64_t>::max();

    /// @param limit nanoseconds. @return whether the mutex was locked; false also when the thread holds it already.
    static bool Take(nxMutex& mutex, std::int64_t limit) noexcept NX_NO_THREAD_SAFETY_ANALYSIS
    {
        return limit == Forever ? mutex.Lock().IsOK() : TakeUntil(mutex, nxClock::MonotonicNanoseconds() + limit);
    }

    /// @param deadline on the monotonic clock. @return as Take().
    static bool TakeUntil(nxMutex& mutex, std::int64_t deadline) noexcept NX_NO_THREAD_SAFETY_ANALYSIS
    {
        while (!mutex.TryLock().IsOK())
        {
            if (nxClock::MonotonicNanoseconds() >= deadline)
                return false;
            nxThisThread::SleepMilliseconds(1);
        }
        return true;
    }
};

#endif
