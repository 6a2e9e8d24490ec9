// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGWRITER_H
#define CORE_LOG_INTERNAL_NXLOGWRITER_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/log/internal/nxLogAwakeTime.h"
#include "core/log/internal/nxLogBatches.h"
#include "core/log/internal/nxLogEarlyRecords.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogUpkeep.h"
#include "core/thread/nxMutex.h"

/// Takes the queued records in rounds and delivers them to the devices; and lets threads wait for that.
///
/// Invariant: one thread at a time is in a round. A ticket of a waiting thread is reached only by a round that began after
/// the ticket was drawn, had memory, and delivered or counted everything that was queued before.
///
/// That thread is the deferred-write thread (nxLogWriterThread); another one only where that thread cannot run, so that
/// records are written all the same. Never destroyed.
///
/// Errors: without memory a round takes nothing. Threads: any.
class nxLogWriter
{
public:
    static nxLogWriter& GetInstance() noexcept;

    /// What the deferred-write thread knows after a round.
    struct Look
    {
        bool hasFound;             ///< There was a record.
        std::int64_t untilUpkeep;  ///< Nanoseconds until the next round is due although no record comes.
    };
    /// Does a round in the deferred-write thread.
    Look RunRound() noexcept;
    /// See nxLogBell.
    void RunRoundHere(std::int64_t limit) noexcept;

    /// Whether records that have been taken from the queue may not have reached all devices yet.
    bool IsInRound() const noexcept { return _isInRound.load(std::memory_order_acquire); }
    /// How many records of the round that is going on are still in the queue although devices were given them.
    unsigned GetInHand() const noexcept { return _inHand.load(std::memory_order_relaxed); }

    /// Waits until all that was queued before the call has been written and flushed. Starts the deferred-write thread if
    /// it does not run. Time in which the process itself did not run does not count.
    /// @return whether it has been.
    bool WaitUntilWritten(const nxLogLimits::Wait& limit) noexcept;
    /// The same, and then until devices with a thread of their own have it, while they make progress.
    bool WaitUntilAllHave(const nxLogLimits::Wait& limit) noexcept;
    /// The same at the end of the process or of a device: starts no thread, and waits for nothing where nothing was ever
    /// written. @return whether all has been written.
    bool WriteOutAtEnd() noexcept;
    /// @param time what has been waited before; it counts towards the limit.
    bool WriteOutAtEnd(nxLogAwakeTime& time) noexcept;

    /// Lets no thread begin a round any more: at the very end of the process. Waits nxLogLimits::RoundAtEnd at most for the
    /// round that is going on.
    void BlockRoundsForGood() noexcept;

    /// See nxLogUpkeep.
    void SetFlushInterval(double seconds) noexcept { _upkeep.SetFlushInterval(seconds); }

    /// Appends copies of all records that wait, for the first device too. The records of one thread are in order.
    void CopyRecords(std::vector<nxLog>& records);

    /// The child has no round, and no thread that waits for one. A thread that was in a round leaves it as soon as the device
    /// returns that has forked, and delivers nothing more: the records are the parent's.
    void AfterForkInChild() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    /// What became of a round.
    enum class Outcome
    {
        NoMemory,  // it took nothing, and the records wait for the next one
        Nothing,   // no record was there
        Some
    };

    nxLogWriter() noexcept = default;
    ~nxLogWriter() = delete;

    bool _RunRoundAndUpkeep(bool everything) noexcept NX_REQUIRES(_roundMutex);
    Outcome _DoRound(bool everything) noexcept NX_REQUIRES(_roundMutex);
    nxLogBatches& _PrepareBatches() NX_REQUIRES(_roundMutex);
    void _WriteEarlyRecords(nxLogBatches& batches) noexcept NX_REQUIRES(_roundMutex);
    bool _DeliverQueued(nxLogBatches& batches) noexcept NX_REQUIRES(_roundMutex);
    void _KeepEarly(const nxLogRecord& record) noexcept NX_REQUIRES(_roundMutex);
    bool _WaitUntilReached(const nxLogLimits::Wait& limit, nxLogAwakeTime& time, bool mayStart) noexcept;

    nxMutex _roundMutex;  // held from the beginning of a round to the end of its upkeep
    std::unique_ptr<nxLogBatches> _batches NX_GUARDED_BY(_roundMutex);  // null before the first round
    nxLogEarlyRecords _early;                                           // IsClosed() without the mutex
    nxLogUpkeep _upkeep;                                                // SetFlushInterval() without the mutex

    // The end of a round is stored after all that its devices did (release), and IsInRound() loads it (acquire). The
    // beginning is relaxed: a thread that finds a ring empty saw its tail move under the list's mutex, after the beginning.
    std::atomic<bool> _isInRound{false};
    // Relaxed: read without the mutex only where a round is stuck, and then nothing changes it.
    std::atomic<unsigned> _inHand{0};
    // The ticket that was drawn last. A waiting thread draws it after its records (release), and a round loads it before
    // it looks for records (acquire). Draws of other threads in between continue the release, because each is one
    // read-modify-write. Relaxed in a child.
    std::atomic<std::uint32_t> _wanted{0};
    // The last ticket whose wait is over; threads sleep on it. A round stores it after all that its devices did (release),
    // the waiting threads load it (acquire). Relaxed under _roundMutex.
    std::atomic<std::uint32_t> _reached{0};
};

#endif
