#include "core/text/nxStringHelper.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#include "core/enum/nxCaseSensitivityEnum.h"
#include "core/numeric/internal/nxPriceText.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxDoubleHelper.h"
#include "core/numeric/nxMoney.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/text/nxDoubleValueWrapper.h"
#include "core/time/nxDate.h"
#include "core/time/nxDateTime.h"
#include "core/time/nxTime.h"

namespace
{
constexpr const char* trimmed = " \t\n\r";
constexpr unsigned maxDecimals = 9;
// The largest text of a double: sign, 10 digits, point, 9 digits; or sign and "d.dddddde+ddd".
constexpr std::size_t doubleTextSize = 32;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The largest number of digits for which the reading rule needs no rounding but that of its division: the mantissa and
// the power of ten are then integers that a double holds exactly, so that it does not matter how they were computed.
constexpr std::size_t exactDigits = 15;

double Divide(std::uint64_t mantissa, std::size_t decimals)
{
    // From a signed integer the processor converts in one step.
    return static_cast<double>(static_cast<std::int64_t>(mantissa)) / nxPowersOfTen::GetDouble(decimals);
}

// Reads a text with up to `exactDigits` digits; more must not be there.
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

// The reading rule as it stands, one digit at a time in doubles.
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

// Reads what does not look like a price. Out of line, so that it costs prices no registers.
[[gnu::noinline]] bool ReadAnyDouble(const char* begin, const char* end, char separator, bool negative, double& value)
{
    const bool isExact = static_cast<std::size_t>(end - begin) <= exactDigits && !IsDigit(separator);
    double magnitude = 0;
    if (!(isExact ? ReadExactly : ReadDigitByDigit)(begin, end, separator, magnitude))
        return false;
    value = negative ? -magnitude : magnitude;
    return true;
}

// Rounds to the digits asked for. Both parts are smaller than 2^32.
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

// The integer nearest to a number from 0 to 2^51, a tie to the even one: the sum with 2^52 has no room for a fraction,
// and the integer stands in its low bits. A thread that has its sums rounded in another direction gets a neighbour; ties
// and these are looked at again.
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
    // A half goes to the even neighbour like any other, unless that is 0.
    const std::uint64_t fraction = scaled == 0.5 ? 1 : ToNearest(scaled);
    const bool carries = fraction == nxPowersOfTen::GetInteger(decimals);
    return {static_cast<std::uint64_t>(whole) + (carries ? 1 : 0), carries ? 0 : fraction};
}

// Writes the point and the decimals without trailing zeros; nothing when there are only zeros.
char* WriteFraction(char* out, std::uint64_t fraction, unsigned decimals)
{
    if (fraction == 0)
        return out;
    // As nine decimals: the zeros added here are dropped again.
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
    // Written so that NaN, which compares false with everything, goes this way too.
    if (!(magnitude <= 2147483647.0))
        return std::to_chars(out, out + doubleTextSize, value, std::chars_format::scientific, 6).ptr;
    decimals = std::min(decimals, maxDecimals);
    const RoundedDouble rounded = RoundToDecimals(magnitude, decimals);
    *out = '-';
    out = nxDigits::Write(out + (value < 0 ? 1 : 0), rounded.whole);
    return WriteFraction(out, rounded.fraction, decimals);
}
}  // namespace

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, bool& value)
{
    value = text == "TRUE";
    return value || text == "FALSE" ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
}

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

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, std::string& value)
{
    value = text;
    return nxErrorEnum();
}

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxDate& value) { return value.SetFromString(text); }

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxTime& value) { return value.SetFromString(text); }

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxDecimal& value, char separator)
{
    return value.SetFromString(text, separator);
}

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxMoney& value, char separator)
{
    return value.SetFromString(text, separator);
}

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxEnum& value)
{
    return value.SetFromShortDescriptionString(text) ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
}

void nxStringHelper::AppendAsString(std::string& out, double value, unsigned int decimals)
{
    _AppendWritten<doubleTextSize>(out, [=](char* text) { return WriteDouble(text, value, decimals); });
}

std::string nxStringHelper::GetAsString(double value, unsigned int decimals)
{
    char text[doubleTextSize];
    const char* const end = WriteDouble(text, value, decimals);
    return std::string(text, static_cast<std::size_t>(end - text));
}

void nxStringHelper::AppendAsString(std::string& out, const char* value)
{
    if (value != nullptr)
        out.append(value);
}

std::string nxStringHelper::GetAsString(const char* value) { return value != nullptr ? value : std::string(); }

void nxStringHelper::AppendAsString(std::string& out, const nxDecimal& value) { value.AppendAsString(out, '.'); }

std::string nxStringHelper::GetAsString(const nxDecimal& value) { return value.GetAsString('.'); }

void nxStringHelper::AppendAsString(std::string& out, const nxDate& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDate& value) { return value.GetAsString(); }

void nxStringHelper::AppendAsString(std::string& out, const nxTime& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxTime& value) { return value.GetAsString(); }

void nxStringHelper::AppendAsString(std::string& out, const nxDateTime& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDateTime& value) { return value.GetAsString(); }

void nxStringHelper::AppendAsString(std::string& out, const nxEnum& value) { out.append(value.GetShortDescription()); }

std::string nxStringHelper::GetAsString(const nxEnum& value) { return value.GetShortDescription(); }

void nxStringHelper::AppendAsString(std::string& out, const nxDoubleValueWrapper& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDoubleValueWrapper& value) { return value.GetAsString(); }

void nxStringHelper::PadLeft(std::string& s, const unsigned int& width, const char& fill)
{
    // The arguments may refer into the string.
    const char character = fill;
    if (s.size() < width)
        s.insert(0, width - s.size(), character);
}

void nxStringHelper::PadRight(std::string& s, const unsigned int& width, const char& fill)
{
    const char character = fill;
    if (s.size() < width)
        s.append(width - s.size(), character);
}

void nxStringHelper::Strip(std::string& s, char c) { s.erase(std::remove(s.begin(), s.end(), c), s.end()); }

void nxStringHelper::RightTrim(std::string& s) { s.erase(s.find_last_not_of(trimmed) + 1); }

void nxStringHelper::LeftTrim(std::string& s) { s.erase(0, s.find_first_not_of(trimmed)); }

void nxStringHelper::RightTrim(std::string& s, const std::string& chars) { s.erase(s.find_last_not_of(chars) + 1); }

std::string nxStringHelper::GetRightTrimmed(const std::string& s)
{
    return s.substr(0, s.find_last_not_of(trimmed) + 1);
}

std::string nxStringHelper::GetLeftTrimmed(const std::string& s)
{
    return s.substr(std::min(s.find_first_not_of(trimmed), s.size()));
}

void nxStringHelper::Replace(std::string& s, const std::string& what, const std::string& with)
{
    if (what.empty())
        return;
    std::size_t hit = s.find(what);
    if (hit == std::string::npos)
        return;
    // Built beside the old text: linear however many hits there are, and the arguments may be the string itself.
    std::string result;
    result.reserve(s.size());
    std::size_t position = 0;
    for (; hit != std::string::npos; hit = s.find(what, position))
    {
        result.append(s, position, hit - position).append(with);
        position = hit + what.size();
    }
    result.append(s, position, std::string::npos);
    s = std::move(result);
}

void nxStringHelper::ToUpper(std::string& s)
{
    for (char& c : s)
        c = _ToUpper(c);
}

void nxStringHelper::ToLower(std::string& s)
{
    for (char& c : s)
        c = _ToLower(c);
}

std::string nxStringHelper::GetUppercaseAndUnderscoreFormatted(const std::string& text)
{
    std::string result;
    result.reserve(text.size() + text.size() / 4);
    char previous = '\0';
    for (const char c : text)
    {
        if (IsUppercase(c) && IsLowercase(previous))
            result.push_back('_');
        result.push_back(_ToUpper(c));
        previous = c;
    }
    return result;
}

bool nxStringHelper::Compare(const std::string& a, const std::string& b, const nxCaseSensitivityEnum& sensitivity)
{
    if (sensitivity == CASE_SENSITIVE)
        return a == b;
    return sensitivity == CASE_INSENSITIVE && std::equal(a.begin(), a.end(), b.begin(), b.end(),
                                                         [](char x, char y) { return _ToUpper(x) == _ToUpper(y); });
}

int nxStringHelper::CompareAlphabetically(const std::string& a, const std::string& b,
                                          const nxCaseSensitivityEnum& sensitivity)
{
    if (sensitivity == CASE_SENSITIVE)
    {
        const int order = std::strcmp(a.c_str(), b.c_str());
        return (order > 0) - (order < 0);
    }
    if (!(sensitivity == CASE_INSENSITIVE))
        return 0;
    const char* left = a.c_str();
    const char* right = b.c_str();
    while (*left != '\0' && _ToLower(*left) == _ToLower(*right))
    {
        ++left;
        ++right;
    }
    return static_cast<unsigned char>(_ToLower(*left)) - static_cast<unsigned char>(_ToLower(*right));
}
