// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceItems.h"

#include <algorithm>
#include <cstring>

namespace
{
std::size_t FileSizeOf(const nxLogRecord& record)
{
    return record.source != nullptr || record.ownFile == nullptr ? 0 : std::strlen(record.ownFile) + 1;
}

std::size_t ValueSizeOf(const nxLogRecord& record) { return static_cast<std::size_t>(record.end - record.values); }
}  // namespace

bool nxLogDeviceItems::Append(const nxLogRecord& record) noexcept
{
    return _Append({record}, {record.ownFile, FileSizeOf(record)}, {record.values, ValueSizeOf(record)});
}

bool nxLogDeviceItems::Append(const nxLogLineBatch& lines) noexcept
{
    return _Append({lines}, {}, {lines.text, lines.size});
}

std::size_t nxLogDeviceItems::GetSizeOf(const nxLogRecord& record) noexcept
{
    return sizeof(Header) + FileSizeOf(record) + ValueSizeOf(record);
}

std::uint64_t nxLogDeviceItems::CountRecords(const nxLogDeviceItem& item) noexcept
{
    const auto* const lines = std::get_if<nxLogLineBatch>(&item);
    return std::holds_alternative<nxLogRecord>(item) ? 1 : lines != nullptr ? lines->lines : 0;
}

bool nxLogDeviceItems::_Append(const nxLogDeviceItem& item, Bytes file, Bytes text) noexcept
try
{
    const Header header{item, file.size, text.size};
    const std::size_t needed = _bytes.size() + sizeof header + file.size + text.size;
    if (needed > _bytes.capacity())
        _bytes.reserve(std::max(needed, 2 * _bytes.capacity()));
    char bytes[sizeof header];
    std::memcpy(bytes, &header, sizeof header);
    _bytes.insert(_bytes.end(), bytes, bytes + sizeof bytes);
    _bytes.insert(_bytes.end(), file.begin, file.begin + file.size);
    _bytes.insert(_bytes.end(), text.begin, text.begin + text.size);
    return true;
}
catch (...)
{
    return false;
}

bool nxLogDeviceItems::_Read(Header& header) const noexcept
{
    if (IsPassed())
        return false;
    std::memcpy(static_cast<void*>(&header), _bytes.data() + _passed, sizeof header);
    return true;
}

bool nxLogDeviceItems::Look(nxLogDeviceItem& item) const noexcept
{
    Header header{};
    if (!_Read(header))
        return false;
    const char* const file = _bytes.data() + _passed + sizeof header;
    const char* const text = file + header.fileSize;
    if (auto* const record = std::get_if<nxLogRecord>(&header.item))
    {
        record->ownFile = header.fileSize != 0 ? file : "";
        record->values = text;
        record->end = text + header.textSize;
    }
    else if (auto* const lines = std::get_if<nxLogLineBatch>(&header.item))
        lines->text = text;
    item = header.item;
    return true;
}

void nxLogDeviceItems::Pass() noexcept
{
    Header header{};
    if (_Read(header))
        _passed += sizeof header + header.fileSize + header.textSize;
}
