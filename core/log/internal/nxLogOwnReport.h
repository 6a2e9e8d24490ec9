// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGOWNREPORT_H
#define CORE_LOG_INTERNAL_NXLOGOWNREPORT_H

#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogFilling.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/nxLog.h"

/// Records of the log itself, for the parts below the statements.
///
/// Threads: any; may wait for room.
class nxLogOwnReport
{
public:
    nxLogOwnReport() = delete;

    /// Queues a record that names @p source and @p line, if its level is wanted there.
    template <class... Values>
    static void Write(nxEnumValue level, const char* source, unsigned line, const Values&... values)
    {
        if (!nxLogLevelState::ShouldLog(level, source))
            return;
        nxLog record(level, source, line, nxTimeStamp::Now());
        (record << ... << values);
        nxLogFilling::Write(nxLogConversion::View(record));
    }
};

#endif
