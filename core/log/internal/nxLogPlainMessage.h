#ifndef CORE_LOG_INTERNAL_NXLOGPLAINMESSAGE_H
#define CORE_LOG_INTERNAL_NXLOGPLAINMESSAGE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/enum/nxEnumTable.h"
#include "core/log/nxLogStream.h"
#include "core/text/nxDigits.h"

/// The text of nearly every message: of short records without control bytes. One pass that holds its place in a register
/// and checks neither room nor length; whatever needs more care is refused and left to nxLogLineBuffer.
///
/// Threads: no state.
class nxLogPlainMessage
{
public:
    nxLogPlainMessage() = delete;

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

    /// Writes the text of a value that is short whatever it is, and sets @p at behind its bytes.
    /// @param out has room for 64 bytes. @return the end of the text, or null for the tags of other values.
    [[gnu::always_inline]] static char* WriteValue(char* out, nxLogTag tag, const char*& at) noexcept
    {
        switch (tag)
        {
            case nxLogTag::True:
                return _WriteText(out, "TRUE");
            case nxLogTag::False:
                return _WriteText(out, "FALSE");
            case nxLogTag::Signed32:
                return nxDigits::WriteSigned(out, _Take<std::int32_t>(at));
            case nxLogTag::Unsigned32:
                return nxDigits::Write(out, _Take<std::uint32_t>(at));
            case nxLogTag::Signed64:
                return nxDigits::WriteSigned(out, _Take<std::int64_t>(at));
            case nxLogTag::Unsigned64:
                return nxDigits::Write(out, _Take<std::uint64_t>(at));
            case nxLogTag::Decimal:
                return out + _Take<nxDecimal>(at).GetAsLogString(out, '.');
            case nxLogTag::Address:
                return _WriteAddress(out, _Take<std::uint64_t>(at));
            case nxLogTag::DestinationUser:
                at += sizeof(std::uint32_t);
                return out;
            case nxLogTag::SourceApplication:
                at += sizeof(std::uint32_t) + _Load<std::uint32_t>(at);
                return out;
            default:
                return nullptr;
        }
    }

    /// Writes the text of the values from @p at to @p end, LargestRecord bytes at most.
    /// @param out has GetRoom(end - at) bytes. @return the end of the text, or null when it needs care.
    static char* Write(char* out, const char* at, const char* end, bool escape) noexcept
    {
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
            else if (tag == nxLogTag::KeptText)
            {
                const std::string* text;
                std::memcpy(&text, at, sizeof text);
                // For more its nine bytes have not been given room.
                if (text->size() > nxEnumTable::MaximumTextSize)
                    return nullptr;
                suspicion |= _Copy(out, text->data(), text->size());
                out += text->size();
                at += sizeof text;
            }
            else if (tag == nxLogTag::End)
                break;
            else if ((out = WriteValue(out, tag, at)) == nullptr)
                return nullptr;
        }
        return escape && (suspicion & ControlBits) != 0 ? nullptr : out;
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

    static std::uint64_t _CopyWord(char* out, std::uint64_t word)
    {
        std::memcpy(out, &word, sizeof word);
        return FindControl(word);
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

    // Copies a text from anywhere; up to eight bytes behind it are overwritten. @return what FindControl() finds.
    static std::uint64_t _Copy(char* out, const char* text, std::size_t size)
    {
        return size < 8 ? _CopyWord(out, LoadShort(text, size)) : _CopyWords(out, text, size);
    }

    // The same for a text behind tag and length. Without a branch on what nobody can predict: a word that ends with the
    // text may begin in these.
    static std::uint64_t _CopyOfRecord(char* out, const char* text, std::size_t size)
    {
        if (size - 3 >= 5) [[unlikely]]
            return _Copy(out, text, size);
        const std::uint64_t word = _Load<std::uint64_t>(text + size - 8) >> (64 - 8 * size);
        return _CopyWord(out, word | _blanks << (8 * size));
    }
};

#endif
