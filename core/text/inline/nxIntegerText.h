// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INLINE_NXINTEGERTEXT_H
#define CORE_TEXT_INLINE_NXINTEGERTEXT_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/enum/inline/nxPlainInteger.h"
#include "core/enum/nxErrorEnum.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/inline/nxTextTraits.h"

/// Appends the text that `write` stores in a buffer of `Room` bytes: directly in the string if it has the room.
/// @param write is given the start of the buffer and returns the end of the text.
template <std::size_t Room, class Write>
void nxAppendWritten(std::string& out, Write write)
{
    const std::size_t size = out.size();
    if (out.capacity() - size < Room) [[unlikely]]
    {
        char text[Room];
        out.append(text, static_cast<std::size_t>(write(text) - text));
        return;
    }
    out.resize(size + Room);
    char* const begin = out.data();
    out.erase(static_cast<std::size_t>(write(begin + size) - begin));
}

/// The integer types that are read as numbers: neither bool nor the characters of other texts than `char`.
template <class Type>
concept nxTextInteger = nxPlainInteger<Type> && !nxWideCharacter<Type> && sizeof(Type) <= 8;

/// Integers of every width as text: digits, after a '-' when a signed number is negative. nxStringHelper is the interface
/// of these operations.
class nxIntegerText
{
public:
    /// Reads a number; one that is too large wraps modulo 2 to the number of the type's bits.
    /// @return false, with @p value untouched, for any other text.
    template <class Integer>
    static bool Read(std::string_view text, Integer& value)
    {
        const char* begin = text.data();
        const char* const end = begin + text.size();
        const bool negative = std::is_signed_v<Integer> && begin != end && *begin == '-';
        std::uint64_t magnitude = 0;
        if (!nxDigits::Parse(begin + (negative ? 1 : 0), end, magnitude))
            return false;
        value = static_cast<Integer>(negative ? 0 - magnitude : magnitude);
        return true;
    }

    /// Reads a number that the type can hold; a `char` has the range of a `signed char`, as everywhere in the library.
    /// @return NX_ERR_INVALID_PARAMETER for a text that Read() refuses, NX_ERR_VALUE_OUT_OF_RANGE for a number beyond the
    ///         type; @p value is then untouched.
    template <class Integer>
    static nxErrorEnum ReadExact(std::string_view text, Integer& value)
    {
        using Number = std::conditional_t<std::is_same_v<Integer, char>, signed char, Integer>;
        const char* const end = text.data() + text.size();
        const bool negative = std::is_signed_v<Number> && !text.empty() && text.front() == '-';
        const char* const digits = text.data() + (negative ? 1 : 0);
        std::uint64_t magnitude = 0;
        if (!nxDigits::Parse(digits, end, magnitude)) [[unlikely]]
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        if (end - digits > std::numeric_limits<Number>::digits10 && !_Holds<Number>(digits, end, magnitude, negative))
            return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
        value = static_cast<Integer>(negative ? 0 - magnitude : magnitude);
        return nxErrorEnum();
    }

    /// Writes a number without a terminator.
    /// @param out has room for nxDigits::MaxDigits bytes, whatever the value.
    /// @return the end of the text.
    template <class Integer>
    static char* Write(char* out, Integer value)
    {
        if constexpr (std::is_signed_v<Integer>)
            return nxDigits::WriteSigned(out, value);
        else
            return nxDigits::Write(out, value);
    }

    /// Appends a number.
    template <class Integer>
    static void Append(std::string& out, Integer value)
    {
        nxAppendWritten<nxDigits::MaxDigits>(out, [value](char* text) { return Write(text, value); });
    }

    /// @return the number's text.
    template <class Integer>
    static std::string Get(Integer value)
    {
        char text[nxDigits::MaxDigits];
        const char* const end = Write(text, value);
        return std::string(text, static_cast<std::size_t>(end - text));
    }

private:
    // Whether the type holds the number that some digits spell; `magnitude` is that number modulo 2^64.
    template <class Number>
    static bool _Holds(const char* digits, const char* end, std::uint64_t magnitude, bool negative)
    {
        constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<Number>::max());
        return magnitude <= largest + (negative ? 1 : 0) && nxDigits::FitsIn64Bits(digits, end);
    }
};

#endif
