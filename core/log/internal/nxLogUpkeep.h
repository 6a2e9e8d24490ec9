// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGUPKEEP_H
#define CORE_LOG_INTERNAL_NXLOGUPKEEP_H

#include <atomic>
#include <cstdint>

#include "core/log/internal/nxLogLimits.h"

/// What the log does from time to time between its rounds: it flushes and maintains devices and reports losses.
///
/// Invariant: as long as rounds run, nothing that a device was given stays unflushed for longer than the flush interval,
/// and every loss is reported once.
///
/// Errors: none. Threads: the one that holds the round; SetFlushInterval() and FlushDevices() any.
class nxLogUpkeep
{
public:
    /// Seconds between two flushes of devices that have been written to; 0 or less means after every round.
    void SetFlushInterval(double seconds) noexcept;

    /// Does what is due after a round.
    /// @param hasWritten whether a device was given a record. @param flushNow whether the flush is due in any case.
    void AfterRound(bool hasWritten, bool flushNow) noexcept;

    /// Nanoseconds until something of AfterRound() is due although no record comes; 0 or less means now.
    std::int64_t GetTimeUntilDue() const noexcept;

    /// Which devices FlushDevices() flushes.
    enum class Devices
    {
        All,
        TakingRecords  ///< Those that take lines see to warnings themselves.
    };
    static void FlushDevices(Devices devices) noexcept;

    /// The child has written and reported nothing; the interval stays.
    void AfterForkInChild() noexcept { _state = State(); }

private:
    struct State
    {
        bool isUnflushed = false;
        std::int64_t lastFlush = 0;
        std::int64_t nextMaintenance = 0;
        std::uint64_t reportedDrops = 0;
        std::uint64_t reportedWaits = 0;
        std::int64_t lastReport = 0;
    };

    void _FlushWhereDue(bool now) noexcept;
    void _MaintainWhereDue() noexcept;
    void _ReportLosses() noexcept;
    std::uint64_t _GetUntoldDrops() const noexcept;
    std::uint64_t _GetUntoldWaits() const noexcept;

    State _state;
    // Relaxed: a setting, which orders no other memory.
    std::atomic<std::int64_t> _flushInterval{nxLogLimits::FlushInterval};
};

#endif
