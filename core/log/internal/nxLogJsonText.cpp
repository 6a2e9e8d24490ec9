// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogJsonText.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxPrintableText.h"

namespace
{
constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

char* PutPiece(char* out, std::string_view text)
{
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

// Characters with two and three bytes are the longest that are hidden.
unsigned GetNumber(std::string_view character)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(character[i])); };
    switch (character.size())
    {
        case 1:
            return byte(0);
        case 2:
            return (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
        default:
            return (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    }
}

char* PutEscape(char* out, unsigned number)
{
    if (number == '\n' || number == '\r' || number == '\t')
        return PutPiece(out, number == '\n' ? "\\n" : number == '\r' ? "\\r" : "\\t");
    out = PutPiece(out, "\\u");
    for (int shift = 12; shift >= 0; shift -= 4)
        *out++ = "0123456789ABCDEF"[number >> shift & 15];
    return out;
}
}  // namespace

// Writes the character or byte at the start of the text, which is not empty. @return its bytes.
std::size_t nxLogJsonText::_PutCharacter(char*& out, std::string_view text) noexcept
{
    const std::size_t size = nxPrintableText::GetCharacterSize(text);
    if (size == 0)
    {
        out = PutPiece(out, replacement);
        return 1;
    }
    if (nxPrintableText::GetHiddenSize(text) != 0)
    {
        out = PutEscape(out, GetNumber(text.substr(0, size)));
        return size;
    }
    if (text[0] == '"' || text[0] == '\\')
        *out++ = '\\';
    out = PutPiece(out, text.substr(0, size));
    return size;
}

char* nxLogJsonText::PutText(char* out, std::string_view text) noexcept
{
    constexpr std::size_t wordSize = sizeof(std::uint64_t);
    while (!text.empty())
    {
        const std::size_t size = text.size() < wordSize ? text.size() : wordSize;
        const std::uint64_t word =
            size < wordSize ? nxLogEscape::LoadShort(text.data(), size) : nxLogEscape::Load<std::uint64_t>(text.data());
        if ((Suspect(word) & nxLogEscape::AnswerBits) == 0)
        {
            std::memcpy(out, &word, sizeof word);
            out += size;
            text.remove_prefix(size);
            continue;
        }
        // The last character may go beyond the word.
        for (std::size_t read = 0; read < size;)
        {
            const std::size_t character = _PutCharacter(out, text);
            text.remove_prefix(character);
            read += character;
        }
    }
    return out;
}

char* nxLogJsonText::PutSource(char* out, std::string_view file, unsigned line) noexcept
{
    out = PutText(PutPiece(out, ",\"source\":\""), file);
    *out++ = ':';
    out = nxDigits::Write(out, line);
    return PutPiece(out, "\",\"message\":\"");
}

char* nxLogJsonText::PutDouble(char* out, double value) noexcept
{
    return std::isfinite(value) ? std::to_chars(out, out + DoubleRoom, value).ptr : PutPiece(out, "null");
}
