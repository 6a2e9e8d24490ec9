// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGCOUNTERS_H
#define CORE_LOG_INTERNAL_NXLOGCOUNTERS_H

#include <atomic>
#include <cstdint>
#include <new>

#include "core/platform/nxWaitWord.h"

/// The figures of nxLogStatistics, and the progress of the devices.
///
/// Invariant: a record that was reported is either counted once, as written, dropped or undelivered, or it still waits.
///
/// Errors: none. Threads: any; two operations belong to the thread that holds the round. It calls no other part of the
/// log, and works before and after all static objects live.
class nxLogCounters
{
public:
    nxLogCounters() = delete;

    /// Records that could not be queued, or that a device could not be given.
    static void CountDropped(std::uint64_t records = 1) noexcept
    {
        _counts.dropped.fetch_add(records, std::memory_order_relaxed);
    }
    /// A caller that waits for room in the queue.
    static void CountWait() noexcept { _counts.waits.fetch_add(1, std::memory_order_relaxed); }
    /// Records that at least one device was given. Called by the thread that holds the round.
    static void CountWritten(std::uint64_t records) noexcept { _Add(_counts.written, records); }
    /// Records that no device was there for. Called by the thread that holds the round.
    static void CountUndelivered(std::uint64_t records) noexcept { _Add(_counts.undelivered, records); }

    static std::uint64_t GetDropped() noexcept { return _counts.dropped.load(std::memory_order_relaxed); }
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
    struct Counts  // all 0 at first
    {
        std::atomic<std::uint64_t> dropped;
        std::atomic<std::uint64_t> waits;
        std::atomic<std::uint64_t> written;
        std::atomic<std::uint64_t> undelivered;
    };

    // One thread at a time adds.
    static void _Add(std::atomic<std::uint64_t>& counter, std::uint64_t records) noexcept
    {
        counter.store(counter.load(std::memory_order_relaxed) + records, std::memory_order_relaxed);
    }

    static inline constinit Counts _counts;
    static inline constinit std::atomic<std::uint32_t> _progress{0};
    static inline constinit std::atomic<std::uint32_t> _watchers{0};
};

#endif
