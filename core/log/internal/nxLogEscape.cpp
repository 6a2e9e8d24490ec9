// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogEscape.h"

#include <algorithm>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxPrintableText.h"

namespace
{
constexpr char upperHexDigits[] = "0123456789ABCDEF";

char* PutText(char* out, std::string_view text)
{
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}
}  // namespace

std::size_t nxLogEscape::PutCharacter(char*& out, std::string_view text) noexcept
{
    const std::size_t hidden = text[0] == '\t' ? 0 : nxPrintableText::GetHiddenSize(text);
    for (const char c : text.substr(0, hidden))
    {
        const auto byte = static_cast<unsigned char>(c);
        const char escaped[] = {'\\', 'x', upperHexDigits[byte >> 4], upperHexDigits[byte & 15]};
        out = PutText(out, {escaped, sizeof escaped});
    }
    if (hidden != 0)
        return hidden;
    const std::size_t size = std::max<std::size_t>(1, nxPrintableText::GetCharacterSize(text));
    out = PutText(out, text.substr(0, size));
    return size;
}

// Writes at least the text from `at` to `pieceEnd`: to the end of the character there.
[[gnu::cold, gnu::noinline]] nxLogEscape::Place nxLogEscape::_PutCarefully(char* out, const char* at,
                                                                           const char* pieceEnd,
                                                                           const char* end) noexcept
{
    // The piece's last character may go three bytes beyond it; four bytes are written for each byte at most.
    static_assert(4 * (sizeof(std::uint64_t) + 3) <= LongestPiece);
    while (at < pieceEnd)
        at += PutCharacter(out, {at, static_cast<std::size_t>(end - at)});
    return {out, at};
}

char* nxLogEscape::PutSuffix(char* out, std::string_view file, unsigned line) noexcept
{
    out = PutText(out, " [");
    const char* const end = file.data() + file.size();
    Place place{out, file.data()};
    while (place.at != end)
        place = PutPiece(place.out, place.at, end);
    out = place.out;
    *out++ = ':';
    out = nxDigits::Write(out, line);
    *out++ = ']';
    return out;
}

bool nxLogEscape::NeedsEscape(std::string_view text) noexcept
{
    std::uint64_t controls = 0, characters = 0;
    const auto look = [&](std::uint64_t word)
    {
        controls |= FindControl(word);
        characters |= word;
    };
    const char* at = text.data();
    const char* const end = at + text.size();
    for (; end - at >= 8; at += 8)
        look(Load<std::uint64_t>(at));
    look(LoadShort(at, static_cast<std::size_t>(end - at)));
    return (controls & AnswerBits) != 0 || ((characters & AnswerBits) != 0 && _HidesBeyondASCII(text));
}

bool nxLogEscape::_HidesBeyondASCII(std::string_view text) noexcept
{
    for (std::size_t size = 1; !text.empty(); text.remove_prefix(size))
    {
        size = 1;
        if (static_cast<unsigned char>(text[0]) < 0x80)
            continue;
        if (nxPrintableText::GetHiddenSize(text) != 0)
            return true;
        size = std::max(size, nxPrintableText::GetCharacterSize(text));
    }
    return false;
}
