// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INLINE_NXDIGITS_H
#define CORE_TEXT_INLINE_NXDIGITS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Decimal digits of unsigned integers, written and read eight at a time in one 64-bit word.
///
/// All text forms of numbers are based on it.
/// - Consults no locale, calls no C formatting, allocates nothing and reads nothing outside the range it is given.
/// - Wrapping: a number that is too large for 64 bits is reduced modulo 2^64. A cast of the result to a narrower type
///   reduces it modulo 2 to the width of that type.
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

    /// @name Words of eight digits
    /// A digit word holds one digit value, 0 to 9, in each byte, the first digit in the lowest byte on every processor.
    /// @{

    /// The eight characters at @p text as a digit word. A character that is not a digit becomes a byte of 10 or more.
    static std::uint64_t Load(const char* text) { return _LoadBytes<std::uint64_t>(text) ^ AsText; }

    /// The last character of @p text in the highest byte, zeros before the first.
    /// @param text @p size characters, digits or not. @param size 1 to 8.
    static std::uint64_t LoadRightAligned(const char* text, std::size_t size)
    {
        // Two loads that overlap; bytes read twice are or-ed with themselves.
        const std::size_t unused = 64 - 8 * size;
        const std::uint64_t zeros = AsText << unused;
        if (size >= 4) [[likely]]
            return ((_LoadBytes<std::uint32_t>(text) << unused) | (_LoadBytes<std::uint32_t>(text + size - 4) << 32)) ^
                   zeros;
        if (size >= 2)
            return ((_LoadBytes<std::uint16_t>(text) << unused) | (_LoadBytes<std::uint16_t>(text + size - 2) << 48)) ^
                   zeros;
        return (_LoadBytes<std::uint8_t>(text) << 56) ^ zeros;
    }

    /// @return a word whose lowest set bit is the top bit of the first byte that is not a digit; 0 when all are digits.
    ///         The bits above that one have no meaning.
    static constexpr std::uint64_t FindNonDigit(std::uint64_t word)
    {
        // The sum sets the top bit of a byte of 10 or more. Only such a byte can carry into the next.
        return ((word + 0x7676767676767676) | word) & 0x8080808080808080;
    }

    /// The number that a digit word spells. @pre FindNonDigit(word) == 0
    static constexpr std::uint64_t Gather(std::uint64_t word)
    {
        // Pairs, fours, all eight: each multiplication adds a lane, times its weight, to the next one.
        word = ((word * ((10 << 8) + 1)) >> 8) & 0x00FF00FF00FF00FF;
        word = ((word * ((100 << 16) + 1)) >> 16) & 0x0000FFFF0000FFFF;
        return (word * ((std::uint64_t{10000} << 32) + 1)) >> 32;
    }

    /// The digit word of @p value, leading zeros included. @param value below 10^8.
    static constexpr std::uint64_t Spread(std::uint64_t value)
    {
        // Two fours, four pairs, eight digits. Each step splits every lane in two: x = 100 a + b, for example, becomes
        // a | b << 16, which equals (x << 16) - a * ((100 << 16) - 1). The divisions are multiplications that are exact
        // over their range.
        const std::uint64_t high = (value * 109951163) >> 40;
        const std::uint64_t fours = (value << 32) - high * ((std::uint64_t{10000} << 32) - 1);
        const std::uint64_t hundreds = ((fours * 10486) >> 20) & 0x0000007F0000007F;
        const std::uint64_t pairs = (fours << 16) - hundreds * ((100 << 16) - 1);
        const std::uint64_t tens = ((pairs * 103) >> 10) & 0x000F000F000F000F;
        return (pairs << 8) - tens * ((10 << 8) - 1);
    }

    /// Turns a digit word into characters when or-ed into it.
    static constexpr std::uint64_t AsText = 0x3030303030303030;

    /// Stores all eight characters of @p word.
    static void Store(char* out, std::uint64_t word)
    {
        word = _InMemoryOrder(word);
        std::memcpy(out, &word, sizeof word);
    }
    /// @}

    /// Writes a number without leading zeros; no terminator.
    /// @param value any.
    /// @param out has room for MaxDigits bytes, whatever the value; those after the text may be overwritten.
    /// @return the end of the text.
    static char* Write(char* out, std::uint64_t value)
    {
        return value < _tenDigits ? _WriteUpToTen(out, value) : _WriteLong(out, value);
    }

    /// Writes a number with a '-' in front when it is negative; no terminator.
    /// @param value any, the most negative included.
    /// @param out has room for MaxDigits bytes, whatever the value.
    /// @return the end of the text.
    static char* WriteSigned(char* out, std::int64_t value)
    {
        // Without a branch on the sign, because it is unpredictable. At most 19 digits follow it.
        *out = '-';
        const std::uint64_t negative = value < 0 ? 1 : 0;
        return Write(out + negative, (static_cast<std::uint64_t>(value) ^ (0 - negative)) + negative);
    }

    /// Writes exactly @p Digits digits of @p value, zeros in front, and touches no byte after them.
    /// @param out has room for @p Digits bytes. @param value below 10^Digits.
    template <unsigned Digits>
    static char* WriteFixed(char* out, std::uint64_t value)
    {
        static_assert(Digits >= 1 && Digits <= 8);
        const std::uint64_t word = _InMemoryOrder((Spread(value) | AsText) >> (64 - 8 * Digits));
        std::memcpy(out, &word, Digits);
        return out + Digits;
    }

    /// Writes exactly @p digits digits, zeros in front, and touches no byte after them.
    /// @param out has room for @p digits bytes. @param value any.
    /// @param digits any number; leading digits of @p value beyond them are left out.
    static void WritePadded(char* out, std::uint64_t value, std::size_t digits)
    {
        for (char* at = out + digits; at != out; value /= 10)
            *--at = static_cast<char>('0' + value % 10);
    }

    /// Reads a text that consists of digits, any number of them; the result is reduced modulo 2^64.
    /// @return false, with @p value untouched, when the text is empty or holds anything but digits.
    static bool Parse(const char* begin, const char* end, std::uint64_t& value)
    {
        if (begin == end)
            return false;
        const auto size = static_cast<std::size_t>(end - begin);
        return size < 16 ? _ParseRest(begin, size, 0, value) : _ParseLong(begin, size, value);
    }

    /// Whether the number that a text of digits spells is below 2^64.
    /// @param begin the text, which Parse() has accepted; leading zeros do not count.
    static bool FitsIn64Bits(const char* begin, const char* end)
    {
        while (begin != end && *begin == '0')
            ++begin;
        constexpr std::size_t digits = 20;
        constexpr char largest[] = "18446744073709551615";
        static_assert(sizeof largest == digits + 1);
        const auto size = static_cast<std::size_t>(end - begin);
        return size < digits || (size == digits && std::memcmp(begin, largest, digits) <= 0);
    }

private:
    static constexpr std::uint64_t _InMemoryOrder(std::uint64_t word)
    {
        if constexpr (std::endian::native == std::endian::little)
            return word;
        std::uint64_t swapped = 0;
        for (int byte = 0; byte < 8; ++byte)
            swapped = (swapped << 8) | ((word >> (8 * byte)) & 0xFF);
        return swapped;
    }

    template <class Integer>
    static std::uint64_t _LoadBytes(const char* text)
    {
        Integer bytes;
        std::memcpy(&bytes, text, sizeof bytes);
        if constexpr (std::endian::native == std::endian::little)
            return bytes;
        return _InMemoryOrder(std::uint64_t{bytes} << (64 - 8 * sizeof bytes));
    }

    static bool _TakeEight(const char* text, std::uint64_t& sum)
    {
        const std::uint64_t word = Load(text);
        sum = sum * 100'000'000 + Gather(word);
        return FindNonDigit(word) == 0;
    }

    static bool _TakeFour(const char* text, std::uint64_t& sum)
    {
        const auto word = static_cast<std::uint32_t>(_LoadBytes<std::uint32_t>(text)) ^ std::uint32_t{0x30303030};
        const std::uint32_t pairs = (word * 10 + (word >> 8)) & 0x00FF00FF;
        sum = sum * 10'000 + ((pairs * 100 + (pairs >> 16)) & 0xFFFF);
        return (((word + 0x76767676) | word) & 0x80808080) == 0;
    }

    static bool _TakeOne(char character, std::uint64_t& sum)
    {
        const unsigned digit = static_cast<unsigned char>(character) - unsigned{'0'};
        sum = sum * 10 + digit;
        return digit <= 9;
    }

    // Reads the last digits of a number, less than 16, which follow those already in `sum`. The bits of their count say
    // whether there are eight, four, two and one of them, which takes fewer instructions than a loop.
    static bool _ParseRest(const char* at, std::size_t size, std::uint64_t sum, std::uint64_t& value)
    {
        if ((size & 8) != 0)
        {
            if (!_TakeEight(at, sum))
                return false;
            at += 8;
        }
        if ((size & 4) != 0)
        {
            if (!_TakeFour(at, sum))
                return false;
            at += 4;
        }
        if ((size & 2) != 0 && !(_TakeOne(*at++, sum) && _TakeOne(*at++, sum)))
            return false;
        if ((size & 1) != 0 && !_TakeOne(*at, sum))
            return false;
        value = sum;
        return true;
    }

    // Out of line, because inlined its loop would cost short texts registers.
    [[gnu::noinline]] static bool _ParseLong(const char* at, std::size_t size, std::uint64_t& value)
    {
        std::uint64_t sum = 0;
        for (; size >= 16; size -= 8, at += 8)
            if (!_TakeEight(at, sum))
                return false;
        return _ParseRest(at, size, sum, value);
    }

    // "00" to "99".
    struct PairTexts
    {
        char text[200];
    };
    static constexpr PairTexts _pairs = []
    {
        PairTexts pairs{};
        for (int i = 0; i < 100; ++i)
        {
            pairs.text[2 * i] = static_cast<char>('0' + i / 10);
            pairs.text[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
        return pairs;
    }();

    static char* _WritePair(char* out, std::uint64_t pair)
    {
        std::memcpy(out, _pairs.text + 2 * pair, 2);
        return out + 2;
    }

    // Without a leading zero, and without a branch for it.
    static char* _WriteFirstPair(char* out, std::uint64_t pair)
    {
        const std::size_t isSingle = pair < 10 ? 1 : 0;
        out[0] = _pairs.text[2 * pair + isSingle];
        out[1] = _pairs.text[2 * pair + 1];
        return out + 2 - isSingle;
    }

    // The 128-bit product of two numbers: returns the upper half and stores the lower one.
    static constexpr std::uint64_t _Multiply(std::uint64_t a, std::uint64_t b, std::uint64_t& low)
    {
        __extension__ using Wide = unsigned __int128;
        const Wide product = static_cast<Wide>(a) * b;
        low = static_cast<std::uint64_t>(product);
        return static_cast<std::uint64_t>(product >> 64);
    }

    // The first one or two digits of a number below 100^(Pairs + 1), then `Pairs` pairs.
    //
    // The number is divided by 100^Pairs in fixed point, with 64 bits after the point. The integer part is then the first
    // digits, and each multiplication of the fraction by 100 gives the next two. The divisor's reciprocal is rounded up
    // by less than 2^-64, so a product is too large by less than 10^10 / 2^64, far less than the 10^-8 that would change
    // a digit.
    template <unsigned Pairs>
    static char* _WritePairs(char* out, std::uint64_t value, bool isFirst)
    {
        constexpr std::uint64_t divisors[] = {1, 100, 10'000, 1'000'000, 100'000'000};
        std::uint64_t fraction;
        const std::uint64_t pair = _Multiply(value, UINT64_MAX / divisors[Pairs] + 1, fraction);
        out = isFirst ? _WriteFirstPair(out, pair) : _WritePair(out, pair);
        for (unsigned i = 0; i < Pairs; ++i)
            out = _WritePair(out, _Multiply(fraction, 100, fraction));
        return out;
    }

    static constexpr std::uint64_t _eightDigits = 100'000'000;  // the first number with more digits
    static constexpr std::uint64_t _tenDigits = 10'000'000'000;

    // A number below 10^10, without leading zeros.
    static char* _WriteUpToTen(char* out, std::uint64_t value)
    {
        if (value >= 1'000'000)
            return value < _eightDigits ? _WritePairs<3>(out, value, true) : _WritePairs<4>(out, value, true);
        if (value >= 100)
            return value < 10'000 ? _WritePairs<1>(out, value, true) : _WritePairs<2>(out, value, true);
        return _WriteFirstPair(out, value);
    }

    // Exactly eight digits of a number below 10^8.
    static char* _WriteEight(char* out, std::uint64_t value) { return _WritePairs<3>(out, value, false); }

    // A number with more than ten digits. Out of line, to keep callers small.
    [[gnu::noinline]] static char* _WriteLong(char* out, std::uint64_t value)
    {
        const std::uint64_t upper = value / _eightDigits;
        if (upper < _tenDigits)
            out = _WriteUpToTen(out, upper);
        else
            out = _WriteEight(_WriteUpToTen(out, upper / _eightDigits), upper % _eightDigits);
        return _WriteEight(out, value % _eightDigits);
    }
};

#endif
