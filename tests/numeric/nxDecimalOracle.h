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
    /// The same number: the digits agree when the one with fewer places is filled up with zeros.
    bool EqualsExactly(const nxDecimalOracle& other) const
    {
        if (!IsValid() || !other.IsValid())
            return status == other.status;
        if (mantissa == 0 || other.mantissa == 0)
            return mantissa == other.mantissa;
        const unsigned larger = Larger(other);
        return std::to_string(mantissa) + std::string(larger - places, '0') ==
               std::to_string(other.mantissa) + std::string(larger - other.places, '0');
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
        Wide quotient, rest, divisor = increment.Magnitude();
        if (places <= increment.places)
        {
            std::string dividend = std::to_string(Magnitude()) + std::string(increment.places - places, '0');
            quotient = rest = 0;
            for (const char digit : dividend)
            {
                rest = rest * 10 + static_cast<unsigned>(digit - '0');
                quotient = quotient * 10 + rest / divisor;  // modulo 2^128, of which 2^64 is asked for
                rest %= divisor;
            }
        }
        else
        {
            // For a dividend of 64 bits any divisor of at least 2^90 gives the same result.
            for (unsigned n = increment.places; n < places && divisor >> 90 == 0; ++n)
                divisor *= 10;
            quotient = Magnitude() / divisor;
            rest = Magnitude() % divisor;
        }
        const bool negative = mantissa < 0;
        bool above = false;
        if (method == NX_ROUNDING_METHOD_DOWN)
            above = negative && rest != 0;
        else if (method == NX_ROUNDING_METHOD_UP)
            above = !negative && rest != 0;
        else if (method == NX_ROUNDING_METHOD_NEAREST)
            above = rest * 2 >= divisor;
        else
            above = rest * 2 > divisor;
        const auto rounded = static_cast<std::uint64_t>((quotient + (above ? 1 : 0)) * increment.Magnitude());
        mantissa = Signed(negative ? 0 - rounded : rounded);
        places = increment.places;
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
