// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxDecimal.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <type_traits>

#include "core/enum/nxValueStatusEnum.h"
#include "core/numeric/internal/nxDecimalText.h"
#include "core/numeric/internal/nxNearestRounding.h"
#include "core/numeric/internal/nxPriceText.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/nxOStream.h"
#include "core/text/nxSimpleAsciiStringWriter.h"

static_assert(nxDecimal::MaxTextPlaces == nxDecimalText::MaxPlaces);
static_assert(std::is_trivially_copyable_v<nxDecimal> && std::is_standard_layout_v<nxDecimal>);

namespace
{
// Two numbers of different scales that differ by no more are equal.
constexpr double tolerance = 2.220446049250313e-16;

constexpr std::string_view nullText = "NULL";
constexpr std::string_view noChangeText = "NO_CHANGE";

// Out of line, so that threads that round to the nearest pay nothing for it.
template <class Result>
[[gnu::noinline]] Result RoundedToNearest(Result (*operation)(nxDecimal, nxDecimal), nxDecimal left, nxDecimal right)
{
    const nxNearestRounding rounding;
    return operation(left, right);
}

// a + b modulo `modulus`, for a and b below it and a modulus of 2^63 at most.
std::uint64_t AddModulo(std::uint64_t a, std::uint64_t b, std::uint64_t modulus)
{
    const std::uint64_t sum = a + b;
    return sum >= modulus ? sum - modulus : sum;
}

std::uint64_t TimesTenModulo(std::uint64_t value, std::uint64_t modulus)
{
    const std::uint64_t two = AddModulo(value, value, modulus);
    const std::uint64_t four = AddModulo(two, two, modulus);
    const std::uint64_t five = AddModulo(four, value, modulus);
    return AddModulo(five, five, modulus);
}

// What is rounded, in magnitudes of mantissas.
struct Rounding
{
    std::uint64_t magnitude;
    std::uint64_t step;
    unsigned method;
    bool isNegative;

    // Whether the multiple above is due.
    bool RoundsUp(std::uint64_t rest, std::uint64_t scaledStep) const
    {
        return nxDecimalQuick::RoundsUp(rest, method, isNegative, scaledStep);
    }
};

// The magnitude goes from the places of the value to those of the increment. There it may take a thousand bits; what is
// needed of it is the rest modulo the step, which is carried along digit by digit, and its lowest 64 bits.
std::uint64_t RoundAtIncrementScale(const Rounding& rounding, std::uint64_t from, std::uint64_t to)
{
    std::uint64_t rest = rounding.magnitude % rounding.step;
    for (std::uint64_t places = from; places < to; ++places)
        rest = TimesTenModulo(rest, rounding.step);
    const std::uint64_t scaled = rounding.magnitude * nxPowersOfTen::GetInteger(to - from);
    return scaled - rest + (rounding.RoundsUp(rest, rounding.step) ? rounding.step : 0);
}

// The step gets the given number of places more. When it exceeds 64 bits then, it is more than twice the magnitude: the
// multiples around the value are 0 and the step itself, and 0 is the nearer.
std::uint64_t RoundAtValueScale(const Rounding& rounding, std::uint64_t morePlaces)
{
    const auto& [magnitude, step, method, isNegative] = rounding;
    if (morePlaces > 19 || step > UINT64_MAX / nxPowersOfTen::GetInteger(morePlaces))
    {
        const bool away = magnitude != 0 && method == (isNegative ? NX_ROUNDING_METHOD_DOWN : NX_ROUNDING_METHOD_UP);
        return away ? step : 0;
    }
    const std::uint64_t scaledStep = step * nxPowersOfTen::GetInteger(morePlaces);
    const std::uint64_t rest = magnitude % scaledStep;
    return (magnitude / scaledStep + (rounding.RoundsUp(rest, scaledStep) ? 1 : 0)) * step;
}
}  // namespace

nxDecimal::nxDecimal(const std::string& text, char separator)
{
    if (!SetFromStringView(text, separator).IsOK())
        SetNull();
}

const nxValueStatusEnum& nxDecimal::GetStatus() const
{
    // Never destroyed: they have nothing to destroy. Other objects' destructors may still ask.
    static_assert(std::is_trivially_destructible_v<nxValueStatusEnum>);
    static const nxValueStatusEnum valid(NX_VALUE_STATUS_VALID);
    static const nxValueStatusEnum null(NX_VALUE_STATUS_NULL);
    static const nxValueStatusEnum noChange(NX_VALUE_STATUS_NO_CHANGE);
    return IsValid() ? valid : (IsNull() ? null : noChange);
}

nxDecimal::nxDecimal(long long numerator, long long denominator, unsigned char places)
{
    const nxNearestRounding rounding;
    const double dividend = nxDoubleHelper::Rounded(static_cast<double>(numerator));
    _SetFromNearest(nxDoubleHelper::Rounded(dividend / static_cast<double>(denominator)), places);
}

nxDecimal nxDecimal::_FromAnyDouble(double number, unsigned char places)
{
    const nxNearestRounding rounding;
    const long long whole = nxDoubleHelper::ToInteger(number);
    const double fraction = nxDoubleHelper::Rounded(number) - static_cast<double>(whole);
    const double scaled = nxDoubleHelper::Rounded(fraction * nxPowersOfTen::GetDouble(places));
    double nearest = std::floor(scaled);
    if (scaled - nearest >= 0.5)
        nearest = std::ceil(scaled);
    const std::uint64_t mantissa = static_cast<std::uint64_t>(whole) * nxPowersOfTen::GetInteger(places) +
                                   static_cast<std::uint64_t>(nxDoubleHelper::ToInteger(nearest));
    return nxDecimal(_FromParts{}, nxDecimalQuick::Wrap(mantissa), places);
}

void nxDecimal::SetDecimalPlaces(const unsigned char& places, bool onlyDropZeros)
{
    if (!IsValid())
        return;
    const unsigned char wanted = places;
    const unsigned char present = GetDecimalPlaces();
    if (wanted >= present)
    {
        const std::uint64_t power = nxPowersOfTen::GetInteger(std::size_t{wanted} - present);
        *this =
            nxDecimal(_FromParts{}, nxDecimalQuick::Wrap(static_cast<std::uint64_t>(_number.mantissa) * power), wanted);
    }
    else if (onlyDropZeros)
        Normalise(wanted);
    else
    {
        // Nothing is left of 19 digits when 19 are cut.
        const auto cut = static_cast<std::size_t>(present - wanted);
        *this =
            nxDecimal(_FromParts{},
                      cut < 19 ? _number.mantissa / static_cast<long long>(nxPowersOfTen::GetInteger(cut)) : 0, wanted);
    }
}

void nxDecimal::Normalise(const unsigned char& minimumPlaces)
{
    const std::uint64_t minimum = minimumPlaces;
    if (!IsValid() || _number.scale <= minimum)
        return;
    if (_number.mantissa == 0)
        _number.scale = minimum;
    for (; _number.scale > minimum && _number.mantissa % 10 == 0; --_number.scale)
        _number.mantissa /= 10;
}

nxDecimal nxDecimal::_RoundLarge(nxDecimal value, nxDecimal increment, unsigned method)
{
    if (!value._AreValid(increment) || increment._number.mantissa == 0 || !nxDecimalQuick::IsMethod(method))
        return value;
    const Rounding rounding = {value._GetMagnitude(), increment._GetMagnitude(), method, value._number.mantissa < 0};
    const std::uint64_t rounded = value._number.scale <= increment._number.scale
                                      ? RoundAtIncrementScale(rounding, value._number.scale, increment._number.scale)
                                      : RoundAtValueScale(rounding, value._number.scale - increment._number.scale);
    return nxDecimal(_FromParts{}, nxDecimalQuick::Wrap(rounding.isNegative ? 0 - rounded : rounded),
                     increment.GetDecimalPlaces());
}

nxDecimal nxDecimal::_AddDoubles(nxDecimal left, nxDecimal right)
{
    const nxNearestRounding rounding;
    if (left._AreValid(right))
        left._SetFromNearest(nxDoubleHelper::Rounded(left.GetAsDouble() + right.GetAsDouble()),
                             left._LargerScale(right));
    return left;
}

nxDecimal nxDecimal::_SubtractDoubles(nxDecimal left, nxDecimal right)
{
    const nxNearestRounding rounding;
    if (left._AreValid(right))
        left._SetFromNearest(nxDoubleHelper::Rounded(left.GetAsDouble() - right.GetAsDouble()),
                             left._LargerScale(right));
    return left;
}

nxDecimal nxDecimal::_MultiplyDoubles(nxDecimal left, nxDecimal right)
{
    const nxNearestRounding rounding;
    if ((left._number.scale | right._number.scale) == 0)
        left._number.mantissa = nxDecimalQuick::Wrap(static_cast<std::uint64_t>(left._number.mantissa) *
                                                     static_cast<std::uint64_t>(right._number.mantissa));
    else if (left._AreValid(right))
        left._SetFromNearest(nxDoubleHelper::Rounded(left.GetAsDouble() * right.GetAsDouble()),
                             left._LargerScale(right));
    return left;
}

nxDecimal nxDecimal::_DivideDoubles(nxDecimal left, nxDecimal right)
{
    const nxNearestRounding rounding;
    if (left._AreValid(right))
        left._SetFromNearest(nxDoubleHelper::Rounded(left.GetAsDouble() / right.GetAsDouble()),
                             left._LargerScale(right));
    return left;
}

bool nxDecimal::_AreEqual(nxDecimal left, nxDecimal right)
{
    if (!left._AreValid(right))
        return left._number.scale == right._number.scale;
    if (!nxDoubleHelper::RoundsToNearest()) [[unlikely]]
        return RoundedToNearest(_AreEqual, left, right);
    return std::fabs(nxDoubleHelper::Rounded(left.GetAsDouble() - right.GetAsDouble())) <= tolerance;
}

bool nxDecimal::_IsLess(nxDecimal left, nxDecimal right)
{
    if (!left._AreValid(right))
        return !left.IsValid() && (right.IsValid() || left._number.scale < right._number.scale);
    if (!nxDoubleHelper::RoundsToNearest()) [[unlikely]]
        return RoundedToNearest(_IsLess, left, right);
    const double a = left.GetAsDouble();
    const double b = right.GetAsDouble();
    return !(std::fabs(nxDoubleHelper::Rounded(a - b)) <= tolerance) && a < b;
}

bool nxDecimal::EqualsExactly(const nxDecimal& other) const
{
    if (_number.scale == other._number.scale)
        return _number.mantissa == other._number.mantissa;
    nxDecimal left = *this;
    nxDecimal right = other;
    left.Normalise(0);
    right.Normalise(0);
    return left._number.mantissa == right._number.mantissa && left._number.scale == right._number.scale;
}

std::size_t nxDecimal::GetExactHash() const
{
    nxDecimal number = *this;
    number.Normalise(0);
    std::uint64_t bits =
        static_cast<std::uint64_t>(number._number.mantissa) + number._number.scale * 0x9E3779B97F4A7C15;
    bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93;
    bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93;
    return static_cast<std::size_t>(bits ^ (bits >> 32));
}

bool nxDecimal::_ReadAnyString(std::string_view text, char separator, nxDecimal& value)
{
    const bool negative = !text.empty() && text.front() == '-';
    text.remove_prefix(negative || (!text.empty() && text.front() == '+') ? 1 : 0);
    std::uint64_t mantissa = 0;
    std::size_t places = 0;
    if (!nxPriceText::Parse(text.data(), text.size(), separator, mantissa, places) &&
        !nxDecimalText::Parse(text, separator, mantissa, places))
        return false;
    value = nxDecimal(_FromParts{}, nxDecimalQuick::Wrap(negative ? 0 - mantissa : mantissa),
                      static_cast<unsigned char>(places));
    return true;
}

std::size_t nxDecimal::_GetAsString(char* buffer, char separator, const unsigned char& places) const
{
    if (!IsValid())
        return nxDecimalText::Copy(buffer, "");
    const std::size_t shown =
        std::min({std::size_t{places}, std::size_t{GetDecimalPlaces()}, std::size_t{MaxTextPlaces}});
    return nxDecimalText::Print(buffer, IsNegative(), _GetMagnitude(), GetDecimalPlaces(), shown, separator);
}

std::size_t nxDecimal::GetAsString(char* buffer, char separator) const
{
    if (!IsValid())
        return nxDecimalText::Copy(buffer, "");
    const std::size_t places = GetDecimalPlaces();
    return nxDecimalText::Print(buffer, IsNegative(), _GetMagnitude(), places,
                                std::min(places, std::size_t{MaxTextPlaces}), separator);
}

void nxDecimal::GetAsString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.assign(buffer, GetAsString(buffer, separator));
}

std::string nxDecimal::GetAsString(char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, GetAsString(buffer, separator));
}

void nxDecimal::AppendAsString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.append(buffer, GetAsString(buffer, separator));
}

std::string nxDecimal::GetAsTrimmedString(const unsigned char& places, char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, _GetAsString(buffer, separator, places));
}

std::size_t nxDecimal::GetAsLogString(char* buffer, char separator) const
{
    if (IsValid())
        return GetAsString(buffer, separator);
    return nxDecimalText::Copy(buffer, IsNull() ? nullText : noChangeText);
}

void nxDecimal::GetAsLogString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.assign(buffer, GetAsLogString(buffer, separator));
}

std::string nxDecimal::GetAsLogString(char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, GetAsLogString(buffer, separator));
}

void nxDecimal::AppendAsLogString(std::string& text, char separator) const
{
    char buffer[MaxTextSize];
    text.append(buffer, GetAsLogString(buffer, separator));
}

std::string nxDecimal::GetAsTrimmedLogString(const unsigned char& places, char separator) const
{
    return IsValid() ? GetAsTrimmedString(places, separator) : GetAsLogString(separator);
}

void nxDecimal::Write(nxOStream<nxSimpleAsciiStringWriter>& stream, char separator) const
{
    if (!IsValid())
        return;
    const long long whole = GetIntegerPart();
    if (whole == 0 && _number.mantissa < 0)
        stream << '-';
    stream << whole;
    if (_number.scale == 0)
        return;
    stream << separator;
    // The fraction has 20 digits at most. Everything before them is zeros, up to 235 of them.
    constexpr std::string_view zeros = "00000000000000000000000000000000";
    std::size_t places = GetDecimalPlaces();
    while (places > nxDigits::MaxDigits)
    {
        const std::size_t piece = std::min(places - nxDigits::MaxDigits, zeros.size());
        stream << zeros.substr(0, piece);
        places -= piece;
    }
    char digits[nxDigits::MaxDigits];
    nxDigits::WritePadded(digits, GetFractionalPart(), places);
    stream.Write(digits, places);
}

std::ostream& operator<<(std::ostream& stream, const nxDecimal& value)
{
    char buffer[nxDecimal::MaxTextSize];
    return stream << std::string_view(buffer, value.GetAsLogString(buffer, '.'));
}
