#ifndef CORE_LOG_NXLOGMANAGER_H
#define CORE_LOG_NXLOGMANAGER_H

#include <atomic>
#include <vector>

#include "core/enum/nxLogLevelEnum.h"
#include "core/nxExport.h"

class nxLog;
class nxLogDevice;

/// The one log of the process: takes records from any thread and passes them to the registered devices.
class NX_CORE_API nxLogManager
{
public:
    static nxLogManager& GetInstance();

    /// Whether records of @p level are wanted: at or above the threshold, at first NX_LOG_LEVEL_INFO.
    static bool ShouldLog(const nxLogLevelEnum& level) { return ShouldLog(level.GetEnumValue()); }
    /// @copydoc ShouldLog(const nxLogLevelEnum&)
    static bool ShouldLog(nxEnumValue level) { return level >= _threshold.load(std::memory_order_relaxed); }
    /// Changes the threshold; an undefined level changes nothing.
    static void SetLogLevel(const nxLogLevelEnum& level);
    static nxLogLevelEnum GetLogLevel();

    /// Queues @p record for the deferred-write thread, which passes it to every device. The record loses its text.
    void Write(nxLog& record);
    /// Writes to every registered device before it returns.
    void ImmediateWrite(const nxLog& record);
    /// @copydoc ImmediateWrite(const nxLog&)
    void ImmediateWrite(const std::vector<nxLog*>& records);

    /// Adds a device. Null, or a device that is registered already, changes nothing.
    void RegisterLogDevice(nxLogDevice* device);
    /// Takes a device away, and waits until the log has left it.
    void UnregisterLogDevice(nxLogDevice* device);
    void UnregisterAllLogDevices();  ///< @copybrief UnregisterLogDevice

    /// Makes every device hand what it has buffered to the operating system.
    void FlushDevices();

    /// Whether lines carry the thread's index, as they do unless QRX_LOG_THREAD_INDEX is FALSE.
    bool GetLogThreadIndex() const { return _logThreadIndex.load(std::memory_order_relaxed); }
    void SetLogThreadIndex(bool on) { _logThreadIndex.store(on, std::memory_order_relaxed); }

private:
    nxLogManager() = default;
    ~nxLogManager() = default;

    static std::atomic<unsigned> _threshold;
    std::atomic<bool> _logThreadIndex{true};
};

#endif
