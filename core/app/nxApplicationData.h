// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_NXAPPLICATIONDATA_H
#define CORE_APP_NXAPPLICATIONDATA_H

#include <string>

#include "core/enum/nxAPIConnectionTypeEnum.h"
#include "core/enum/nxServerCapabilityBitMask.h"
#include "core/nxExport.h"
#include "core/time/nxDateTime.h"

/// The process-wide facts about the running application: its names, where it runs and what it is connected to.
///
/// The application sets what it knows about itself, usually in main. The rest comes from the platform and needs no
/// network. A setting that was never set is empty, false, undefined or a mask without flags.
///
/// - Errors: none.
/// - Threads: every operation may be called at any time from any thread; getters return copies.
/// - Ownership: static operations only, there are no objects of this class.
/// @code
/// nxApplicationData::SetApplicationName("orderserver");
/// NX_LOG(NX_LOG_LEVEL_INFO) << nxApplicationData::GetApplicationName() << " on " << nxApplicationData::GetHostName();
/// @endcode
class NX_CORE_API nxApplicationData
{
public:
    /// The name that the application gave itself; empty until it was set. Log files are named after it.
    static std::string GetApplicationName();
    /// Call it before the log file is opened, so that the file has the name.
    static void SetApplicationName(const std::string& name);

    /// Distinguishes several processes of one application.
    static std::string GetApplicationInstanceName();
    /// Any text; it is stored as it is.
    static void SetApplicationInstanceName(const std::string& name);

    /// The user for whom the application works; not the account under which the system runs it.
    static std::string GetUserName();
    /// Any text; it is stored as it is.
    static void SetUserName(const std::string& name);

    /// The site at which the application runs.
    static std::string GetLocation();
    /// Any text; it is stored as it is.
    static void SetLocation(const std::string& location);

    /// The host of the daemon that the application is connected to.
    static std::string GetDaemonHostName();
    /// A name or an address; it is stored as it is and not looked up.
    static void SetDaemonHostName(const std::string& name);

    /// The kind of connection between the application and its daemon; undefined until it is set.
    static nxAPIConnectionTypeEnum GetAPIConnectionType();
    /// Stores the type as it is.
    static void SetAPIConnectionType(const nxAPIConnectionTypeEnum& type);

    /// Whether the fields that European market rules require are filled; false until it is set.
    static bool GetMifidEnabled();
    /// Stores the choice.
    static void SetMifidEnabled(bool enabled);

    /// The capabilities of the connected server; the empty set until they are set.
    static nxServerCapabilityBitMask GetServerCapabilities();
    /// Stores the set as it is, null and "no change" included.
    static void SetServerCapabilities(const nxServerCapabilityBitMask& capabilities);

    /// The machine's own name; "localhost" when it has none.
    static std::string GetHostName();

    /// The machine's address on an interface that is up: IPv4 before IPv6, and a link-local address only when there is
    /// no other; "127.0.0.1" on a machine without a network. No name server is asked.
    static std::string GetIPAddress();

    /// The process's number. A forked child gets its own.
    static unsigned GetProcessID();

    /// The local time at which the system started this process, to a hundredth of a second. The answer does not change,
    /// even after the clock was set. A forked child gets its own.
    static nxDateTime GetStartTime();

    /// Whether the connection to the daemon is encrypted: the environment setting QRX_DAEMON, as nxCmdLineArgs reads
    /// it, contains "ssl:" in upper or lower case at any position.
    static bool GetIsSecureSSLConnection();

private:
    nxApplicationData() = delete;
    ~nxApplicationData() = delete;
    nxApplicationData(const nxApplicationData&) = delete;
    nxApplicationData& operator=(const nxApplicationData&) = delete;
    bool operator==(const nxApplicationData&) const = delete;
};

#endif
