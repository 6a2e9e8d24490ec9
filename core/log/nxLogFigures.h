// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGFIGURES_H
#define CORE_LOG_NXLOGFIGURES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/nxExport.h"

/// What the log has done since the process started, and how it is doing: for a program that watches itself, and as text for
/// a collector of metrics. nxLogStatistics has the most important ones.
///
/// - A forked child starts again at 0. Counts only grow otherwise, up to 64 bits.
/// - Devices have the names that nxLogManager::SetDeviceName() gave them. Those of the process are called "file", "console",
///   "journal" and "syslog", others without a name "device1", "device2" and so on. Two devices never have one name.
/// - Cost: a few microseconds, about ten with 300 threads that have reported. Read() shares locks with the log's thread for at
///   most that time, and waits for no device. So it may be called every second, or more often.
/// - Errors: std::bad_alloc is thrown by Read() and GetAsOpenMetrics(). Threads: any may call Read(); an object is like any
///   value. The figures of one object are read one after the other, so that sums may differ by what happens meanwhile.
/// @code
/// const nxLogFigures figures = nxLogFigures::Read();
/// if (figures.Get(nxLogFigures::Figure::DroppedQueueFull) != 0)
///     ...
/// @endcode
class NX_CORE_API nxLogFigures
{
public:
    /// A figure of the log.
    enum class Figure : std::size_t
    {
        RecordsWritten,     ///< That at least one device was given, those written immediately not counted.
        RecordsUnheard,     ///< That found no device.
        RecordsUnwanted,    ///< Of programs built with version 1.0, left out because of rules of nxLogLevels.
        DroppedQueueFull,   ///< Records lost because the queue was full and a device had stalled.
        DroppedNoMemory,    ///< Records lost for want of memory.
        DroppedDeviceBusy,  ///< Records that a device missed: a thread inside another device waited too long for it.
        DroppedAtEnd,       ///< Records lost because the process ended and devices did not take them in time.
        Waits,              ///< How often a caller had to wait because the queue was full.
        QueueBytes,         ///< The memory that the queue takes at the moment.
        QueueLimitBytes,    ///< Its bound: nxLogManager::GetMaximumQueueBytes().
        OldestWaitingNanoseconds,  ///< How long the oldest record in the queue has waited; 0 when none waits.
        LastRoundNanoseconds,  ///< How old the oldest record was when the log's thread last had written all it found.
        LevelRules,            ///< Rules of nxLogLevels in force.
        FilesOpened,           ///< Log files that were begun.
        FilesRotated,          ///< Of these, the ones that took the place of a file that was still open.
        FilesRemoved,          ///< Log files that a limit on their number, size or age has removed.
        FilesRemovedBytes,     ///< Their size.
        FilesCompressed,       ///< Log files that were compressed.
        FileOpeningErrors,     ///< Times that no log file could be begun, each counted once until it has ended.
        FileWritingErrors,     ///< Times that the log file could not be written, each counted once until it has ended.
        FileCompressingErrors  ///< Attempts to compress a log file that failed.
    };
    static constexpr std::size_t Figures = 21;  ///< The number of figures in this version.

    /// A figure of one device.
    enum class DeviceFigure : std::size_t
    {
        Records,  ///< That the device was given.
        Bytes,    ///< Of the lines that the device was given; 0 for a device that takes records.
        Missed,   ///< Records that the device could not be given: see Figure::DroppedDeviceBusy.
        Lost,     ///< Lines or records that one of the library's devices was given and could not write or keep.
        Errors    ///< How often the device threw, or failed, for the library's own devices.
    };
    static constexpr std::size_t DeviceFigures = 5;  ///< The number of figures of a device in this version.

    /// Reads the figures as they are now.
    static nxLogFigures Read();

    std::uint64_t Get(Figure figure) const noexcept;  ///< @return the value; 0 for what is no figure.

    /// The devices that were registered, in the order of their registration.
    std::size_t GetDevices() const noexcept;
    /// @param device 0 to GetDevices() - 1. @return the name; empty for another number.
    std::string GetDeviceName(std::size_t device) const;
    /// @param device 0 to GetDevices() - 1. @return the value; 0 for another number, and for what is no figure.
    std::uint64_t GetOfDevice(std::size_t device, DeviceFigure figure) const noexcept;

    /// @return all figures in the text format of OpenMetrics 1.0, which ends in "# EOF": families such as
    ///         "nxcore_log_records_written", with their type, unit and meaning. Intervals are in seconds.
    std::string GetAsOpenMetrics() const;

private:
    nxLogFigures() = default;

    std::vector<std::uint64_t> _values;
    std::vector<std::string> _devices;         // their names
    std::vector<std::uint64_t> _deviceValues;  // all of one device after those of the device before it
};

#endif
