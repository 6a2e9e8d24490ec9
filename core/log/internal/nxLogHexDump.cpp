#include "core/log/internal/nxLogHexDump.h"

namespace
{
constexpr char digits[] = "0123456789ABCDEF";
constexpr unsigned offsetDigits = 8;

void AppendHex(std::string& line, std::size_t value, unsigned count)
{
    while (count-- > 0)
        line += digits[(value >> (4 * count)) & 15];
}
}  // namespace

void nxLogHexDump::MakeLine(std::string& line, const char* bytes, std::size_t size, std::size_t offset) const
{
    line.clear();
    if (withOffsets)
    {
        AppendHex(line, offset, offsetDigits);
        line += "  ";
    }
    // The last line is padded, so that the characters stand below each other.
    for (unsigned index = 0; index < bytesPerLine; ++index)
    {
        // Lines of eight and more have a gap in the middle.
        if (index != 0 && index == (bytesPerLine + 1) / 2 && bytesPerLine >= 8)
            line += ' ';
        if (index < size)
            AppendHex(line, static_cast<unsigned char>(bytes[index]), 2);
        else
            line += "  ";
        line += ' ';
    }
    line += " |";
    for (std::size_t index = 0; index < size; ++index)
    {
        const auto byte = static_cast<unsigned char>(bytes[index]);
        line += byte >= 0x20 && byte < 0x7F ? bytes[index] : placeholder;
    }
    line += '|';
}
