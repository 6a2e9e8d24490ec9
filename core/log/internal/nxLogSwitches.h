// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGSWITCHES_H
#define CORE_LOG_INTERNAL_NXLOGSWITCHES_H

#include "core/enum/nxEnumValue.h"

/// The switches of nxLogManager, for the parts of the log below it.
///
/// Invariant: a switch is stored once, in nxLogManager, whose inline members read it. These functions are declared here
/// and defined there.
///
/// Threads: any.
class nxLogSwitches
{
public:
    nxLogSwitches() = delete;

    static void SetThreshold(nxEnumValue level) noexcept;  ///< The lowest level that any source reports.
    static bool IsThreadIndexLogged() noexcept;            ///< Whether lines carry the index of the thread.
    static bool IsProcessorLogged() noexcept;              ///< Whether lines carry the processor of the thread, too.
};

#endif
