// SPDX-License-Identifier: Apache-2.0
#include "core/process/nxEnvironmentCopy.h"

#include "core/app/nxCmdLineArgs.h"

std::string nxEnvironmentCopy::GetValue(const std::string& name)
{
    return nxCmdLineArgs::GetInstance().GetEnvValue(name);
}

bool nxEnvironmentCopy::GetBool(const std::string& name, bool defaultValue)
{
    return nxCmdLineArgs::GetInstance().GetEnvValueAsBool(name, defaultValue);
}
