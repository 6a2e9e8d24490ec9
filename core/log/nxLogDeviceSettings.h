// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGDEVICESETTINGS_H
#define CORE_LOG_NXLOGDEVICESETTINGS_H

#include <cstdint>
#include <string>

#include "core/nxExport.h"

/// What the environment asks of the devices that write to log services of the machine. Errors, rights and threads are as for
/// nxLogSettings.
/// @code
/// const nxLogDeviceSettings settings = nxLogDeviceSettings::Read();
/// if (!settings.journal.empty())
///     ...
/// @endcode
struct NX_CORE_API nxLogDeviceSettings
{
    static constexpr const char* JournalSocket =
        "/run/systemd/journal/socket";                        ///< Where the machine's journal listens.
    static constexpr const char* SyslogSocket = "/dev/log";   ///< Where its syslog service listens.
    static constexpr std::uint64_t LargestMegabytes = 1'024;  ///< Mebibytes.

    /// NX_LOG_TO_JOURNAL: the socket of the journal that gets the log: TRUE or YES for JournalSocket, in
    /// any case, or an absolute path. Empty by default, which means none.
    std::string journal;

    /// NX_LOG_TO_SYSLOG: the same for the syslog service, with SyslogSocket.
    std::string syslog;

    /// NX_LOG_DEVICE_MEGABYTES: how many mebibytes may wait for each of them, 1 to LargestMegabytes; 8 by default.
    std::uint64_t megabytes = 8;

    /// Reads the settings through nxCmdLineArgs.
    static nxLogDeviceSettings Read();
};

#endif
