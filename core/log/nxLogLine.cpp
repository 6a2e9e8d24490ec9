#include "core/log/nxLogLine.h"

#include "core/log/internal/nxLogLineBuffer.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogTimeText.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogManager.h"

void nxLogLine::Append(std::string& lines, const nxLog& record, const nxLogLineStyle& style)
{
    const nxLogRecord parts = record._GetRecord();
    nxLogTimeText time;
    time.Set(parts.time);
    nxLogLineBuffer line;
    const nxLogManager& manager = nxLogManager::GetInstance();
    if (line.AppendLine(parts, time, style, {manager.GetLogThreadIndex(), manager.GetLogThreadCPU()}))
        lines.append(line.GetText(), line.GetSize());
}
