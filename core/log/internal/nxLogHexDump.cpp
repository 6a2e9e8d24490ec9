// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogHexDump.h"

namespace
{
constexpr char digits[] = "0123456789ABCDEF";
constexpr unsigned offsetDigits = 8;
}  // namespace

void nxLogHexDump::_PutHex(std::size_t value, unsigned count)
{
    while (count-- > 0)
        _Put(digits[(value >> (4 * count)) & 15]);
}

std::string_view nxLogHexDump::MakeLine(const char* bytes, std::size_t size, std::size_t offset)
{
    _size = 0;
    if (_withOffsets)
    {
        _PutHex(offset, offsetDigits);
        _Put(' ');
        _Put(' ');
    }
    // The last line is padded, so that its characters begin in the same column.
    for (unsigned index = 0; index < _bytesPerLine; ++index)
    {
        // Lines of eight and more have a gap in the middle.
        if (index != 0 && index == (_bytesPerLine + 1) / 2 && _bytesPerLine >= 8)
            _Put(' ');
        if (index < size)
            _PutHex(static_cast<unsigned char>(bytes[index]), 2);
        else
        {
            _Put(' ');
            _Put(' ');
        }
        _Put(' ');
    }
    _Put(' ');
    _Put('|');
    for (std::size_t index = 0; index < size; ++index)
    {
        const auto byte = static_cast<unsigned char>(bytes[index]);
        _Put(byte >= 0x20 && byte < 0x7F ? bytes[index] : _placeholder);
    }
    _Put('|');
    return {_line.data(), _size};
}
