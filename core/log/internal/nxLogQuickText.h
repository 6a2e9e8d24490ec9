#ifndef CORE_LOG_INTERNAL_NXLOGQUICKTEXT_H
#define CORE_LOG_INTERNAL_NXLOGQUICKTEXT_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/enum/inline/nxEnumTable.h"
#include "core/log/inline/nxLogStream.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/nxPrintableText.h"

/// The text of nearly every message: of short records that hold nothing to be
/// escaped. One pass that holds its place in a register
/// and checks neither room nor length; whatever needs more care is refused and left to nxLogLineBuffer.
///
/// Threads: no state.
class nxLogQuickText
{
public:
    nxLogQuickText() = delete;

    /// Records with more bytes of values are refused.
    static constexpr std::size_t LargestRecord = 4096;

    /// The room that the text of so many bytes of values may take, bytes behind it that are overwritten included.
    static constexpr std::size_t GetRoom(std::size_t bytes) { return 8 * bytes + 16; }

    /// Whether any of the eight bytes of @p word may be a control byte. Errs on the side of yes, for tabs. Told by the
    /// bits of ControlBits.
    static constexpr std::uint64_t FindControl(std::uint64_t word)
    {
        constexpr std::uint64_t ones = 0x0101010101010101;
        const std::uint64_t below = (word - ones * 0x20) & ~word;
        const std::uint64_t deletes = word ^ (ones * 0x7F);
        return below | ((deletes - ones) & ~deletes);
    }
    static constexpr std::uint64_t ControlBits = 0x8080808080808080;

    /// Up to seven characters in a word, blanks behind them.
    static std::uint64_t LoadShort(const char* text, std::size_t size)
    {
        // Two loads that overlap; what is read twice is or-ed with itself.
        if (size >= 4)
            return _Load<std::uint32_t>(text) | _Load<std::uint32_t>(text + size - 4) << (8 * (size - 4)) |
                   _blanks << (8 * size);
        if (size >= 2)
            return _Load<std::uint16_t>(text) | _Load<std::uint16_t>(text + size - 2) << (8 * (size - 2)) |
                   _blanks << (8 * size);
        return size == 0 ? _blanks : _Load<std::uint8_t>(text) | _blanks << 8;
    }

    /// Writes the text of a value that is short whatever it is, and sets @p at behind its bytes, @p out behind its text.
    /// @param out has room for 64 bytes. @return false, with nothing done, for the tags of other values.
    [[gnu::always_inline]] static bool WriteValue(char*& out, nxLogTag tag, const char*& at) noexcept
    {
        switch (tag)
        {
            case nxLogTag::True:
                out = _WriteText(out, "TRUE");
                return true;
            case nxLogTag::False:
                out = _WriteText(out, "FALSE");
                return true;
            case nxLogTag::Signed32:
                out = nxDigits::WriteSigned(out, _Take<std::int32_t>(at));
                return true;
            case nxLogTag::Unsigned32:
                out = nxDigits::Write(out, _Take<std::uint32_t>(at));
                return true;
            case nxLogTag::Signed64:
                out = nxDigits::WriteSigned(out, _Take<std::int64_t>(at));
                return true;
            case nxLogTag::Unsigned64:
                out = nxDigits::Write(out, _Take<std::uint64_t>(at));
                return true;
            case nxLogTag::Decimal:
                out += _Take<nxDecimal>(at).GetAsLogString(out, '.');
                return true;
            case nxLogTag::Address:
                out = _WriteAddress(out, _Take<std::uint64_t>(at));
                return true;
            case nxLogTag::DestinationUser:
                at += sizeof(std::uint32_t);
                return true;
            case nxLogTag::SourceApplication:
                at += sizeof(std::uint32_t) + _Load<std::uint32_t>(at);
                return true;
            default:
                return false;
        }
    }

    /// Writes the text of the values from @p at to @p end, LargestRecord bytes at most.
    /// @param out has GetRoom(end - at) bytes. @return the end of the text, or null when it needs care.
    [[gnu::always_inline]] static char* Write(char* out, const char* at, const char* end, bool escape) noexcept
    {
        const char* const begin = out;
        std::uint64_t suspicion = 0;
        while (at != end)
        {
            const auto tag = static_cast<nxLogTag>(*at++);
            if (tag == nxLogTag::Text)
            {
                const std::size_t size = _Load<std::uint32_t>(at);
                at += sizeof(std::uint32_t);
                suspicion |= _CopyOfRecord(out, at, size);
                out += size;
                at += size;
            }
            else if (WriteValue(out, tag, at)) [[likely]]
                continue;
            else if (tag == nxLogTag::KeptText)
            {
                const auto& text = *_Take<const std::string*>(at);
                // For more its nine bytes have not been given room.
                if (text.size() > nxEnumTable::MaximumTextSize)
                    return nullptr;
                suspicion |= _Copy(out, text.data(), text.size());
                out += text.size();
            }
            else if (tag == nxLogTag::End)
                break;
            else
                return nullptr;
        }
        if (escape && (suspicion & ControlBits) != 0 && _HoldsControl(begin, out)) [[unlikely]]
            return nullptr;
        return out;
    }

private:
    static_assert(nxEnumTable::MaximumTextSize + 8 <= 8 * (1 + sizeof(const std::string*)), "see GetRoom()");
    static_assert(std::endian::native == std::endian::little, "texts are shifted in words, first character lowest");
    static constexpr std::uint64_t _blanks = 0x2020202020202020;

    template <class Value>
    static Value _Take(const char*& at)
    {
        Value value;
        std::memcpy(static_cast<void*>(&value), at, sizeof value);
        at += sizeof value;
        return value;
    }

    static char* _WriteText(char* out, std::string_view text)
    {
        std::memcpy(out, text.data(), text.size());
        return out + text.size();
    }

    static char* _WriteAddress(char* out, std::uint64_t address)
    {
        out = _WriteText(out, "0x");
        int shift = address == 0 ? 0 : (63 - std::countl_zero(address)) / 4 * 4;
        for (; shift >= 0; shift -= 4)
            *out++ = "0123456789abcdef"[(address >> shift) & 15];
        return out;
    }

    template <class Integer>
    static std::uint64_t _Load(const char* bytes)
    {
        Integer value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }

    // Whether a word may hold a control byte, told by ControlBits and in fewer steps than by FindControl(): also yes for
    // characters beyond ASCII.
    static std::uint64_t _Suspect(std::uint64_t word)
    {
        return (word - 0x2020202020202020) | (word + 0x0101010101010101);
    }

    // Whether anything in the text must not be shown, or may be a tab.
    [[gnu::noinline]] static bool _HoldsControl(const char* text, const char* end)
    {
        std::uint64_t controls = 0, characters = 0;
        const auto look = [&](std::uint64_t word)
        {
            controls |= FindControl(word);
            characters |= word;
        };
        const char* at = text;
        for (; end - at >= 8; at += 8)
            look(_Load<std::uint64_t>(at));
        look(LoadShort(at, static_cast<std::size_t>(end - at)));
        return (controls & ControlBits) != 0 || ((characters & ControlBits) != 0 && _HoldsHidden({text, end}));
    }

    // The same among characters beyond ASCII.
    static bool _HoldsHidden(std::string_view text)
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

    static std::uint64_t _CopyWord(char* out, std::uint64_t word)
    {
        std::memcpy(out, &word, sizeof word);
        return _Suspect(word);
    }

    // At least eight bytes.
    static std::uint64_t _CopyWords(char* out, const char* text, std::size_t size)
    {
        constexpr std::size_t word = sizeof(std::uint64_t);
        std::uint64_t found = 0;
        for (std::size_t at = 0; at + word < size; at += word)
            found |= _CopyWord(out + at, _Load<std::uint64_t>(text + at));
        // The last one ends with the text.
        return found | _CopyWord(out + size - word, _Load<std::uint64_t>(text + size - word));
    }

    // Copies a text from anywhere; up to eight bytes behind it are overwritten. @return what _Suspect() finds.
    static std::uint64_t _Copy(char* out, const char* text, std::size_t size)
    {
        return size < 8 ? _CopyWord(out, LoadShort(text, size)) : _CopyWords(out, text, size);
    }

    // The same for a text behind tag and length. Without a branch on what nobody can predict: a word that ends with the
    // text may begin in these, and is shifted until it begins with the text.
    static std::uint64_t _CopyOfRecord(char* out, const char* text, std::size_t size)
    {
        if (size - 3 >= 6) [[unlikely]]
            return _Copy(out, text, size);
        const std::size_t others = 64 - 8 * size;
        const std::uint64_t word = _Load<std::uint64_t>(text + size - 8) >> others;
        std::memcpy(out, &word, sizeof word);
        // Zeros have come in behind the text. What is suspected of them is shifted out.
        return _Suspect(word) << others;
    }
};

#endif
