#ifndef CORE_TEXT_NXVALUEWRAPPER_H
#define CORE_TEXT_NXVALUEWRAPPER_H

#include <compare>
#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxValueStatusEnum.h"
#include "core/text/nxInitalizers.h"
#include "core/text/nxStringHelper.h"

/// An integer that can also be null (no value) or no change (keep what the receiver holds): volumes, user identifiers,
/// tick counts, buffer sizes.
///
/// - Two values of T serve as the marks, by default the two largest: `nxValueWrapper<unsigned int>` has 4294967295 for
///   null and 4294967294 for no change, `nxValueWrapper<int>` 2147483647 and 2147483646.
/// - Nothing but the state operations, GetMax(), GetMin() and the text forms looks at the marks. The wrapper converts
///   to its plain T, marks included, and calculates and compares with that. Test IsValid() first.
/// - Arithmetic with integers is done in T and wraps silently; dividing by zero gives the null mark.
/// - Unlike nxDoubleValueWrapper's, the tag constructors are straight: nxNullInitalizer makes null.
/// - Errors: only SetFromString() fails, and leaves null behind.
/// - Threads: like a T. Ownership: a value of T's size that owns nothing.
/// @code
/// nxValueWrapper<unsigned int> volume;   // null
/// if (volume.SetFromString("300").IsOK())
///     volume += 50;                      // 350
/// volume.SetNoChange();
/// volume.GetAsLogString();               // "NO_CHANGE"
/// @endcode
/// @tparam T an integer type.
/// @tparam NullMark, NoChangeMark the values of T that stand for null and for no change.
template <std::integral T, T NullMark = std::numeric_limits<T>::max(), T NoChangeMark = NullMark - 1>
class nxValueWrapper
{
    static_assert(NullMark != NoChangeMark);
    // Two's complement without overflow: calculated unsigned, and no narrower than the language calculates anyway.
    using Unsigned = std::common_type_t<std::make_unsigned_t<T>, unsigned>;
    template <class Other>
    static constexpr bool _IsOperand = std::integral<Other> || std::same_as<Other, nxValueWrapper>;

public:
    static constexpr T NullValue = NullMark;          ///< The number that stands for null.
    static constexpr T NoChangeValue = NoChangeMark;  ///< The number that stands for no change.

    constexpr nxValueWrapper() = default;                                              ///< Null.
    constexpr explicit nxValueWrapper(nxNullInitalizer) {}                             ///< Null.
    constexpr explicit nxValueWrapper(nxNoChangeInitalizer) : _value(NoChangeMark) {}  ///< No change.
    /// Holds the number as given; a mark makes a null or no-change wrapper.
    constexpr nxValueWrapper(T value) : _value(value) {}

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

    /// The number as it stands, marks included.
    constexpr operator T() const { return _value; }

    constexpr nxValueWrapper& operator+=(T value) { return *this = *this + value; }  ///< Ignores the state.
    constexpr nxValueWrapper& operator-=(T value) { return *this = *this - value; }  ///< Ignores the state.
    constexpr nxValueWrapper& operator*=(T value) { return *this = *this * value; }  ///< Ignores the state.
    constexpr nxValueWrapper& operator/=(T value) { return *this = *this / value; }  ///< By zero gives null.

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
    /// @return NX_ERR_INVALID_PARAMETER when the text is none; the wrapper is then null.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text)
    {
        nxErrorEnum error = nxStringHelper::SetFromString(text, _value);
        if (!error.IsOK())
            SetNull();
        return error;
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
    /// Compares the numbers themselves, whatever their types: an unsigned wrapper is never equal to -1.
    template <std::integral Number>
    friend constexpr bool operator==(const nxValueWrapper& a, Number b)
    {
        return std::cmp_equal(+a._value, +b);
    }
    /// Orders the numbers themselves, whatever their types.
    template <std::integral Number>
    friend constexpr std::strong_ordering operator<=>(const nxValueWrapper& a, Number b)
    {
        if (std::cmp_less(+a._value, +b))
            return std::strong_ordering::less;
        return std::cmp_equal(+a._value, +b) ? std::strong_ordering::equal : std::strong_ordering::greater;
    }

    /// Calculates in T and wraps silently.
    template <class Other>
    requires _IsOperand<Other>
    friend constexpr T operator+(const nxValueWrapper& a, Other b)
    {
        return static_cast<T>(static_cast<Unsigned>(a._value) + static_cast<Unsigned>(static_cast<T>(b)));
    }
    /// @copydoc operator+(const nxValueWrapper&, Other)
    template <class Other>
    requires _IsOperand<Other>
    friend constexpr T operator-(const nxValueWrapper& a, Other b)
    {
        return static_cast<T>(static_cast<Unsigned>(a._value) - static_cast<Unsigned>(static_cast<T>(b)));
    }
    /// @copydoc operator+(const nxValueWrapper&, Other)
    template <class Other>
    requires _IsOperand<Other>
    friend constexpr T operator*(const nxValueWrapper& a, Other b)
    {
        return static_cast<T>(static_cast<Unsigned>(a._value) * static_cast<Unsigned>(static_cast<T>(b)));
    }
    /// Calculates in T; the quotient is cut toward zero, and by zero it is the null mark.
    template <class Other>
    requires _IsOperand<Other>
    friend constexpr T operator/(const nxValueWrapper& a, Other b)
    {
        const T divisor = static_cast<T>(b);
        if (divisor == 0)
            return NullMark;
        if constexpr (std::is_signed_v<T>)
        {
            // The most negative number has no positive counterpart: it wraps to itself.
            if (divisor == -1)
                return static_cast<T>(0 - static_cast<Unsigned>(a._value));
        }
        return static_cast<T>(a._value / divisor);
    }
    /// @copydoc operator+(const nxValueWrapper&, Other)
    template <std::integral Number>
    friend constexpr T operator+(Number a, const nxValueWrapper& b)
    {
        return nxValueWrapper(static_cast<T>(a)) + b;
    }
    /// @copydoc operator+(const nxValueWrapper&, Other)
    template <std::integral Number>
    friend constexpr T operator-(Number a, const nxValueWrapper& b)
    {
        return nxValueWrapper(static_cast<T>(a)) - b;
    }
    /// @copydoc operator+(const nxValueWrapper&, Other)
    template <std::integral Number>
    friend constexpr T operator*(Number a, const nxValueWrapper& b)
    {
        return nxValueWrapper(static_cast<T>(a)) * b;
    }
    /// @copydoc operator/(const nxValueWrapper&, Other)
    template <std::integral Number>
    friend constexpr T operator/(Number a, const nxValueWrapper& b)
    {
        return nxValueWrapper(static_cast<T>(a)) / b;
    }

private:
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
