// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGSETTINGS_H
#define CORE_LOG_NXLOGSETTINGS_H

#include <cstdint>
#include <string>
#include <vector>

#include "core/enum/nxLogLevelEnum.h"
#include "core/nxExport.h"

/// What the environment asks of the log: the nine QRX_LOG_ settings, read once and kept as plain values.
///
/// - Errors: none. A value that cannot be understood, the empty text included, leaves the default named below; a number
///   that is too large or too small is taken as the largest or smallest that is accepted.
/// - A program that has more rights than the user who started it (set-user-ID, set-group-ID, file capabilities) ignores
///   them: all are as if not set, whatever the program itself has set.
/// - Truth values are TRUE and YES, FALSE and NO, in any case; numbers are plain digits.
/// - Threads: Read() may be called at any time; the values are like any struct.
/// @code
/// const nxLogSettings settings = nxLogSettings::Read();
/// if (settings.console != nxLogSettings::Console::Off)
///     ...
/// @endcode
struct NX_CORE_API nxLogSettings
{
    /// The forms of the console's lines.
    enum class Console
    {
        Off,
        Verbose,       ///< As in the file: "[INF][05Mar24 09:07:03.123.456][7] text [core/trunk/nxMutex:107]"
        LevelAndText,  ///< "[INF] text"
        TimeAndText    ///< "[05Mar24 09:07:03.123.456] text"
    };

    static constexpr std::uint64_t LargestTimeBetweenFlushes = 3'600;     ///< Seconds.
    static constexpr std::uint64_t LargestFileBufferMegabytes = 1'024;    ///< Mebibytes.
    static constexpr std::uint64_t LargestReservedEntries = 100'000'000;  ///< Records.

    /// QRX_LOG_LEVEL: the level from which on records are written, by its exact short description, "DBG" to "FTL".
    /// Undefined by default, which leaves the threshold alone: NX_LOG_LEVEL_INFO, or what the program has set.
    nxLogLevelEnum level;

    /// QRX_LOG_DIRECTORY: where log files go, each in a subdirectory of its date. Empty when it is not set: the device
    /// then uses its own and says so.
    std::string directory;

    /// QRX_LOG_TO_CONSOLE: TRUE or YES for verbose lines on standard output, BRIEF for level and text, TERSE for time
    /// and text, in any case. Off by default.
    Console console = Console::Off;

    /// QRX_LOG_FORCE_FLUSH: whether every record is handed to the operating system at once. Off by default; warnings
    /// and worse always are.
    bool forceFlush = false;

    /// QRX_LOG_TIME_BETWEEN_FLUSHES: after how many seconds at the latest a record is handed to the operating system;
    /// 0 to LargestTimeBetweenFlushes, 1 by default. With 0 it does not wait at all, as with forceFlush.
    std::uint64_t secondsBetweenFlushes = 1;

    /// QRX_LOG_FILE_BUFF_SIZE_MB: the size of the file's buffer in mebibytes; 1 to LargestFileBufferMegabytes, 1 by
    /// default.
    std::uint64_t fileBufferMegabytes = 1;

    /// QRX_LOG_BUFF_RESERVE_ENTRIES: for how many waiting records room is reserved in advance;
    /// 0 to LargestReservedEntries. 0 by default: the room grows as it is needed.
    std::uint64_t reservedEntries = 0;

    /// QRX_LOG_THREAD_INDEX: whether lines carry the index of the thread. On by default.
    bool threadIndex = true;

    /// QRX_LOG_RECREATE_ON_CHANGE_OF_DATE: whether a new file is begun with the first record of a new local day. Off by
    /// default.
    bool recreateOnChangeOfDate = false;

    /// Reads the settings through nxCmdLineArgs.
    static nxLogSettings Read();
};

/// What the environment asks of the log's thread. Errors, rights and threads are as for nxLogSettings.
struct NX_CORE_API nxLogThreadSettings
{
    static constexpr std::uint64_t LargestPriority = 99;  ///< As the system counts them.
    static constexpr unsigned LargestProcessor = 1'023;   ///< The number of a processor.

    /// NX_LOG_THREAD_PROCESSORS: the processors on which the deferred-write thread may run, such as "0,2-5". None by
    /// default, which means those that the process had when the library was loaded.
    std::vector<unsigned> processors;

    /// NX_LOG_THREAD_PRIORITY: the real-time priority of the deferred-write thread, 1 to LargestPriority. 0 by default,
    /// which means ordinary scheduling.
    unsigned priority = 0;

    /// Reads the settings through nxCmdLineArgs.
    static nxLogThreadSettings Read();
};

#endif
