// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxRatio.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <ostream>

#include "core/numeric/internal/nxProductQuotient.h"
#include "core/text/nxStringHelper.h"

namespace
{
constexpr std::uint64_t largestTerm = INT64_MAX;

nxUnsignedWide GetMagnitudeOf(nxWide value) { return static_cast<nxUnsignedWide>(value < 0 ? -value : value); }

// A double in parts: mantissa * 2^exponent with a mantissa below 2^53.
struct DoubleParts
{
    std::uint64_t mantissa;
    int exponent;
};

DoubleParts TakeApart(double magnitude)
{
    constexpr int mantissaBits = 53;
    int exponent = 0;
    const double fraction = std::frexp(magnitude, &exponent);  // 0.5 to 1: exact, as is the multiplication
    return {static_cast<std::uint64_t>(std::ldexp(fraction, mantissaBits)), exponent - mantissaBits};
}

// A quotient on its way to the nearest one, both terms below 2^63.
struct Terms
{
    std::uint64_t above, below;
};

// The quotient nearest to above/below with a denominator up to the limit: the convergents of the continued fraction, and the
// last one that the limit cuts short. Of the two that bound the number, the convergent is taken in a tie.
// @pre above is below 2^53, and below is a power of two up to 2^126. No numerator then exceeds 2^63, because it belongs to a
//      number up to 1 or is at most `above` in lowest terms.
Terms GetNearestTerms(nxUnsignedWide above, nxUnsignedWide below, std::uint64_t limit)
{
    const nxUnsignedWide whole = below;
    Terms before = {0, 1}, last = {1, 0};
    while (below != 0)
    {
        const nxUnsignedWide quotient = above / below;
        // 64 bits are enough for what fits the limit.
        const std::uint64_t room = last.below == 0 ? largestTerm : (limit - before.below) / last.below;
        if (quotient > room)
        {
            const Terms between = {before.above + room * last.above, before.below + room * last.below};
            // The convergent's distance is below/(whole * last.below), that of both together 1/(last.below * between.below).
            return below <= whole / (nxUnsignedWide{2} * between.below) ? last : between;
        }
        const auto step = static_cast<std::uint64_t>(quotient);
        const Terms next = {before.above + step * last.above, before.below + step * last.below};
        const nxUnsignedWide rest = above - quotient * below;
        above = below;
        below = rest;
        before = last;
        last = next;
    }
    return last;
}
}  // namespace

nxRatio nxRatio::GetNearest(double value, long long maximumDenominator)
{
    constexpr double firstTooLarge = 9223372036854775808.0;  // 2^63
    constexpr int smallestExponent = -126;
    const double magnitude = std::fabs(value);
    if (!(magnitude < firstTooLarge) || maximumDenominator < 1)
        return nxRatio();
    if (magnitude == 0)
        return nxRatio(0, 1);
    const auto [mantissa, exponent] = TakeApart(magnitude);
    nxRatio nearest(0, 1);  // of everything below 2^-73, whatever the maximum
    if (exponent >= 0)
        nearest._SetReduced(value < 0, nxUnsignedWide{mantissa} << exponent, 1);
    else if (exponent >= smallestExponent)
    {
        const auto terms =
            GetNearestTerms(mantissa, nxUnsignedWide{1} << -exponent, static_cast<std::uint64_t>(maximumDenominator));
        nearest._SetReduced(value < 0, terms.above, terms.below);
    }
    return nearest;
}

nxErrorEnum nxRatio::Set(long long numerator, long long denominator)
{
    if (denominator == 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return _Set(numerator, denominator) ? nxErrorEnum() : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
}

nxErrorEnum nxRatio::SetFromDecimal(const nxDecimal& value)
{
    if (!value.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    std::uint64_t numerator = nxDecimalQuick::GetMagnitude(value.GetValue());
    unsigned twos = value.GetDecimalPlaces(), fives = twos;
    if (numerator == 0)
        twos = fives = 0;
    for (; twos > 0 && numerator % 2 == 0; --twos)
        numerator /= 2;
    for (; fives > 0 && numerator % 5 == 0; --fives)
        numerator /= 5;
    // 5^27 is the largest power of five that fits.
    constexpr unsigned mostFives = 27, mostTwos = 62;
    nxUnsignedWide denominator = nxUnsignedWide{1} << std::min(twos, mostTwos + 1);
    for (unsigned i = 0; i < std::min(fives, mostFives); ++i)
        denominator *= 5;
    if (fives > mostFives || !_SetReduced(value.IsNegative(), numerator, denominator))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    return nxErrorEnum();
}

nxErrorEnum nxRatio::_Combine(nxRatio other, bool isSubtraction)
{
    if (IsNull() || other.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    // a/b + c/d over the least common denominator; what the sum has in common with it is in the common divisor of b and d.
    const auto below = static_cast<std::uint64_t>(_denominator),
               otherBelow = static_cast<std::uint64_t>(other._denominator);
    const std::uint64_t common = nxCommonDivisor::Get(below, otherBelow);
    const nxWide left = nxWide{_numerator} * static_cast<long long>(otherBelow / common);
    const nxWide right = nxWide{other._numerator} * static_cast<long long>(below / common);
    const nxWide sum = isSubtraction ? left - right : left + right;
    const nxUnsignedWide magnitude = GetMagnitudeOf(sum);
    const std::uint64_t divisor = nxCommonDivisor::Get(static_cast<std::uint64_t>(magnitude % common), common);
    const nxUnsignedWide denominator = nxUnsignedWide{below / common} * (otherBelow / divisor);
    return _SetReduced(sum < 0, magnitude / divisor, denominator) ? nxErrorEnum()
                                                                  : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
}

nxErrorEnum nxRatio::Add(nxRatio other) { return _Combine(other, false); }

nxErrorEnum nxRatio::Subtract(nxRatio other) { return _Combine(other, true); }

nxErrorEnum nxRatio::Multiply(nxRatio other)
{
    if (IsNull() || other.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (_numerator == 0 || other._numerator == 0)
    {
        *this = nxRatio(0, 1);
        return nxErrorEnum();
    }
    // Reduced across, the product is in lowest terms.
    const std::uint64_t aboveLeft = nxDecimalQuick::GetMagnitude(_numerator);
    const std::uint64_t aboveRight = nxDecimalQuick::GetMagnitude(other._numerator);
    const auto belowLeft = static_cast<std::uint64_t>(_denominator);
    const auto belowRight = static_cast<std::uint64_t>(other._denominator);
    std::uint64_t first, second;
    nxCommonDivisor::GetTwo(aboveLeft, belowRight, aboveRight, belowLeft, first, second);
    const bool fits = _SetReduced((_numerator < 0) != (other._numerator < 0),
                                  nxUnsignedWide{aboveLeft / first} * (aboveRight / second),
                                  nxUnsignedWide{belowLeft / second} * (belowRight / first));
    return fits ? nxErrorEnum() : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
}

nxErrorEnum nxRatio::Divide(nxRatio other)
{
    if (IsValid() && other.IsValid() && other._numerator == 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return Multiply(other.GetInverse());
}

nxErrorEnum nxRatio::Apply(const nxDecimal& value, unsigned char places, const nxRoundingMethodEnum& method,
                           nxDecimal& result) const
{
    if (IsNull() || !value.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (!nxDecimalQuick::IsMethod(method.GetValue()))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (places > nxDecimal::MaxExactPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    nxProductQuotient product(nxDecimalQuick::GetMagnitude(value.GetValue()));
    product.Multiply(nxDecimalQuick::GetMagnitude(_numerator));
    product.Divide(static_cast<std::uint64_t>(_denominator));
    product.Scale(places - value.GetDecimalPlaces());
    return product.GetRounded(value.IsNegative() != (_numerator < 0), method.GetValue(), places, result);
}

nxErrorEnum nxRatio::SetFromString(const std::string& text)
{
    const std::string_view all = text;
    const bool isNegative = all.starts_with('-');
    const std::size_t slash = all.find('/');
    const std::size_t begin = isNegative ? 1 : 0;
    std::uint64_t above = 0, below = 1;
    // Shape before size: a wrong denominator is named first.
    nxErrorEnum error;
    if (slash != std::string_view::npos)
        error = nxStringHelper::SetFromStringExact(all.substr(slash + 1), below);
    const nxErrorEnum first = nxStringHelper::SetFromStringExact(
        all.substr(begin, slash == std::string_view::npos ? slash : slash - begin), above);
    if (first == NX_ERR_INVALID_PARAMETER || error == NX_ERR_INVALID_PARAMETER || below == 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (!first.IsOK() || !error.IsOK() || above > largestTerm || below > largestTerm)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const auto numerator = static_cast<long long>(above);
    return Set(isNegative ? -numerator : numerator, static_cast<long long>(below));
}

nxErrorEnum nxRatio::SetFromString(const char* text)
{
    return SetFromString(text != nullptr ? std::string(text) : std::string());
}

void nxRatio::AppendAsString(std::string& out) const
{
    if (IsNull())
        return;
    nxStringHelper::AppendAsString(out, _numerator);
    if (_denominator == 1)
        return;
    out.append(1, '/');
    nxStringHelper::AppendAsString(out, _denominator);
}

std::string nxRatio::GetAsString() const
{
    std::string text;
    AppendAsString(text);
    return text;
}

void nxRatio::AppendAsLogString(std::string& out) const
{
    if (IsNull())
        out.append("NULL");
    else
        AppendAsString(out);
}

std::string nxRatio::GetAsLogString() const
{
    std::string text;
    AppendAsLogString(text);
    return text;
}

std::ostream& operator<<(std::ostream& stream, nxRatio ratio) { return stream << ratio.GetAsLogString(); }
