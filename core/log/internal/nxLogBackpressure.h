// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGBACKPRESSURE_H
#define CORE_LOG_INTERNAL_NXLOGBACKPRESSURE_H

#include <atomic>
#include <cstdint>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogWait.h"
#include "core/platform/nxNanoseconds.h"

/// Makes threads that report wait while the queue is full.
///
/// Invariant: after one thread has waited nxLogLimits::RoomWithoutProgress without progress, no thread waits until
/// there is some.
///
/// Threads: any.
class nxLogBackpressure
{
public:
    nxLogBackpressure() = delete;

    /// Repeats @p attempt, which returns whether it succeeded, as long as the devices make progress.
    /// @return whether it succeeded: false without progress, or when the calling thread may not wait.
    template <class Attempt>
    static bool WaitUntil(const Attempt& attempt) noexcept
    {
        nxLogAwakeTime time;
        nxLogWait wait(nxLogWait::NoLimit, nxLogLimits::RoomWithoutProgress, time);
        if (_progressAtStall.load(std::memory_order_relaxed) == wait.GetProgress() || !nxLogBell::CallerMayWait())
            return false;
        nxLogCounters::CountWait();
        const nxLogCounters::Watcher watcher;
        for (;;)
        {
            if (!nxLogBell::EnsureRunning())
                nxLogBell::RunRoundHere();
            nxLogBell::Ring();
            if (attempt())
                return true;
            watcher.WaitForProgress(wait.GetProgress(), nxNanoseconds::PerMillisecond);
            if (wait.Step() <= 0)
            {
                _progressAtStall.store(wait.GetProgress(), std::memory_order_relaxed);
                return false;
            }
        }
    }

    /// No thread of the child has waited yet.
    static void AfterForkInChild() noexcept { _progressAtStall.store(_none, std::memory_order_relaxed); }

private:
    static constexpr std::uint64_t _none = ~std::uint64_t{0};  // wider than any progress
    // Relaxed: a thread that reads an old value waits once more, or not this time.
    static inline constinit std::atomic<std::uint64_t> _progressAtStall{_none};
};

#endif
