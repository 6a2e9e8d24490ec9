// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogManager.h"

#include <algorithm>
#include <new>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogFilling.h"
#include "core/log/internal/nxLogFork.h"
#include "core/log/internal/nxLogForms.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogRingMemory.h"
#include "core/log/internal/nxLogSwitches.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/internal/nxLogWriterThread.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLevels.h"
#include "core/log/nxLogSettings.h"
#include "core/platform/nxNanoseconds.h"
#include "core/platform/nxProcessBarrier.h"
#include "core/platform/nxServiceThread.h"

namespace
{
// Waits until the devices have what is queued, if there is anything.
void WriteOutQueued(const nxLogLimits::Wait& limit)
{
    nxLogWriter& writer = nxLogWriter::GetInstance();
    if (!nxLogChannelList::GetInstance().IsEmpty() || writer.IsInRound())
        writer.WaitUntilWritten(limit);
}

// Made while the library is loaded, so that the threshold is right from the first statement on.
[[maybe_unused]] const nxLogManager& madeInTime = nxLogManager::GetInstance();
}  // namespace

constinit std::atomic<unsigned> nxLogManager::_threshold{NX_LOG_LEVEL_INFO};

nxLogManager& nxLogManager::GetInstance() noexcept
{
    alignas(nxLogManager) static unsigned char storage[sizeof(nxLogManager)];
    static nxLogManager& manager = *::new (storage) nxLogManager;
    return manager;
}

// Logs nothing and starts nothing: the library may just be being loaded.
nxLogManager::nxLogManager() noexcept
{
    nxServiceThread::RememberProcessors();
    // Here the process has one thread as a rule, and then this costs nothing. What comes of it is seen later.
    static_cast<void>(nxProcessBarrier::Prepare());
    try
    {
        Apply(nxLogSettings::Read());
        Apply(nxLogThreadSettings::Read());
        // A mistake is told by nxLogSetUp(), which reads them again.
        if (const std::string rules = nxLogLevelSettings::Read().rules; !rules.empty())
            static_cast<void>(nxLogLevels::Set(rules));
    }
    catch (...)
    {
        // The defaults serve.
    }
    // After the environment has been read, so that a fork takes its lock after those of the log.
    nxLogFork::Register();
}

void nxLogSwitches::SetThreshold(nxEnumValue level) noexcept { nxLogManager::_threshold.store(level); }

bool nxLogSwitches::IsThreadIndexLogged() noexcept { return nxLogManager::GetInstance().GetLogThreadIndex(); }

bool nxLogSwitches::IsProcessorLogged() noexcept { return nxLogManager::GetInstance().GetLogThreadCPU(); }

// A safety net: the derived class is gone by now, but the log keeps no pointer to the device. It is defined here because
// devices do not know the manager.
nxLogDevice::~nxLogDevice()
{
    nxLogManager::GetInstance().UnregisterLogDevice(this);
    nxLogDeviceBook::GetInstance().Close(this);
}

void nxLogManager::Apply(const nxLogSettings& settings) noexcept
{
    SetLogLevel(settings.level);
    SetLogThreadIndex(settings.threadIndex);
    SetTimeBetweenFlushes(settings.forceFlush ? 0 : static_cast<double>(settings.secondsBetweenFlushes));
    if (settings.reservedEntries != 0)
        SetRecommendedBufferCapacity(static_cast<unsigned>(settings.reservedEntries));
}

void nxLogManager::Apply(const nxLogThreadSettings& settings) noexcept
{
    if (!settings.processors.empty() || settings.priority != 0)
        SetWriteThread(settings.processors, settings.priority);
}

void nxLogManager::SetLogLevel(const nxLogLevelEnum& level) noexcept
{
    if (level.IsSpecificTypeForInstance())
        nxLogLevelState::SetLevelForAll(level.GetEnumValue());
}

nxLogLevelEnum nxLogManager::GetLogLevel() noexcept { return nxLogLevelEnum(nxLogLevelState::GetLevelForAll()); }

void nxLogManager::Write(nxLog& record) noexcept
{
    nxLogFilling::Write(nxLogConversion::View(record));
    record._message.ClearMessage();
}

void nxLogManager::ImmediateWrite(const nxLog& record) noexcept
{
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *devices)
        entry->CallToWrite(1, 0, [&record](nxLogDevice& device) { device.Write(record); });
}

void nxLogManager::ImmediateWrite(const std::vector<nxLog*>& records) noexcept
{
    for (const nxLog* const record : records)
        if (record != nullptr)
            ImmediateWrite(*record);
}

void nxLogManager::RegisterLogDevice(nxLogDevice* device) noexcept { RegisterLogDevices({&device, 1}); }

void nxLogManager::RegisterLogDevices(std::span<nxLogDevice* const> devices) noexcept
{
    nxLogDeviceList& list = nxLogDeviceList::GetInstance();
    const auto isNew = [&list](const nxLogDevice* device) { return device != nullptr && !list.Contains(device); };
    if (std::none_of(devices.begin(), devices.end(), isNew))
        return;
    // What was reported before goes to the devices that are registered already. The first ones get all that was kept.
    WriteOutQueued(nxLogLimits::Registering);
    list.Add(devices);
    // Started here, because the first thread that reports may have no time to start another thread.
    nxLogBell::EnsureRunning();
    nxLogBell::Ring();
}

void nxLogManager::UnregisterLogDevice(nxLogDevice* device) noexcept
{
    nxLogDeviceList& devices = nxLogDeviceList::GetInstance();
    if (devices.Contains(device))
        WriteOutQueued(nxLogLimits::Unregistering);
    devices.Remove(device);
}

void nxLogManager::UnregisterAllLogDevices() noexcept
{
    WriteOutQueued(nxLogLimits::Unregistering);
    nxLogDeviceList& devices = nxLogDeviceList::GetInstance();
    const std::shared_ptr<const nxLogDeviceList::Entries> taken = devices.TakeAll();
    for (const auto& entry : *taken)
        devices.WaitUntilLeft(entry->GetDevice());
}

void nxLogManager::SetDeviceName(const nxLogDevice* device, std::string_view name) noexcept
try
{
    if (device != nullptr)
        nxLogDeviceBook::GetInstance().SetName(device, name);
}
catch (...)
{
    // The device keeps the name that it has.
}

void nxLogManager::FlushDevices() noexcept
{
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *devices)
        entry->Call([](nxLogDevice& device) { device.Flush(); });
}

void nxLogManager::WaitForWriteThreadToWriteQueueToDisk(const nxDoubleValueWrapper& seconds) noexcept
{
    const double wanted = seconds;
    // NaN fails the comparison as well.
    if (!seconds.IsValid() || !(wanted > 0))
        return;
    const auto limit = static_cast<std::int64_t>(std::min(wanted, nxLogLimits::LongestWaitSeconds) *
                                                 static_cast<double>(nxNanoseconds::PerSecond));
    nxLogWriter::GetInstance().WaitUntilAllHave({limit, limit});
}

std::vector<nxLog> nxLogManager::GetLogEntriesQueue() const
{
    std::vector<nxLog> records;
    nxLogWriter::GetInstance().CopyRecords(records);
    return records;
}

void nxLogManager::SetRecommendedBufferCapacity(unsigned records) noexcept
{
    nxLogRingMemory::GetInstance().Reserve(records);
}

void nxLogManager::SetMaximumQueueBytes(std::uint64_t bytes) noexcept
{
    nxLogRingMemory::GetInstance().SetMaximumBytes(bytes);
}

std::uint64_t nxLogManager::GetMaximumQueueBytes() const noexcept
{
    return nxLogRingMemory::GetInstance().GetMaximumBytes();
}

void nxLogManager::SetTimeBetweenFlushes(double seconds) noexcept
{
    nxLogWriter::GetInstance().SetFlushInterval(seconds);
    nxLogBell::Ring();  // the deferred-write thread may sleep until the end of the old interval
}

void nxLogManager::SetWriteThread(std::span<const unsigned> processors, unsigned realTimePriority) noexcept
{
    nxLogWriterThread::GetInstance().SetThread(processors, realTimePriority);
}

void nxLogManager::Apply(const nxLogFormSettings& settings) noexcept { nxLogForms::Set(settings); }

nxLogFormSettings nxLogManager::GetFormSettings() const noexcept { return nxLogForms::Get(); }

nxLogStatistics nxLogManager::GetStatistics() const noexcept
{
    return {nxLogCounters::GetWritten(), nxLogCounters::GetDropped(), nxLogCounters::GetUndelivered(),
            nxLogCounters::GetWaits(), nxLogRingMemory::GetInstance().GetBytes()};
}

void nxLogManager::Destroy() noexcept
{
    nxLogWriter::GetInstance().WriteOutAtEnd();
    const bool stopped = nxLogWriterThread::GetInstance().Stop(nxLogLimits::ThreadAtEnd);
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().TakeAll();
    // If the deferred-write thread has not ended, it may be inside a device for ever.
    for (const auto& entry : *devices)
        entry->End(stopped);
}
