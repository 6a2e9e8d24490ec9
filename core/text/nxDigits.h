#ifndef CORE_TEXT_NXDIGITS_H
#define CORE_TEXT_NXDIGITS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Decimal digits of unsigned integers, written and read eight at a time in one 64-bit word.
///
/// The one place that turns numbers into digits and back; every text form of a number stands on it.
/// - Consults no locale, calls no C formatting, allocates nothing and reads nothing outside the range it is given.
/// - Wrapping: what is too large for 64 bits is reduced modulo 2^64, and a narrower type may be cast from the result,
///   which is then reduced modulo its own width.
/// - Threads: no state.
/// @code
/// char text[nxDigits::MaxDigits];
/// const char* end = nxDigits::Write(text, 1250);          // "1250"
/// std::uint64_t value;
/// const bool read = nxDigits::Parse(text, end, value);    // true, 1250
/// @endcode
class nxDigits
{
public:
    static constexpr std::size_t MaxDigits = 20;  ///< Digits of the largest 64-bit integer.

    /// Eight characters as they stand in memory: the first is the lowest byte of the word, on every processor.
    static std::uint64_t Load(const char* text)
    {
        std::uint64_t word;
        std::memcpy(&word, text, sizeof word);
        return _InMemoryOrder(word);
    }

    /// Stores all eight characters of @p word.
    static void Store(char* out, std::uint64_t word)
    {
        word = _InMemoryOrder(word);
        std::memcpy(out, &word, sizeof word);
    }

    /// The last character of @p text in the highest byte, the unused low bytes filled with '0'.
    /// @param size 1 to 8.
    static std::uint64_t LoadRightAligned(const char* text, std::size_t size)
    {
        if (size == 8)
            return Load(text);
        // Two loads that overlap; bytes read twice are or-ed with themselves.
        const auto shift = static_cast<unsigned>(64 - 8 * size);
        const std::uint64_t fill = _zeros >> (8 * size);
        if (size >= 4)
            return fill | (_LoadHalf<std::uint32_t>(text) << shift) | (_LoadHalf<std::uint32_t>(text + size - 4) << 32);
        if (size >= 2)
            return fill | (_LoadHalf<std::uint16_t>(text) << shift) | (_LoadHalf<std::uint16_t>(text + size - 2) << 48);
        return fill | (std::uint64_t{static_cast<unsigned char>(*text)} << 56);
    }

    /// @return whether all eight characters are digits.
    static constexpr bool AreDigits(std::uint64_t word)
    {
        // Adding lifts what lies above '9' to the top bit, subtracting what lies below '0'; a carry into the
        // neighbouring byte comes only from a byte that has failed already.
        return (((word + 0x4646464646464646) | (word - _zeros)) & 0x8080808080808080) == 0;
    }

    /// The number that eight digits spell. @pre AreDigits(word)
    static constexpr std::uint64_t Gather(std::uint64_t word)
    {
        word -= _zeros;
        word = word * 10 + (word >> 8);  // pairs, in every second byte
        return (((word & 0x000000FF000000FF) * 0x000F424000000064) +
                (((word >> 16) & 0x000000FF000000FF) * 0x0000271000000001)) >>
               32;
    }

    /// The eight digits of @p value as values 0 to 9, the first digit in the lowest byte, leading zeros included.
    /// Add AsText to make characters of them. @param value below 10^8.
    static constexpr std::uint64_t Spread(std::uint64_t value)
    {
        // Quarters of four digits, then pairs, then single digits; each division by a constant is a multiplication
        // that is exact over its range.
        const std::uint64_t high = (value * 109951163) >> 40;
        const std::uint64_t fours = high | ((value - high * 10000) << 32);
        const std::uint64_t hundreds = ((fours * 10486) >> 20) & 0x0000007F0000007F;
        const std::uint64_t pairs = hundreds | ((fours - hundreds * 100) << 16);
        const std::uint64_t tens = ((pairs * 103) >> 10) & 0x000F000F000F000F;
        return tens | ((pairs - tens * 10) << 8);
    }

    static constexpr std::uint64_t AsText = 0x3030303030303030;  ///< Turns eight digit values into characters.

    /// @return the number of digits of @p value, 1 for 0.
    static constexpr unsigned Count(std::uint64_t value)
    {
        if (value < 100'000'000)
            return 8 - _LeadingZeros(Spread(value));
        if (value < 10'000'000'000'000'000)
            return 16 - _LeadingZeros(Spread(value / 100'000'000));
        return 24 - _LeadingZeros(Spread(value / 10'000'000'000'000'000));
    }

    /// Writes @p value without leading zeros; no terminator.
    /// @param out has room for MaxDigits bytes, whatever the value; those behind the text may be overwritten.
    /// @return the end of the text.
    static char* Write(char* out, std::uint64_t value)
    {
        if (value < 100'000'000)
            return _WriteHead(out, value);
        if (value < 10'000'000'000'000'000)
        {
            out = _WriteHead(out, value / 100'000'000);
            return _WriteEight(out, value % 100'000'000);
        }
        out = _WriteHead(out, value / 10'000'000'000'000'000);
        value %= 10'000'000'000'000'000;
        out = _WriteEight(out, value / 100'000'000);
        return _WriteEight(out, value % 100'000'000);
    }

    /// Writes @p value with a '-' in front when it is negative; no terminator.
    /// @param out has room for MaxDigits bytes, whatever the value.
    /// @return the end of the text.
    static char* WriteSigned(char* out, std::int64_t value)
    {
        *out = '-';
        const bool negative = value < 0;
        const auto magnitude = static_cast<std::uint64_t>(value);
        // 19 digits at most stand behind a sign.
        return Write(out + (negative ? 1 : 0), negative ? 0 - magnitude : magnitude);
    }

    /// Writes exactly @p Digits digits of @p value, zeros in front, and touches no byte behind them.
    /// @param value below 10^Digits.
    template <unsigned Digits>
    static char* WriteFixed(char* out, std::uint64_t value)
    {
        static_assert(Digits >= 1 && Digits <= 8);
        const std::uint64_t word = _InMemoryOrder((Spread(value) | AsText) >> (64 - 8 * Digits));
        std::memcpy(out, &word, Digits);
        return out + Digits;
    }

    /// Writes exactly @p digits digits, zeros in front, and touches no byte behind them.
    /// @param digits any number; digits of @p value beyond them are cut off at the front.
    /// @return the end of the text.
    static char* WritePadded(char* out, std::uint64_t value, std::size_t digits)
    {
        char* const end = out + digits;
        for (char* at = end; at != out; value /= 10)
            *--at = static_cast<char>('0' + value % 10);
        return end;
    }

    /// Reads a text of digits alone; any number of them, reduced modulo 2^64.
    /// @return false, with @p value untouched, when the text is empty or holds anything but digits.
    static bool Parse(const char* begin, const char* end, std::uint64_t& value)
    {
        if (begin == end)
            return false;
        std::uint64_t sum = 0;
        while (end - begin > 8)
        {
            const std::uint64_t word = Load(begin);
            if (!AreDigits(word))
                return false;
            sum = sum * 100'000'000 + Gather(word);
            begin += 8;
        }
        const auto rest = static_cast<std::size_t>(end - begin);
        const std::uint64_t word = LoadRightAligned(begin, rest);
        if (!AreDigits(word))
            return false;
        value = sum * _powers[rest] + Gather(word);
        return true;
    }

private:
    static constexpr std::uint64_t _zeros = 0x3030303030303030;
    static constexpr std::uint32_t _powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

    static constexpr std::uint64_t _InMemoryOrder(std::uint64_t word)
    {
        if constexpr (std::endian::native == std::endian::little)
            return word;
        std::uint64_t swapped = 0;
        for (int byte = 0; byte < 8; ++byte)
            swapped = (swapped << 8) | ((word >> (8 * byte)) & 0xFF);
        return swapped;
    }

    template <class Half>
    static std::uint64_t _LoadHalf(const char* text)
    {
        Half half;
        std::memcpy(&half, text, sizeof half);
        if constexpr (std::endian::native == std::endian::little)
            return half;
        return _InMemoryOrder(std::uint64_t{half} << (64 - 8 * sizeof half));
    }

    // How many digits of a spread word are leading zeros; the last digit never counts as one.
    static constexpr unsigned _LeadingZeros(std::uint64_t digits)
    {
        return static_cast<unsigned>(std::countr_zero(digits | (std::uint64_t{1} << 56))) / 8;
    }

    static char* _WriteHead(char* out, std::uint64_t value)
    {
        const std::uint64_t digits = Spread(value);
        const unsigned zeros = _LeadingZeros(digits);
        Store(out, (digits | AsText) >> (8 * zeros));
        return out + (8 - zeros);
    }

    static char* _WriteEight(char* out, std::uint64_t value)
    {
        Store(out, Spread(value) | AsText);
        return out + 8;
    }
};

#endif
