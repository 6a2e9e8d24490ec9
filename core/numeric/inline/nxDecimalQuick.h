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
        const std::uint64_t places = std::max(a.scale, b.scale);
        if (places > _maxPlaces)
            return false;
        const _Scaling& scaleA = _scalings.by[places - a.scale];
        const _Scaling& scaleB = _scalings.by[places - b.scale];
        if (!_IsWithin(a.mantissa, scaleA.limit) || !_IsWithin(b.mantissa, scaleB.limit))
            return false;
        left = a.mantissa * scaleA.power;
        right = b.mantissa * scaleB.power;
        return true;
    }

    /// Rounds to a multiple of the increment. Takes numbers that Align() takes, an increment other than 0 and the four
    /// methods. Quotient and rest of the aligned integers are exact, and so is the multiple of the increment.
    static bool Round(Number& number, const Number& increment, unsigned method)
    {
        long long value, signedStep;
        if (increment.mantissa == 0 || !IsMethod(method) || !Align(number, increment, value, signedStep))
            return false;
        const bool negative = value < 0;
        const auto magnitude = static_cast<std::uint64_t>(negative ? -value : value);
        const auto step = static_cast<std::uint64_t>(signedStep < 0 ? -signedStep : signedStep);
        const std::uint64_t steps = magnitude / step;
        const std::uint64_t rest = magnitude - steps * step;
        const std::uint64_t rounded =
            (steps + (rest > GetThreshold(method, negative, step) ? 1 : 0)) * GetMagnitude(increment.mantissa);
        number = {Wrap(negative ? 0 - rounded : rounded), increment.scale};
        return true;
    }
    /// @return whether the method is one of the four. The class of the methods accepts nothing above its last one, and
    ///         what is below them means undefined or no change.
    static constexpr bool IsMethod(unsigned method) { return method >= NX_ROUNDING_METHOD_DOWN; }
    /// @return the threshold that a rest exceeds when the multiple above is due, where the magnitude of a number is taken
    ///         in whole steps and a rest. The threshold @p step itself is never exceeded.
    template <class Unsigned>
    static constexpr Unsigned GetThreshold(unsigned method, bool negative, Unsigned step)
    {
        switch (method)
        {
            case NX_ROUNDING_METHOD_DOWN:
                return negative ? 0 : step;
            case NX_ROUNDING_METHOD_UP:
                return negative ? step : 0;
            case NX_ROUNDING_METHOD_NEAREST:
                return (step - 1) / 2;
            default:
                return step / 2;
        }
    }

private:
    // The integer nearest to `scaled`, of less than 2^51 in magnitude; a tie goes toward plus infinity.
    //
    // In the sum with 1.5 * 2^52 there is no room for a fraction: the addition rounds to the nearest integer, a tie to
    // even, and the integer is in the low bits of the sum. Where it rounded a tie down, one is added. The result is that
    // of floor(), and of ceil() when the fraction is 0.5 or more, for less than the price of a conversion.
    static std::uint64_t _GetNearest(double scaled)
    {
        constexpr double shift = 6755399441055744.0;
        const double number = nxDoubleHelper::Rounded(scaled);
        const double sum = nxDoubleHelper::Rounded(number + shift);
        const double nearest = nxDoubleHelper::Rounded(sum - shift);
        return std::bit_cast<std::uint64_t>(sum) - std::bit_cast<std::uint64_t>(shift) +
               (number - nearest >= 0.5 ? 1 : 0);
    }

    // How far a mantissa may be scaled up and still stay below 2^49 units.
    static constexpr unsigned _maxPlaces = 15;
    struct _Scaling
    {
        long long power;
        std::uint64_t limit;
    };
    struct _Scalings
    {
        _Scaling by[_maxPlaces + 1];
    };
    static constexpr _Scalings _scalings = []
    {
        _Scalings table{};
        long long power = 1;
        for (_Scaling& scaling : table.by)
        {
            scaling = {power, ((std::uint64_t{1} << 49) - 1) / static_cast<std::uint64_t>(power)};
            power *= 10;
        }
        return table;
    }();
    static constexpr bool _IsWithin(long long value, std::uint64_t limit)
    {
        return static_cast<std::uint64_t>(value) + limit <= 2 * limit;
    }
};

#endif
