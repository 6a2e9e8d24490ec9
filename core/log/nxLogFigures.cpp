// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogFigures.h"

#include <atomic>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogFileFigures.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogOpenMetrics.h"
#include "core/log/internal/nxLogRingMemory.h"

namespace
{
using Family = nxLogOpenMetrics::Family;
using Kind = Family::Kind;
using Reason = nxLogCounters::Reason;

std::uint64_t GetOldestWaiting()
{
    const std::uint64_t ticks = nxLogChannelList::GetInstance().GetOldestTicks();
    return static_cast<std::uint64_t>(nxLogRecordBytes::GetAge(ticks, nxClock::GetScale()));
}

std::uint64_t CountRules()
{
    const nxLogLevelState::Rules rules = nxLogLevelState::GetInstance().GetRules();
    return rules != nullptr ? rules->GetRules().size() : 0;
}

template <nxLogFileFigures::Figure Figure>
std::uint64_t GetOfFiles()
{
    return nxLogFileFigures::Get(Figure);
}

// A figure of the log. Rows of one family follow each other.
struct FigureRow
{
    Family family;
    const char* reason;  // the label's value; empty for none
    std::uint64_t (*get)();
};

constexpr Family droppedRecords{"nxcore_log_records_dropped", Kind::Counter, "",
                                "Records that were lost before a device had them."};

constexpr Family fileErrors{"nxcore_log_file_errors", Kind::Counter, "", "What failed with log files."};

// In the order of nxLogFigures::Figure.
constexpr FigureRow figureRows[] = {
    {{"nxcore_log_records_written", Kind::Counter, "", "Records that at least one device was given."},
     "",
     [] { return nxLogCounters::GetWritten(); }},
    {{"nxcore_log_records_unheard", Kind::Counter, "", "Records that found no device."},
     "",
     [] { return nxLogCounters::GetUndelivered(); }},
    {{"nxcore_log_records_unwanted", Kind::Counter, "", "Queued records that the rules of levels left out."},
     "",
     [] { return nxLogCounters::GetUnwanted(); }},
    {droppedRecords, "queue_full", [] { return nxLogCounters::GetDropped(Reason::QueueFull); }},
    {droppedRecords, "no_memory", [] { return nxLogCounters::GetDropped(Reason::NoMemory); }},
    {droppedRecords, "device_busy", [] { return nxLogCounters::GetDropped(Reason::DeviceBusy); }},
    {droppedRecords, "end_of_process", [] { return nxLogCounters::GetDropped(Reason::AtEnd); }},
    {{"nxcore_log_waits", Kind::Counter, "", "How often a caller waited because the queue was full."},
     "",
     [] { return nxLogCounters::GetWaits(); }},
    {{"nxcore_log_queue_bytes", Kind::Gauge, "bytes", "The memory that the queue takes."},
     "",
     [] { return std::uint64_t{nxLogRingMemory::GetInstance().GetBytes()}; }},
    {{"nxcore_log_queue_limit_bytes", Kind::Gauge, "bytes", "The bound of the queue."},
     "",
     [] { return std::uint64_t{nxLogRingMemory::GetInstance().GetMaximumBytes()}; }},
    {{"nxcore_log_oldest_waiting_seconds", Kind::Nanoseconds, "seconds",
      "How long the oldest queued record has waited."},
     "",
     GetOldestWaiting},
    {{"nxcore_log_last_round_seconds", Kind::Nanoseconds, "seconds",
      "The age of the oldest record of the last round when the round was written."},
     "",
     [] { return static_cast<std::uint64_t>(nxLogCounters::GetRoundLag()); }},
    {{"nxcore_log_level_rules", Kind::Gauge, "", "Rules of levels in force."}, "", CountRules},
    {{"nxcore_log_files_opened", Kind::Counter, "", "Log files that were begun."},
     "",
     GetOfFiles<nxLogFileFigures::Opened>},
    {{"nxcore_log_files_rotated", Kind::Counter, "", "Log files that took the place of an open one."},
     "",
     GetOfFiles<nxLogFileFigures::Rotations>},
    {{"nxcore_log_files_removed", Kind::Counter, "", "Log files that a limit has removed."},
     "",
     GetOfFiles<nxLogFileFigures::Removed>},
    {{"nxcore_log_files_removed_bytes", Kind::Counter, "bytes", "The size of the removed log files."},
     "",
     GetOfFiles<nxLogFileFigures::RemovedBytes>},
    {{"nxcore_log_files_compressed", Kind::Counter, "", "Log files that were compressed."},
     "",
     GetOfFiles<nxLogFileFigures::Compressed>},
    {fileErrors, "opening", GetOfFiles<nxLogFileFigures::OpeningErrors>},
    {fileErrors, "writing", GetOfFiles<nxLogFileFigures::WritingErrors>},
    {fileErrors, "compressing", GetOfFiles<nxLogFileFigures::CompressErrors>},
};
static_assert(std::size(figureRows) == nxLogFigures::Figures);

// A figure of a device.
struct DeviceRow
{
    Family family;
    std::atomic<std::uint64_t> nxLogDeviceCounts::*count;
};

// In the order of nxLogFigures::DeviceFigure.
constexpr DeviceRow deviceRows[] = {
    {{"nxcore_log_device_records", Kind::Counter, "", "Records that the device was given."},
     &nxLogDeviceCounts::records},
    {{"nxcore_log_device_written_bytes", Kind::Counter, "bytes", "The lines that the device was given."},
     &nxLogDeviceCounts::bytes},
    {{"nxcore_log_device_missed_records", Kind::Counter, "", "Records that the device could not be given."},
     &nxLogDeviceCounts::missed},
    {{"nxcore_log_device_lost_lines", Kind::Counter, "", "Lines that the device was given and could not write."},
     &nxLogDeviceCounts::lost},
    {{"nxcore_log_device_errors", Kind::Counter, "", "How often the device failed."}, &nxLogDeviceCounts::errors},
};
static_assert(std::size(deviceRows) == nxLogFigures::DeviceFigures);
}  // namespace

nxLogFigures nxLogFigures::Read()
{
    nxLogFigures figures;
    for (const FigureRow& row : figureRows)
        figures._values.push_back(row.get());
    const std::shared_ptr<const nxLogDeviceList::Entries> entries = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *entries)
    {
        std::string name = nxLogDeviceBook::GetInstance().GetName(entry->GetDevice());
        if (entry->IsRemoved() || name.empty())
            continue;
        figures._devices.push_back(std::move(name));
        for (const DeviceRow& row : deviceRows)
            figures._deviceValues.push_back((entry->GetCounts().*row.count).load(std::memory_order_relaxed));
    }
    return figures;
}

std::uint64_t nxLogFigures::Get(Figure figure) const noexcept
{
    const auto index = static_cast<std::size_t>(figure);
    return index < _values.size() ? _values[index] : 0;
}

std::size_t nxLogFigures::GetDevices() const noexcept { return _devices.size(); }

std::string nxLogFigures::GetDeviceName(std::size_t device) const
{
    return device < _devices.size() ? _devices[device] : std::string();
}

std::uint64_t nxLogFigures::GetOfDevice(std::size_t device, DeviceFigure figure) const noexcept
{
    const auto index = static_cast<std::size_t>(figure);
    return device < _devices.size() && index < DeviceFigures ? _deviceValues[device * DeviceFigures + index] : 0;
}

std::string nxLogFigures::GetAsOpenMetrics() const
{
    nxLogOpenMetrics text;
    std::string_view family;
    for (std::size_t index = 0; index < _values.size(); ++index)
    {
        const FigureRow& row = figureRows[index];
        if (family != row.family.name)
            text.Begin(row.family);
        family = row.family.name;
        text.Add(*row.reason != '\0' ? "reason" : "", row.reason, _values[index]);
    }
    for (std::size_t index = 0; index < std::size(deviceRows); ++index)
    {
        text.Begin(deviceRows[index].family);
        for (std::size_t device = 0; device < _devices.size(); ++device)
            text.Add("device", _devices[device], _deviceValues[device * DeviceFigures + index]);
    }
    return text.End();
}
