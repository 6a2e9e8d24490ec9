// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogTarget.h"

#include "core/log/nxField.h"
#include "core/log/nxLog.h"

namespace
{
struct MomentText
{
    explicit MomentText(const nxClockTime& time)
    {
        nxTimeStamp(time.seconds, time.nanoseconds).GetAsStringFast(text, sizeof text);
    }
    char text[nxTimeStamp::TextSize] = "";
};
}  // namespace

nxLogTarget::Outcome nxLogTarget::Write(const nxLogLosses& losses) noexcept
{
    nxLog record(NX_LOG_LEVEL_WARNING, "core/trunk/nxSeparateLogDevice", 1, nxTimeStamp::Now());
    record << losses.records << " records were lost between " << MomentText(losses.first).text << " and "
           << MomentText(losses.last).text << nxField("lost", losses.records, nxFieldLines::Json);
    return _Write(record, &losses);
}
