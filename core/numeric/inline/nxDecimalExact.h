// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INLINE_NXDECIMALEXACT_H
#define CORE_NUMERIC_INLINE_NXDECIMALEXACT_H

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/inline/nxDecimalQuick.h"
#include "core/numeric/inline/nxPowerQuotient.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/nxExport.h"

/// The exact operations of nxDecimal, on plain numbers: integers of up to 128 bits, and an error for every result that
/// does not fit. The class states the errors.
///
/// Small operands are calculated inline with 64 bits. All others, those without a value included, go through functions that
/// take and return values, so that an object in registers stays there.
/// - Failure: the first argument keeps its value.
/// - Threads and ownership: functions of their arguments.
class NX_CORE_API nxDecimalExact
{
public:
    using Number = nxDecimalQuick::Number;  ///< A decimal in parts.

    static constexpr unsigned char MaxPlaces = 18;  ///< The largest number of places of a result.

    static nxErrorEnum Add(Number& a, const Number& b) { return _Combine<false>(a, b); }      ///< a += b.
    static nxErrorEnum Subtract(Number& a, const Number& b) { return _Combine<true>(a, b); }  ///< a -= b.
    /// a *= b, with all the places that the product needs.
    static nxErrorEnum Multiply(Number& a, const Number& b)
    {
        long long product;
        const std::uint64_t places = a.scale + b.scale;
        if (places <= MaxPlaces && !__builtin_mul_overflow(a.mantissa, b.mantissa, &product)) [[likely]]
            return _Set(a, product, places);
        Number result;
        const nxErrorEnum error = _MultiplyFar(a, b, result);
        return _Take(error, result, a);
    }
    /// a *= b, rounded to @p places.
    static nxErrorEnum Multiply(Number& a, const Number& b, unsigned char places, unsigned method)
    {
        long long product;
        const std::uint64_t cut = a.scale + b.scale - places;
        if (places <= MaxPlaces && cut <= MaxPlaces && nxDecimalQuick::IsMethod(method) &&
            !__builtin_mul_overflow(a.mantissa, b.mantissa, &product)) [[likely]]
        {
            const std::uint64_t step = nxPowersOfTen::GetInteger(cut);
            const std::uint64_t sum =
                nxDecimalQuick::GetMagnitude(product) + nxDecimalQuick::GetAddend(method, product < 0, step);
            if (sum <= nxPowerQuotient::MaxDividend) [[likely]]
                return _Set(a, nxDecimalQuick::GetSigned(nxPowerQuotient::Get(sum, cut), product), places);
        }
        Number result;
        const nxErrorEnum error = _MultiplyFar(a, b, places, method, result);
        return _Take(error, result, a);
    }
    /// a /= b, rounded to @p places.
    static nxErrorEnum Divide(Number& a, const Number& b, unsigned char places, unsigned method)
    {
        // The quotient of the mantissas counts units of 10^-(a.scale - b.scale).
        const std::uint64_t added = places + b.scale - a.scale;
        long long dividend;
        if ((a.scale | b.scale) <= 31 && places <= MaxPlaces && added <= MaxPlaces && b.mantissa != 0 &&
            nxDecimalQuick::IsMethod(method) && !__builtin_mul_overflow(a.mantissa, _GetPower(added), &dividend))
            [[likely]]
        {
            const long long sign = dividend ^ b.mantissa;
            const std::uint64_t divisor = nxDecimalQuick::GetMagnitude(b.mantissa);
            // The dividend is 2^63 at most and the addend less, so that the sum does not wrap.
            const std::uint64_t quotient =
                (nxDecimalQuick::GetMagnitude(dividend) + nxDecimalQuick::GetAddend(method, sign < 0, divisor)) /
                divisor;
            if (quotient <= INT64_MAX) [[likely]]
                return _Set(a, nxDecimalQuick::GetSigned(quotient, sign), places);
        }
        Number result;
        const nxErrorEnum error = _DivideFar(a, b, places, method, result);
        return _Take(error, result, a);
    }
    /// Rounds to a multiple of the increment.
    static nxErrorEnum Round(Number& number, const Number& increment, unsigned method)
    {
        if (nxDecimalQuick::Round(number, increment, method)) [[likely]]
            return nxErrorEnum();
        Number result;
        const nxErrorEnum error = _RoundFar(number, increment, method, result);
        return _Take(error, result, number);
    }
    /// Reads a text.
    static nxErrorEnum Read(std::string_view text, char separator, Number& number)
    {
        if (nxDecimalQuick::Read(text, separator, number)) [[likely]]
            return nxErrorEnum();
        Number result;
        const nxErrorEnum error = _ReadFar(text, separator, result);
        return _Take(error, result, number);
    }
    /// Cuts zeros off or adds some.
    static nxErrorEnum SetPlaces(Number& number, unsigned char places);
    /// Sets a number to the sum of a whole number and a number of fewer units than 10^places.
    static nxErrorEnum Join(long long whole, const Number& fraction, Number& number);
    /// Compares any two numbers, those without a value included.
    /// @return -1, 0 or 1.
    static int Compare(const Number& a, const Number& b)
    {
        long long left = a.mantissa, right = b.mantissa;
        if (_SharesExactScale(a, b) || _Align(a, b, left, right)) [[likely]]
            return left < right ? -1 : (left > right ? 1 : 0);
        return _CompareFar(a, b);
    }

    /// Divides magnitudes, of 64 or of 128 bits.
    /// @return the quotient, rounded once by the method of a number with this sign.
    template <class Unsigned>
    static constexpr Unsigned GetRoundedQuotient(Unsigned dividend, Unsigned divisor, unsigned method, bool isNegative)
    {
        const Unsigned quotient = dividend / divisor;
        const Unsigned rest = dividend - quotient * divisor;
        return quotient + (nxDecimalQuick::RoundsUp(rest, method, isNegative, divisor) ? 1 : 0);
    }

private:
    template <bool IsSubtraction>
    static nxErrorEnum _Combine(Number& a, const Number& b)
    {
        const auto fits = [](long long left, long long right, long long& result)
        {
            return !(IsSubtraction ? __builtin_sub_overflow(left, right, &result)
                                   : __builtin_add_overflow(left, right, &result));
        };
        long long left, right, sum;
        if (_SharesExactScale(a, b)) [[likely]]
        {
            if (fits(a.mantissa, b.mantissa, sum)) [[likely]]
                return _Set(a, sum, a.scale);
        }
        else if (_Align(a, b, left, right) && fits(left, right, sum))
            return _Set(a, sum, std::max(a.scale, b.scale));
        Number result;
        const nxErrorEnum error = _AddFar(a, b, IsSubtraction, result);
        return _Take(error, result, a);
    }
    static constexpr bool _SharesExactScale(const Number& a, const Number& b)
    {
        return a.scale == b.scale && a.scale <= MaxPlaces;
    }
    // Scales both to the larger of their place counts, if both then fit.
    static bool _Align(const Number& a, const Number& b, long long& left, long long& right)
    {
        const std::uint64_t places = std::max(a.scale, b.scale);
        return places <= MaxPlaces && !__builtin_mul_overflow(a.mantissa, _GetPower(places - a.scale), &left) &&
               !__builtin_mul_overflow(b.mantissa, _GetPower(places - b.scale), &right);
    }
    static constexpr long long _GetPower(std::uint64_t places)
    {
        return static_cast<long long>(nxPowersOfTen::GetInteger(places));
    }
    static nxErrorEnum _Set(Number& number, long long mantissa, std::uint64_t scale)
    {
        number = {mantissa, scale};
        return nxErrorEnum();
    }
    static nxErrorEnum _Take(const nxErrorEnum& error, const Number& result, Number& number)
    {
        if (error.IsOK())
            number = result;
        return error;
    }

    // Everything beyond 64 bits, and every error. They store a result only when they succeed.
    static nxErrorEnum _AddFar(Number a, Number b, bool isSubtraction, Number& sum);
    static nxErrorEnum _MultiplyFar(Number a, Number b, Number& product);
    static nxErrorEnum _MultiplyFar(Number a, Number b, unsigned char places, unsigned method, Number& product);
    static nxErrorEnum _DivideFar(Number a, Number b, unsigned char places, unsigned method, Number& quotient);
    static nxErrorEnum _RoundFar(Number number, Number increment, unsigned method, Number& rounded);
    static nxErrorEnum _ReadFar(std::string_view text, char separator, Number& number);
    static int _CompareFar(Number a, Number b);
};

#endif
