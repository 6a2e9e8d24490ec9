// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXSYSLOGLOGDEVICE_H
#define CORE_LOG_NXSYSLOGLOGDEVICE_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

#include "core/log/nxLogDeviceSettings.h"
#include "core/log/nxSeparateLogDevice.h"
#include "core/nxExport.h"

/// Writes the log to the syslog service of the machine.
///
/// Each record is one message in the form that such services read from their local socket (RFC 3164 without a host):
/// `<14>Mar  5 09:07:03 application[4711]: [INF][05Mar24 09:07:03.123.456][7] text [core/trunk/nxMutex:107]`. The text is the
/// line of the log file while the device is verbose, as it is at first, and "[INF] text" otherwise. Control bytes are `\xNN`.
///
/// - The priority in front is facility * 8 + severity: 7 for DBG, 6 for INF, 5 for PB1 to PB3, 4 for WRN, 3 for ERR, 2 for
///   FTL. The time is local, as the service expects it.
/// - A message is MaximumSize bytes at most. A longer one is cut and ends in "... [cut]".
/// - The service is reached by datagrams, or by a stream where its socket is one. It may be away, restarted or slow: see
///   nxSeparateLogDevice for what waits, what is lost and how that is told. It is looked for every second. The error stream is
///   told once that it is away. What the service had received but not read when it was killed is lost, and nobody is told.
/// - The sockets are not inherited by programs that the process starts, and are none of the three standard descriptors.
/// - Errors, threads, end and forks are as for nxSeparateLogDevice.
/// @code
/// nxSyslogLogDevice syslog(nxSyslogLogDevice::DefaultSocket, "gateway", nxSyslogLogDevice::Local0);
/// nxLogManager::GetInstance().RegisterLogDevice(&syslog);
/// @endcode
class NX_CORE_API nxSyslogLogDevice : public nxSeparateLogDevice
{
public:
    static constexpr const char* DefaultSocket = nxLogDeviceSettings::SyslogSocket;  ///< Of the machine's service.
    static constexpr std::size_t MaximumSize = 8'192;  ///< Bytes of a message; what usual services take whole.
    static constexpr unsigned User = 1;                ///< The facility of programs.
    static constexpr unsigned Local0 = 16;             ///< The first of eight facilities for local use.
    static constexpr unsigned LargestFacility = 23;    ///< The last one.

    /// @param socket the absolute path of the service's socket, 107 bytes at most.
    /// @param identifier what messages begin with; empty for the name of the application or, if it has none, of the program.
    ///        Blanks, brackets, colons and what is no visible ASCII become '_', and it is cut after 48 bytes.
    /// @param facility 0 to LargestFacility; any other number is User.
    explicit nxSyslogLogDevice(const std::string& socket = DefaultSocket, const std::string& identifier = {},
                               unsigned facility = User);
    ~nxSyslogLogDevice() override;

    /// A device of the process, made on first use and never destroyed: for the socket that NX_LOG_TO_SYSLOG names, else for
    /// the default one. It is not registered.
    static nxSyslogLogDevice& GetInstance();

    void Write(const nxLog& record) override;  ///< Queues the record.

private:
    nxSyslogLogDevice(const std::string& socket, const std::string& identifier, unsigned facility,
                      const std::shared_ptr<std::atomic<bool>>& isVerbose);

    // Shared with the device's thread. Relaxed: a setting, which orders no other memory.
    const std::shared_ptr<std::atomic<bool>> _isVerbose;
};

#endif
