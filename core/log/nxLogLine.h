// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGLINE_H
#define CORE_LOG_NXLOGLINE_H

#include <string>

#include "core/log/nxLogLineSink.h"
#include "core/nxExport.h"

class nxLog;

/// Makes the lines of records, for the Write() of devices. They are the lines that nxLogLineSink is given.
class NX_CORE_API nxLogLine
{
public:
    nxLogLine() = delete;

    /// Appends @p record as one ended line. What nxPrintableText hides, but tabs, becomes `\xNN`; a message of more than a
    /// mebibyte is cut and says so. Whether a full line carries the thread's index is the manager's setting.
    static void Append(std::string& lines, const nxLog& record, const nxLogLineStyle& style);
};

#endif
