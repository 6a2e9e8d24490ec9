// SPDX-License-Identifier: Apache-2.0
// A plug-in that reports while it is loaded, when it is asked to and while it is unloaded.

#include "core/log/nxLogMacros.h"

namespace
{
struct Reporter
{
    Reporter() { NX_LOG_AT(NX_LOG_LEVEL_INFO, "plugin/load", 1) << "loaded"; }
    ~Reporter() { NX_LOG_AT(NX_LOG_LEVEL_INFO, "plugin/unload", 2) << "unloaded"; }
};
const Reporter reporter;
}  // namespace

extern "C" __attribute__((visibility("default"))) void nxTestReport()
{
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "plugin/report", 3) << "literal text of the plug-in";
    nxLog record(NX_LOG_LEVEL_INFO, "plugin/record", 4, nxTimeStamp::Now());
    record << "record of the plug-in";
    nxLogManager::GetInstance().Write(record);
}
