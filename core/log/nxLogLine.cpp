#include "core/log/nxLogLine.h"

#include "core/log/internal/nxLogLineBuffer.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogManager.h"

void nxLogLine::Append(std::string& lines, const nxLog& record, const nxLogLineStyle& style)
{
    const nxLogRecord parts = record._GetRecord();
    nxLogTimeText time;
    time.Set(parts.time);
    nxLogLineBuffer line;
    const nxLogManager& manager = nxLogManager::GetInstance();
    line.SetStyle(style, {manager.GetLogThreadIndex(), manager.GetLogThreadCPU()});
    if (line.AppendLine(parts, time))
        lines.append(line.GetText(), line.GetSize());
}
