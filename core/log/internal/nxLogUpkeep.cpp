// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogUpkeep.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogLevelFile.h"
#include "core/log/internal/nxLogOwnReport.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLineSink.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxNanoseconds.h"

namespace
{
constexpr const char* managerSource = "core/trunk/nxLogManager";
}  // namespace

void nxLogUpkeep::SetFlushInterval(double seconds) noexcept
{
    const double clamped = std::isnan(seconds) ? 0 : std::clamp(seconds, 0.0, nxLogLimits::LongestFlushIntervalSeconds);
    _flushInterval.store(static_cast<std::int64_t>(clamped * static_cast<double>(nxNanoseconds::PerSecond)),
                         std::memory_order_relaxed);
}

void nxLogUpkeep::AfterRound(bool hasWritten, bool flushNow) noexcept
{
    _state.isUnflushed = _state.isUnflushed || hasWritten;
    _FlushWhereDue(flushNow);
    if (nxLogBell::IsCallerWriter())
        _MaintainWhereDue();
    if (nxLogBell::IsCallerWriter())
        _ReportLosses();
}

std::int64_t nxLogUpkeep::GetTimeUntilDue() const noexcept
{
    std::int64_t due = _state.nextMaintenance;
    if (_state.isUnflushed)
        due = std::min(due, _state.lastFlush + _flushInterval.load(std::memory_order_relaxed));
    if (_GetUntoldDrops() != 0 || _GetUntoldWaits() != 0)
        due = std::min(due, _state.lastReport + nxLogLimits::LossReportInterval);
    return due - nxClock::MonotonicNanoseconds();
}

void nxLogUpkeep::FlushDevices(Devices devices) noexcept
{
    const std::shared_ptr<const nxLogDeviceList::Entries> entries = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *entries)
        if (devices == Devices::All || entry->GetLineSink() == nullptr)
        {
            entry->Call([](nxLogDevice& device) { device.Flush(); });
            nxLogCounters::CountProgress();
        }
}

void nxLogUpkeep::_FlushWhereDue(bool now) noexcept
{
    const std::int64_t time = nxClock::MonotonicNanoseconds();
    if (!_state.isUnflushed)
    {
        // The interval begins with the first record after a flush.
        _state.lastFlush = time;
        if (!now)
            return;
    }
    if (!now && time - _state.lastFlush < _flushInterval.load(std::memory_order_relaxed))
        return;
    // Before the devices: one that forks leaves its child another state.
    _state.isUnflushed = false;
    _state.lastFlush = time;
    FlushDevices(Devices::All);
}

// Devices in trouble may mend it although no thread reports anything.
void nxLogUpkeep::_MaintainWhereDue() noexcept
{
    const std::int64_t time = nxClock::MonotonicNanoseconds();
    if (time < _state.nextMaintenance)
        return;
    _state.nextMaintenance = time + nxLogLimits::MaintenanceInterval;
    nxLogLevelFile::GetInstance().Look();
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *devices)
        if (nxLogLineSink* const sink = entry->GetLineSink())
            entry->Call([sink](nxLogDevice&) { sink->Maintain(); });
}

std::uint64_t nxLogUpkeep::_GetUntoldDrops() const noexcept
{
    return nxLogCounters::GetDropped() - _state.reportedDrops;
}

std::uint64_t nxLogUpkeep::_GetUntoldWaits() const noexcept { return nxLogCounters::GetWaits() - _state.reportedWaits; }

// Tells in the log what the log has lost and how many callers had to wait, in one record for LossReportInterval.
void nxLogUpkeep::_ReportLosses() noexcept
{
    const std::uint64_t drops = _GetUntoldDrops();
    const std::uint64_t waits = _GetUntoldWaits();
    if (drops == 0 && waits == 0)
        return;
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    if (_state.lastReport != 0 && now - _state.lastReport < nxLogLimits::LossReportInterval)
        return;
    _state.lastReport = now;
    _state.reportedDrops += drops;
    _state.reportedWaits += waits;
    if (drops != 0)
        nxLogOwnReport::Write(NX_LOG_LEVEL_WARNING, managerSource, 211,
                              "Log records dropped because the queue was full and a device had stalled: ", drops,
                              ", callers that waited: ", waits, nxField("lost", drops, nxFieldLines::Json),
                              nxField("waits", waits, nxFieldLines::Json));
    else
        nxLogOwnReport::Write(NX_LOG_LEVEL_INFO, managerSource, 215,
                              "Callers that waited because the log's queue was full: ", waits,
                              nxField("waits", waits, nxFieldLines::Json));
}
