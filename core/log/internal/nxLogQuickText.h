// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGQUICKTEXT_H
#define CORE_LOG_INTERNAL_NXLOGQUICKTEXT_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

#include "core/enum/inline/nxEnumTable.h"
#include "core/log/inline/nxLogTag.h"
#include "core/log/internal/nxLogEscape.h"
#include "core/log/internal/nxLogFieldText.h"
#include "core/numeric/internal/nxDecimalText.h"
#include "core/numeric/nxDecimal.h"
#include "core/text/inline/nxDigits.h"

/// How much room the text of a value takes, for each byte that tag and value take in a record.
///
/// Invariant: PerByte suffices for every tag. Each tag has its row.
struct nxLogTextRoom
{
    static constexpr std::size_t PerByte = 8;

    /// The bytes that the longest text of a value touches, with those that are overwritten after it; of a Text or name without
    /// its characters, each of which takes a byte here and four there at most.
    struct Row
    {
        nxLogTag tag;
        std::size_t touched;

        constexpr bool IsRight(std::size_t index) const
        {
            return tag == static_cast<nxLogTag>(index) && touched <= PerByte * (sizeof tag + nxLogSizeOf(tag));
        }
    };
    /// In the order of the tags.
    static constexpr Row Rows[] = {
        {nxLogTag::Cut, 0},  // refused
        {nxLogTag::End, 0},  // no text
        {nxLogTag::Text, sizeof(std::uint64_t)},
        {nxLogTag::True, sizeof "FALSE"},
        {nxLogTag::False, sizeof "FALSE"},
        {nxLogTag::Signed32, 1 + nxDigits::MaxDigits},
        {nxLogTag::Unsigned32, nxDigits::MaxDigits},
        {nxLogTag::Signed64, 1 + nxDigits::MaxDigits},
        {nxLogTag::Unsigned64, nxDigits::MaxDigits},
        {nxLogTag::Double, 0},  // refused
        {nxLogTag::Address, sizeof "0x0123456789abcdef"},
        {nxLogTag::Decimal, nxDecimal::MaxTextSize},
        {nxLogTag::KeptText, nxEnumTable::MaximumTextSize + sizeof(std::uint64_t)},
        {nxLogTag::DestinationUser, 0},    // no text
        {nxLogTag::SourceApplication, 0},  // no text
        {nxLogTag::Null, sizeof "NULL"},
        {nxLogTag::NoChange, 0},  // refused
        {nxLogTag::Group, 0},     // refused
        {nxLogTag::Field, sizeof " ="},
        {nxLogTag::UnshownField, 0},  // refused
    };
};
static_assert(std::size(nxLogTextRoom::Rows) == static_cast<std::size_t>(nxLogTag::UnshownField) + 1);
static_assert(std::all_of(std::begin(nxLogTextRoom::Rows), std::end(nxLogTextRoom::Rows),
                          [index = std::size_t{0}](const nxLogTextRoom::Row& row) mutable
                          { return row.IsRight(index++); }));

/// The text of nearly every message: of short records that hold nothing to be escaped. One pass that keeps its place in a
/// register and checks neither room nor length. What needs more care is refused and left to nxLogLineBuffer.
///
/// Invariant: what is not refused has the text that nxLogLineBuffer's careful way would write.
///
/// Threads: no state.
class nxLogQuickText
{
public:
    nxLogQuickText() = delete;

    /// Records with more bytes of values are refused.
    static constexpr std::size_t LargestRecord = 4096;

    /// The room that the text of @p bytes bytes of values takes at most, with the bytes after it that are overwritten.
    static constexpr std::size_t GetRoom(std::size_t bytes) { return nxLogTextRoom::PerByte * bytes + 16; }

    /// Writes the text of a value that is short whatever it is, and moves @p at past its bytes, @p out past its text.
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
                out = WriteSigned(out, Take<std::int32_t>(at));
                return true;
            case nxLogTag::Unsigned32:
                out = WriteUnsigned(out, Take<std::uint32_t>(at));
                return true;
            case nxLogTag::Signed64:
                out = nxDigits::WriteSigned(out, Take<std::int64_t>(at));
                return true;
            case nxLogTag::Unsigned64:
                out = nxDigits::Write(out, Take<std::uint64_t>(at));
                return true;
            case nxLogTag::Decimal:
                out = WriteDecimal(out, at);
                at += sizeof(nxDecimal);
                return true;
            case nxLogTag::Null:
                out = _WriteText(out, "NULL");
                return true;
            case nxLogTag::Address:
                out = _WriteAddress(out, Take<std::uint64_t>(at));
                return true;
            case nxLogTag::DestinationUser:
                at += sizeof(std::uint32_t);
                return true;
            case nxLogTag::SourceApplication:
                at += sizeof(std::uint32_t) + nxLogEscape::Load<std::uint32_t>(at);
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
                const std::size_t size = nxLogEscape::Load<std::uint32_t>(at);
                at += sizeof(std::uint32_t);
                suspicion |= CopyOfRecord<nxLogEscape::Suspect>(out, at, size);
                out += size;
                at += size;
            }
            else if (WriteValue(out, tag, at)) [[likely]]
                continue;
            else if (tag == nxLogTag::KeptText)
            {
                const auto& text = *Take<const std::string*>(at);
                // GetRoom() counts nine bytes for it, which is enough for texts up to here.
                if (text.size() > nxEnumTable::MaximumTextSize)
                    return nullptr;
                suspicion |= Copy<nxLogEscape::Suspect>(out, text.data(), text.size());
                out += text.size();
            }
            else if (tag == nxLogTag::End)
                break;
            else if (tag == nxLogTag::Field) [[unlikely]]
            {
                const nxLogEscape::Place place = _WriteField(out, at, end);
                if (place.out == nullptr)
                    return nullptr;
                out = place.out;
                at = place.at;
            }
            else
                return nullptr;
        }
        if (escape && (suspicion & nxLogEscape::AnswerBits) != 0 && nxLogEscape::NeedsEscape({begin, out})) [[unlikely]]
            return nullptr;
        return out;
    }

    /// Writes a number without a branch on how many digits it has, because that is unpredictable.
    /// @param out has room for nxDigits::MaxDigits bytes. @return the end.
    [[gnu::always_inline]] static char* WriteUnsigned(char* out, std::uint64_t value)
    {
        if (value >= _eightDigits) [[unlikely]]
            return nxDigits::Write(out, value);
        const std::uint64_t digits = nxDigits::Spread(value);
        // All but the last may be leading zeros.
        const auto zeros = static_cast<unsigned>(std::countr_zero(digits | std::uint64_t{1} << 56)) & ~7U;
        nxDigits::Store(out, (digits | nxDigits::AsText) >> zeros);
        return out + 8 - zeros / 8;
    }
    /// The same with a '-' in front of a negative one, and room for it.
    [[gnu::always_inline]] static char* WriteSigned(char* out, std::int64_t value)
    {
        *out = '-';
        return WriteUnsigned(out + (value < 0 ? 1 : 0), nxDecimalQuick::GetMagnitude(value));
    }

    /// Writes the log form of the decimal at @p at, which is not aligned. @param out has room for nxDecimal::MaxTextSize bytes.
    /// @return the end.
    [[gnu::always_inline]] static char* WriteDecimal(char* out, const char* at) noexcept
    {
        const auto value = Load<nxDecimal>(at);
        // Null and no change have larger scales than any number.
        const std::uint64_t places = value.GetScale();
        const std::uint64_t magnitude = nxDecimalQuick::GetMagnitude(value.GetValue());
        if (places >= 8 || magnitude >= _eightDigits) [[unlikely]]
            return _WriteAnyDecimal(out, at);
        return out + nxDecimalText::Print(out, value.GetValue() < 0, magnitude, places, places, '.');
    }

    /// @return the value at @p at, which is not aligned.
    template <class Value>
    static Value Load(const char* at)
    {
        Value value;
        std::memcpy(static_cast<void*>(&value), at, sizeof value);
        return value;
    }
    /// The same, and moves @p at past it.
    template <class Value>
    static Value Take(const char*& at)
    {
        const Value value = Load<Value>(at);
        at += sizeof value;
        return value;
    }

    /// Tells in nxLogEscape::AnswerBits which bytes of a word need care.
    using Suspect = std::uint64_t(std::uint64_t word);

    /// Copies a text from anywhere; up to eight bytes after it are overwritten. @return what @p suspect finds.
    template <Suspect suspect>
    [[gnu::always_inline]] static std::uint64_t Copy(char* out, const char* text, std::size_t size)
    {
        return size < 8 ? _CopyWord<suspect>(out, nxLogEscape::LoadShort(text, size))
                        : _CopyWords<suspect>(out, text, size);
    }

    /// The same for a text that follows its tag and length. There is no branch on the size, which is unpredictable: a word
    /// that ends with the text may begin before it, and is shifted until it begins with the text. Before the first value of
    /// a record there is its header or the NUL of its file.
    template <Suspect suspect>
    [[gnu::always_inline]] static std::uint64_t CopyOfRecord(char* out, const char* text, std::size_t size)
    {
        if (size - 2 >= 7) [[unlikely]]
            return Copy<suspect>(out, text, size);
        static_assert(sizeof(nxLogTag) + sizeof(std::uint32_t) + 1 == 8 - 2, "the word reads so far before the text");
        const std::size_t others = 64 - 8 * size;
        const std::uint64_t word = nxLogEscape::Load<std::uint64_t>(text + size - 8) >> others;
        std::memcpy(out, &word, sizeof word);
        // The zeros after the text would be suspected; they are shifted out.
        return suspect(word) << others;
    }

private:
    template <Suspect suspect>
    static std::uint64_t _CopyWord(char* out, std::uint64_t word)
    {
        std::memcpy(out, &word, sizeof word);
        return suspect(word);
    }

    // At least eight bytes.
    template <Suspect suspect>
    static std::uint64_t _CopyWords(char* out, const char* text, std::size_t size)
    {
        constexpr std::size_t word = sizeof(std::uint64_t);
        std::uint64_t found = 0;
        for (std::size_t at = 0; at + word < size; at += word)
            found |= _CopyWord<suspect>(out + at, nxLogEscape::Load<std::uint64_t>(text + at));
        // The last one ends with the text.
        return found | _CopyWord<suspect>(out + size - word, nxLogEscape::Load<std::uint64_t>(text + size - word));
    }

    static constexpr std::uint64_t _eightDigits = 100'000'000;  // the first number with more

    [[gnu::noinline]] static char* _WriteAnyDecimal(char* out, const char* at) noexcept
    {
        return out + Load<nxDecimal>(at).GetAsLogString(out, '.');
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

    // ` name=`, and the value where it is a Text. @return where the text ends and the next tag is; no text when the value needs care.
    static nxLogEscape::Place _WriteField(char* out, const char* at, const char* end) noexcept
    {
        const std::size_t size = nxLogEscape::Load<std::uint8_t>(at);
        *out++ = ' ';
        static_cast<void>(Copy<nxLogEscape::Suspect>(out, at + 1, size));
        at += 1 + size;
        out += size;
        *out++ = '=';
        if (at == end)
            return {out, at};
        const auto tag = static_cast<nxLogTag>(*at);
        if (tag == nxLogTag::Text)
        {
            const std::size_t textSize = nxLogEscape::Load<std::uint32_t>(at + 1);
            at += 1 + sizeof(std::uint32_t);
            return {nxLogFieldText::PutValue(out, {at, textSize}), at + textSize};
        }
        const bool needsCare = tag == nxLogTag::KeptText && !nxLogFieldText::IsPlain(*Load<const std::string*>(at + 1));
        return {needsCare ? nullptr : out, at};
    }
};

#endif
