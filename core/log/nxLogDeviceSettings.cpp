// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogDeviceSettings.h"

#include "core/log/internal/nxLogEnvironment.h"

namespace
{
// @param value of the key. @param isTrue whether that is a truth value for yes.
std::string FindSocket(const std::string& value, bool isTrue, const char* usual)
{
    if (value.starts_with('/'))
        return value;
    return isTrue ? usual : "";
}
}  // namespace

nxLogDeviceSettings nxLogDeviceSettings::Read()
{
    using Environment = nxLogEnvironment;
    nxLogDeviceSettings settings;
    settings.journal = FindSocket(Environment::Get("NX_LOG_TO_JOURNAL"),
                                  Environment::GetBool("NX_LOG_TO_JOURNAL", false), JournalSocket);
    settings.syslog =
        FindSocket(Environment::Get("NX_LOG_TO_SYSLOG"), Environment::GetBool("NX_LOG_TO_SYSLOG", false), SyslogSocket);
    settings.megabytes = Environment::GetNumber("NX_LOG_DEVICE_MEGABYTES", settings.megabytes, 1, LargestMegabytes);
    return settings;
}
