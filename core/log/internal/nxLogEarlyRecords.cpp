// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogEarlyRecords.h"

#include <cstring>
#include <utility>

#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogRecord.h"

bool nxLogEarlyRecords::Keep(const nxLogRecord& record) noexcept
{
    const std::size_t cost =
        sizeof(nxLog) + static_cast<std::size_t>(record.end - record.values) + std::strlen(record.GetFile());
    if (IsClosed() || _bytes + cost > nxLogLimits::EarlyRecords)
        return false;
    try
    {
        const nxLog borrowed = nxLogConversion::Borrow(record);
        _records.push_back(borrowed);
        _bytes += cost;
        return true;
    }
    catch (...)
    {
        return false;
    }
}

std::vector<nxLog> nxLogEarlyRecords::Take() noexcept
{
    _bytes = 0;
    return std::exchange(_records, {});
}
