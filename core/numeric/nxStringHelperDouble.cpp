// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <string_view>

#include "core/numeric/internal/nxExactDouble.h"
#include "core/numeric/internal/nxNearestRounding.h"
#include "core/numeric/internal/nxPriceText.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/nxStringHelper.h"

// The operations of nxStringHelper on doubles, which need the powers of ten. Its header is below them and only declares
// the operations.

namespace
{
constexpr unsigned maxDecimals = 9;
// The longest text of a double: sign, 10 digits, point, 9 digits; or sign and "d.dddddde+ddd".
constexpr std::size_t doubleTextSize = 32;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// With at most this many digits only the division of the reading rule rounds: a double holds the mantissa and the power
// of ten exactly, so it does not matter how they were computed.
constexpr std::size_t exactDigits = 15;

double Divide(std::uint64_t mantissa, std::size_t decimals)
{
    // The processor converts a signed integer in one step, an unsigned one in several.
    return static_cast<double>(static_cast<std::int64_t>(mantissa)) / nxPowersOfTen::GetDouble(decimals);
}

// Reads a text of at most `exactDigits` digits.
bool ReadExactly(const char* begin, const char* end, char separator, double& magnitude)
{
    const char* const point = std::find(begin, end, separator);
    const char* const decimals = point == end ? end : point + 1;
    std::uint64_t whole = 0;
    std::uint64_t fraction = 0;
    if ((point == begin && decimals == end) || (point != begin && !nxDigits::Parse(begin, point, whole)) ||
        (decimals != end && !nxDigits::Parse(decimals, end, fraction)))
        return false;
    const auto count = static_cast<std::size_t>(end - decimals);
    magnitude = Divide(whole * nxPowersOfTen::GetInteger(count) + fraction, count);
    return true;
}

// The reading rule to the letter: one digit at a time, in doubles.
bool ReadDigitByDigit(const char* at, const char* end, char separator, double& magnitude)
{
    double mantissa = 0;
    double divisor = 1;
    bool inFraction = false;
    bool anyDigit = false;
    for (; at != end; ++at)
    {
        if (*at == separator && !inFraction)
        {
            inFraction = true;
            continue;
        }
        if (*at == separator || !IsDigit(*at))
            return false;
        anyDigit = true;
        mantissa = mantissa * 10 + (*at - '0');
        if (inFraction)
            divisor = divisor * 10;
    }
    if (anyDigit)
        magnitude = mantissa / divisor;
    return anyDigit;
}

// Reads a text that does not look like a price. Out of line, because inlined it would cost prices registers.
[[gnu::noinline]] bool ReadAnyDouble(const char* begin, const char* end, char separator, bool negative, double& value)
{
    const bool isExact = static_cast<std::size_t>(end - begin) <= exactDigits && !IsDigit(separator);
    double magnitude = 0;
    if (!(isExact ? ReadExactly : ReadDigitByDigit)(begin, end, separator, magnitude))
        return false;
    value = negative ? -magnitude : magnitude;
    return true;
}

// Reads a text that does not look like a price, or any text on a thread that rounds in another direction.
[[gnu::noinline]] nxErrorEnum ReadAnyExactDouble(std::string_view text, char separator, double& magnitude)
{
    if (IsDigit(separator) || separator == '-')
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const nxNearestRounding rounding;
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    if (text.size() > exactDigits || !ReadExactly(begin, end, separator, magnitude))
        return nxExactDouble::Read(begin, end, separator, magnitude);
    magnitude = nxDoubleHelper::Rounded(magnitude);
    return nxErrorEnum();
}

// A magnitude rounded to a number of decimals. Both parts are smaller than 2^32.
struct RoundedDouble
{
    std::uint64_t whole;
    std::uint64_t fraction;  // in units of the last decimal
};

[[gnu::noinline]] std::uint64_t ToNearestExactly(double number)
{
    const auto below = static_cast<std::uint64_t>(number);
    const double rest = number - static_cast<double>(below);
    return below + (rest > 0.5 || (rest == 0.5 && below % 2 != 0) ? 1 : 0);
}

// The integer nearest to a number from 0 to 2^51, a tie to the even one. The sum with 2^52 has no room for a fraction, so
// its low bits are the integer. Under another rounding mode the sum may be off by one; that case and ties are computed
// again exactly.
std::uint64_t ToNearest(double number)
{
    constexpr double shift = 4503599627370496.0;
    const double sum = number + shift;
    if (std::fabs(number - (sum - shift)) >= 0.5) [[unlikely]]
        return ToNearestExactly(number);
    return std::bit_cast<std::uint64_t>(sum) - std::bit_cast<std::uint64_t>(shift);
}

RoundedDouble RoundToDecimals(double magnitude, unsigned decimals)
{
    if (decimals == 0)
        return {ToNearest(magnitude), 0};
    const long long whole = nxDoubleHelper::ToInteger(magnitude);
    const double scaled = (magnitude - static_cast<double>(whole)) * nxPowersOfTen::GetDouble(decimals);
    // A tie goes to the even neighbour, except that 0.5 becomes 1.
    const std::uint64_t fraction = scaled == 0.5 ? 1 : ToNearest(scaled);
    const bool carries = fraction == nxPowersOfTen::GetInteger(decimals);
    return {static_cast<std::uint64_t>(whole) + (carries ? 1 : 0), carries ? 0 : fraction};
}

// Writes the point and the decimals without trailing zeros, or nothing when all decimals are zero.
char* WriteFraction(char* out, std::uint64_t fraction, unsigned decimals)
{
    if (fraction == 0)
        return out;
    // Extended to nine decimals; the zeros added here are dropped with the others.
    fraction *= nxPowersOfTen::GetInteger(maxDecimals - decimals);
    const std::uint64_t first = fraction / 100'000'000;
    const std::uint64_t others = nxDigits::Spread(fraction % 100'000'000);
    *out++ = '.';
    *out++ = static_cast<char>('0' + first);
    nxDigits::Store(out, others | nxDigits::AsText);
    return out + 8 - std::countl_zero(others) / 8;
}

char* WriteDouble(char* out, double value, unsigned decimals)
{
    const double magnitude = value < 0 ? -value : value;
    // The negation sends NaN this way too, because NaN compares false with everything.
    if (!(magnitude <= 2147483647.0))
    {
        // C++ libraries differ in what they add to NaN.
        const std::string_view nan = std::signbit(value) ? "-nan" : "nan";
        return std::isnan(value)
                   ? std::copy(nan.begin(), nan.end(), out)
                   : std::to_chars(out, out + doubleTextSize, value, std::chars_format::scientific, 6).ptr;
    }
    decimals = std::min(decimals, maxDecimals);
    const RoundedDouble rounded = RoundToDecimals(magnitude, decimals);
    *out = '-';
    out = nxDigits::Write(out + (value < 0 ? 1 : 0), rounded.whole);
    return WriteFraction(out, rounded.fraction, decimals);
}
}  // namespace

bool nxStringHelper::_ReadDouble(const std::string& text, double& value, char separator)
{
    const char* begin = text.data();
    const char* const end = begin + text.size();
    const bool negative = begin != end && *begin == '-';
    begin += negative ? 1 : 0;
    std::uint64_t mantissa;
    std::size_t decimals;
    if (!nxPriceText::Parse(begin, static_cast<std::size_t>(end - begin), separator, mantissa, decimals)) [[unlikely]]
        return ReadAnyDouble(begin, end, separator, negative, value);
    const double magnitude = Divide(mantissa, decimals);
    value = negative ? -magnitude : magnitude;
    return true;
}

nxErrorEnum nxStringHelper::SetFromStringExact(std::string_view text, double& value, char separator)
{
    const bool negative = !text.empty() && text.front() == '-';
    text.remove_prefix(negative ? 1 : 0);
    std::uint64_t mantissa;
    std::size_t decimals;
    double magnitude;
    if (separator != '-' && nxPriceText::Parse(text.data(), text.size(), separator, mantissa, decimals) &&
        nxDoubleHelper::RoundsToNearest()) [[likely]]
        magnitude = Divide(mantissa, decimals);
    else if (const nxErrorEnum error = ReadAnyExactDouble(text, separator, magnitude); !error.IsOK())
        return error;
    value = negative ? -magnitude : magnitude;
    return nxErrorEnum();
}

void nxStringHelper::AppendAsString(std::string& out, double value, unsigned int decimals)
{
    nxAppendWritten<doubleTextSize>(out, [=](char* text) { return WriteDouble(text, value, decimals); });
}

std::string nxStringHelper::GetAsString(double value, unsigned int decimals)
{
    char text[doubleTextSize];
    const char* const end = WriteDouble(text, value, decimals);
    return std::string(text, static_cast<std::size_t>(end - text));
}

std::string nxStringHelper::GetAsExactString(double value)
{
    char text[nxExactDouble::MaxTextSize];
    const char* const end = nxExactDouble::Write(text, value);
    return std::string(text, static_cast<std::size_t>(end - text));
}
