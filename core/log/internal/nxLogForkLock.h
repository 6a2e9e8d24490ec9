// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFORKLOCK_H
#define CORE_LOG_INTERNAL_NXLOGFORKLOCK_H

#include <cstdint>
#include <new>

#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogTimedLock.h"
#include "core/thread/internal/nxForkMutex.h"

/// What a device does with its own lock around a fork. A thread may be inside the device for as long as a disk or a reader
/// takes, and must not keep the process from forking: after nxLogLimits::DevicesAtFork, for all devices together, the fork
/// goes on without the lock. What the lock guards may then be half changed in the child.
///
/// Invariant: GiveBack() and RenewInChild() are told what Take() returned for the same mutex and fork.
///
/// Threads: the one that forks.
class nxLogForkLock
{
public:
    nxLogForkLock() = delete;

    /// @return whether the lock was taken, which the other two operations ask for.
    static bool Take(nxMutex& mutex) noexcept
    {
        if (_deadline == 0)
            _deadline = nxClock::MonotonicNanoseconds() + nxLogLimits::DevicesAtFork;
        return nxLogTimedLock::TakeUntil(mutex, _deadline);
    }

    static void GiveBack(nxMutex& mutex, bool wasTaken) noexcept
    {
        _deadline = 0;
        if (wasTaken)
            nxForkMutex::GiveBack(mutex);
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
