#include "core/log/internal/nxLogEscape.h"

#include <algorithm>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxPrintableText.h"

namespace
{
constexpr char upperHexDigits[] = "0123456789ABCDEF";

// Characters beyond ASCII need a closer look: some are control characters, and their bytes may be no UTF-8.
bool NeedsCare(std::uint64_t word) { return ((nxLogEscape::FindControl(word) | word) & nxLogEscape::AnswerBits) != 0; }

char* PutText(char* out, std::string_view text)
{
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}
}  // namespace

// Writes the character or byte at the start of the text, which is not empty. @return its bytes.
std::size_t nxLogEscape::_PutCharacter(char*& out, std::string_view text) noexcept
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

void nxLogEscape::PutPiece(char*& out, std::string_view& text) noexcept
{
    constexpr std::size_t pieceSize = sizeof(std::uint64_t);
    // The piece's last character may go three bytes beyond it; four bytes are written for each byte at most.
    static_assert(4 * (pieceSize + 3) <= LongestPiece);

    const char* at = text.data();
    const char* const end = at + text.size();
    const auto left = [&at, end] { return static_cast<std::size_t>(end - at); };
    for (; left() >= pieceSize; at += pieceSize)
    {
        const std::uint64_t word = Load<std::uint64_t>(at);
        if (NeedsCare(word)) [[unlikely]]
            break;
        std::memcpy(out, &word, sizeof word);
        out += sizeof word;
    }
    if (left() < pieceSize)
        if (const std::uint64_t word = LoadShort(at, left()); !NeedsCare(word)) [[likely]]
        {
            std::memcpy(out, &word, sizeof word);
            out += left();
            at = end;
        }
    for (const char* const pieceEnd = at + std::min(pieceSize, left()); at < pieceEnd;)
        at += _PutCharacter(out, {at, left()});
    text = {at, left()};
}

char* nxLogEscape::PutSuffix(char* out, std::string_view file, unsigned line) noexcept
{
    out = PutText(out, " [");
    while (!file.empty())
        PutPiece(out, file);
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
