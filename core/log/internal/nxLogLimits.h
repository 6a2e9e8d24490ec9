// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGLIMITS_H
#define CORE_LOG_INTERNAL_NXLOGLIMITS_H

#include <cstddef>
#include <cstdint>

#include "core/platform/nxNanoseconds.h"

/// The limits of the log, each with the public header that promises it. Times are nanoseconds.
///
/// Invariant: a limit that a header promises, or that two parts share, is written here and nowhere else.
struct nxLogLimits
{
    nxLogLimits() = delete;

    /// How long a thread waits until records are written.
    struct Wait
    {
        std::int64_t inAll;
        std::int64_t withoutProgress;  ///< No device has returned meanwhile.
    };

    /// nxLogManager, nxFileLogDevice: the end of the process, of the log, and of one of the library's devices.
    static constexpr Wait End{10 * nxNanoseconds::PerSecond, 2 * nxNanoseconds::PerSecond};
    /// nxLogManager::UnregisterLogDevice(): the records that were queued before.
    static constexpr Wait Unregistering{10 * nxNanoseconds::PerSecond, nxNanoseconds::PerSecond};
    /// nxLogManager::RegisterLogDevice(): what was reported before goes to the devices that were there.
    static constexpr Wait Registering{nxNanoseconds::PerSecond, 100 * nxNanoseconds::PerMillisecond};
    /// nxLogManager: a record of the fatal level; or any record's turn to be written by the thread that reports it.
    static constexpr Wait Urgent{100 * nxNanoseconds::PerMillisecond, 100 * nxNanoseconds::PerMillisecond};
    /// nxLogManager::WaitForWriteThreadToWriteQueueToDisk(): a day, in seconds.
    static constexpr double LongestWaitSeconds = 86'400;

    /// nxLogManager: how long a thread waits for room in the queue while no device makes progress.
    static constexpr std::int64_t RoomWithoutProgress = nxNanoseconds::PerSecond;

    /// nxLogManager: a thread inside a device waits no longer for another device.
    static constexpr std::int64_t DeviceInsideDevice = 100 * nxNanoseconds::PerMillisecond;
    /// nxLogManager::UnregisterLogDevice(): how long a thread waits for a device while the process ends.
    static constexpr std::int64_t DeviceAtEnd = 2 * nxNanoseconds::PerSecond;
    /// nxFileLogDevice: how long the end of the process waits for the file.
    static constexpr std::int64_t FileAtEnd = 100 * nxNanoseconds::PerMillisecond;
    /// How long the last step of the end of the process waits for the round that is going on.
    static constexpr std::int64_t RoundAtEnd = nxNanoseconds::PerSecond;
    /// nxLogManager::Destroy(): how long it waits for the deferred-write thread to end.
    static constexpr std::int64_t ThreadAtEnd = 2 * nxNanoseconds::PerSecond;
    /// nxSeparateLogDevice: how long its end waits for a device that has stalled already.
    static constexpr std::int64_t StalledDeviceAtEnd = 100 * nxNanoseconds::PerMillisecond;
    /// nxSeparateLogDevice: how often a service that is away is looked for.
    static constexpr std::int64_t DeviceRetryInterval = nxNanoseconds::PerSecond;
    /// How long a fork waits for all devices together.
    static constexpr std::int64_t DevicesAtFork = nxNanoseconds::PerSecond;

    /// nxLogDeferredWriteThread: how long it sleeps between two looks at the queue while records come.
    static constexpr std::int64_t BusySleep = 3 * nxNanoseconds::PerMillisecond / 2;
    /// The same while none come, where threads that report cannot call it.
    static constexpr std::int64_t LookInterval = 100 * nxNanoseconds::PerMillisecond;
    /// What is done once a second may be done this much early, so that one wake-up serves all of it.
    static constexpr std::int64_t UpkeepSlack = 100 * nxNanoseconds::PerMillisecond;
    /// How long after a failure the deferred-write thread is started again.
    static constexpr std::int64_t RestartInterval = nxNanoseconds::PerSecond;
    /// nxLogManager: how often the deferred-write thread looks whether it is the last thread of the process.
    static constexpr std::int64_t LastThreadInterval = nxNanoseconds::PerSecond;
    /// nxLogLineSink::Maintain(), nxFileLogDevice: how often a device looks after its trouble.
    static constexpr std::int64_t MaintenanceInterval = nxNanoseconds::PerSecond;
    /// nxFileLogDevice::SetRetention(): how often it looks for files to remove besides every new file, and how long it waits
    /// after a file could not be compressed.
    static constexpr std::int64_t RetentionInterval = 60 * nxNanoseconds::PerSecond;
    /// How long that takes the log's thread at most in every MaintenanceInterval, and for every file that takes the place of
    /// another.
    static constexpr std::int64_t RetentionSlice = 10 * nxNanoseconds::PerMillisecond;
    static constexpr std::int64_t RetentionSliceAtRotation = nxNanoseconds::PerMillisecond;
    /// An empty file that was written to so recently may be one that a process is just opening; and a compressed file,
    /// one that is being written.
    static constexpr std::int64_t FreshFileSeconds = 60;
    /// nxLogManager: losses and waits of this time are told in one record.
    static constexpr std::int64_t LossReportInterval = nxNanoseconds::PerSecond;
    /// nxLogManager::SetTimeBetweenFlushes(): at first.
    static constexpr std::int64_t FlushInterval = nxNanoseconds::PerSecond;
    /// The longest of nxLogManager::SetTimeBetweenFlushes(), in seconds.
    static constexpr double LongestFlushIntervalSeconds = 3'600;

    /// nxLog, nxLogLine: a message is cut here, in bytes.
    static constexpr std::size_t LongestMessage = std::size_t{1} << 20;
    /// nxLogLineBatch: with this many bytes a batch of lines goes to its devices.
    static constexpr std::size_t BatchSize = std::size_t{1} << 20;
    /// nxSeparateLogDevice: the bytes that wait for one device, at first.
    static constexpr std::uint64_t DeviceBytes = std::uint64_t{8} << 20;
    /// nxLogManager: the bytes that are kept for the first device, each record counted with its overhead.
    static constexpr std::size_t EarlyRecords = std::size_t{1} << 20;
};

#endif
