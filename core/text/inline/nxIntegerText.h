#ifndef CORE_TEXT_INLINE_NXINTEGERTEXT_H
#define CORE_TEXT_INLINE_NXINTEGERTEXT_H

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "core/text/inline/nxDigits.h"

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
};

#endif
