// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGSTREAM_H
#define CORE_LOG_INLINE_NXLOGSTREAM_H

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/enum/nxEnum.h"
#include "core/log/inline/nxLogTag.h"
#include "core/log/inline/nxLogTexts.h"
#include "core/log/nxField.h"
#include "core/log/nxLogCharLenPair.h"
#include "core/log/nxLogMarkers.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/text/inline/nxTextTraits.h"
#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxValueWrapper.h"

class nxLog;
template <class Record>
class nxLogStream;

/// Whether values of the type have a text in the log of their own: the library's types, and what converts to them.
template <class Value, class Record>
concept nxLogStreams = requires(nxLogStream<Record>& stream, const Value& value)
{
    stream.operator<<(value);
};

/// Whether an application has declared `nxLog& operator<<(nxLog&, const Value&)`.
template <class Value>
concept nxLogsItself = requires(nxLog& record, const Value& value)
{
    {
        operator<<(record, value)
        } -> std::same_as<nxLog&>;
};

/// The values that can be streamed into a log record, for nxLog and for the statements of NX_LOG alike.
///
/// A value is kept as it is; the deferred-write thread makes the text. Types of an application's own join in by an
/// `nxLog& operator<<(nxLog&, const Type&)`.
/// @tparam Record the class that is written to.
template <class Record>
class nxLogStream
{
public:
    /// "TRUE" or "FALSE".
    [[gnu::always_inline]] Record& operator<<(bool value) { return _PutTag(value ? nxLogTag::True : nxLogTag::False); }

    /// A decimal number, like all integers: 'a' is 97. In a statement of NX_LOG the compiler warns about it.
    [[gnu::always_inline]] Record& operator<<(char value) { return *this << static_cast<int>(value); }
    /// @copydoc operator<<(char)
    [[gnu::always_inline]] Record& operator<<(signed char value) { return *this << static_cast<int>(value); }
    /// @copydoc operator<<(char)
    [[gnu::always_inline]] Record& operator<<(unsigned char value) { return *this << static_cast<int>(value); }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(short value) { return *this << static_cast<int>(value); }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(unsigned short value) { return *this << static_cast<int>(value); }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(int value) { return _Put<nxLogTag::Signed32>(value); }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(unsigned int value) { return _Put<nxLogTag::Unsigned32>(value); }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(long value) { return *this << static_cast<long long>(value); }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(unsigned long value)
    {
        return *this << static_cast<unsigned long long>(value);
    }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(long long value) { return _Put<nxLogTag::Signed64>(value); }
    /// A decimal number.
    [[gnu::always_inline]] Record& operator<<(unsigned long long value) { return _Put<nxLogTag::Unsigned64>(value); }
    /// A number as nxStringHelper::GetAsString(double) writes it.
    [[gnu::always_inline]] Record& operator<<(double value) { return _Put<nxLogTag::Double>(value); }

    /// Text as it is, up to its NUL; null is as empty.
    [[gnu::always_inline]] Record& operator<<(const char* text)
    {
        return text == nullptr ? _Self() : _PutText(nxLogTag::Text, text, std::strlen(text));
    }
    /// Text as it is, NULs included.
    [[gnu::always_inline]] Record& operator<<(const std::string& text)
    {
        return _PutText(nxLogTag::Text, text.data(), text.size());
    }
    /// Text as it is, NULs included.
    [[gnu::always_inline]] Record& operator<<(std::string_view text)
    {
        return _PutText(nxLogTag::Text, text.data(), text.size());
    }
    /// Text as it is, NULs included.
    [[gnu::always_inline]] Record& operator<<(const nxLogCharLenPair& text)
    {
        return _PutText(nxLogTag::Text, text.GetText(), text.GetLength());
    }

    /// The short description of an enumeration's constant, as its enumeration prints it.
    [[gnu::always_inline]] Record& operator<<(nxEnumValue value)
    {
        return _Put<nxLogTag::KeptText>(&nxEnum::GetShortDescriptionOf(value));
    }
    /// A text that would be logged as an address, as "TRUE" or as a number: convert it to what is meant.
    template <nxMisprinted Value>
    Record& operator<<(Value value) = delete;

    /// An address: "0x" and hexadecimal digits, small letters.
    [[gnu::always_inline]] Record& operator<<(const void* address) { return _Put<nxLogTag::Address>(address); }

    /// The log form, with '.' as separator: the number, "NULL" or "NO_CHANGE".
    [[gnu::always_inline]] Record& operator<<(const nxDecimal& value)
    {
        static_assert(std::is_trivially_copyable_v<nxDecimal>);
        return _Put<nxLogTag::Decimal>(value);
    }
    /// The number, "NULL" or "NO_CHANGE".
    template <class Integer, Integer NullMark, Integer NoChangeMark>
    Record& operator<<(const nxValueWrapper<Integer, NullMark, NoChangeMark>& value)
    {
        if (value.IsValid())
            return *this << static_cast<Integer>(value);
        return *this << (value.IsNull() ? "NULL" : "NO_CHANGE");
    }
    /// The number or "NO_CHANGE"; null is the number that stands for it, as in nxDoubleValueWrapper::GetAsLogString().
    Record& operator<<(const nxDoubleValueWrapper& value)
    {
        return value.IsNoChange() ? *this << "NO_CHANGE" : *this << static_cast<double>(value);
    }
    /// Amount and currency as nxMoney::GetAsLogString() writes them.
    Record& operator<<(const nxMoney& value) { return *this << nxLogTexts::Get(value); }
    /// The log form: three letters, a quotient, an exchange rate, or "NULL".
    Record& operator<<(const nxCurrency& value) { return *this << nxLogTexts::Get(value); }
    /// @copydoc operator<<(const nxCurrency&)
    Record& operator<<(const nxRatio& value) { return *this << nxLogTexts::Get(value); }
    /// @copydoc operator<<(const nxCurrency&)
    Record& operator<<(const nxExchangeRate& value) { return *this << nxLogTexts::Get(value); }
    /// The log form of a text that may be null, a date, a time, a date-time, a span; all 24 characters of a time stamp.
    Record& operator<<(const nxStringValue& value) { return *this << nxLogTexts::Get(value); }
    /// @copydoc operator<<(const nxStringValue&)
    Record& operator<<(const nxDate& value) { return *this << nxLogTexts::Get(value); }
    /// @copydoc operator<<(const nxStringValue&)
    Record& operator<<(const nxTime& value) { return *this << nxLogTexts::Get(value); }
    /// @copydoc operator<<(const nxStringValue&)
    Record& operator<<(const nxDateTime& value) { return *this << nxLogTexts::Get(value); }
    /// @copydoc operator<<(const nxStringValue&)
    Record& operator<<(const nxDateTimeSpan& value) { return *this << nxLogTexts::Get(value); }
    /// @copydoc operator<<(const nxStringValue&)
    Record& operator<<(const nxTimeStamp& value) { return *this << nxLogTexts::Get(value); }
    /// The short description of an enumeration or error code.
    [[gnu::always_inline]] Record& operator<<(const nxEnum& value)
    {
        return _Put<nxLogTag::KeptText>(&value.GetShortDescription());
    }
    /// The short descriptions of the flags that are set, with a blank between them.
    Record& operator<<(const nxBitMask& mask) { return *this << nxLogTexts::Get(mask); }
    /// @copydoc operator<<(const nxBitMask&)
    Record& operator<<(const nxBitMask64& mask) { return *this << nxLogTexts::Get(mask); }

    /// Sets the destination user of the record; adds nothing to the message.
    Record& operator<<(const nxLogMarkers::nxLogDestinationUserID& marker)
    {
        return _Put<nxLogTag::DestinationUser>(static_cast<unsigned>(marker.destinationUserID));
    }
    /// Sets source application and destination user of the record; adds nothing to the message.
    Record& operator<<(const nxLogMarkers::nxLogSourceApplicationDestUserID& marker)
    {
        _PutText(nxLogTag::SourceApplication, marker.sourceApplication.data(), marker.sourceApplication.size());
        return _Put<nxLogTag::DestinationUser>(static_cast<unsigned>(marker.destinationUserID));
    }
    /// Ends the record: values that are streamed after it are left out.
    Record& operator<<(nxLogMarkers::nxLogTerminator) { return _PutTag(nxLogTag::End); }

    /// A value with a name. See nxField.
    template <class Value>
    [[gnu::always_inline]] Record& operator<<(const nxField<Value>& field)
    {
        static_assert(!std::is_same_v<Value, char>,
                      "a char is logged as its number: give a text, or the number as an int");
        static_assert(nxLogStreams<Value, Record> || nxLogsItself<Value>,
                      "this type has no text in the log: declare nxLog& operator<<(nxLog&, const Type&) beside it");
        _PutName(field.GetLines() == nxFieldLines::All ? nxLogTag::Field : nxLogTag::UnshownField, field.GetName());
        const Value& value = field.GetValue();
        if constexpr (!nxLogStreams<Value, Record>)
            return _Self()._PutGroup(value);
        else
        {
            if (const nxLogTag mark = _GetMark(value); mark != nxLogTag::Field)
                return _PutTag(mark);
            return _Self() << value;
        }
    }

protected:
    nxLogStream() = default;
    ~nxLogStream() = default;
    nxLogStream(const nxLogStream&) = default;             ///< The values are the record's: nothing to copy here.
    nxLogStream& operator=(const nxLogStream&) = default;  ///< The values are the record's: nothing to copy here.

    /// Puts a tag and @p value.
    template <nxLogTag tag, class Value>
    [[gnu::always_inline]] Record& _Put(const Value& value)
    {
        static_assert(sizeof value == nxLogSizeOf(tag));
        if (char* const at = _Self()._Take(1 + sizeof value))
        {
            *at = static_cast<char>(tag);
            std::memcpy(at + 1, &value, sizeof value);
        }
        return _Self();
    }

    /// Puts @p tag, the text's length and the text.
    [[gnu::always_inline]] Record& _PutText(nxLogTag tag, const char* text, std::size_t size)
    {
        // One byte more than a message may have, so that the deferred-write thread notices and marks the cut.
        size = std::min(size, MaximumText + 1);
        if (char* const at = _Self()._Take(1 + sizeof(std::uint32_t) + size))
        {
            *at = static_cast<char>(tag);
            const auto length = static_cast<std::uint32_t>(size);
            std::memcpy(at + 1, &length, sizeof length);
            _Copy(at + 1 + sizeof length, text, size);
        }
        return _Self();
    }

    /// Puts a tag that nothing follows.
    [[gnu::always_inline]] Record& _PutTag(nxLogTag tag)
    {
        if (char* const at = _Self()._Take(1))
            *at = static_cast<char>(tag);
        return _Self();
    }

    /// A message is cut here, in bytes.
    static constexpr std::size_t MaximumText = std::size_t{1} << 20;

private:
    [[gnu::always_inline]] void _PutName(nxLogTag tag, std::string_view name)
    {
        static_assert(nxFieldName::MaximumSize <= std::numeric_limits<std::uint8_t>::max());
        char* const at = _Self()._Take(2 + name.size());
        if (at == nullptr)
            return;
        at[0] = static_cast<char>(tag);
        at[1] = static_cast<char>(name.size());
        _Copy(at + 2, name.data(), name.size());
    }

    // The tag of a value that has none, which no line shows as a number or text; Field for all others.
    template <class Value>
    [[gnu::always_inline]] static nxLogTag _GetMark(const Value& value)
    {
        if constexpr (std::is_pointer_v<Value>)
            return value == nullptr ? nxLogTag::Null : nxLogTag::Field;
        // The record keeps a decimal with its mark.
        else if constexpr (std::is_same_v<Value, nxDecimal>)
            return nxLogTag::Field;
        else if constexpr (requires { value.IsNull(), value.IsNoChange(); })
            return value.IsNull() ? nxLogTag::Null : value.IsNoChange() ? nxLogTag::NoChange : nxLogTag::Field;
        else if constexpr (requires { value.IsNull(); })
            return value.IsNull() ? nxLogTag::Null : nxLogTag::Field;
        else
            return nxLogTag::Field;
    }

    // A memcpy for texts that are mostly short: up to 16 bytes are copied without a call, as two pieces that may
    // overlap. Texts of two, three and four characters, as symbols often are, take the same way, because a branch
    // between them would be unpredictable.
    [[gnu::always_inline]] static void _Copy(char* to, const char* from, std::size_t size)
    {
        if (size > 16)
        {
            // Without optimisation compilers would warn about this branch, which a short literal never takes.
            __asm__("" : "+r"(from));
            std::memcpy(to, from, size);
        }
        else if (size > 8)
            _CopyEnds<8>(to, from, size);
        else if (size > 4)
            _CopyEnds<4>(to, from, size);
        else if (size >= 2)
            _CopyEnds<2>(to, from, size);
        else if (size == 1)
            *to = *from;
    }
    template <std::size_t piece>
    [[gnu::always_inline]] static void _CopyEnds(char* to, const char* from, std::size_t size)
    {
        char begin[piece], end[piece];
        std::memcpy(begin, from, piece);
        std::memcpy(end, from + size - piece, piece);
        std::memcpy(to, begin, piece);
        std::memcpy(to + size - piece, end, piece);
    }
    Record& _Self() { return static_cast<Record&>(*this); }
};

#endif
