// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGEARLYRECORDS_H
#define CORE_LOG_INTERNAL_NXLOGEARLYRECORDS_H

#include <atomic>
#include <cstddef>
#include <vector>

#include "core/log/nxLog.h"

struct nxLogRecord;

/// The records from before the first device, which gets them.
///
/// Invariant: the records are in the order in which they were written, take nxLogLimits::EarlyRecords bytes at most, and
/// none is kept after Close().
///
/// Threads: the one that holds the round; IsClosed() any.
class nxLogEarlyRecords
{
public:
    /// Whether there has been a device.
    bool IsClosed() const noexcept { return _isClosed.load(std::memory_order_relaxed); }
    /// The first device has come.
    void Close() noexcept { _isClosed.store(true, std::memory_order_relaxed); }

    /// Keeps a copy of @p record. @return false, with nothing kept, when there was a device, or no room or memory.
    bool Keep(const nxLogRecord& record) noexcept;
    /// @return the records, which are no longer kept.
    std::vector<nxLog> Take() noexcept;
    /// @return the records, for copying.
    const std::vector<nxLog>& Get() const noexcept { return _records; }

private:
    std::vector<nxLog> _records;
    std::size_t _bytes = 0;
    // Relaxed: it changes once, and a thread that still finds it open looks again under the mutex of the round.
    std::atomic<bool> _isClosed{false};
};

#endif
