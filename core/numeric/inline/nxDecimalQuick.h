// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INLINE_NXDECIMALQUICK_H
#define CORE_NUMERIC_INLINE_NXDECIMALQUICK_H

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/enum/nxEnumValue.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/inline/nxDigits.h"

/// The quick paths of nxDecimal, on plain numbers, each with the proof that it gives what the rules of the class give.
///
/// Every operation takes the operands of its proof and declines all others: it then returns false and has done nothing.
/// - Threads and ownership: functions of their arguments.
class nxDecimalQuick
{
public:
    /// A decimal in parts.
    struct Number
    {
        long long mantissa = 0;
        std::uint64_t scale = 0;  ///< The number of places; above 255 when there is no value.
    };

    /// @return @p value modulo 2^64 as a signed number.
    static constexpr long long Wrap(std::uint64_t value) { return static_cast<long long>(value); }
    /// @return the number without its sign, 2^63 for the most negative one.
    static constexpr std::uint64_t GetMagnitude(long long mantissa)
    {
        const auto bits = static_cast<std::uint64_t>(mantissa);
        return mantissa < 0 ? 0 - bits : bits;
    }
    /// @return @p magnitude with the sign of @p number, modulo 2^64. Without a branch, because signs are hard to foresee.
    static constexpr long long GetSigned(std::uint64_t magnitude, long long number)
    {
        const auto signs = static_cast<std::uint64_t>(number >> 63);
        return Wrap((magnitude ^ signs) - signs);
    }

    /// Rounds a double to @p places decimals, in a thread that rounds to the nearest. Takes up to 15 places and numbers
    /// whose whole part fits 64 bits.
    static bool SetFromDouble(double number, unsigned char places, Number& result)
    {
        const long long whole = nxDoubleHelper::ToInteger(number);
        if (places > 15 || whole == nxDoubleHelper::TooLarge) [[unlikely]]
            return false;
        const double fraction = nxDoubleHelper::Rounded(number - static_cast<double>(whole));
        // Below 10^15 in magnitude, which is what _GetNearest() takes.
        const std::uint64_t nearest = _GetNearest(fraction * nxPowersOfTen::GetDouble(places));
        result = {Wrap(static_cast<std::uint64_t>(whole) * nxPowersOfTen::GetInteger(places) + nearest), places};
        return true;
    }

    /// Reads up to eight characters, digits with at most one separator among them, as one word.
    static bool Read(std::string_view text, char separator, Number& result)
    {
        const std::size_t size = text.size();
        if (size - 1 >= 8) [[unlikely]]
            return false;
        std::uint64_t word = nxDigits::LoadRightAligned(text.data(), size);
        std::size_t places = 0;
        if (const std::uint64_t others = nxDigits::FindNonDigit(word); others != 0)
        {
            // One bit, the top bit of the only byte that is no digit, which has to be the separator. In front of the
            // digits it may be a sign instead, and there may be no digits.
            places = static_cast<std::size_t>(63 - std::countr_zero(others)) / 8;
            if ((others & (others - 1)) != 0 || text[size - 1 - places] != separator) [[unlikely]]
                return false;
            if (places == size - 1 && (size == 1 || separator == '-' || separator == '+')) [[unlikely]]
                return false;
            // Closing the gap moves the digits before it up by one byte.
            const std::uint64_t decimals = word & (0 - 2 * others);
            const std::uint64_t whole = word & ((others >> 7) - 1);
            word = decimals | (whole << 8);
        }
        result = {Wrap(nxDigits::Gather(word)), places};
        return true;
    }

    /// Scales two valid numbers of at most 15 places to the larger of their place counts, if both then stay below 2^49
    /// units in magnitude. Sum, difference and order of the integers are then exactly those of the rules, which go through
    /// doubles.
    ///
    /// Let A and B be the numbers in units of 10^-P, P <= 15 the larger place count, and u = 2^-53 the relative error of
    /// one rounding.
    /// - Sum and difference S = A +- B: the mantissas and 10^P are exact doubles, so each conversion is one correctly
    ///   rounded division, off by at most 2^49 u units. The sum of the doubles adds a rounding of at most 2^50 u units.
    ///   Taking off the whole part is exact, and scaling the fraction, which is below |S| + 1 units, adds 2^50 u once
    ///   more. The scaled fraction thus is off by less than (1 + 1 + 2 + 2) 2^49 u = 3/8 of a unit (terms of u^2 do not
    ///   reach the remaining 1/8), and rounding it to the nearest integer gives the exact one. A whole part taken one too
    ///   low, because the sum fell short of an integer, comes back with the fraction, which then rounds up to 10^P.
    /// - Comparison: equal numbers are the same real number, which both divisions round to the same double. Unequal ones
    ///   are at least one unit apart, so their doubles differ by at least 1 - 2 * 2^49 u = 7/8 of a unit, 8.75e-16 or
    ///   more: beyond the tolerance, and in the right order.
    static bool Align(const Number& a, const Number& b, long long& left, long long& right)
    {
        if (!_HaveFewPlaces(a, b)) [[unlikely]]
            return false;
        const auto& [scaleA, scaleB] = _alignments.by[_maxPlaces + a.scale - b.scale];
        if (!_IsWithin(a.mantissa, scaleA.limit) || !_IsWithin(b.mantissa, scaleB.limit)) [[unlikely]]
            return false;
        left = a.mantissa * scaleA.power;
        right = b.mantissa * scaleB.power;
        return true;
    }

    /// a *= b, rounded to the larger of the place counts P, for two valid numbers of at most 15 places. Declines a product that
    /// may be a tie.
    ///
    /// Let y be the product in units of 10^-P, and u = 2^-53 the relative error of one rounding to the nearest.
    /// - The rules round both mantissas, both quotients, their product and the scaled fraction, six times in all. The fraction
    ///   is cut off without error. What they round to an integer is off by 6u |y| (terms of u^2 left out).
    /// - The double calculated here has five roundings, or six where a compiler regroups. In a thread that does not round to the
    ///   nearest each is off by up to 2u, together by 12u |y|. The two are 18u |y| apart at most.
    /// - _SetNearest() takes the integer that is nearest to all numbers within 32u |y| of the double, so that the rules give it
    ///   as well.
    /// - Where one of the place counts is 0, y is the product of the mantissas. Up to 2^49 the rules err by 3/8 of a unit.
    static bool Multiply(Number& a, const Number& b)
    {
        if (b.scale == 0)
            return _SetProduct(a, b, a.scale);
        if (a.scale == 0)
            return _SetProduct(a, b, b.scale);
        if (!_HaveFewPlaces(a, b)) [[unlikely]]
            return false;
        const std::uint64_t smaller = std::min(a.scale, b.scale);
        const double product = static_cast<double>(a.mantissa) * static_cast<double>(b.mantissa);
        return _SetNearest(product * _reciprocals.by[smaller], a.scale + b.scale - smaller, a);
    }

    /// a /= b, rounded to the larger of the place counts P, for two valid numbers of at most 15 places. Declines a divisor of 0.
    /// The quotient in units of 10^-P is y = a * 10^(P + pb - pa) / b, and the proof is that of Multiply().
    static bool Divide(Number& a, const Number& b)
    {
        if (!_HaveFewPlaces(a, b)) [[unlikely]]
            return false;
        const std::uint64_t places = std::max(a.scale, b.scale);
        const double dividend = static_cast<double>(a.mantissa) * _powers.by[places + b.scale - a.scale];
        return _SetNearest(dividend / static_cast<double>(b.mantissa), places, a);
    }

    /// Rounds to a multiple of the increment. Takes numbers that Align() takes, an increment other than 0 and the four
    /// methods. Quotient and rest of the aligned integers are exact, and so is the multiple of the increment.
    static bool Round(Number& number, const Number& increment, unsigned method)
    {
        long long value, signedStep;
        if (increment.mantissa == 0 || !IsMethod(method) || !Align(number, increment, value, signedStep))
            return false;
        const std::uint64_t step = GetMagnitude(signedStep);
        const std::uint64_t steps = (GetMagnitude(value) + GetAddend(method, value < 0, step)) / step;
        number = {GetSigned(steps * GetMagnitude(increment.mantissa), value), increment.scale};
        return true;
    }
    /// @return whether the method is one of the four. The class of the methods accepts nothing above its last one, and
    ///         what is below them means undefined or no change.
    static constexpr bool IsMethod(unsigned method) { return method >= NX_ROUNDING_METHOD_DOWN; }
    /// @return what is added to the magnitude of a number so that its quotient by @p step, cut off, is the rounded one. It is
    ///         less than @p step.
    template <class Unsigned>
    static constexpr Unsigned GetAddend(unsigned method, bool negative, Unsigned step)
    {
        switch (method)
        {
            case NX_ROUNDING_METHOD_DOWN:
                return negative ? step - 1 : 0;
            case NX_ROUNDING_METHOD_UP:
                return negative ? 0 : step - 1;
            case NX_ROUNDING_METHOD_NEAREST:
                return step / 2;
            default:
                return (step - 1) / 2;
        }
    }
    /// @return whether the multiple above is due for a magnitude of whole steps and a @p rest, which is less than @p step.
    template <class Unsigned>
    static constexpr bool RoundsUp(Unsigned rest, unsigned method, bool negative, Unsigned step)
    {
        return rest >= step - GetAddend(method, negative, step);
    }

private:
    // Sets a number to the product of two mantissas, if it is below 2^49 in magnitude. Shifted up by fourteen bits, every other
    // product overflows.
    static bool _SetProduct(Number& a, const Number& b, std::uint64_t places)
    {
        long long shifted, product;
        if (places > _maxPlaces || __builtin_mul_overflow(a.mantissa, 1LL << 14, &shifted) ||
            __builtin_mul_overflow(shifted, b.mantissa, &product)) [[unlikely]]
            return false;
        a = {product >> 14, places};
        return true;
    }

    // Sets a number to the integer nearest to all numbers that differ from `units` by 2^-48 of it or less. Declines when there
    // is none, and NaN and the infinities.
    //
    // The sum with _integerShift is an integer next to `units`; the direction of rounding decides which one. It is the nearest
    // to all of them when its distance, which is exact below a half, and the difference together make less than a half. That
    // sum too may be rounded, but never from a half or more to less. From 2^47 up the difference alone makes a half.
    static bool _SetNearest(double units, std::uint64_t places, Number& result)
    {
        const double number = nxDoubleHelper::Rounded(units);
        const double sum = nxDoubleHelper::Rounded(number + _integerShift);
        const double nearest = nxDoubleHelper::Rounded(sum - _integerShift);
        const long long integer = nxDoubleHelper::ToInteger(nearest);
        const double distance = __builtin_fabs(nxDoubleHelper::Rounded(nearest - number));
        const double spread = nxDoubleHelper::Rounded(distance + __builtin_fabs(number) * 0x1p-48);
        // The bits, because switches of the compiler let comparisons of doubles ignore NaN.
        if (std::bit_cast<std::uint64_t>(spread) >= std::bit_cast<std::uint64_t>(0.5)) [[unlikely]]
            return false;
        result = {integer, places};
        return true;
    }

    // The integer nearest to `scaled`, of less than 2^51 in magnitude; a tie goes toward plus infinity.
    //
    // In the sum with 1.5 * 2^52 there is no room for a fraction: the addition rounds to the nearest integer, a tie to
    // even, and the integer is in the low bits of the sum. Where it rounded a tie down, one is added. The result is that
    // of floor(), and of ceil() when the fraction is 0.5 or more, for less than the price of a conversion.
    static std::uint64_t _GetNearest(double scaled)
    {
        const double number = nxDoubleHelper::Rounded(scaled);
        const double sum = nxDoubleHelper::Rounded(number + _integerShift);
        const double nearest = nxDoubleHelper::Rounded(sum - _integerShift);
        return std::bit_cast<std::uint64_t>(sum) - std::bit_cast<std::uint64_t>(_integerShift) +
               (number - nearest >= 0.5 ? 1 : 0);
    }

    static constexpr double _integerShift = 6755399441055744.0;  // 1.5 * 2^52

    static constexpr std::uint64_t _maxPlaces = 15;
    static constexpr std::uint64_t _maxUnits = (std::uint64_t{1} << 49) - 1;
    // False for numbers without a value too.
    static constexpr bool _HaveFewPlaces(const Number& a, const Number& b)
    {
        static_assert((_maxPlaces & (_maxPlaces + 1)) == 0, "all bits below the places that are too many");
        return (a.scale | b.scale) <= _maxPlaces;
    }

    // The power of ten that scales a mantissa up, and how large the mantissa may be for the result to stay below 2^49.
    struct _Scaling
    {
        long long power;
        std::uint64_t limit;
    };
    // By the places of the first number less those of the second, plus 15.
    struct _Alignments
    {
        _Scaling by[2 * _maxPlaces + 1][2];
    };
    static constexpr _Alignments _alignments = []
    {
        _Alignments table{};
        long long power = 1;
        for (std::uint64_t i = 0; i <= _maxPlaces; ++i, power *= 10)
        {
            table.by[_maxPlaces - i][0] = {power, _maxUnits / static_cast<std::uint64_t>(power)};
            table.by[_maxPlaces - i][1] = {1, _maxUnits};
            table.by[_maxPlaces + i][0] = table.by[_maxPlaces - i][1];
            table.by[_maxPlaces + i][1] = table.by[_maxPlaces - i][0];
        }
        return table;
    }();

    // The doubles nearest to 10^n, and those nearest to 10^-n.
    struct _Doubles
    {
        double by[2 * _maxPlaces + 1];
    };
    static constexpr _Doubles _powers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10,
                                         1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21,
                                         1e22, 1e23, 1e24, 1e25, 1e26, 1e27, 1e28, 1e29, 1e30};
    static constexpr _Doubles _reciprocals = {1e-0, 1e-1, 1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7,
                                              1e-8, 1e-9, 1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15};

    static constexpr bool _IsWithin(long long value, std::uint64_t limit)
    {
        return static_cast<std::uint64_t>(value) + limit <= 2 * limit;
    }
};

#endif
