// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICEQUEUE_H
#define CORE_LOG_INTERNAL_NXLOGDEVICEQUEUE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "core/log/internal/nxLogAwakeTime.h"
#include "core/log/internal/nxLogDeviceBacklog.h"
#include "core/log/internal/nxLogDeviceItems.h"
#include "core/log/internal/nxLogDeviceQueues.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogTarget.h"
#include "core/platform/nxSleepBell.h"
#include "core/thread/nxMutex.h"

class nxLogDeviceThread;

/// What waits for one device, and the thread that writes it there.
///
/// Invariant: a record that was added is delivered once, or counted once as lost, or still waits. Records that wait take no
/// more memory than the bound, but for one item that may be larger than it. Losses are told to the device, by a record of
/// their own, after all that was added before them and before all that was added after them.
///
/// - The thread starts with the first record, and has ended when End() returns true. It keeps the queue alive: a thread that
///   is stuck in its target for ever does no harm to an owner that has let go of the queue.
/// - Errors: without memory or without a thread records are lost and counted. Threads: any; Run() is the thread's own.
class nxLogDeviceQueue final : public nxLogDeviceQueues::Member
{
public:
    explicit nxLogDeviceQueue(std::unique_ptr<nxLogTarget> target);
    ~nxLogDeviceQueue();
    nxLogDeviceQueue(const nxLogDeviceQueue&) = delete;
    nxLogDeviceQueue& operator=(const nxLogDeviceQueue&) = delete;

    void Add(const nxLogRecord& record) noexcept;
    void Add(const nxLogLineBatch& lines) noexcept;

    /// Has the target flushed after all that was added before. Does not wait.
    void AskForFlush() noexcept;
    /// Has the target maintained soon. Does not wait.
    void AskForMaintenance() noexcept;

    /// Waits until the target has taken and flushed all that was added before the call: while it makes progress, and not
    /// while it is away. @param time what has been waited before; it counts towards the limit in all.
    /// @return whether it has.
    bool WaitUntilWritten(const nxLogLimits::Wait& limit, nxLogAwakeTime& time) noexcept override;

    /// @return @p limit, or a shorter one for a target that a wait was given up for and that has not moved since.
    nxLogLimits::Wait GetLimitFor(const nxLogLimits::Wait& limit) const noexcept override;

    /// Waits as WaitUntilWritten() with nxLogLimits::End, ends the thread, and counts what is left as lost, which the error
    /// stream is told. Records that are added later start another thread.
    /// @param destroyTarget whether the target is destroyed afterwards; it is not if the thread does not leave it.
    void End(bool destroyTarget) noexcept;

    nxLogLineStyle GetLineStyle() const noexcept { return _target->GetLineStyle(); }
    void SetMaximumBytes(std::uint64_t bytes) noexcept { _maximumBytes.store(bytes, std::memory_order_relaxed); }
    std::uint64_t GetMaximumBytes() const noexcept { return _maximumBytes.load(std::memory_order_relaxed); }
    std::uint64_t GetLost() const noexcept { return _lost.load(std::memory_order_relaxed); }
    /// @return the records that were lost since the last call. Where threads call it at once, the sum of what they get is
    ///         right modulo 2^64.
    std::uint64_t TakeUntoldLosses() noexcept
    {
        const std::uint64_t lost = GetLost();
        return lost - _toldLost.exchange(lost, std::memory_order_relaxed);
    }
    std::uint64_t GetWaiting() const noexcept override { return _waiting.load(std::memory_order_relaxed); }
    bool HasThread() const noexcept override { return _hasThread.load(std::memory_order_relaxed); }

    /// What the thread does.
    void Run() noexcept;

    /// Keeps the thread out of the target, if it leaves it in time.
    void BeforeFork() noexcept override NX_NO_THREAD_SAFETY_ANALYSIS;
    /// The same for the items, which no thread touches for long.
    void LockForFork() noexcept override NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() noexcept override NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() noexcept override NX_NO_THREAD_SAFETY_ANALYSIS;
    /// Keeps the thread out of the target for good, at the very end of the process, if it leaves it in time.
    void BlockForGood(std::int64_t deadline) noexcept override NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    template <class Item>
    void _Add(const Item& item, std::uint64_t records, const nxClockTime& first, const nxClockTime& last) noexcept;
    void _CountLost(std::uint64_t records, const nxClockTime& first, const nxClockTime& last) noexcept
        NX_REQUIRES(_mutex);
    void _EnsureThread() noexcept NX_REQUIRES(_mutex);
    std::uint32_t _RequestFlush() noexcept;

    bool _TakeNext() noexcept;
    /// Whether the calling thread is the queue's. Not in a child that the device has forked: its queue starts another one.
    bool _IsServedByCaller() const noexcept { return _ofThisThread == this; }
    bool _IsToEnd() noexcept;
    void _Deliver(const nxLogDeviceItem& item) noexcept;
    nxLogTarget::Outcome _Write(const nxLogDeviceItem& item) noexcept;
    void _Finish(const nxLogDeviceItem& item, bool isTaken) noexcept;
    void _WaitWhileAway() noexcept;

    bool _EndThread(std::int64_t limit) noexcept;
    std::uint64_t _DropWaiting() noexcept;

    static constinit thread_local const nxLogDeviceQueue* _ofThisThread;

    const std::unique_ptr<nxLogTarget> _target;
    nxMutex _inside;  // held during every call of the target

    nxMutex _mutex;
    nxLogDeviceBacklog _backlog NX_GUARDED_BY(_mutex);
    nxLogDeviceThread* _thread NX_GUARDED_BY(_mutex) = nullptr;
    std::int64_t _nextStart NX_GUARDED_BY(_mutex) = 0;  // of the thread, on the monotonic clock
    bool _isEnding NX_GUARDED_BY(_mutex) = false;

    nxLogDeviceItems _inHand;                  // the thread's; replaced under _mutex
    unsigned _refusals = 0;                    // of the item at hand, one after the other; the thread's
    std::atomic<std::size_t> _inHandBytes{0};  // relaxed, because both sides hold _mutex
    nxSleepBell _bell;
    // The last ticket whose items were taken and flushed; threads sleep on it. The thread stores it after all that the target
    // did (release), waiting threads load it (acquire). Relaxed in a child.
    std::atomic<std::uint32_t> _reached{0};
    // Calls of the target that found it away: added after _lastAttempt is stored (release), loaded before that (acquire).
    // Relaxed in a child, and _lastAttempt everywhere.
    std::atomic<std::uint32_t> _attempts{0};
    std::atomic<std::int64_t> _lastAttempt{0};
    // Stored after the thread's last use of target and items (release), loaded by the thread that ends it (acquire). Relaxed
    // under _mutex, and where only the number of threads is asked for.
    std::atomic<bool> _hasThread{false};
    // Relaxed: stored before _bell rings, and loaded after the thread has slept or before it sleeps.
    std::atomic<bool> _isMaintenanceDue{false};
    std::atomic<bool> _isAttemptWanted{false};
    // What is in hand is dropped: it has been counted as lost. Relaxed: looked at under _mutex where something depends on it.
    std::atomic<bool> _isGivenUp{false};
    // Relaxed: how long a wait lasts follows from them, and nothing else.
    std::atomic<std::uint32_t> _progress{0};         // calls of the target that took something
    std::atomic<bool> _hasStalled{false};            // a wait has ended for that reason,
    std::atomic<std::uint32_t> _progressAtStall{0};  // at this progress
    // Relaxed: a setting and figures, which order no other memory.
    std::atomic<std::uint64_t> _maximumBytes{nxLogLimits::DeviceBytes};
    std::atomic<std::uint64_t> _waiting{0};
    std::atomic<std::uint64_t> _lost{0};
    std::atomic<std::uint64_t> _toldLost{0};  // of those, what TakeUntoldLosses() has returned

    bool _isLockedForFork = false;  // touched by the forking thread only
};

#endif
