// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXJOURNALLOGDEVICE_H
#define CORE_LOG_NXJOURNALLOGDEVICE_H

#include <string>

#include "core/log/nxLogDeviceSettings.h"
#include "core/log/nxSeparateLogDevice.h"
#include "core/nxExport.h"

/// Writes the log to the journal of the machine, each record with its parts as fields.
///
/// | field               | content                                                                                     |
/// |---------------------|---------------------------------------------------------------------------------------------|
/// | `MESSAGE`           | the message, control bytes as they are                                                      |
/// | `PRIORITY`          | 7 for DBG, 6 for INF, 5 for PB1 to PB3, 4 for WRN, 3 for ERR, 2 for FTL                     |
/// | `SYSLOG_IDENTIFIER` | the identifier of the device                                                                |
/// | `CODE_FILE`         | the source file, and `CODE_LINE` the line in it                                             |
/// | `NX_LEVEL`          | "DBG" to "FTL"                                                                              |
/// | `NX_THREAD`         | the index of the thread: see nxThreadIndex                                                  |
/// | `NX_TIME`           | the record's time, "2024-03-05T09:07:03.123456Z"; the journal stamps when it gets a record  |
/// | `NX_USER`           | the user that the record is meant for, and `NX_APPLICATION` where it comes from, if streamed |
/// | `NX_LOST`           | how many records were lost, in the record that tells it                                     |
///
/// - The fields of a record (nxField) are fields of the journal: `price` becomes `PRICE`, `order-id` becomes `ORDER_ID`. A name
///   that begins with no letter, or as those above, gets `F_` in front: `F_CODE_PAGE`. It is cut after 64 characters. No value
///   is the text "null", and truth values are "true" and "false".
/// - A record of any size arrives whole: one that is too long for a datagram is passed as a sealed file in memory.
/// - The journal may be away, restarted or slow: see nxSeparateLogDevice for what waits, what is lost and how that is told. It
///   is looked for every second. The error stream is told once that it is away. Records that the journal had received but not
///   read when it was killed are lost, and nobody is told.
/// - The sockets are not inherited by programs that the process starts, and are none of the three standard descriptors.
/// - Errors, threads, end and forks are as for nxSeparateLogDevice.
/// @code
/// nxLogManager::GetInstance().RegisterLogDevice(&nxJournalLogDevice::GetInstance());
/// @endcode
class NX_CORE_API nxJournalLogDevice : public nxSeparateLogDevice
{
public:
    static constexpr const char* DefaultSocket = nxLogDeviceSettings::JournalSocket;  ///< Of the machine's journal.

    /// @param socket the absolute path of the journal's socket, 107 bytes at most.
    /// @param identifier `SYSLOG_IDENTIFIER`; empty for the name of the application or, if it has none, of the program.
    explicit nxJournalLogDevice(const std::string& socket = DefaultSocket, const std::string& identifier = {});
    ~nxJournalLogDevice() override;

    /// A device of the process, made on first use and never destroyed: for the socket that NX_LOG_TO_JOURNAL names, else for
    /// the default one. It is not registered.
    static nxJournalLogDevice& GetInstance();
};

#endif
