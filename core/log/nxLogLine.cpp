// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogLine.h"

#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogLineBuffer.h"
#include "core/log/internal/nxLogSwitches.h"

void nxLogLine::Append(std::string& lines, const nxLog& record, const nxLogLineStyle& style)
{
    const nxLogRecord parts = nxLogConversion::View(record);
    nxLogTimeText time;
    time.Set(parts.time);
    nxLogLineBuffer line;
    line.SetStyle(style, {nxLogSwitches::IsThreadIndexLogged(), nxLogSwitches::IsProcessorLogged()});
    if (line.AppendLine(parts, time))
        lines.append(line.GetText(), line.GetSize());
}
