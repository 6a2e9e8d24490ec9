#include "core/log/nxLogManager.h"

#include <algorithm>
#include <new>

#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogQueue.h"
#include "core/log/internal/nxLogSourceTable.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogSettings.h"
#include "core/platform/nxForkHandlers.h"
#include "core/platform/nxNanoseconds.h"
#include "core/platform/nxServiceThread.h"

namespace
{
constexpr double longestWait = 86'400;
constexpr std::int64_t longestWriteOut = 10 * nxNanoseconds::PerSecond;

// Passes what is queued to the devices, if there is anything.
void WriteOut(std::int64_t limit, std::int64_t stallLimit)
{
    nxLogWriter& writer = nxLogWriter::GetInstance();
    if (!nxLogQueue::GetInstance().IsEmpty() || writer.IsInRound())
        writer.WaitUntilWritten(limit, stallLimit);
}

// Nothing of the log's is in the middle of a change while the process is copied.
void BeforeFork()
{
    nxLogDeviceList::GetInstance().BeforeFork();
    nxLogQueue::GetInstance().BeforeFork();
    nxLogSourceTable::GetInstance().BeforeFork();
}

void AfterForkInParent()
{
    nxLogSourceTable::GetInstance().AfterForkInParent();
    nxLogQueue::GetInstance().AfterForkInParent();
    nxLogDeviceList::GetInstance().AfterForkInParent();
}

void AfterForkInChild()
{
    nxLogSourceTable::GetInstance().AfterForkInChild();
    nxLogQueue::GetInstance().AfterForkInChild();
    nxLogWriter::GetInstance().AfterForkInChild();
    nxLogDeviceList::GetInstance().AfterForkInChild();
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
    try
    {
        Apply(nxLogSettings::Read());
        Apply(nxLogThreadSettings::Read());
    }
    catch (...)
    {
        // The defaults serve.
    }
    static constexpr nxForkHandlers::Functions functions{&BeforeFork, &AfterForkInParent, &AfterForkInChild};
    nxForkHandlers::Register(nxForkHandlers::Rank::Log, functions);
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
        _threshold.store(level.GetValue(), std::memory_order_relaxed);
}

nxLogLevelEnum nxLogManager::GetLogLevel() noexcept
{
    return nxLogLevelEnum(static_cast<nxEnumValue>(_threshold.load(std::memory_order_relaxed)));
}

void nxLogManager::Write(nxLog& record) noexcept
{
    nxLogQueue::GetInstance().Write(record);
    record._message.ClearMessage();
}

void nxLogManager::ImmediateWrite(const nxLog& record) noexcept
{
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *devices)
        entry->Call([&record](nxLogDevice& device) { device.Write(record); });
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
    // What has been reported by now is for the devices that are there. The first ones get all that there was.
    WriteOut(nxNanoseconds::PerSecond, nxNanoseconds::PerSecond / 10);
    list.Add(devices);
    nxLogWriter& writer = nxLogWriter::GetInstance();
    // Not only when somebody reports: that may be a thread with no time to start another one.
    writer.EnsureRunning();
    writer.Wake();
}

void nxLogManager::UnregisterLogDevice(nxLogDevice* device) noexcept
{
    nxLogDeviceList& devices = nxLogDeviceList::GetInstance();
    if (devices.Contains(device))
        WriteOut(longestWriteOut, nxNanoseconds::PerSecond);
    devices.Remove(device);
}

void nxLogManager::UnregisterAllLogDevices() noexcept
{
    WriteOut(longestWriteOut, nxNanoseconds::PerSecond);
    nxLogDeviceList& devices = nxLogDeviceList::GetInstance();
    const std::shared_ptr<const nxLogDeviceList::Entries> taken = devices.TakeAll();
    for (const auto& entry : *taken)
        devices.WaitUntilLeft(entry->GetDevice());
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
    // NaN fails the comparison, too.
    if (!seconds.IsValid() || !(wanted > 0))
        return;
    const auto limit =
        static_cast<std::int64_t>(std::min(wanted, longestWait) * static_cast<double>(nxNanoseconds::PerSecond));
    nxLogWriter::GetInstance().WaitUntilWritten(limit, limit);
}

std::vector<nxLog> nxLogManager::GetLogEntriesQueue() const
{
    std::vector<nxLog> records;
    nxLogWriter::GetInstance().CopyRecords(records);
    return records;
}

void nxLogManager::SetRecommendedBufferCapacity(unsigned records) noexcept
{
    nxLogQueue::GetInstance().Reserve(records);
}

void nxLogManager::SetMaximumQueueBytes(std::uint64_t bytes) noexcept
{
    nxLogQueue::GetInstance().SetMaximumBytes(bytes);
}

std::uint64_t nxLogManager::GetMaximumQueueBytes() const noexcept
{
    return nxLogQueue::GetInstance().GetMaximumBytes();
}

void nxLogManager::SetTimeBetweenFlushes(double seconds) noexcept
{
    nxLogWriter::GetInstance().SetFlushInterval(seconds);
}

void nxLogManager::SetWriteThread(std::span<const unsigned> processors, unsigned realTimePriority) noexcept
{
    nxLogWriter::GetInstance().SetThread(processors, realTimePriority);
}

nxLogStatistics nxLogManager::GetStatistics() const noexcept
{
    const nxLogQueue& queue = nxLogQueue::GetInstance();
    const nxLogWriter& writer = nxLogWriter::GetInstance();
    return {writer.GetWritten(), queue.GetDropped(), writer.GetUnheard(), queue.GetWaits(), queue.GetBytes()};
}

void nxLogManager::Destroy() noexcept
{
    nxLogWriter& writer = nxLogWriter::GetInstance();
    writer.WriteOut(longestWriteOut, 2 * nxNanoseconds::PerSecond);
    const bool stopped = writer.Stop(2 * nxNanoseconds::PerSecond);
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().TakeAll();
    // With the deferred-write thread stuck inside a device, there is no waiting for that.
    for (const auto& entry : *devices)
        entry->End(stopped);
}
