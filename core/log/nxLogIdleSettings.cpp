// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogIdleSettings.h"

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogEnvironment.h"

nxLogIdleSettings nxLogIdleSettings::Read() { return {nxLogEnvironment::GetBool("NX_LOG_CALLS", true)}; }

void nxLogIdleSettings::Apply() const noexcept
{
    if (!calls)
        nxLogBell::KeepLooking();
}
