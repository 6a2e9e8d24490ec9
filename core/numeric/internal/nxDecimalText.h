// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INTERNAL_NXDECIMALTEXT_H
#define CORE_NUMERIC_INTERNAL_NXDECIMALTEXT_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/text/inline/nxDigits.h"

/// How a decimal is read and written as a text, on plain numbers.
/// - Threads and ownership: functions of their arguments.
class nxDecimalText
{
public:
    /// The largest number of decimals that a text shows.
    static constexpr std::size_t MaxPlaces = 12;

    /// Fills a buffer with a text and a terminator.
    /// @return the length of the text.
    static std::size_t Copy(char* buffer, std::string_view text)
    {
        std::memcpy(buffer, text.data(), text.size());
        buffer[text.size()] = '\0';
        return text.size();
    }

    /// Fills a buffer of nxDecimal::MaxTextSize bytes with a number, its sign and a terminator.
    /// @param shown the number of decimals that the text shows, at most MaxPlaces and @p places.
    /// @return the length of the text.
    static std::size_t Print(char* buffer, bool isNegative, std::uint64_t magnitude, std::size_t places,
                             std::size_t shown, char separator)
    {
        *buffer = '-';
        char* const out = buffer + (isNegative ? 1 : 0);
        char* const end = magnitude < 100'000'000 && places < 8 ? _PrintShort(out, magnitude, places, shown, separator)
                                                                : _PrintLong(out, magnitude, places, shown, separator);
        *end = '\0';
        return static_cast<std::size_t>(end - buffer);
    }

    /// Reads digits with at most one separator among them, any number of them.
    /// @param mantissa 0; receives the digits as one number, modulo 2^64.
    /// @param places 0; receives the number of digits after the separator.
    /// @return false for a text without a digit or with any other character; both results are then undefined.
    static bool Parse(std::string_view text, char separator, std::uint64_t& mantissa, std::size_t& places);

private:
    // The text of a number whose digits fit one word: the integer part is its front, from the first digit that is not a
    // leading zero, and the decimals are its end. `magnitude` is below 10^8, `places` below 8, and `shown` not above
    // `places`.
    static char* _PrintShort(char* out, std::uint64_t magnitude, std::size_t places, std::size_t shown, char separator)
    {
        const std::uint64_t digits = nxDigits::Spread(magnitude);
        const std::uint64_t text = digits | nxDigits::AsText;
        const std::size_t beforeDecimals = 56 - 8 * places;
        const auto zeros = static_cast<std::size_t>(std::countr_zero(digits | (std::uint64_t{1} << beforeDecimals)));
        nxDigits::Store(out, text >> (zeros & ~std::size_t{7}));
        out += 8 - zeros / 8 - places;
        *out = separator;  // overwritten when no decimals are shown
        nxDigits::Store(out + 1, text >> 8 >> beforeDecimals);
        return out + (shown != 0 ? 1 + shown : 0);
    }
    // The same for every number. Writes 33 bytes at most.
    static char* _PrintLong(char* out, std::uint64_t magnitude, std::size_t places, std::size_t shown, char separator);
};

#endif
