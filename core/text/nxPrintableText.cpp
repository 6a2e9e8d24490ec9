// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxPrintableText.h"

#include <algorithm>

#include "core/text/nxAlgorithm.h"

namespace
{
// The byte at a position, or 0 after the end, because 0 never continues a UTF-8 character.
unsigned ByteAt(std::string_view text, std::size_t position)
{
    return position < text.size() ? static_cast<unsigned char>(text[position]) : 0U;
}

bool IsBetween(unsigned lowest, unsigned value, unsigned highest) { return lowest <= value && value <= highest; }
}  // namespace

std::size_t nxPrintableText::GetCharacterSize(std::string_view text)
{
    const unsigned first = ByteAt(text, 0);
    if (first < 0x80)
        return 1;
    // The second byte shows overlong forms, surrogates and numbers beyond the last character.
    const unsigned low = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    const std::size_t size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    bool isCharacter = IsBetween(0xC2, first, 0xF4) && IsBetween(low, ByteAt(text, 1), high);
    for (std::size_t i = 2; i < size; ++i)
        isCharacter = isCharacter && IsBetween(0x80, ByteAt(text, i), 0xBF);
    return isCharacter ? size : 0;
}

std::size_t nxPrintableText::GetHiddenSize(std::string_view text)
{
    const unsigned first = ByteAt(text, 0), second = ByteAt(text, 1), third = ByteAt(text, 2);
    if (first < 0x20 || IsBetween(0x7F, first, 0x9F))
        return 1;
    if (first == 0xC2)
        return IsBetween(0x80, second, 0x9F) ? 2 : 0;
    if (first != 0xE2)
        return 0;
    const bool isHidden = (second == 0x80 && IsBetween(0xA8, third, 0xAE)) ||  // U+2028 to U+202E
                          (second == 0x81 && IsBetween(0xA6, third, 0xA9));    // U+2066 to U+2069
    return isHidden ? 3 : 0;
}

std::string_view nxPrintableText::Cut(std::string_view text, std::size_t limit)
{
    std::size_t end = 0;
    while (end < text.size())
    {
        const std::size_t next = end + std::max<std::size_t>(1, GetCharacterSize(text.substr(end)));
        if (next > limit)
            break;
        end = next;
    }
    return text.substr(0, end);
}

void nxPrintableText::AppendEscaped(std::string_view text, std::string& out)
{
    while (!text.empty())
    {
        const std::size_t characterSize = GetCharacterSize(text);
        const std::size_t hidden = characterSize == 0 ? 1 : GetHiddenSize(text);
        for (std::size_t i = 0; i < hidden; ++i)
            nxAlgorithm::AppendAsHex(static_cast<unsigned char>(text[i]), out += "\\x");
        const std::size_t size = std::max(hidden, characterSize);
        out += text.substr(hidden, size - hidden);
        text.remove_prefix(size);
    }
}

std::string nxPrintableText::GetEscaped(std::string_view text)
{
    std::string escaped;
    AppendEscaped(text, escaped);
    return escaped;
}

std::string nxPrintableText::GetQuoted(std::string_view text, std::size_t maximum)
{
    const std::string_view start = Cut(text, maximum);
    std::string quoted = "'";
    AppendEscaped(start, quoted);
    return quoted += start.size() < text.size() ? "...'" : "'";
}
