// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INTERNAL_NXPRODUCTQUOTIENT_H
#define CORE_NUMERIC_INTERNAL_NXPRODUCTQUOTIENT_H

#include <cstddef>
#include <cstdint>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"

/// A quotient of products, gathered factor by factor and rounded once: an amount times a ratio, or times the rates of a path.
///
/// Products that fit 64 or 128 bits are calculated with them, and all others with 256.
/// - Limits: up to three factors and three divisors of 64 bits. A divisor is not 0.
/// - Threads: like an int.
/// @code
/// nxProductQuotient third(20);
/// third.Divide(3);
/// nxDecimal result;
/// third.GetRounded(false, NX_ROUNDING_METHOD_NEAREST, 2, result);  // 0.07: the factors count hundredths
/// @endcode
class nxProductQuotient
{
public:
    /// @param factor the first one.
    explicit nxProductQuotient(std::uint64_t factor) { Multiply(factor); }

    void Multiply(std::uint64_t factor) { _above.Add(factor); }  ///< Times a number.
    void Divide(std::uint64_t divisor) { _below.Add(divisor); }  ///< By a number other than 0.
    /// Times 10^exponent. An exponent above 0 is at most 54.
    void Scale(int exponent) { _exponent += exponent; }

    /// Gives the quotient as a mantissa with @p places places. To be asked once.
    /// @param method one of the four. @param isNegative the sign of the result, by which it is rounded.
    /// @return NX_ERR_VALUE_OUT_OF_RANGE when it does not fit; @p result is then unchanged.
    nxErrorEnum GetRounded(bool isNegative, unsigned method, unsigned char places, nxDecimal& result);

private:
    struct _Factors
    {
        void Add(std::uint64_t factor) { values[count++] = factor; }

        static constexpr std::size_t maximum = 8;  // three, and up to five parts of a power of ten
        std::uint64_t values[maximum];
        std::size_t count = 0;
    };

    static void _AddPower(_Factors& factors, int exponent);

    _Factors _above, _below;
    int _exponent = 0;
};

#endif
