// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGIDLESETTINGS_H
#define CORE_LOG_NXLOGIDLESETTINGS_H

#include "core/nxExport.h"

/// What the environment asks of the log while no records come. Errors, rights and threads are as for nxLogSettings.
struct NX_CORE_API nxLogIdleSettings
{
    /// NX_LOG_CALLS: whether the first record after a silence calls the deferred-write thread, which sleeps until then. On
    /// by default. Without calls no statement below the warning level makes a system call for it and no processor is
    /// interrupted, but the thread looks for records ten times a second for ever.
    bool calls = true;

    /// Reads the setting through nxCmdLineArgs.
    static nxLogIdleSettings Read();
    /// Puts the setting into effect for the process. Once calls are off they stay off.
    void Apply() const noexcept;
};

#endif
