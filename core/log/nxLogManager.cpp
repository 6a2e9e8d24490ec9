#include "core/log/nxLogManager.h"

#include <algorithm>
#include <mutex>

#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"

namespace
{
struct Devices
{
    std::recursive_mutex mutex;
    std::vector<nxLogDevice*> list;
    bool writing = false;
};

Devices& GetDevices()
{
    static auto& devices = *new Devices;
    return devices;
}

template <class Action>
void ForEachDevice(const Action& action)
{
    Devices& devices = GetDevices();
    const std::lock_guard<std::recursive_mutex> lock(devices.mutex);
    if (devices.writing)
        return;
    devices.writing = true;
    const std::vector<nxLogDevice*> list = devices.list;
    for (nxLogDevice* device : list)
        if (std::find(devices.list.begin(), devices.list.end(), device) != devices.list.end())
            action(*device);
    devices.writing = false;
}
}  // namespace

constinit std::atomic<unsigned> nxLogManager::_threshold{NX_LOG_LEVEL_INFO};

nxLogManager& nxLogManager::GetInstance()
{
    static nxLogManager& manager = *new nxLogManager;
    return manager;
}

void nxLogManager::SetLogLevel(const nxLogLevelEnum& level)
{
    if (level.IsSpecificTypeForInstance())
        _threshold.store(level.GetValue(), std::memory_order_relaxed);
}

nxLogLevelEnum nxLogManager::GetLogLevel()
{
    return nxLogLevelEnum(static_cast<nxEnumValue>(_threshold.load(std::memory_order_relaxed)));
}

void nxLogManager::Write(nxLog& record) { ImmediateWrite(record); }

void nxLogManager::ImmediateWrite(const nxLog& record)
{
    ForEachDevice([&record](nxLogDevice& device) { device.Write(record); });
}

void nxLogManager::ImmediateWrite(const std::vector<nxLog*>& records)
{
    for (const nxLog* record : records)
        if (record != nullptr)
            ImmediateWrite(*record);
}

void nxLogManager::RegisterLogDevice(nxLogDevice* device)
{
    Devices& devices = GetDevices();
    const std::lock_guard<std::recursive_mutex> lock(devices.mutex);
    if (device != nullptr && std::find(devices.list.begin(), devices.list.end(), device) == devices.list.end())
        devices.list.push_back(device);
}

void nxLogManager::UnregisterLogDevice(nxLogDevice* device)
{
    Devices& devices = GetDevices();
    const std::lock_guard<std::recursive_mutex> lock(devices.mutex);
    std::erase(devices.list, device);
}

void nxLogManager::UnregisterAllLogDevices()
{
    Devices& devices = GetDevices();
    const std::lock_guard<std::recursive_mutex> lock(devices.mutex);
    devices.list.clear();
}

void nxLogManager::FlushDevices()
{
    ForEachDevice([](nxLogDevice& device) { device.Flush(); });
}
