// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGMANAGER_H
#define CORE_LOG_NXLOGMANAGER_H

#include <atomic>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "core/enum/nxLogLevelEnum.h"
#include "core/nxExport.h"
#include "core/text/nxDoubleValueWrapper.h"

class nxLog;
class nxLogDevice;
struct nxLogFormSettings;
struct nxLogSettings;
struct nxLogThreadSettings;

/// What the log has done since the process started; a forked child starts again at 0.
struct nxLogStatistics
{
    /// Records that at least one device was given, those written immediately not counted.
    std::uint64_t written;
    std::uint64_t dropped;  ///< Records lost because the queue was full and a device had stalled, or without memory.
    /// Records that found no device: none was registered any more, or there was no room to keep them for the first one.
    std::uint64_t unheard;
    std::uint64_t waits;  ///< How often a caller had to wait because the queue was full.
    std::uint64_t bytes;  ///< The memory that the queue takes at the moment.
};

/// The one log of the process: takes records from any thread and passes them to the registered devices, by the
/// deferred-write thread or at once. Applications report with the macros of nxLogMacros.h.
///
/// - Order: records of one thread stay in their order. Those of several threads are put in the order of time if the
///   deferred-write thread finds them in one look.
/// - Queue: bounded in bytes. When it is full, a caller waits as long as the devices make progress; a device that has
///   stalled for a second makes it drop records instead, and one record tells how many when the device is back. One
///   large record at a time, and small rings for threads that come when it is full, go beyond the bound. A thread
///   inside a device never waits for room, and no more than a tenth of a second for another device: what it cannot
///   hand over counts as dropped.
/// - Start: the deferred-write thread starts with the first device, or with the first record that comes earlier. The
///   thread that starts it first looks up the local zone, once in a process; the library's threads never read the environment.
///   Records from before the first device are kept for it, up to a mebibyte. While the thread cannot be started,
///   records from the warning level on are written by the threads that report them; the error stream is told, once.
/// - Fatal records: a record of the fatal level waits until it is with the operating system, 100 milliseconds at most,
///   so that abort() may follow it; not inside a device. Other records wait only for a full queue.
/// - End: when the process ends by exit(), by quick_exit() or by returning from main, what is queued is written out; a
///   device that does not move for two seconds, or ten seconds in all, end the wait, and the error stream is told how
///   many records were left. After _exit(), exec, a crash or SIGKILL what is queued is lost. No signal handler is
///   installed. Where main has ended by pthread_exit(), the process ends, within a second or so, when its other threads
///   have ended.
/// - Fork: a child starts with an empty queue, with the same devices, and with a deferred-write thread of its own when
///   it first reports.
/// - Settings: when the library is loaded, QRX_LOG_LEVEL sets the threshold, QRX_LOG_THREAD_INDEX whether lines carry
///   the thread's index, QRX_LOG_TIME_BETWEEN_FLUSHES and QRX_LOG_FORCE_FLUSH when devices are flushed, and
///   QRX_LOG_BUFF_RESERVE_ENTRIES what SetRecommendedBufferCapacity() does; NX_LOG_THREAD_PROCESSORS and
///   NX_LOG_THREAD_PRIORITY what SetWriteThread() does. See nxLogSettings.
/// - Errors: none is reported to callers and nothing throws; losses are counted.
/// - Threads: every operation may come from any thread, at any time, from inside a device too.
/// - Ownership: devices belong to the application.
class NX_CORE_API nxLogManager
{
public:
    /// The manager; made when the library is loaded, never destroyed.
    static nxLogManager& GetInstance() noexcept;

    /// Whether records of @p level are wanted: at or above the threshold, at first NX_LOG_LEVEL_INFO. Where rules of
    /// nxLogLevels are set, whether any source wants them.
    static bool ShouldLog(const nxLogLevelEnum& level)
    {
        return level.GetEnumValue() >= _threshold.load(std::memory_order_relaxed);
    }
    /// The same for a constant; false if it is no level.
    static bool ShouldLog(nxEnumValue level)
    {
        return level >= _threshold.load(std::memory_order_relaxed) && level < nxLogLevelEnum::MaximumValue;
    }
    /// Changes the threshold, for all sources that no rule of nxLogLevels fits. An undefined level changes nothing. While a
    /// level file names a threshold, that one holds.
    static void SetLogLevel(const nxLogLevelEnum& level) noexcept;
    /// The threshold that holds.
    static nxLogLevelEnum GetLogLevel() noexcept;

    /// Queues @p record for the deferred-write thread. The record gives up its message: written again, it is empty.
    void Write(nxLog& record) noexcept;
    /// Writes to every registered device before it returns, ahead of what is queued. Does not look at the threshold.
    void ImmediateWrite(const nxLog& record) noexcept;
    /// The same for several records, in their order; null ones are left out.
    void ImmediateWrite(const std::vector<nxLog*>& records) noexcept;

    /// Adds a device. It gets the records that come from now on, the first device of the process also what there was
    /// before. Null, or one that is registered already, changes nothing.
    void RegisterLogDevice(nxLogDevice* device) noexcept;
    /// Adds several devices in one step: no record reaches one of them and not the others, and as the first devices of
    /// the process all of them get what there was before. Null ones, and those that are registered already, are left
    /// out.
    void RegisterLogDevices(std::span<nxLogDevice* const> devices) noexcept;
    /// Takes a device away. First it waits until what was queued before the call is written, for ten seconds at most and
    /// no longer than a second without progress; what is left then goes to the other devices, and counts as unheard where
    /// there are none. Then it waits until no thread is inside the device, also if another thread has unregistered it:
    /// after that no thread calls the device. A device that unregisters itself while it is written to waits for neither.
    /// From inside another device, and while the process ends, the wait is short: a thread may still be inside the device
    /// after it.
    void UnregisterLogDevice(nxLogDevice* device) noexcept;
    /// The same for all devices.
    void UnregisterAllLogDevices() noexcept;

    /// Gives @p device, which need not be registered yet, its name in the figures (nxLogFigures). Where another device has the
    /// name, "#2" or so is appended. Null, and a lack of memory, change nothing; an empty name means one of the log's choice.
    static void SetDeviceName(const nxLogDevice* device, std::string_view name) noexcept;

    /// Makes every device hand what it has buffered to the operating system. What is queued is not waited for.
    void FlushDevices() noexcept;

    /// Waits until everything that was queued before the call has been written to the devices and flushed by them; for an
    /// nxSeparateLogDevice no longer than two seconds without progress.
    /// @param seconds how long at most; capped at a day. Null, no change, NaN and 0 or less do not wait. A thread inside a
    ///        device does not wait either.
    void WaitForWriteThreadToWriteQueueToDisk(const nxDoubleValueWrapper& seconds) noexcept;

    /// @return copies of the records that wait, or are being written at the moment; in order within each thread. Before
    ///         there is a first device, those that are kept for it.
    std::vector<nxLog> GetLogEntriesQueue() const;

    /// Reserves memory for about @p records waiting records, so that a burst need not allocate.
    void SetRecommendedBufferCapacity(unsigned records) noexcept;
    /// Bounds the memory of the queue, 64 MiB at first; the least bound is a mebibyte.
    void SetMaximumQueueBytes(std::uint64_t bytes) noexcept;
    /// The bound.
    std::uint64_t GetMaximumQueueBytes() const noexcept;
    /// Sets after how many seconds at the latest devices are flushed, 1 at first; 0 flushes whenever something was
    /// written.
    void SetTimeBetweenFlushes(double seconds) noexcept;

    /// Sets where and how the deferred-write thread runs, from now on. At first it runs on the processors that the process
    /// had when the library was loaded, with ordinary scheduling, however the thread runs that first reports. What the
    /// system does not allow is left out.
    /// @param processors the numbers of those it may run on; none means those that the process had.
    /// @param realTimePriority 1 to 99 for first-in-first-out scheduling, 0 for ordinary scheduling.
    void SetWriteThread(std::span<const unsigned> processors, unsigned realTimePriority = 0) noexcept;

    /// Whether lines carry the index of the thread, as they do at first.
    bool GetLogThreadIndex() const { return _logThreadIndex.load(std::memory_order_relaxed); }
    /// Sets whether lines carry the index of the thread.
    void SetLogThreadIndex(bool on) { _logThreadIndex.store(on, std::memory_order_relaxed); }
    /// Whether the index of the thread is followed by its processor, "[7/1]" for "[7]"; not at first.
    bool GetLogThreadCPU() const { return _logThreadCPU.load(std::memory_order_relaxed); }
    /// Sets whether lines carry the processor.
    void SetLogThreadCPU(bool on) { _logThreadCPU.store(on, std::memory_order_relaxed); }

    /// Sets level, thread index, flush interval and reserved records. The log does so by itself with the environment that
    /// it finds when it is loaded.
    void Apply(const nxLogSettings& settings) noexcept;
    /// Does what SetWriteThread() does, if @p settings sets anything.
    void Apply(const nxLogThreadSettings& settings) noexcept;

    /// Sets how the lines of the log file and of the console look, from the next ones on.
    void Apply(const nxLogFormSettings& settings) noexcept;
    /// How they look.
    nxLogFormSettings GetFormSettings() const noexcept;

    /// Counters of what was written, lost and waited for. nxLogFigures has more.
    nxLogStatistics GetStatistics() const noexcept;

    /// Writes out what is queued, within the limits named above for the end of the process, stops the deferred-write
    /// thread, and unregisters, flushes and destroys all devices. Calling it again does no harm. A later record starts the
    /// log again.
    void Destroy() noexcept;

private:
    friend class nxLogSwitches;

    nxLogManager() noexcept;
    ~nxLogManager() = default;

    // Invariant: the manager holds the threshold and the two switches; all else is in the parts that it calls. The threshold
    // is the lowest level that any source reports. Programs that were built with version 1.0 test it in each statement.
    // Relaxed: settings, which order no other memory. The threshold is stored in the default order, see
    // nxLogLevelState::_Publish().
    static std::atomic<unsigned> _threshold;
    std::atomic<bool> _logThreadIndex{true};
    std::atomic<bool> _logThreadCPU{false};
};

#endif
