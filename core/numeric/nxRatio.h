// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXRATIO_H
#define CORE_NUMERIC_NXRATIO_H

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/inline/nxCommonDivisor.h"
#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"

/// A nullable exact quotient of two whole numbers: a leg ratio of 3/2, a share of 1/3, which no decimal holds.
///
/// - Value: in lowest terms, with a denominator above 0: 2/-4 becomes -1/2, and every 0 becomes 0/1. Numerator and
///   denominator are at most 2^63 - 1 in magnitude.
/// - Null: a default-constructed ratio is null, which differs from zero and comes before every number.
/// - Errors: every result is exact, or an error is returned and the object keeps its value:
///   NX_ERR_OBJECT_IS_NULL when this ratio or an operand is null; NX_ERR_INVALID_PARAMETER for a denominator or a divisor of
///   0; NX_ERR_VALUE_OUT_OF_RANGE when numerator or denominator of the result, in lowest terms, does not fit.
/// - Threads: like an int.
/// - Ownership: a value of 16 bytes that owns nothing; pass it by value.
/// @code
/// nxRatio share(1, 3);
/// nxDecimal part;
/// if (share.Multiply(nxRatio(3, 2)).IsOK() &&  // 1/2
///     share.Apply(nxDecimal("99.99", '.'), 2, nxRoundingMethodEnum(NX_ROUNDING_METHOD_NEAREST), part).IsOK())
///     std::cout << part;  // 50.00
/// @endcode
class NX_CORE_API nxRatio
{
public:
    constexpr nxRatio() = default;                   ///< Null.
    constexpr explicit nxRatio(nxNullInitalizer) {}  ///< Null.
    /// @p numerator by @p denominator; null where Set() returns an error.
    constexpr nxRatio(long long numerator, long long denominator) { _Set(numerator, denominator); }

    /// The ratio nearest to @p value among those with a denominator up to @p maximumDenominator; of two that are equally
    /// near, the one with the smaller denominator, or else the one nearer to 0. (3.14159, 1000) gives 355/113.
    /// @return null for NaN, for an infinity or another number beyond 2^63 - 1, and for a maximum below 1.
    static nxRatio GetNearest(double value, long long maximumDenominator);

    constexpr bool IsNull() const { return _denominator == 0; }          ///< There is no ratio.
    constexpr bool IsValid() const { return !IsNull(); }                 ///< There is a ratio.
    constexpr void SetNull() { *this = nxRatio(); }                      ///< Becomes null.
    constexpr long long GetNumerator() const { return _numerator; }      ///< With the sign; 0 for null.
    constexpr long long GetDenominator() const { return _denominator; }  ///< Above 0; 0 for null.

    /// Becomes @p numerator by @p denominator, in lowest terms.
    [[nodiscard]] nxErrorEnum Set(long long numerator, long long denominator);
    /// Becomes the same number: 0.125 is 1/8.
    [[nodiscard]] nxErrorEnum SetFromDecimal(const nxDecimal& value);

    [[nodiscard]] nxErrorEnum Add(nxRatio other);       ///< Becomes the sum.
    [[nodiscard]] nxErrorEnum Subtract(nxRatio other);  ///< Becomes the difference.
    [[nodiscard]] nxErrorEnum Multiply(nxRatio other);  ///< Becomes the product.
    [[nodiscard]] nxErrorEnum Divide(nxRatio other);    ///< Becomes the quotient.
    /// @return 2/3 for 3/2; null for 0 and for null.
    constexpr nxRatio GetInverse() const
    {
        nxRatio inverse;
        if (_numerator != 0)
        {
            inverse._numerator = _numerator < 0 ? -_denominator : _denominator;
            inverse._denominator = _numerator < 0 ? -_numerator : _numerator;
        }
        return inverse;
    }
    /// Gives @p value times this ratio, rounded once to @p places decimals, 18 at most. The four methods are those of
    /// nxDecimal::Round().
    /// @return also NX_ERR_OBJECT_IS_NULL when @p value is not valid, and NX_ERR_INVALID_PARAMETER for an undefined method.
    ///         @p result is unchanged when an error is returned; it may be the same object as @p value.
    [[nodiscard]] nxErrorEnum Apply(const nxDecimal& value, unsigned char places, const nxRoundingMethodEnum& method,
                                    nxDecimal& result) const;

    /// Reads digits, an optional '-' before them, and optionally a '/' and the digits of the denominator: "3/2", "-1/3",
    /// "5", "4/6". There are no blanks, and no sign follows the '/'.
    /// @return NX_ERR_INVALID_PARAMETER for any other text, "1/0" included; NX_ERR_VALUE_OUT_OF_RANGE when a number as
    ///         written exceeds 2^63 - 1. The ratio is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text);

    /// @return "3/2", or "5" for a whole number; an empty text for null. SetFromString() reads it back.
    std::string GetAsString() const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out) const;
    /// @return what GetAsString() returns, or "NULL".
    std::string GetAsLogString() const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out) const;

    friend constexpr bool operator==(nxRatio, nxRatio) = default;  ///< The same number; null equals null.
    /// Exact for all numbers; null comes first.
    friend constexpr std::strong_ordering operator<=>(nxRatio left, nxRatio right)
    {
        if (left.IsNull() || right.IsNull())
            return left.IsValid() <=> right.IsValid();
        return nxWide{left._numerator} * right._denominator <=> nxWide{right._numerator} * left._denominator;
    }

private:
    // From a quotient in lowest terms; false when it does not fit.
    constexpr bool _SetReduced(bool isNegative, nxUnsignedWide numerator, nxUnsignedWide denominator)
    {
        constexpr nxUnsignedWide largest = INT64_MAX;
        if (numerator > largest || denominator > largest)
            return false;
        _numerator = isNegative ? -static_cast<long long>(numerator) : static_cast<long long>(numerator);
        _denominator = static_cast<long long>(denominator);
        return true;
    }
    // False when it does not fit, and for a denominator of 0.
    constexpr bool _Set(long long numerator, long long denominator)
    {
        if (denominator == 0)
            return false;
        const std::uint64_t above = nxDecimalQuick::GetMagnitude(numerator);
        const std::uint64_t below = nxDecimalQuick::GetMagnitude(denominator);
        const std::uint64_t divisor = nxCommonDivisor::Get(above, below);
        return _SetReduced((numerator < 0) != (denominator < 0), above / divisor, below / divisor);
    }
    nxErrorEnum _Combine(nxRatio other, bool isSubtraction);

    long long _numerator = 0;
    long long _denominator = 0;
};

static_assert(sizeof(nxRatio) == 16);

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, nxRatio ratio);

/// Ratios can be keys of unordered containers.
template <>
struct std::hash<nxRatio>
{
    /// Agrees with `==`.
    std::size_t operator()(nxRatio ratio) const noexcept
    {
        const auto numerator = static_cast<std::size_t>(ratio.GetNumerator());
        const auto denominator = static_cast<std::size_t>(ratio.GetDenominator());
        return (numerator * 0x9E3779B97F4A7C15u ^ denominator) * 0xC2B2AE3D27D4EB4Fu;
    }
};

#endif
