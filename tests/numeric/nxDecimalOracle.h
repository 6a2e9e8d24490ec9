// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_NUMERIC_NXDECIMALORACLE_H
#define TESTS_NUMERIC_NXDECIMALORACLE_H

#include <cmath>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "core/enum/nxEnumValue.h"
#include "core/numeric/nxDecimal.h"

/// The rules of the decimal, written again as plainly as possible: one digit, one power, one rounding at a time, with
/// the mathematical library's floor and ceil and integers wide enough. Slow, and independent of nxDecimal, which is
/// compared with it.
struct nxDecimalOracle
{
    long long mantissa = 0;
    unsigned places = 0;
    nxEnumValue status = NX_VALUE_STATUS_VALID;

    nxDecimalOracle() = default;
    nxDecimalOracle(long long m, unsigned p) : mantissa(m), places(p) {}
    explicit nxDecimalOracle(nxEnumValue s) : status(s) {}
    explicit nxDecimalOracle(const nxDecimal& value)
        : mantissa(value.GetValue()),
          places(value.GetDecimalPlaces()),
          status(value.IsValid()  ? NX_VALUE_STATUS_VALID
                 : value.IsNull() ? NX_VALUE_STATUS_NULL
                                  : NX_VALUE_STATUS_NO_CHANGE)
    {
    }

    friend std::ostream& operator<<(std::ostream& out, const nxDecimalOracle& o)
    {
        return out << o.mantissa << ", " << o.places << ", " << o.status;
    }
    bool IsValid() const { return status == NX_VALUE_STATUS_VALID; }
    /// Whether @p value holds the same three fields.
    bool Matches(const nxDecimal& value) const
    {
        const nxDecimalOracle other(value);
        return mantissa == other.mantissa && places == other.places && status == other.status;
    }

    static std::uint64_t Power(unsigned n)
    {
        std::uint64_t power = 1;
        for (; n > 0; --n)
            power *= 10;
        return power;
    }
    static std::uint64_t Bits(long long value) { return static_cast<std::uint64_t>(value); }
    static long long Signed(std::uint64_t bits) { return static_cast<long long>(bits); }
    std::uint64_t Magnitude() const { return mantissa < 0 ? 0 - Bits(mantissa) : Bits(mantissa); }

    static long long ToInteger(double value)
    {
        if (std::isnan(value) || value < -std::ldexp(1.0, 63) || value >= std::ldexp(1.0, 63))
            return INT64_MIN;
        return static_cast<long long>(value);
    }
    double AsDouble() const { return static_cast<double>(mantissa) / static_cast<double>(Power(places)); }
    void SetFromDouble(double value, unsigned targetPlaces)
    {
        const volatile double number = value;  // no step is fused with the next
        const long long whole = ToInteger(number);
        const volatile double fraction = number - static_cast<double>(whole);
        const volatile double scaled = fraction * static_cast<double>(Power(targetPlaces));
        double rounded = std::floor(scaled);
        if (scaled - rounded >= 0.5)
            rounded = std::ceil(scaled);
        *this = nxDecimalOracle(Signed(Bits(whole) * Power(targetPlaces) + Bits(ToInteger(rounded))), targetPlaces);
    }

    /// @param operation one of + - * /. Sums of one scale and products of whole numbers are exact, modulo 2^64; the rest
    ///                  goes through doubles.
    void Calculate(char operation, const nxDecimalOracle& other)
    {
        if (!IsValid() || !other.IsValid())
            return;
        const std::uint64_t a = Bits(mantissa), b = Bits(other.mantissa);
        const double x = AsDouble(), y = other.AsDouble();
        const bool isExact = operation == '*' ? places == 0 && other.places == 0 : places == other.places;
        if (isExact && operation != '/')
            mantissa = Signed(operation == '+' ? a + b : operation == '-' ? a - b : a * b);
        else
            SetFromDouble(operation == '+'   ? x + y
                          : operation == '-' ? x - y
                          : operation == '*' ? x * y
                                             : x / y,
                          Larger(other));
    }
    void Negate() { mantissa = Signed(0 - Bits(mantissa)); }
    nxDecimalOracle Absolute() const
    {
        nxDecimalOracle absolute(*this);
        absolute.mantissa = Signed(Magnitude());
        return absolute;
    }

    bool Equals(const nxDecimalOracle& other) const
    {
        if (!IsValid() || !other.IsValid())
            return status == other.status;
        if (places == other.places)
            return mantissa == other.mantissa;
        return std::fabs(AsDouble() - other.AsDouble()) <= 2.220446049250313e-16;
    }
    bool IsLessThan(const nxDecimalOracle& other) const
    {
        if (!IsValid())
            return other.IsValid() || status < other.status;
        if (!other.IsValid())
            return false;
        if (places == other.places)
            return mantissa < other.mantissa;
        return !Equals(other) && AsDouble() < other.AsDouble();
    }
    /// The digits of both, filled up with zeros on either side, compare as texts do.
    int CompareExact(const nxDecimalOracle& other) const
    {
        const auto key = [larger = Larger(other)](const nxDecimalOracle& o)
        {
            const std::string digits = std::to_string(o.Magnitude()) + std::string(larger - o.places, '0');
            return std::string(600 - digits.size(), '0') + digits;
        };
        const auto rank = [](const nxDecimalOracle& o) {
            return o.IsValid() ? (o.mantissa < 0 ? 3 : 4) : o.status == NX_VALUE_STATUS_NULL ? 1 : 2;
        };
        int order = rank(*this) - rank(other);
        if (order == 0 && IsValid())
            order = mantissa < 0 ? key(other).compare(key(*this)) : key(*this).compare(key(other));
        return (order > 0) - (order < 0);
    }

    void SetDecimalPlaces(unsigned wanted, bool onlyDropZeros)
    {
        if (!IsValid())
            return;
        for (; places < wanted; ++places)
            mantissa = Signed(Bits(mantissa) * 10);
        for (; places > wanted && !(onlyDropZeros && mantissa % 10 != 0); --places)
            mantissa /= 10;
    }
    void Normalise(unsigned minimum)
    {
        for (; places > minimum && mantissa % 10 == 0; --places)
            mantissa /= 10;
    }

    /// Rounds by long division on paper: the quotient comes digit by digit, however many there are.
    void Round(const nxDecimalOracle& increment, nxEnumValue method)
    {
        if (!IsValid() || !increment.IsValid() || increment.mantissa == 0 || method < NX_ROUNDING_METHOD_DOWN ||
            method > NX_ROUNDING_METHOD_MODIFIED_NEAREST)
            return;
        std::uint64_t steps = 0;  // modulo 2^64
        for (const char digit : Quotient(std::to_string(Magnitude()), increment.Magnitude(), increment.places, places,
                                         method, mantissa < 0))
            steps = steps * 10 + static_cast<unsigned>(digit - '0');
        const std::uint64_t rounded = steps * increment.Magnitude();
        mantissa = Signed(mantissa < 0 ? 0 - rounded : rounded);
        places = increment.places;
    }

    // --- The exact operations, with their errors; digits are calculated on paper ---

    nxErrorEnum AddExact(const nxDecimalOracle& other, int sign)
    {
        if (!IsValid() || !other.IsValid())
            return NX_ERR_OBJECT_IS_NULL;
        const unsigned larger = Larger(other);
        if (larger > 18)
            return NX_ERR_VALUE_OUT_OF_RANGE;
        const auto scaled = [=](const nxDecimalOracle& o)
        { return SignedWide{o.mantissa} * static_cast<long long>(Power(larger - o.places)); };
        const SignedWide sum = scaled(*this) + sign * scaled(other);
        return Become(Digits(static_cast<Wide>(sum < 0 ? -sum : sum)), sum < 0, larger);
    }
    nxErrorEnum MultiplyExact(const nxDecimalOracle& other)
    {
        if (!IsValid() || !other.IsValid())
            return NX_ERR_OBJECT_IS_NULL;
        std::string digits = Digits(Wide{Magnitude()} * other.Magnitude());
        unsigned needed = places + other.places;
        if (digits == "0")
            needed = std::min(needed, 18U);
        const bool negative = (mantissa < 0) != (other.mantissa < 0);
        nxErrorEnum error = Become(digits, negative, needed);
        for (; !error.IsOK() && needed > 0 && digits.back() == '0'; error = Become(digits, negative, --needed))
            digits.pop_back();
        return error;
    }
    /// @param operation * or /, rounded to the places; | rounds to a multiple of the other and ignores the places.
    nxErrorEnum RoundExact(char operation, const nxDecimalOracle& other, unsigned wanted, nxEnumValue method)
    {
        if (!IsValid() || !other.IsValid())
            return NX_ERR_OBJECT_IS_NULL;
        if ((other.mantissa == 0 && operation != '*') || method < NX_ROUNDING_METHOD_DOWN ||
            method > NX_ROUNDING_METHOD_MODIFIED_NEAREST)
            return NX_ERR_INVALID_PARAMETER;
        const std::string digits = std::to_string(Magnitude());
        const bool negative = (mantissa < 0) != (other.mantissa < 0 && operation != '|');
        if (operation == '*')
            return Become(Quotient(Digits(Wide{Magnitude()} * other.Magnitude()), 1, wanted, places + other.places,
                                   method, negative),
                          negative, wanted);
        if (operation == '/')
            return Become(Quotient(digits, other.Magnitude(), wanted + other.places, places, method, negative),
                          negative, wanted);
        std::string steps = Quotient(digits, other.Magnitude(), other.places, places, method, negative);
        steps.erase(0, std::min(steps.find_first_not_of('0'), steps.size()));
        if (steps.size() > 19)
            return NX_ERR_VALUE_OUT_OF_RANGE;
        return Become(Digits(Wide{std::stoull("0" + steps)} * other.Magnitude()), negative, other.places);
    }
    nxErrorEnum SetDecimalPlacesExact(unsigned wanted)
    {
        nxDecimalOracle above(*this);
        const nxDecimalOracle one(1, 0), before(*this);
        nxErrorEnum error = above.RoundExact('*', one, wanted, NX_ROUNDING_METHOD_UP);
        if (error.IsOK() && RoundExact('*', one, wanted, NX_ROUNDING_METHOD_DOWN).IsOK() && above.mantissa != mantissa)
            error = NX_ERR_VALUE_OUT_OF_RANGE;
        *this = error.IsOK() ? above : before;
        return error;
    }
    nxErrorEnum SetFromTextExact(std::string_view text, char separator)
    {
        if (!nxDecimalOracle().SetFromText(text, separator))
            return NX_ERR_INVALID_PARAMETER;
        const std::string_view number = text.substr(text[0] == '-' || text[0] == '+' ? 1 : 0);
        std::string digits(number);
        std::erase_if(digits, [](char c) { return c < '0' || c > '9'; });
        const std::size_t whole = digits.size() < number.size() ? number.find(separator) : number.size() - 1;
        return Become(digits, text[0] == '-', static_cast<unsigned>(number.size() - whole - 1));
    }
    std::string ExactText(char separator) const
    {
        std::string digits = std::to_string(Magnitude());
        digits.insert(0, digits.size() <= places ? places + 1 - digits.size() : 0, '0');
        if (places > 0)
            digits.insert(digits.size() - places, 1, separator);
        return !IsValid() ? "" : mantissa < 0 ? "-" + digits : digits;
    }

    /// False, with nothing changed, when @p text is no number.
    bool SetFromText(std::string_view text, char separator)
    {
        const bool negative = !text.empty() && text[0] == '-';
        if (negative || (!text.empty() && text[0] == '+'))
            text.remove_prefix(1);
        nxDecimalOracle read;
        bool separatorSeen = false;
        bool digitSeen = false;
        for (const char c : text)
        {
            if (c >= '0' && c <= '9')
            {
                digitSeen = true;
                read.mantissa = Signed(Bits(read.mantissa) * 10 + static_cast<unsigned>(c - '0'));
                read.places = (read.places + (separatorSeen ? 1 : 0)) % 256;
            }
            else if (c == separator && !separatorSeen)
                separatorSeen = true;
            else
                return false;
        }
        if (!digitSeen)
            return false;
        *this = read;
        if (negative)
            Negate();
        return true;
    }

    std::uint64_t WholeMagnitude() const { return Power(places) == 0 ? 0 : Magnitude() / Power(places); }
    std::uint64_t Fraction() const { return Magnitude() - WholeMagnitude() * Power(places); }
    long long IntegerPart() const { return Signed(mantissa < 0 ? 0 - WholeMagnitude() : WholeMagnitude()); }
    std::string FractionDigits() const
    {
        std::string digits = std::to_string(Fraction());
        if (digits.size() < places)
            digits.insert(0, places - digits.size(), '0');
        return digits;
    }
    std::string Text(char separator, unsigned requestedPlaces) const
    {
        return TextWithDecimals(separator, std::min(requestedPlaces, 12U));
    }
    std::string LogText(char separator, unsigned requestedPlaces) const
    {
        if (IsValid())
            return Text(separator, requestedPlaces);
        return status == NX_VALUE_STATUS_NULL ? "NULL" : "NO_CHANGE";
    }
    std::string Written(char separator) const { return TextWithDecimals(separator, 255); }

private:
    __extension__ typedef unsigned __int128 Wide;
    __extension__ typedef __int128 SignedWide;

    static std::string Digits(Wide value)
    {
        const auto last = static_cast<char>('0' + value % 10);
        return (value < 10 ? std::string() : Digits(value / 10)) + last;
    }
    // The digits of dividend / divisor * 10^(to - from), by long division with one decimal more, rounded once.
    static std::string Quotient(std::string dividend, std::uint64_t divisor, unsigned to, unsigned from,
                                nxEnumValue method, bool negative)
    {
        dividend.append(1 + (to > from ? to - from : 0), '0');
        const std::size_t cut = 1 + (from > to ? from - to : 0);
        std::string quotient(cut, '0');
        Wide rest = 0;
        for (const char digit : dividend)
        {
            rest = rest * 10 + static_cast<unsigned>(digit - '0');
            quotient += static_cast<char>('0' + rest / divisor);
            rest %= divisor;
        }
        const std::string lost = quotient.substr(dividend.size()) + (rest != 0 ? '1' : '0');
        quotient.resize(dividend.size());
        const bool any = lost.find_first_not_of('0') != std::string::npos;
        const int half = lost.compare(std::string(1, '5').append(cut, '0'));
        const bool above = method == NX_ROUNDING_METHOD_DOWN      ? negative && any
                           : method == NX_ROUNDING_METHOD_UP      ? !negative && any
                           : method == NX_ROUNDING_METHOD_NEAREST ? half >= 0
                                                                  : half > 0;
        std::size_t at = quotient.size() - 1;
        for (; above && quotient[at] == '9'; --at)
            quotient[at] = '0';
        quotient[at] = static_cast<char>(quotient[at] + (above ? 1 : 0));
        return quotient;
    }
    // Takes the number over when it fits.
    nxErrorEnum Become(std::string digits, bool negative, unsigned newPlaces)
    {
        digits.insert(0, digits.size() < 19 ? 19 - digits.size() : 0, '0');
        digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 19));
        if (digits.size() > 19 || digits > (negative ? "9223372036854775808" : "9223372036854775807") || newPlaces > 18)
            return NX_ERR_VALUE_OUT_OF_RANGE;
        const std::uint64_t magnitude = std::stoull(digits);
        *this = nxDecimalOracle(Signed(negative ? 0 - magnitude : magnitude), newPlaces);
        return nxErrorEnum();
    }

    // "-0..." for a negative number below 1.
    std::string TextWithDecimals(char separator, unsigned most) const
    {
        if (!IsValid())
            return "";
        std::string text(mantissa < 0 ? 1 : 0, '-');
        text += std::to_string(WholeMagnitude());
        if (places > 0 && most > 0)
            text += separator + FractionDigits().substr(0, most);
        return text;
    }
    unsigned Larger(const nxDecimalOracle& other) const { return std::max(places, other.places); }
};

#endif
