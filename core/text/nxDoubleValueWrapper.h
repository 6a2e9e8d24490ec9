// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXDOUBLEVALUEWRAPPER_H
#define CORE_TEXT_NXDOUBLEVALUEWRAPPER_H

#include <bit>
#include <compare>
#include <concepts>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxValueStatusEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/nxInitalizers.h"

template <std::integral T, T NullMark, T NoChangeMark>
class nxValueWrapper;

/// A double that can also be null (no value) or no change (keep what the receiver holds).
///
/// - Two numbers serve as the marks: 4503599627370495 is null, 4503599627370494 is no change. Every other double, NaN
///   included, is a value.
/// - Only the state operations, GetMax(), GetMin() and the text forms look at the marks. The wrapper converts to its
///   plain double, marks included, and calculates and compares with that: null plus 1 is a valid number, one above the
///   mark, and `if (wrapper)` is true for null. Test IsValid() first.
/// - Its operations give the same results in a program that is compiled with -Ofast, NaN and the infinities included.
/// - Comparison carries an absolute tolerance of 1e-08, so the wrapper makes no key for ordered or hashed containers.
/// - The two tag constructors are exchanged, and callers rely on it: nxNoChangeInitalizer makes NULL and nxNullInitalizer
///   makes NO CHANGE. Prefer GetNullInstance() and GetNoChangeInstance(), which do what their names say.
/// - Errors: SetFromString() makes the wrapper null when it fails. The operations with the suffix `Exact` refuse what the
///   wrapper cannot hold exactly, the marks included, and leave it as it was. Dividing by zero gives an infinity or NaN.
/// - Threads: like a double. Ownership: an 8-byte value that owns nothing.
/// @code
/// nxDoubleValueWrapper tick;                  // null
/// if (tick.SetFromStringExact("0.25").IsOK())
///     tick *= 2;                              // 0.5
/// @endcode
class NX_CORE_API nxDoubleValueWrapper
{
public:
    static constexpr double NullValue = 4503599627370495.0;      ///< The number that means null.
    static constexpr double NoChangeValue = 4503599627370494.0;  ///< The number that means no change.
    static constexpr double Tolerance = 1e-08;                   ///< Closer numbers compare equal.

    constexpr nxDoubleValueWrapper() = default;  ///< Null.
    /// No change, NOT null: see the class.
    constexpr explicit nxDoubleValueWrapper(nxNullInitalizer) : _value(NoChangeValue) {}
    /// Null, NOT no change: see the class.
    constexpr explicit nxDoubleValueWrapper(nxNoChangeInitalizer) {}
    /// Holds the number as given; a mark makes a null or no-change wrapper.
    constexpr nxDoubleValueWrapper(double value) : _value(value) {}
    /// Null, no change or the number of @p other.
    template <class T, T NullMark, T NoChangeMark>
    constexpr explicit nxDoubleValueWrapper(const nxValueWrapper<T, NullMark, NoChangeMark>& other)
        : _value(other.IsNull()       ? NullValue
                 : other.IsNoChange() ? NoChangeValue
                                      : static_cast<double>(static_cast<T>(other)))
    {
    }

    /// A null wrapper.
    static constexpr nxDoubleValueWrapper GetNullInstance() { return nxDoubleValueWrapper(NullValue); }
    /// A no-change wrapper.
    static constexpr nxDoubleValueWrapper GetNoChangeInstance() { return nxDoubleValueWrapper(NoChangeValue); }

    constexpr void SetNull() { _value = NullValue; }                       ///< The number is forgotten.
    constexpr void SetNoChange() { _value = NoChangeValue; }               ///< The number is forgotten.
    constexpr bool IsNull() const { return _Is(NullValue); }               ///< There is no number.
    constexpr bool IsNoChange() const { return _Is(NoChangeValue); }       ///< The receiver keeps its number.
    constexpr bool IsValid() const { return !IsNull() && !IsNoChange(); }  ///< There is a number.
    /// @return NX_VALUE_STATUS_NO_CHANGE, NX_VALUE_STATUS_NULL or NX_VALUE_STATUS_VALID.
    nxValueStatusEnum GetStatus() const
    {
        if (IsNoChange())
            return nxValueStatusEnum(NX_VALUE_STATUS_NO_CHANGE);
        return nxValueStatusEnum(IsNull() ? NX_VALUE_STATUS_NULL : NX_VALUE_STATUS_VALID);
    }

    /// The number itself, marks included. Through it `+`, `-`, `*` and `/` give plain doubles.
    constexpr operator double() const { return _value; }

    /// @return the number when there is one, else @p fallback.
    constexpr double GetValueOr(double fallback) const { return IsValid() ? _value : fallback; }
    /// Takes over the null or the number of an update request; a no-change request changes nothing.
    constexpr void UpdateFrom(const nxDoubleValueWrapper& request)
    {
        if (!request.IsNoChange())
            _value = request._value;
    }

    /// Adds a number if the sum needs no rounding: 0.5 and 0.25 can be added, 0.1 and 0.2 cannot, because no double is
    /// the sum of these two. Use nxDecimal for decimal fractions.
    /// @return NX_ERR_OBJECT_IS_NULL when one of the two is not valid; NX_ERR_VALUE_OUT_OF_RANGE when the result is no
    ///         double, or when an operand or the result is infinite, NaN or, the result, a mark; the wrapper is then
    ///         unchanged.
    [[nodiscard]] nxErrorEnum AddExact(const nxDoubleValueWrapper& other);
    /// Subtracts. @copydetails AddExact
    [[nodiscard]] nxErrorEnum SubtractExact(const nxDoubleValueWrapper& other);
    /// Multiplies. @copydetails AddExact
    [[nodiscard]] nxErrorEnum MultiplyExact(const nxDoubleValueWrapper& other);

    /// Ignores the state.
    constexpr nxDoubleValueWrapper& operator+=(double value) { return _Assign(_value + value); }
    /// Ignores the state.
    constexpr nxDoubleValueWrapper& operator-=(double value) { return _Assign(_value - value); }
    /// Ignores the state.
    constexpr nxDoubleValueWrapper& operator*=(double value) { return _Assign(_value * value); }
    /// Ignores the state.
    constexpr nxDoubleValueWrapper& operator/=(double value)
    {
        return _Assign(_value / nxDoubleHelper::Rounded(value));
    }

    /// @return the larger of two values, @p a when they are equal within the tolerance; when one is not valid, the
    ///         other one.
    static constexpr nxDoubleValueWrapper GetMax(const nxDoubleValueWrapper& a, const nxDoubleValueWrapper& b)
    {
        return _Prefers(a, b, a > b) ? a : b;
    }
    /// @return the smaller of two values, @p a when they are equal within the tolerance; when one is not valid, the
    ///         other one.
    static constexpr nxDoubleValueWrapper GetMin(const nxDoubleValueWrapper& a, const nxDoubleValueWrapper& b)
    {
        return _Prefers(a, b, a < b) ? a : b;
    }

    /// Reads a number with '.' as decimal separator; see nxStringHelper.
    /// @return NX_ERR_INVALID_PARAMETER when the text is not a number; the wrapper is then null.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text);
    /// Reads a number with '.' as decimal separator; see nxStringHelper::SetFromStringExact().
    /// @return NX_ERR_INVALID_PARAMETER when the text is not a number; NX_ERR_VALUE_OUT_OF_RANGE when the number is too
    ///         large, has more digits than a double keeps, or is a mark; the wrapper is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromStringExact(std::string_view text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromStringExact(const char* text);
    /// @return the number with up to nine decimals; an empty text for null and no change.
    std::string GetAsString() const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out) const;
    /// @return "NO_CHANGE" for no change, otherwise the number. This includes null: it logs as the number of its mark,
    ///         "4.503600e+15", which log readers search for.
    std::string GetAsLogString() const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out) const;

    /// Equal within the tolerance; marks count as numbers. An infinity is not equal to itself.
    friend constexpr bool operator==(const nxDoubleValueWrapper& a, const nxDoubleValueWrapper& b)
    {
        return _Compare(a._value, b._value) == 0;
    }
    /// Equivalent within the tolerance, else ordered as doubles; marks count as numbers.
    friend constexpr std::partial_ordering operator<=>(const nxDoubleValueWrapper& a, const nxDoubleValueWrapper& b)
    {
        return _Compare(a._value, b._value);
    }
    /// @copydoc operator==(const nxDoubleValueWrapper&, const nxDoubleValueWrapper&)
    template <class Number>
    requires std::is_arithmetic_v<Number>
    friend constexpr bool operator==(const nxDoubleValueWrapper& a, Number b)
    {
        return _Compare(a._value, static_cast<double>(b)) == 0;
    }
    /// @copydoc operator<=>(const nxDoubleValueWrapper&, const nxDoubleValueWrapper&)
    template <class Number>
    requires std::is_arithmetic_v<Number>
    friend constexpr std::partial_ordering operator<=>(const nxDoubleValueWrapper& a, Number b)
    {
        return _Compare(a._value, static_cast<double>(b));
    }
    /// @copydoc operator==(const nxDoubleValueWrapper&, const nxDoubleValueWrapper&)
    template <class T, T NullMark, T NoChangeMark>
    friend constexpr bool operator==(const nxDoubleValueWrapper& a, const nxValueWrapper<T, NullMark, NoChangeMark>& b)
    {
        return a == static_cast<T>(b);
    }
    /// @copydoc operator<=>(const nxDoubleValueWrapper&, const nxDoubleValueWrapper&)
    template <class T, T NullMark, T NoChangeMark>
    friend constexpr std::partial_ordering operator<=>(const nxDoubleValueWrapper& a,
                                                       const nxValueWrapper<T, NullMark, NoChangeMark>& b)
    {
        return a <=> static_cast<T>(b);
    }

private:
    // Compares bits, because a compiler that may assume that there is no NaN would take NaN for a mark. Each mark has only
    // one pattern of bits.
    constexpr bool _Is(double mark) const
    {
        return std::bit_cast<std::uint64_t>(_value) == std::bit_cast<std::uint64_t>(mark);
    }

    static constexpr std::partial_ordering _Compare(double a, double b)
    {
        const double difference = nxDoubleHelper::Rounded(a - b);
        if (!nxDoubleHelper::IsFinite(difference)) [[unlikely]]
            return _CompareFar(a, b);
        if (-Tolerance < difference && difference < Tolerance)
            return std::partial_ordering::equivalent;
        return difference > 0 ? std::partial_ordering::greater : std::partial_ordering::less;
    }

    // The same when one of the two is infinite or NaN, or when the difference is too large.
    static constexpr std::partial_ordering _CompareFar(double a, double b)
    {
        const std::int64_t left = _Rank(a);
        const std::int64_t right = _Rank(b);
        // The difference of two equal infinities is NaN, so they are not equal within the tolerance; neither is larger.
        if (left == right || _IsNaN(left) || _IsNaN(right))
            return std::partial_ordering::unordered;
        return left < right ? std::partial_ordering::less : std::partial_ordering::greater;
    }
    // Maps doubles to integers with the same order.
    static constexpr std::int64_t _Rank(double number)
    {
        const auto bits = std::bit_cast<std::int64_t>(number);
        return bits < 0 ? INT64_MIN - bits : bits;
    }
    static constexpr bool _IsNaN(std::int64_t rank)
    {
        constexpr std::int64_t infinity = 0x7FF0000000000000;
        return rank > infinity || rank < -infinity;
    }

    static constexpr bool _Prefers(const nxDoubleValueWrapper& a, const nxDoubleValueWrapper& b, bool better)
    {
        return a.IsValid() && (!b.IsValid() || better || a == b);
    }

    nxErrorEnum _Take(double number);

    constexpr nxDoubleValueWrapper& _Assign(double value)
    {
        _value = nxDoubleHelper::Rounded(value);
        return *this;
    }

    double _value = NullValue;
};

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxDoubleValueWrapper& value);

#endif
