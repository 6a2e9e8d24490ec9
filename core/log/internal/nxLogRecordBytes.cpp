// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogRecordBytes.h"

#include <algorithm>
#include <limits>

#include "core/platform/nxNanoseconds.h"

// The wall clock may have been set back since.
std::int64_t nxLogRecordBytes::GetAge(std::uint64_t ticks, const nxClockScale& scale) noexcept
{
    if (ticks == std::numeric_limits<std::uint64_t>::max())
        return 0;
    const nxClockTime then = scale.ToTime(ticks), now = nxClock::Now();
    const std::int64_t age = (now.seconds - then.seconds) * nxNanoseconds::PerSecond +
                             static_cast<std::int64_t>(now.nanoseconds) - static_cast<std::int64_t>(then.nanoseconds);
    return std::max<std::int64_t>(age, 0);
}

void nxLogRecordBytes::WriteElsewhere(char* out, char* block) noexcept
{
    nxLogRecordHeader header = ReadHeader(block);
    header.size = static_cast<std::uint32_t>(ElsewhereSize);
    header.kind = nxLogRecordHeader::Elsewhere;
    WriteHeader(out, header);
    std::memcpy(out + sizeof header, &block, sizeof block);
}

std::size_t nxLogRecordBytes::GetObjectSize(const nxLogRecord& record) noexcept
{
    return sizeof(nxLogRecordHeader) + sizeof(nxLogObjectFields) + std::strlen(record.GetFile()) + 1 +
           Count(record.values, record.end);
}

void nxLogRecordBytes::WriteObject(char* out, const nxLogRecord& record, std::size_t size) noexcept
{
    nxLogRecordHeader header{};
    header.size = static_cast<std::uint32_t>(size);
    header.processor = static_cast<std::uint16_t>(record.processor);
    header.level = static_cast<std::uint8_t>(record.level);
    header.kind = nxLogRecordHeader::Object;
    header.ticks = nxClock::Ticks();
    const char* const file = record.GetFile();
    const std::size_t fileSize = std::strlen(file);
    const nxLogObjectFields fields{record.time.seconds, record.time.nanoseconds, record.threadIndex, record.GetLine(),
                                   static_cast<unsigned>(fileSize)};
    WriteHeader(out, header);
    out += sizeof header;
    std::memcpy(out, &fields, sizeof fields);
    out += sizeof fields;
    std::memcpy(out, file, fileSize + 1);
    out += fileSize + 1;
    std::memcpy(out, record.values, Count(record.values, record.end));
}
