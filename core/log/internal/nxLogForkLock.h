#ifndef CORE_LOG_INTERNAL_NXLOGFORKLOCK_H
#define CORE_LOG_INTERNAL_NXLOGFORKLOCK_H

#include <cstdint>
#include <new>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutex.h"

/// What a device does with its own lock around a fork. A thread may be inside the device for as long as a disk or a reader
/// takes, and must not keep the process from forking: after a second, for all devices together, the fork goes on without
/// the lock. What it guards is then torn in the child.
///
/// Threads: the one that forks.
class nxLogForkLock
{
public:
    nxLogForkLock() = delete;

    /// @return whether the lock was taken, which the other two operations ask for.
    static bool Take(nxMutex& mutex) noexcept NX_NO_THREAD_SAFETY_ANALYSIS
    {
        constexpr std::int64_t patience = 1'000'000'000;
        if (_deadline == 0)
            _deadline = nxClock::MonotonicNanoseconds() + patience;
        return TakeUntil(mutex, _deadline);
    }

    /// @param deadline on the monotonic clock. @return whether the lock was taken.
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

    static void GiveBack(nxMutex& mutex, bool wasTaken) noexcept NX_NO_THREAD_SAFETY_ANALYSIS
    {
        _deadline = 0;
        if (wasTaken)
            mutex.Unlock();
    }

    static void RenewInChild(nxMutex& mutex, bool wasTaken) noexcept
    {
        _deadline = 0;
        if (wasTaken)
            nxForkMutex::Renew(mutex);
        else
            ::new (&mutex) nxMutex;
    }

private:
    // Of the fork that the thread is at; 0 when it is at none.
    static inline constinit thread_local std::int64_t _deadline = 0;
};

#endif
