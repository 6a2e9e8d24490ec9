// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogRetention.h"

#include "core/log/internal/nxLogEnvironment.h"

nxLogRetention nxLogRetention::Read(const nxLogRetention& otherwise)
{
    nxLogRetention retention;
    retention.files = nxLogEnvironment::GetNumber("NX_LOG_KEEP_FILES", otherwise.files, 0, LargestFiles);
    retention.megabytes =
        nxLogEnvironment::GetNumber("NX_LOG_KEEP_MEGABYTES", otherwise.megabytes, 0, LargestMegabytes);
    retention.days = nxLogEnvironment::GetNumber("NX_LOG_KEEP_DAYS", otherwise.days, 0, LargestDays);
    retention.compressor = nxLogEnvironment::Get("NX_LOG_COMPRESS");
    if (retention.compressor.empty())
        retention.compressor = otherwise.compressor;
    return retention;
}

nxLogRetention nxLogRetention::Read() { return Read(nxLogRetention()); }
