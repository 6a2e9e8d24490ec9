// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/inline/nxDecimalExact.h"

#include <algorithm>

#include "core/numeric/inline/nxWide.h"

namespace
{
using Number = nxDecimalExact::Number;

constexpr nxUnsignedWide widestMagnitude = ~nxUnsignedWide{0};
constexpr std::size_t widestPower = 38;  // 10^38 fits 127 bits

bool IsValid(const Number& number) { return number.scale <= 255; }

// 10^places, or the largest number when it does not fit.
nxUnsignedWide WidePower(std::size_t places)
{
    if (places > widestPower)
        return widestMagnitude;
    const std::size_t half = places / 2;
    return nxUnsignedWide{nxPowersOfTen::GetInteger(half)} * nxPowersOfTen::GetInteger(places - half);
}

// The product, or the largest number when it does not fit.
nxUnsignedWide Times(nxUnsignedWide factor, nxUnsignedWide power)
{
    return factor != 0 && power > widestMagnitude / factor ? widestMagnitude : factor * power;
}

// The rounded quotient of two mantissas times 10^exponent; far beyond 64 bits when it does not fit 128.
nxUnsignedWide Quotient(const Number& dividend, const Number& divisor, long long exponent, unsigned method,
                        bool isNegative)
{
    const std::uint64_t above = nxDecimalQuick::GetMagnitude(dividend.mantissa);
    const std::uint64_t below = nxDecimalQuick::GetMagnitude(divisor.mantissa);
    const nxUnsignedWide power = WidePower(static_cast<std::size_t>(exponent < 0 ? -exponent : exponent));
    // A divisor that is cut down to the largest number is still more than twice the dividend, so that the quotient is
    // rounded alike.
    return exponent < 0
               ? nxDecimalExact::GetRoundedQuotient(nxUnsignedWide{above}, Times(below, power), method, isNegative)
               : nxDecimalExact::GetRoundedQuotient(Times(above, power), nxUnsignedWide{below}, method, isNegative);
}

nxErrorEnum SetSigned(nxUnsignedWide magnitude, bool isNegative, std::uint64_t places, Number& number)
{
    const nxUnsignedWide limit = (std::uint64_t{1} << 63) - (isNegative ? 0 : 1);
    if (magnitude > limit || places > nxDecimalExact::MaxPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const auto bits = static_cast<std::uint64_t>(magnitude);
    number = {nxDecimalQuick::Wrap(isNegative ? 0 - bits : bits), places};
    return nxErrorEnum();
}

nxErrorEnum SetSigned(nxWide value, std::uint64_t places, Number& number)
{
    return SetSigned(static_cast<nxUnsignedWide>(value < 0 ? -value : value), value < 0, places, number);
}

// Both have at most MaxPlaces places, and their distance is `places` at most.
nxWide ScaledUp(const Number& number, std::uint64_t places)
{
    return nxWide{number.mantissa} * static_cast<long long>(nxPowersOfTen::GetInteger(places));
}
}  // namespace

nxErrorEnum nxDecimalExact::_AddFar(Number a, Number b, bool isSubtraction, Number& sum)
{
    if (!IsValid(a) || !IsValid(b))
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const std::uint64_t places = std::max(a.scale, b.scale);
    if (places > MaxPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const nxWide left = ScaledUp(a, places - a.scale);
    const nxWide right = ScaledUp(b, places - b.scale);
    return SetSigned(isSubtraction ? left - right : left + right, places, sum);
}

nxErrorEnum nxDecimalExact::_MultiplyFar(Number a, Number b, Number& product)
{
    if (!IsValid(a) || !IsValid(b))
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    nxWide value = nxWide{a.mantissa} * b.mantissa;
    std::uint64_t places = a.scale + b.scale;
    if (value == 0)
        places = std::min<std::uint64_t>(places, MaxPlaces);
    while (!SetSigned(value, places, product).IsOK())
    {
        if (places == 0 || value % 10 != 0)
            return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
        value /= 10;
        --places;
    }
    return nxErrorEnum();
}

nxErrorEnum nxDecimalExact::_MultiplyFar(Number a, Number b, unsigned char places, unsigned method, Number& product)
{
    if (!IsValid(a) || !IsValid(b))
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (!nxDecimalQuick::IsMethod(method))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const bool isNegative = (a.mantissa < 0) != (b.mantissa < 0);
    // At most 2^126, less than half of what a power is cut down to.
    const nxUnsignedWide magnitude =
        nxUnsignedWide{nxDecimalQuick::GetMagnitude(a.mantissa)} * nxDecimalQuick::GetMagnitude(b.mantissa);
    const std::uint64_t present = a.scale + b.scale;
    const nxUnsignedWide rounded = present >= places
                                       ? GetRoundedQuotient(magnitude, WidePower(present - places), method, isNegative)
                                       : Times(magnitude, WidePower(places - present));
    return SetSigned(rounded, isNegative, places, product);
}

nxErrorEnum nxDecimalExact::_DivideFar(Number a, Number b, unsigned char places, unsigned method, Number& quotient)
{
    if (!IsValid(a) || !IsValid(b))
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (b.mantissa == 0 || !nxDecimalQuick::IsMethod(method))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const bool isNegative = (a.mantissa < 0) != (b.mantissa < 0);
    const auto exponent = static_cast<long long>(places + b.scale) - static_cast<long long>(a.scale);
    return SetSigned(Quotient(a, b, exponent, method, isNegative), isNegative, places, quotient);
}

nxErrorEnum nxDecimalExact::_RoundFar(Number number, Number increment, unsigned method, Number& rounded)
{
    if (!IsValid(number) || !IsValid(increment))
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (increment.mantissa == 0 || !nxDecimalQuick::IsMethod(method))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const bool isNegative = number.mantissa < 0;
    const auto exponent = static_cast<long long>(increment.scale) - static_cast<long long>(number.scale);
    const nxUnsignedWide steps = Quotient(number, increment, exponent, method, isNegative);
    return SetSigned(Times(steps, nxDecimalQuick::GetMagnitude(increment.mantissa)), isNegative, increment.scale,
                     rounded);
}

nxErrorEnum nxDecimalExact::SetPlaces(Number& number, unsigned char places)
{
    if (!IsValid(number))
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (places >= number.scale)
        return SetSigned(Times(nxDecimalQuick::GetMagnitude(number.mantissa), WidePower(places - number.scale)),
                         number.mantissa < 0, places, number);
    // No mantissa but 0 is a multiple of a power above 64 bits.
    const nxWide power = static_cast<nxWide>(std::min(WidePower(number.scale - places), WidePower(widestPower)));
    if (number.mantissa % power != 0)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    return SetSigned(number.mantissa / power, places, number);
}

nxErrorEnum nxDecimalExact::Join(long long whole, const Number& fraction, Number& number)
{
    if (fraction.scale > MaxPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    return SetSigned(ScaledUp({whole, 0}, fraction.scale) + fraction.mantissa, fraction.scale, number);
}

nxErrorEnum nxDecimalExact::_ReadFar(std::string_view text, char separator, Number& number)
{
    const bool isNegative = !text.empty() && text.front() == '-';
    text.remove_prefix(isNegative || (!text.empty() && text.front() == '+') ? 1 : 0);
    bool separatorSeen = false;
    std::size_t digits = 0, places = 0;
    nxUnsignedWide magnitude = 0;
    for (const char character : text)
    {
        const unsigned digit = static_cast<unsigned char>(character) - unsigned{'0'};
        if (digit <= 9)
        {
            ++digits;
            places += separatorSeen ? 1 : 0;
            // Once beyond 64 bits it stays there.
            magnitude = std::min<nxUnsignedWide>(magnitude * 10 + digit, nxUnsignedWide{1} << 64);
        }
        else if (character == separator && !separatorSeen)
            separatorSeen = true;
        else
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
    if (digits == 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return SetSigned(magnitude, isNegative, places, number);
}

int nxDecimalExact::_CompareFar(Number a, Number b)
{
    const auto sign = [](nxWide difference) { return difference < 0 ? -1 : (difference > 0 ? 1 : 0); };
    if (!IsValid(a) || !IsValid(b))
    {
        // Null is less than no change, and both are less than a number.
        const auto rank = [](const Number& number) { return IsValid(number) ? INT64_MAX : nxWide{number.scale}; };
        return sign(rank(a) - rank(b));
    }
    if (a.scale > b.scale)
        return -_CompareFar(b, a);
    const std::uint64_t more = b.scale - a.scale;
    // Scaled up by 19 places, every number but 0 exceeds 64 bits.
    const nxWide left = more <= MaxPlaces ? ScaledUp(a, more) : ScaledUp(a, MaxPlaces) * 10;
    return sign(left - b.mantissa);
}
