// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/internal/nxExactDouble.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/platform/inline/nxDoubleHelper.h"

namespace
{
// No double has more significant digits than this. A text that has more cannot survive.
constexpr std::size_t mostSignificantDigits = 767;
// Powers of ten that no double reaches, above the largest and below the smallest.
constexpr long long exponentBeyondDoubles = 400;

// The digits of a number from the first to the last that is not 0, and the power of ten of the first one.
class SignificantDigits
{
public:
    // Reads all of a text. False when it is no number.
    bool Read(const char* at, const char* end, char separator)
    {
        bool anyDigit = false;
        bool inFraction = false;
        long long decimals = 0;
        for (; at != end; ++at)
        {
            if (*at == separator && !inFraction)
            {
                inFraction = true;
                continue;
            }
            if (*at < '0' || *at > '9')
                return false;
            anyDigit = true;
            decimals += inFraction ? 1 : 0;
            _Add(*at);
        }
        _exponent = static_cast<long long>(_seen) - 1 - decimals;
        return anyDigit;
    }

    bool AreZero() const { return _seen == 0; }
    bool AreTooMany() const { return _count > mostSignificantDigits; }
    std::size_t GetCount() const { return _count; }
    long long GetExponent() const { return _exponent; }

    // Writes them as an integer and an exponent: "25e-1". There is no decimal point, which depends on the locale.
    void WriteAsInteger(char* out) const
    {
        out = std::copy_n(_digits, _count, out);
        *out++ = 'e';
        *std::to_chars(out, out + 8, _exponent - static_cast<long long>(_count - 1)).ptr = '\0';
    }

    // Whether a text in the form "2.5e+00" has the same digits and the same exponent.
    bool Equal(std::string_view scientific) const
    {
        const std::size_t e = scientific.find('e');
        const std::string_view mantissa = scientific.substr(0, e);
        long long exponent = 0;
        const std::size_t sign = scientific[e + 1] == '+' ? 1 : 0;
        std::from_chars(scientific.data() + e + 1 + sign, scientific.data() + scientific.size(), exponent);
        const std::string_view others = mantissa.substr(std::min<std::size_t>(2, mantissa.size()));
        return exponent == _exponent && mantissa.front() == _digits[0] &&
               others == std::string_view(_digits + 1, _count - 1);
    }

private:
    void _Add(char digit)
    {
        if (digit == '0' && _seen == 0)
            return;
        if (_seen < mostSignificantDigits)
            _digits[_seen] = digit;
        ++_seen;
        if (digit != '0')
            _count = _seen;
    }

    char _digits[mostSignificantDigits];
    std::size_t _seen = 0;   // since the first that is not 0
    std::size_t _count = 0;  // up to the last that is not 0
    long long _exponent = 0;
};

// Whether the digits come back: printed with as many of them, or in the shortest form that is read as the same double.
bool Keeps(double magnitude, const SignificantDigits& digits)
{
    char text[mostSignificantDigits + 16];
    char* const end = text + sizeof text;
    const auto asMany =
        std::to_chars(text, end, magnitude, std::chars_format::scientific, static_cast<int>(digits.GetCount()) - 1);
    if (digits.Equal(std::string_view(text, static_cast<std::size_t>(asMany.ptr - text))))
        return true;
    const auto shortest = std::to_chars(text, end, magnitude, std::chars_format::scientific);
    return digits.Equal(std::string_view(text, static_cast<std::size_t>(shortest.ptr - text)));
}
}  // namespace

nxErrorEnum nxExactDouble::Read(const char* begin, const char* end, char separator, double& magnitude)
{
    SignificantDigits digits;
    if (!digits.Read(begin, end, separator))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (digits.AreZero())
    {
        magnitude = 0;
        return nxErrorEnum();
    }
    if (digits.AreTooMany() || std::abs(digits.GetExponent()) > exponentBeyondDoubles)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    char text[mostSignificantDigits + 16];
    digits.WriteAsInteger(text);
    const int before = errno;
    const double nearest = std::strtod(text, nullptr);
    errno = before;
    if (!nxDoubleHelper::IsFinite(nearest) || !Keeps(nearest, digits))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    magnitude = nearest;
    return nxErrorEnum();
}

char* nxExactDouble::Write(char* out, double value)
{
    return std::to_chars(out, out + MaxTextSize, value, std::chars_format::fixed).ptr;
}
