// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXVALUEWRAPPER_H
#define CORE_TEXT_NXVALUEWRAPPER_H

#include <compare>
#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxValueStatusEnum.h"
#include "core/text/inline/nxIntegerArithmetic.h"
#include "core/text/nxInitalizers.h"
#include "core/text/nxStringHelper.h"

template <std::integral T, T NullMark = std::numeric_limits<T>::max(), T NoChangeMark = NullMark - 1>
class nxValueWrapper;

/// Whether @p Type is a wrapper of an integer.
template <class Type>
inline constexpr bool nxIsValueWrapper = false;
/// Every wrapper is one.
template <class T, T NullMark, T NoChangeMark>
inline constexpr bool nxIsValueWrapper<nxValueWrapper<T, NullMark, NoChangeMark>> = true;

/// An integer that can also be null (no value) or no change (keep what the receiver holds): volumes, user identifiers,
/// tick counts, buffer sizes.
///
/// - Two values of T serve as the marks, by default the two largest: `nxValueWrapper<unsigned int>` has 4294967295 for
///   null and 4294967294 for no change, `nxValueWrapper<int>` 2147483647 and 2147483646.
/// - Only the state operations, GetMax(), GetMin(), the text forms and the conversion to another wrapper look at the
///   marks. The wrapper converts to its plain T, marks included, and calculates and compares with that: null
///   plus 1 is 0, `if (wrapper)` is true for null. Test IsValid() first.
/// - Construction and assignment from another integer type turn a number that T cannot hold into null; a number of T
///   itself is taken unchanged, marks included. A conversion that would lose a fraction does not compile.
/// - Arithmetic is done in the wider of the two types and gives a plain number of that type. If both are equally wide,
///   it is done in the wrapper's type (of two wrappers, in that of the left one). It wraps silently; dividing by zero
///   gives the null mark.
/// - A compound operator is its plain one with an assignment: `v += x` is `v = v + x`. With an operand as wide as T or
///   narrower it wraps; with a wider one a result that T cannot hold makes the wrapper null.
/// - Unlike those of nxDoubleValueWrapper, the tag constructors do what they say: nxNullInitalizer makes null.
/// - Errors: SetFromString() makes the wrapper null when it fails. The operations with the suffix `Exact` refuse what the
///   wrapper cannot hold, the marks included, and leave it as it was: use them for numbers from outside.
/// - Threads: like a T. Ownership: a value of T's size that owns nothing.
/// @code
/// nxValueWrapper<unsigned int> volume;                           // null
/// if (volume.SetFromStringExact("300").IsOK() && volume.AddExact(50).IsOK())
///     book.SetVolume(volume.GetValueOr(0));                      // 350
/// volume.UpdateFrom(nxValueWrapper<unsigned>::GetNoChangeInstance());  // still 350
/// @endcode
/// @tparam T an integer type except bool. With one of 8 bits everything except SetFromString() compiles.
/// @tparam NullMark, NoChangeMark the values of T that mean null and no change.
template <std::integral T, T NullMark, T NoChangeMark>
class nxValueWrapper
{
    static_assert(NullMark != NoChangeMark);
    template <class Other>
    static constexpr bool _IsNumber = std::integral<Other> || (std::is_enum_v<Other> && std::convertible_to<Other, T>);
    template <class Other>
    static constexpr bool _IsOperand = _IsNumber<Other> || nxIsValueWrapper<Other>;
    // Classes that convert to a number which T always holds: not to a floating or a wider one.
    template <class Other>
    static constexpr bool _StandsForNumber = std::is_class_v<Other>&& requires(const Other& other)
    {
        T{other};
    };

public:
    static constexpr T NullValue = NullMark;          ///< The number that means null.
    static constexpr T NoChangeValue = NoChangeMark;  ///< The number that means no change.

    constexpr nxValueWrapper() = default;                                              ///< Null.
    constexpr explicit nxValueWrapper(nxNullInitalizer) {}                             ///< Null.
    constexpr explicit nxValueWrapper(nxNoChangeInitalizer) : _value(NoChangeMark) {}  ///< No change.
    /// Holds the number, or null when it has another type and T cannot hold it. A mark makes a null or no-change wrapper.
    template <class Number>
    requires _IsNumber<Number>
    constexpr nxValueWrapper(Number number) : _value(nxIntegerArithmetic::ConvertOr(_Plain(number), NullMark)) {}
    /// Holds the number to which an object of another class converts.
    template <class Other>
    requires(_StandsForNumber<Other> && !nxIsValueWrapper<Other>) constexpr explicit nxValueWrapper(const Other& other)
        : _value{other}
    {
    }
    /// Null, no change or the number of @p other; null when T cannot hold that number.
    template <class U, U Null, U NoChange>
    constexpr explicit nxValueWrapper(const nxValueWrapper<U, Null, NoChange>& other)
        : _value(other.IsNull()       ? NullMark
                 : other.IsNoChange() ? NoChangeMark
                                      : nxIntegerArithmetic::ConvertOr(_Plain(other), NullMark))
    {
    }

    /// A null wrapper.
    static constexpr nxValueWrapper GetNullInstance() { return nxValueWrapper(NullMark); }
    /// A no-change wrapper.
    static constexpr nxValueWrapper GetNoChangeInstance() { return nxValueWrapper(NoChangeMark); }

    constexpr void SetNull() { _value = NullMark; }                        ///< The number is forgotten.
    constexpr void SetNoChange() { _value = NoChangeMark; }                ///< The number is forgotten.
    constexpr bool IsNull() const { return _value == NullMark; }           ///< There is no number.
    constexpr bool IsNoChange() const { return _value == NoChangeMark; }   ///< The receiver keeps its number.
    constexpr bool IsValid() const { return !IsNull() && !IsNoChange(); }  ///< There is a number.
    /// @return NX_VALUE_STATUS_NO_CHANGE, NX_VALUE_STATUS_NULL or NX_VALUE_STATUS_VALID.
    nxValueStatusEnum GetStatus() const
    {
        if (IsNoChange())
            return nxValueStatusEnum(NX_VALUE_STATUS_NO_CHANGE);
        return nxValueStatusEnum(IsNull() ? NX_VALUE_STATUS_NULL : NX_VALUE_STATUS_VALID);
    }

    /// The number itself, marks included.
    constexpr operator T() const { return _value; }

    /// @return the number when there is one, else @p fallback.
    constexpr T GetValueOr(T fallback) const { return IsValid() ? _value : fallback; }
    /// Takes over the null or the number of an update request; a no-change request changes nothing.
    constexpr void UpdateFrom(const nxValueWrapper& request)
    {
        if (!request.IsNoChange())
            _value = request._value;
    }

    /// Adds an integer, or a wrapper's number, of any type.
    /// @return NX_ERR_OBJECT_IS_NULL when one of the two is not valid; NX_ERR_VALUE_OUT_OF_RANGE when the result does not
    ///         fit T or is a mark; the wrapper is then unchanged.
    template <class Number>
    requires _IsOperand<Number>
    [[nodiscard]] nxErrorEnum AddExact(Number other)
    {
        return _Calculate(other, [](T a, auto b, T& sum) { return __builtin_add_overflow(a, b, &sum); });
    }
    /// Subtracts. @copydetails AddExact
    template <class Number>
    requires _IsOperand<Number>
    [[nodiscard]] nxErrorEnum SubtractExact(Number other)
    {
        return _Calculate(other, [](T a, auto b, T& difference) { return __builtin_sub_overflow(a, b, &difference); });
    }
    /// Multiplies. @copydetails AddExact
    template <class Number>
    requires _IsOperand<Number>
    [[nodiscard]] nxErrorEnum MultiplyExact(Number other)
    {
        return _Calculate(other, [](T a, auto b, T& product) { return __builtin_mul_overflow(a, b, &product); });
    }

    /// Ignores the state: `v = v + b`.
    template <class Number>
    requires(_IsOperand<Number> || _StandsForNumber<Number>) constexpr nxValueWrapper& operator+=(const Number& b)
    {
        return *this = *this + b;
    }
    /// Ignores the state: `v = v - b`.
    template <class Number>
    requires(_IsOperand<Number> || _StandsForNumber<Number>) constexpr nxValueWrapper& operator-=(const Number& b)
    {
        return *this = *this - b;
    }
    /// Ignores the state: `v = v * b`.
    template <class Number>
    requires(_IsOperand<Number> || _StandsForNumber<Number>) constexpr nxValueWrapper& operator*=(const Number& b)
    {
        return *this = *this * b;
    }
    /// Ignores the state: `v = v / b`; by zero gives null.
    template <class Number>
    requires(_IsOperand<Number> || _StandsForNumber<Number>) constexpr nxValueWrapper& operator/=(const Number& b)
    {
        return *this = *this / b;
    }

    /// @return the larger of two values; when one is not valid, the other one.
    static constexpr nxValueWrapper GetMax(const nxValueWrapper& a, const nxValueWrapper& b)
    {
        return a.IsValid() && (!b.IsValid() || a._value >= b._value) ? a : b;
    }
    /// @return the smaller of two values; when one is not valid, the other one.
    static constexpr nxValueWrapper GetMin(const nxValueWrapper& a, const nxValueWrapper& b)
    {
        return a.IsValid() && (!b.IsValid() || a._value <= b._value) ? a : b;
    }

    /// Reads an integer by nxStringHelper's rule for T, which wraps a number that is too large.
    /// @return NX_ERR_INVALID_PARAMETER when the text is not a number; the wrapper is then null.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text)
    {
        nxErrorEnum error = nxStringHelper::SetFromString(text, _value);
        if (!error.IsOK())
            SetNull();
        return error;
    }
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text)
    {
        return SetFromString(nxStringHelper::GetAsString(text));
    }
    /// Reads an integer by nxStringHelper's rule.
    /// @return NX_ERR_INVALID_PARAMETER when the text is not a number; NX_ERR_VALUE_OUT_OF_RANGE for a number that T cannot
    ///         hold or that is a mark; the wrapper is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromStringExact(std::string_view text)
    {
        T number{};
        const nxErrorEnum error = nxStringHelper::SetFromStringExact(text, number);
        return error.IsOK() ? _Take(number) : error;
    }
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromStringExact(const char* text)
    {
        return SetFromStringExact(text != nullptr ? std::string_view(text) : std::string_view());
    }
    /// @return the number; an empty text for null and no change.
    std::string GetAsString() const { return IsValid() ? nxStringHelper::GetAsString(_value) : std::string(); }
    /// Appends the number; nothing for null and no change.
    void AppendAsString(std::string& out) const
    {
        if (IsValid())
            out.append(nxStringHelper::GetAsString(_value));
    }
    /// Appends the log form.
    void AppendAsLogString(std::string& out) const
    {
        if (IsValid())
            out.append(nxStringHelper::GetAsString(_value));
        else
            out.append(IsNull() ? "NULL" : "NO_CHANGE");
    }
    /// @return the number, "NULL" or "NO_CHANGE".
    std::string GetAsLogString() const
    {
        std::string text;
        AppendAsLogString(text);
        return text;
    }

    /// Compares the numbers themselves, marks included: null equals null.
    friend constexpr bool operator==(const nxValueWrapper&, const nxValueWrapper&) = default;
    /// Orders the numbers themselves, marks included: null is the largest by default, no change the one below.
    friend constexpr auto operator<=>(const nxValueWrapper&, const nxValueWrapper&) = default;
    /// Compares the numbers themselves, whatever their types, marks included: an unsigned wrapper is never equal to -1.
    template <class Number>
    requires _IsOperand<Number>
    friend constexpr bool operator==(const nxValueWrapper& a, Number b)
    {
        return std::cmp_equal(+a._value, +_Plain(b));
    }
    /// Orders the numbers themselves, whatever their types, marks included.
    template <class Number>
    requires _IsOperand<Number>
    friend constexpr std::strong_ordering operator<=>(const nxValueWrapper& a, Number b)
    {
        if (std::cmp_less(+a._value, +_Plain(b)))
            return std::strong_ordering::less;
        return a == b ? std::strong_ordering::equal : std::strong_ordering::greater;
    }
    /// Compares exactly: no integer equals 0.5, and a 64-bit integer is not rounded to the nearest double first.
    template <std::floating_point Number>
    friend constexpr bool operator==(const nxValueWrapper& a, Number b)
    {
        return (a <=> b) == 0;
    }
    /// Orders exactly; unordered for NaN.
    template <std::floating_point Number>
    friend constexpr std::partial_ordering operator<=>(const nxValueWrapper& a, Number b)
    {
        return nxIntegerArithmetic::Compare(a._value, static_cast<std::common_type_t<Number, double>>(b));
    }

    /// Calculates in the wider type, see the class; wraps silently.
    template <class Number>
    requires _IsOperand<Number>
    friend constexpr auto operator+(const nxValueWrapper& a, Number b)
    {
        using Result = _Wider<decltype(_Plain(b))>;
        return static_cast<Result>(_Unsigned<Result>(a._value) + _Unsigned<Result>(_Plain(b)));
    }
    /// @copydoc operator+(const nxValueWrapper&, Number)
    template <class Number>
    requires _IsOperand<Number>
    friend constexpr auto operator-(const nxValueWrapper& a, Number b)
    {
        using Result = _Wider<decltype(_Plain(b))>;
        return static_cast<Result>(_Unsigned<Result>(a._value) - _Unsigned<Result>(_Plain(b)));
    }
    /// @copydoc operator+(const nxValueWrapper&, Number)
    template <class Number>
    requires _IsOperand<Number>
    friend constexpr auto operator*(const nxValueWrapper& a, Number b)
    {
        using Result = _Wider<decltype(_Plain(b))>;
        return static_cast<Result>(_Unsigned<Result>(a._value) * _Unsigned<Result>(_Plain(b)));
    }
    /// Calculates in the wider type, see the class; the quotient is truncated toward zero. Dividing by zero gives the null mark.
    template <class Number>
    requires _IsOperand<Number>
    friend constexpr auto operator/(const nxValueWrapper& a, Number b)
    {
        using Result = _Wider<decltype(_Plain(b))>;
        return _Quotient(static_cast<Result>(a._value), static_cast<Result>(_Plain(b)));
    }
    /// @copydoc operator+(const nxValueWrapper&, Number)
    template <class Number>
    requires _IsNumber<Number>
    friend constexpr auto operator+(Number a, const nxValueWrapper& b) { return b + a; }
    /// @copydoc operator+(const nxValueWrapper&, Number)
    template <class Number>
    requires _IsNumber<Number>
    friend constexpr auto operator-(Number a, const nxValueWrapper& b)
    {
        using Result = _Wider<decltype(_Plain(a))>;
        return static_cast<Result>(_Unsigned<Result>(_Plain(a)) - _Unsigned<Result>(b._value));
    }
    /// @copydoc operator+(const nxValueWrapper&, Number)
    template <class Number>
    requires _IsNumber<Number>
    friend constexpr auto operator*(Number a, const nxValueWrapper& b) { return b * a; }
    /// @copydoc operator/(const nxValueWrapper&, Number)
    template <class Number>
    requires _IsNumber<Number>
    friend constexpr auto operator/(Number a, const nxValueWrapper& b)
    {
        using Result = _Wider<decltype(_Plain(a))>;
        return _Quotient(static_cast<Result>(_Plain(a)), static_cast<Result>(b._value));
    }

private:
    template <class Number>
    using _Wider = std::conditional_t<(sizeof(Number) > sizeof(T)), Number, T>;

    nxErrorEnum _Take(T number)
    {
        if (!nxValueWrapper(number).IsValid())
            return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
        _value = number;
        return nxErrorEnum();
    }

    // The operation says whether its result overflows.
    template <class Number, class Operation>
    nxErrorEnum _Calculate(const Number& other, Operation overflows)
    {
        bool areValid = IsValid();
        if constexpr (nxIsValueWrapper<Number>)
            areValid = areValid && other.IsValid();
        if (!areValid)
            return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
        T result{};
        return overflows(_value, +_Plain(other), result) ? nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE) : _Take(result);
    }

    // The integer in an operand.
    template <class Number>
    static constexpr auto _Plain(Number number)
    {
        if constexpr (nxIsValueWrapper<Number>)
            return static_cast<std::remove_const_t<decltype(Number::NullValue)>>(number);
        else if constexpr (std::is_enum_v<Number>)
            return static_cast<std::underlying_type_t<Number>>(number);
        else
            return number;
    }

    template <class Result, class Number>
    static constexpr auto _Unsigned(Number number)
    {
        return nxIntegerArithmetic::ToUnsigned<Result>(number);
    }
    template <class Result>
    static constexpr Result _Quotient(Result a, Result b)
    {
        return nxIntegerArithmetic::Divide(a, b, static_cast<Result>(NullMark));
    }

    T _value = NullMark;
};

/// Writes the log form.
template <class T, T NullMark, T NoChangeMark>
std::ostream& operator<<(std::ostream& stream, const nxValueWrapper<T, NullMark, NoChangeMark>& value)
{
    return stream << value.GetAsLogString();
}

/// Wrappers can be keys of unordered containers.
template <class T, T NullMark, T NoChangeMark>
struct std::hash<nxValueWrapper<T, NullMark, NoChangeMark>>
{
    /// Of the number itself, marks included; agrees with `==`.
    std::size_t operator()(const nxValueWrapper<T, NullMark, NoChangeMark>& value) const noexcept
    {
        return std::hash<T>()(static_cast<T>(value));
    }
};

#endif
