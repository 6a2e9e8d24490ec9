// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogIdentity.h"

#include "core/enum/nxLogLevelEnum.h"
#include "core/platform/nxProcess.h"
#include "core/process/nxApplicationName.h"

std::string nxLogIdentity::GetIdentifier(const std::string& identifier)
{
    if (!identifier.empty())
        return identifier;
    std::string name = nxApplicationName::Get();
    return name.empty() ? nxProcess::GetProgramName() : name;
}

unsigned nxLogIdentity::GetSeverity(nxEnumValue level) noexcept
{
    constexpr unsigned critical = 2, error = 3, warning = 4, notice = 5, informational = 6, debug = 7;
    if (level >= NX_LOG_LEVEL_FATAL)
        return critical;
    if (level >= NX_LOG_LEVEL_ERROR)
        return error;
    if (level >= NX_LOG_LEVEL_WARNING)
        return warning;
    if (level > NX_LOG_LEVEL_INFO)
        return notice;
    return level == NX_LOG_LEVEL_INFO ? informational : debug;
}
