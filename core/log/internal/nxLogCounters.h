// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGCOUNTERS_H
#define CORE_LOG_INTERNAL_NXLOGCOUNTERS_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>

#include "core/platform/nxWaitWord.h"

/// The figures of nxLogStatistics and nxLogFigures that belong to no device, and the progress of the devices.
///
/// Invariant: a record that was reported is either counted once, as written, dropped, undelivered or unwanted, or it still waits.
///
/// Errors: none. Threads: any; two operations belong to the thread that holds the round. It calls no other part of the
/// log, and works before and after all static objects live.
class nxLogCounters
{
public:
    nxLogCounters() = delete;

    /// Why records are lost.
    enum class Reason : std::size_t
    {
        QueueFull,   ///< A device has stalled.
        NoMemory,    ///< To queue a record, or to make a line of it.
        DeviceBusy,  ///< A thread inside another device waited too long.
        AtEnd        ///< The process ends and does not wait any longer.
    };
    /// Records that could not be queued, or that a device could not be given.
    static void CountDropped(std::uint64_t records = 1, Reason reason = Reason::QueueFull) noexcept
    {
        _counts.dropped[static_cast<std::size_t>(reason)].fetch_add(records, std::memory_order_relaxed);
    }
    /// A caller that waits for room in the queue.
    static void CountWait() noexcept { _counts.waits.fetch_add(1, std::memory_order_relaxed); }
    /// Records that at least one device was given. Called by the thread that holds the round.
    static void CountWritten(std::uint64_t records) noexcept { _Add(_counts.written, records); }
    /// Records that no device was there for. Called by the thread that holds the round.
    static void CountUndelivered(std::uint64_t records) noexcept { _Add(_counts.undelivered, records); }

    /// Records that the rules of nxLogLevels do not want, found in the queue. Called by the thread that holds the round.
    static void CountUnwanted() noexcept { _Add(_counts.unwanted, 1); }
    /// A round has ended whose oldest record was reported @p nanoseconds before. Called by the thread that holds the round.
    static void SetRoundLag(std::int64_t nanoseconds) noexcept
    {
        _counts.roundLag.store(nanoseconds, std::memory_order_relaxed);
    }

    static std::uint64_t GetDropped(Reason reason) noexcept
    {
        return _counts.dropped[static_cast<std::size_t>(reason)].load(std::memory_order_relaxed);
    }
    /// For all reasons together.
    static std::uint64_t GetDropped() noexcept
    {
        std::uint64_t all = 0;
        for (const std::atomic<std::uint64_t>& dropped : _counts.dropped)
            all += dropped.load(std::memory_order_relaxed);
        return all;
    }
    static std::uint64_t GetUnwanted() noexcept { return _counts.unwanted.load(std::memory_order_relaxed); }
    static std::int64_t GetRoundLag() noexcept { return _counts.roundLag.load(std::memory_order_relaxed); }
    static std::uint64_t GetWaits() noexcept { return _counts.waits.load(std::memory_order_relaxed); }
    static std::uint64_t GetWritten() noexcept { return _counts.written.load(std::memory_order_relaxed); }
    static std::uint64_t GetUndelivered() noexcept { return _counts.undelivered.load(std::memory_order_relaxed); }

    /// Counts a sign of life, which waiting threads watch: a device has returned, or room was given back.
    static void CountProgress() noexcept
    {
        _progress.fetch_add(1, std::memory_order_seq_cst);
        if (_watchers.load(std::memory_order_seq_cst) != 0)
            nxWaitWord::WakeAll(_progress);
    }
    /// @return the number of signs of life so far; wraps.
    static std::uint32_t GetProgress() noexcept { return _progress.load(std::memory_order_acquire); }

    /// A thread that waits for progress. As long as one lives, CountProgress() wakes the threads in WaitForProgress().
    class Watcher
    {
    public:
        Watcher() noexcept { _watchers.fetch_add(1, std::memory_order_seq_cst); }
        ~Watcher() { _watchers.fetch_sub(1, std::memory_order_relaxed); }
        Watcher(const Watcher&) = delete;
        Watcher& operator=(const Watcher&) = delete;

        /// Returns when the progress differs from @p seen, after @p nanoseconds, or for no reason.
        void WaitForProgress(std::uint32_t seen, std::int64_t nanoseconds) const noexcept
        {
            nxWaitWord::Wait(_progress, seen, nanoseconds);
        }
    };

    /// The counts begin at 0 in a forked child. The progress goes on: only a change of it means something.
    static void AfterForkInChild() noexcept
    {
        ::new (&_counts) Counts;
        _watchers.store(0, std::memory_order_relaxed);
    }

private:
    // Relaxed: figures, which order no other memory.
    struct Counts  // all 0 at first
    {
        std::atomic<std::uint64_t> dropped[4];  // by reason
        std::atomic<std::uint64_t> waits;
        std::atomic<std::uint64_t> written;
        std::atomic<std::uint64_t> undelivered;
        std::atomic<std::uint64_t> unwanted;
        std::atomic<std::int64_t> roundLag;
    };

    // One thread at a time adds.
    static void _Add(std::atomic<std::uint64_t>& counter, std::uint64_t records) noexcept
    {
        counter.store(counter.load(std::memory_order_relaxed) + records, std::memory_order_relaxed);
    }

    static inline constinit Counts _counts;
    // CountProgress() adds to _progress after the sign of life and then looks for watchers; a watcher is counted and then
    // looks at _progress, in the kernel. Both are seq_cst, so that one of the two sees the other. GetProgress() is an acquire
    // for the same addition: a thread that sees progress also sees the room that was given back. Relaxed where a watcher
    // leaves, because a needless wake-up does no harm.
    static inline constinit std::atomic<std::uint32_t> _progress{0};
    static inline constinit std::atomic<std::uint32_t> _watchers{0};
};

#endif
