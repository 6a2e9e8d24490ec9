// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxApplicationData.h"

#include "core/app/nxCmdLineArgs.h"
#include "core/app/nxConfigurationKeys.h"
#include "core/platform/nxProcess.h"
#include "core/process/nxApplicationName.h"
#include "core/text/nxStringHelper.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
struct Settings
{
    nxMutex mutex;
    std::string applicationInstanceName NX_GUARDED_BY(mutex);
    std::string userName NX_GUARDED_BY(mutex);
    std::string location NX_GUARDED_BY(mutex);
    std::string daemonHostName NX_GUARDED_BY(mutex);
    nxAPIConnectionTypeEnum apiConnectionType NX_GUARDED_BY(mutex);
    bool mifidEnabled NX_GUARDED_BY(mutex) = false;
    nxServerCapabilityBitMask serverCapabilities NX_GUARDED_BY(mutex);
    nxDateTime startTime NX_GUARDED_BY(mutex);
    unsigned startTimeOf NX_GUARDED_BY(mutex) = 0;  // the id of the process that startTime belongs to
};

Settings& TheSettings();
nxMutex& TheMutex() { return TheSettings().mutex; }

// Never destroyed, because threads and the destructors of other globals may ask while the process ends.
Settings& TheSettings()
{
    static Settings& settings = *new Settings;
    static const bool survivesForks = nxForkMutex::Register<&TheMutex>(nxForkHandlers::Rank::ApplicationData);
    static_cast<void>(survivesForks);
    return settings;
}

// Made while the library is loaded. A child forked during a first use would wait for the guard of the static for ever.
[[maybe_unused]] const auto& settingsMadeAtLoad = TheSettings();

template <class Value>
Value Get(Value Settings::*setting)
{
    Settings& settings = TheSettings();
    const nxMutexGuard guard(settings.mutex);
    return settings.*setting;
}

template <class Value>
void Set(Value Settings::*setting, const Value& value)
{
    Settings& settings = TheSettings();
    const nxMutexGuard guard(settings.mutex);
    settings.*setting = value;
}
}  // namespace

std::string nxApplicationData::GetApplicationName() { return nxApplicationName::Get(); }
void nxApplicationData::SetApplicationName(const std::string& name) { nxApplicationName::Set(name); }

std::string nxApplicationData::GetApplicationInstanceName() { return Get(&Settings::applicationInstanceName); }
void nxApplicationData::SetApplicationInstanceName(const std::string& name)
{
    Set(&Settings::applicationInstanceName, name);
}

std::string nxApplicationData::GetUserName() { return Get(&Settings::userName); }
void nxApplicationData::SetUserName(const std::string& name) { Set(&Settings::userName, name); }

std::string nxApplicationData::GetLocation() { return Get(&Settings::location); }
void nxApplicationData::SetLocation(const std::string& location) { Set(&Settings::location, location); }

std::string nxApplicationData::GetDaemonHostName() { return Get(&Settings::daemonHostName); }
void nxApplicationData::SetDaemonHostName(const std::string& name) { Set(&Settings::daemonHostName, name); }

nxAPIConnectionTypeEnum nxApplicationData::GetAPIConnectionType() { return Get(&Settings::apiConnectionType); }
void nxApplicationData::SetAPIConnectionType(const nxAPIConnectionTypeEnum& type)
{
    Set(&Settings::apiConnectionType, type);
}

bool nxApplicationData::GetMifidEnabled() { return Get(&Settings::mifidEnabled); }
void nxApplicationData::SetMifidEnabled(bool enabled) { Set(&Settings::mifidEnabled, enabled); }

nxServerCapabilityBitMask nxApplicationData::GetServerCapabilities() { return Get(&Settings::serverCapabilities); }
void nxApplicationData::SetServerCapabilities(const nxServerCapabilityBitMask& capabilities)
{
    Set(&Settings::serverCapabilities, capabilities);
}

std::string nxApplicationData::GetHostName() { return nxProcess::GetHostName(); }

std::string nxApplicationData::GetIPAddress() { return nxProcess::GetIPAddress(); }

unsigned nxApplicationData::GetProcessID() { return nxProcess::GetID(); }

nxDateTime nxApplicationData::GetStartTime()
{
    const unsigned process = nxProcess::GetID();
    Settings& settings = TheSettings();
    const nxMutexGuard guard(settings.mutex);
    if (settings.startTimeOf != process)
    {
        const nxProcess::StartTime start = nxProcess::GetStartTime();
        settings.startTime = nxDateTime(start.seconds, start.nanoseconds);
        settings.startTimeOf = process;
    }
    return settings.startTime;
}

bool nxApplicationData::GetIsSecureSSLConnection()
{
    std::string daemon = nxCmdLineArgs::GetInstance().GetEnvValue(QRX_DAEMON);
    nxStringHelper::ToLower(daemon);
    return daemon.find("ssl:") != std::string::npos;
}
