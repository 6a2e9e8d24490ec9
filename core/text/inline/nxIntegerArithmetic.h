// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INLINE_NXINTEGERARITHMETIC_H
#define CORE_TEXT_INLINE_NXINTEGERARITHMETIC_H

#include <compare>
#include <limits>
#include <type_traits>

/// Operations on integers of any width that are defined for every operand, for nxValueWrapper.
class nxIntegerArithmetic
{
public:
    /// Two's complement without overflow: calculated unsigned, at least as wide as the language's own arithmetic.
    template <class Result, class Number>
    static constexpr auto ToUnsigned(Number number)
    {
        return static_cast<std::common_type_t<std::make_unsigned_t<Result>, unsigned>>(number);
    }

    /// @return the quotient truncated toward zero; @p byZero when the divisor is 0.
    template <class Result>
    static constexpr Result Divide(Result a, Result b, Result byZero)
    {
        if (b == 0)
            return byZero;
        if constexpr (std::is_signed_v<Result>)
        {
            // The most negative number has no positive counterpart and wraps to itself.
            if (b == -1)
                return static_cast<Result>(0 - ToUnsigned<Result>(a));
        }
        return static_cast<Result>(a / b);
    }

    /// @return the number if @p T can hold it, else @p otherwise.
    template <class T, class Number>
    static constexpr T ConvertOr(Number number, T otherwise)
    {
        const auto promoted = +number;
        const T held = static_cast<T>(promoted);
        const bool isHeld = static_cast<decltype(+number)>(held) == promoted && (held < T{}) == (promoted < Number{});
        return isHeld ? held : otherwise;
    }

    /// Compares an integer with a floating-point number exactly; unordered for NaN.
    template <class T, class Real>
    static constexpr std::partial_ordering Compare(T a, Real b)
    {
        const std::partial_ordering order = static_cast<Real>(a) <=> b;
        if constexpr (std::numeric_limits<T>::digits > std::numeric_limits<Real>::digits)
        {
            // Neighbouring large integers become the same double. It is an integer, so compare integers.
            constexpr Real end = static_cast<Real>(T{1} << (std::numeric_limits<T>::digits - 1)) * 2;
            if (order == 0)
                return b < end ? a <=> static_cast<T>(b) : std::strong_ordering::less;
        }
        return order;
    }
};

#endif
