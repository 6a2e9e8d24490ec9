#ifndef CORE_NUMERIC_NXDECIMAL_H
#define CORE_NUMERIC_NXDECIMAL_H

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/enum/inline/nxPlainInteger.h"
#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/inline/nxTextTraits.h"
#include "core/text/nxInitalizers.h"

class nxPriceManipulator;
class nxSimpleAsciiStringWriter;
class nxValueStatusEnum;
template <class Writer>
class nxOStream;

/// The fixed-point number in which every price, tick, rate and amount is held: a 64-bit mantissa, the number of decimal
/// places by which it is scaled, and a status.
///
/// - Value: mantissa / 10^places. 1.50 is (150, 2), 1.5 is (15, 1): equal numbers, different representations. Nothing
///   is normalised unless Normalise() is called.
/// - Status: valid, null (no value) or no change ("leave the receiver's value as it is"). A value that is not valid has
///   mantissa 0 and places 0. Arithmetic with an operand that is not valid leaves the left operand as it is.
/// - Exactness: sums, differences and comparisons of one scale are exact integer operations. Across scales,
///   multiplication (unless both have 0 places) and division go through `double` and are rounded to the larger number
///   of places, a tie toward plus infinity. Round() is exact for every value and increment. No result depends on the
///   switches that a program is compiled with, -Ofast included, nor on the direction of rounding of its threads.
/// - Limits: a result that does not fit 64 bits wraps modulo 2^64, silently; a place count beyond 255 wraps modulo 256.
///   Up to 18 places the power of ten fits; from 20 places on 10^places has itself wrapped modulo 2^64, from 64 places
///   on it is 0, the whole mantissa then is the fraction, and GetAsDouble() is infinite or NaN. No operation traps.
/// - Division by zero is not checked: the quotient, infinite or NaN, becomes mantissa 0 with 0 places and -2^63 with
///   more, and stays valid. Test the divisor.
/// - As a key: `==` and `<` across scales allow a tolerance of 2.2e-16 and are not transitive, so there is no
///   `std::hash<nxDecimal>`. Use ExactHash and ExactEqual for hash tables; sort only values of one scale.
/// - Errors: only reading a text can fail, and returns its error. Nothing throws but std::string when memory runs out.
/// - Threads: like an int. Readers may share one; a writer needs the caller's lock.
/// - Ownership: a trivially copyable value of 16 bytes that owns nothing. Pass it by value or by reference.
/// @code
/// nxDecimal price("99.87", '.');                                            // 9987 with 2 places
/// price.Round(nxDecimal("0.05", '.'), nxRoundingMethodEnum(NX_ROUNDING_METHOD_NEAREST));
/// std::string text = price.GetAsString('.');                                // "99.85"
/// @endcode
class NX_CORE_API nxDecimal
{
    // Integers that 64 bits hold. A character is one in name only, and so is a truth value.
    template <class Number>
    static constexpr bool _isWhole = nxPlainInteger<Number> && sizeof(Number) <= sizeof(long long) &&
                                     !std::same_as<Number, char> && !nxWideCharacter<Number>;
    // What converts to an integer and loses its fraction, its high bits or its state; constants of an enumeration do not.
    template <class Number>
    static constexpr bool _isCut =
        std::convertible_to<Number, long long> && !_isWhole<Number> && !std::is_enum_v<Number>;
    // A number that is no whole one and no floating one, places with a fraction, a text with anything but a separator.
    template <class Value, class Places>
    static constexpr bool _isMistaken = (std::integral<Value> && !_isWhole<Value>) || std::floating_point<Places> ||
                                        (std::convertible_to<Value, std::string> && !std::same_as<Places, char>);

public:
    /// Bytes that the longest text needs, terminator included: a sign, 19 digits, the separator and 12 decimals.
    static constexpr std::size_t MaxTextSize = 34;
    /// The largest number of decimals that the texts show; Write() shows all.
    static constexpr unsigned char MaxTextPlaces = 12;

    /// 0 with 0 places.
    constexpr nxDecimal() = default;
    /// No value.
    constexpr nxDecimal(nxNullInitalizer) : _format(_null) {}
    /// No change.
    constexpr nxDecimal(nxNoChangeInitalizer) : _format(_noChange) {}
    /// The whole number @p value shown with @p places zero decimals: (5, 2) is 5.00. Takes every integer type of up to 64
    /// bits; a number above 2^63 - 1 wraps.
    template <class Integer>
    requires _isWhole<Integer>
    constexpr nxDecimal(Integer value, unsigned char places)
        : _mantissa(_Wrapped(static_cast<std::uint64_t>(value) * nxPowersOfTen::GetInteger(places))), _format(places)
    {
    }
    /// @p value rounded to @p places decimals, see SetFromDouble().
    template <std::floating_point Floating>
    nxDecimal(Floating value, unsigned char places)
    {
        SetFromDouble(static_cast<double>(value), places);
    }
    /// The quotient of the two numbers as doubles, rounded to @p places decimals: (1, 3, 2) is 0.33.
    nxDecimal(long long numerator, long long denominator, unsigned char places);
    /// The number that @p text spells, see SetFromString(); null when it spells none.
    nxDecimal(const std::string& text, char separator);
    /// The same; a null pointer is an empty text. No parameter of type `const char*`: a 0 is a number.
    template <std::convertible_to<const char*> Text>
    nxDecimal(Text text, char separator) : nxDecimal(nxNullInitalizer{})
    {
        static_cast<void>(SetFromString(text, separator));
    }

    /// The number @p mantissa / 10^places: (5, 2) is 0.05.
    static constexpr nxDecimal ConstructFromValueAndDecimalPlaces(long long mantissa, unsigned char places)
    {
        return nxDecimal(_FromParts{}, mantissa, places);
    }

    /// @name What would be cut without a word does not compile
    /// @{

    /// No decimal is made of a character, a truth value, more than 64 bits, places with a fraction, or a text and places.
    template <class Value, class Places>
    requires _isMistaken<Value, Places> nxDecimal(Value value, Places places)
    = delete;
    /// Numerator and denominator are whole numbers.
    template <class Numerator, class Denominator, class Places>
    requires _isCut<Numerator> || _isCut<Denominator> || std::floating_point<Places> nxDecimal(Numerator numerator,
                                                                                               Denominator denominator,
                                                                                               Places places)
    = delete;
    /// The mantissa is a whole number, and so is the number of places.
    template <class Mantissa, class Places>
    requires _isCut<Mantissa> || std::floating_point<Places>
    static nxDecimal ConstructFromValueAndDecimalPlaces(Mantissa mantissa, Places places) = delete;
    /// @}

    /// No value.
    static constexpr nxDecimal GetNullDecimal() { return nxDecimal(nxNullInitalizer{}); }
    /// "Leave the receiver's value as it is."
    static constexpr nxDecimal GetNoChangeDecimal() { return nxDecimal(nxNoChangeInitalizer{}); }
    /// The largest decimal, 9223372036854775807 with 0 places.
    static constexpr nxDecimal GetMaximumDecimal() { return nxDecimal(_FromParts{}, INT64_MAX, 0); }

    /// @name State and access
    /// @{
    constexpr void SetNull() { *this = GetNullDecimal(); }              ///< Number and places are forgotten.
    constexpr void SetNoChange() { *this = GetNoChangeDecimal(); }      ///< Number and places are forgotten.
    constexpr bool IsNull() const { return _format == _null; }          ///< There is no number.
    constexpr bool IsNoChange() const { return _format == _noChange; }  ///< The receiver keeps its number.
    constexpr bool IsValid() const { return _format < _null; }          ///< There is a number.
    /// @return one of three constants that live as long as the process.
    const nxValueStatusEnum& GetStatus() const;

    /// @return whether the value is valid and 0.
    constexpr bool IsZero() const { return _mantissa == 0 && IsValid(); }
    constexpr bool IsPositive() const { return _mantissa > 0; }  ///< False unless valid.
    constexpr bool IsNegative() const { return _mantissa < 0; }  ///< False unless valid.

    constexpr long long GetValue() const { return _mantissa; }  ///< The mantissa; 0 unless valid.
    /// 0 unless valid.
    constexpr unsigned char GetDecimalPlaces() const { return static_cast<unsigned char>(_format); }
    /// @return the number of places of a valid value; above 255, one number for each status, otherwise. So one
    ///         comparison tells whether a value is valid and of a certain scale.
    constexpr std::uint64_t GetScale() const { return _format; }

    /// The number without its fraction, truncated toward zero: -12 for -12.345.
    constexpr long long GetIntegerPart() const
    {
        const std::uint64_t power = nxPowersOfTen::GetInteger(GetDecimalPlaces());
        const std::uint64_t magnitude = power == 0 ? 0 : _Magnitude() / power;
        return _Wrapped(_mantissa < 0 ? 0 - magnitude : magnitude);
    }
    /// The decimals as an integer in units of 10^-places, without sign: 345 for -12.345, 5 for 1.05.
    constexpr unsigned long long GetFractionalPart() const
    {
        const std::uint64_t power = nxPowersOfTen::GetInteger(GetDecimalPlaces());
        return power == 0 ? _Magnitude() : _Magnitude() % power;
    }

    /// Puts the status into the value: null is (2^63 - 1, 0), no change (2^63 - 2, 0), a number (mantissa, places).
    /// A valid number with one of these two mantissas cannot be told apart and reads back as null or no change; so
    /// never encode GetMaximumDecimal().
    constexpr void GetAsEncodedValues(long long& value, unsigned char& places) const
    {
        value = IsValid() ? _mantissa : (IsNull() ? _encodedNull : _encodedNoChange);
        places = GetDecimalPlaces();
    }
    /// @copydoc GetAsEncodedValues(long long&, unsigned char&) const
    template <std::signed_integral Integer>
    requires(sizeof(Integer) == sizeof(long long)) constexpr void GetAsEncodedValues(Integer& value,
                                                                                     unsigned char& places) const
    {
        long long encoded = 0;
        GetAsEncodedValues(encoded, places);
        value = encoded;
    }
    /// Reads what GetAsEncodedValues() gave.
    constexpr void SetFromEncodedValues(const long long& value, const unsigned char& places)
    {
        if (value == _encodedNull)
            SetNull();
        else if (value == _encodedNoChange)
            SetNoChange();
        else
            *this = ConstructFromValueAndDecimalPlaces(value, places);
    }

    /// The mantissa as a double, divided by the power of ten as a double; 0.0 unless valid. That is the double nearest to
    /// the number up to 2^53 units and 19 places. Beyond 2^53 units two roundings may give a neighbour, and from 20 places
    /// on the power has wrapped, see the class. The quotient is rounded in the direction that the thread is set to.
    constexpr double GetAsDouble() const
    {
        const double power = nxDoubleHelper::Rounded(nxPowersOfTen::GetDouble(GetDecimalPlaces()));
        return nxDoubleHelper::Rounded(static_cast<double>(_mantissa) / power);
    }
    /// Becomes @p value rounded to @p places decimals, valid in every case.
    ///
    /// The whole part and the fraction are taken apart, and the fraction, scaled as a double, is rounded to the nearest
    /// integer, a tie toward plus infinity: 1.25 at one place gives 1.3, -1.25 gives -1.2. A whole part or scaled
    /// fraction that no 64-bit integer can hold, NaN and the infinities included, counts as -2^63; the sum of the two
    /// wraps.
    void SetFromDouble(const double& value, unsigned char places)
    {
        const double number = nxDoubleHelper::Rounded(value);
        if (nxDoubleHelper::RoundsToNearest()) [[likely]]
            _SetFromNearest(number, places);
        else
            *this = _FromAnyDouble(number, places);
    }
    /// @}

    /// @name Changing the representation
    /// @{

    /// Makes @p places the number of decimal places: more places add zeros. Fewer cut decimals off, toward zero; with
    /// @p onlyDropZeros they remove trailing zeros alone and stop at the first other digit, so that no digit is lost.
    /// Nothing happens unless valid.
    void SetDecimalPlaces(const unsigned char& places, bool onlyDropZeros);
    /// Removes trailing zero decimals while there are more than @p minimumPlaces places: 12.340 with 0 gives 12.34.
    void Normalise(const unsigned char& minimumPlaces);

    /// Becomes a multiple of @p increment, with the increment's number of places.
    ///
    /// DOWN is the largest multiple not above the number and UP the smallest not below it, for negative numbers too.
    /// NEAREST takes the nearer multiple, a tie away from zero; MODIFIED_NEAREST a tie toward zero. The result is exact
    /// for every value and increment, whatever their scales; only a mantissa that does not fit 64 bits wraps. The
    /// increment's sign does not matter. Nothing happens when one of the two is not valid, when the increment is 0 or
    /// when @p method is none of the four.
    void Round(const nxDecimal& increment, const nxRoundingMethodEnum& method)
    {
        const nxDecimal step = increment;
        if (!_RoundSmall(step, method.GetValue()))
            *this = _RoundLarge(*this, step, method.GetValue());
    }
    /// Rounds to what @p manipulator holds: its variable tick table, or else its fixed tick increment.
    void Round(const nxPriceManipulator& manipulator, const nxRoundingMethodEnum& method);

    /// Negates a negative number. The most negative mantissa has no counterpart and stays.
    constexpr void Abs()
    {
        if (_mantissa < 0)
            _Negate();
    }
    /// @return @p value without its sign; one that is not valid as it is.
    static constexpr nxDecimal Abs(const nxDecimal& value)
    {
        nxDecimal result = value;
        result.Abs();
        return result;
    }
    /// Negates the number. The most negative mantissa has no counterpart and stays.
    constexpr void InvertSign() { _Negate(); }
    /// Negates this object itself and returns it: after `y = -x` both are negated. Programs rely on it. For a negated
    /// copy: `nxDecimal y = x; y.InvertSign();`.
    constexpr nxDecimal& operator-()
    {
        _Negate();
        return *this;
    }

    /// The smaller of the two; one that is not valid gives way to the other. A tie yields @p a.
    static nxDecimal GetMin(const nxDecimal& a, const nxDecimal& b)
    {
        if (!a.IsValid())
            return b;
        return b.IsValid() && b < a ? b : a;
    }
    /// The larger of the two; one that is not valid gives way to the other. A tie yields @p a.
    static nxDecimal GetMax(const nxDecimal& a, const nxDecimal& b)
    {
        if (!a.IsValid())
            return b;
        return b.IsValid() && a < b ? b : a;
    }
    /// @}

    /// @name Arithmetic
    /// The result has the larger of the two place counts.
    /// @{

    /// The exact sum where both have one scale, else that of the doubles. It wraps modulo 2^64.
    nxDecimal& operator+=(const nxDecimal& other)
    {
        long long left, right;
        if (_SharesScale(other)) [[likely]]
            _mantissa = _Sum(_mantissa, other._mantissa);
        else if (_AreSmall(*this, other, left, right))
            *this = nxDecimal(_FromParts{}, left + right, _LargerFormat(other));
        else
            *this = _AddDoubles(*this, other);
        return *this;
    }
    /// The exact difference where both have one scale, else that of the doubles. It wraps modulo 2^64.
    nxDecimal& operator-=(const nxDecimal& other)
    {
        long long left, right;
        if (_SharesScale(other)) [[likely]]
            _mantissa = _Difference(_mantissa, other._mantissa);
        else if (_AreSmall(*this, other, left, right))
            *this = nxDecimal(_FromParts{}, left - right, _LargerFormat(other));
        else
            *this = _SubtractDoubles(*this, other);
        return *this;
    }
    /// The exact integer product when both have 0 places; else that of the doubles: 1.5 * 1.5 is 2.3.
    nxDecimal& operator*=(const nxDecimal& other)
    {
        if ((_format | other._format) == 0)
            _mantissa = _Wrapped(static_cast<std::uint64_t>(_mantissa) * static_cast<std::uint64_t>(other._mantissa));
        else if (_AreValid(other)) [[likely]]
        {
            if (nxDoubleHelper::RoundsToNearest()) [[likely]]
                _SetFromNearest(nxDoubleHelper::Rounded(_AsDouble() * other._AsDouble()), _LargerFormat(other));
            else
                *this = _MultiplyDoubles(*this, other);
        }
        return *this;
    }
    /// The quotient of the doubles: 7 / 2 is 4. A divisor of 0 is not checked, see the class.
    nxDecimal& operator/=(const nxDecimal& other)
    {
        if (_AreValid(other)) [[likely]]
        {
            if (nxDoubleHelper::RoundsToNearest()) [[likely]]
                _SetFromNearest(nxDoubleHelper::Rounded(_AsDouble() / other._AsDouble()), _LargerFormat(other));
            else
                *this = _DivideDoubles(*this, other);
        }
        return *this;
    }
    friend nxDecimal operator+(nxDecimal left, const nxDecimal& right) { return left += right; }  ///< See operator+=.
    friend nxDecimal operator-(nxDecimal left, const nxDecimal& right) { return left -= right; }  ///< See operator-=.
    friend nxDecimal operator*(nxDecimal left, const nxDecimal& right) { return left *= right; }  ///< See operator*=.
    friend nxDecimal operator/(nxDecimal left, const nxDecimal& right) { return left /= right; }  ///< See operator/=.
    /// @}

    /// @name Comparison
    /// Numbers of one scale compare exactly; across scales they are equal when their doubles differ by 2.2e-16 at most.
    /// Null equals null and no change equals no change; null is less than no change, and both are less than any number.
    /// @{

    /// Not transitive across scales; EqualsExactly() is.
    friend bool operator==(const nxDecimal& left, const nxDecimal& right)
    {
        long long a, b;
        if (left._SharesScale(right)) [[likely]]
            return left._mantissa == right._mantissa;
        if (_AreSmall(left, right, a, b))
            return a == b;
        return _AreEqual(left, right);
    }
    /// Sorts values of one scale; across scales the tolerance of `==` makes it no strict order.
    friend bool operator<(const nxDecimal& left, const nxDecimal& right)
    {
        long long a, b;
        if (left._SharesScale(right)) [[likely]]
            return left._mantissa < right._mantissa;
        if (_AreSmall(left, right, a, b))
            return a < b;
        return _IsLess(left, right);
    }
    /// Neither equal within the tolerance nor less.
    friend bool operator>(const nxDecimal& left, const nxDecimal& right)
    {
        long long a, b;
        if (left._SharesScale(right)) [[likely]]
            return left._mantissa > right._mantissa;
        if (_AreSmall(left, right, a, b))
            return a > b;
        return !_AreEqual(left, right) && !_IsLess(left, right);
    }
    /// Equal within the tolerance, or less.
    friend bool operator<=(const nxDecimal& left, const nxDecimal& right)
    {
        long long a, b;
        if (left._SharesScale(right)) [[likely]]
            return left._mantissa <= right._mantissa;
        if (_AreSmall(left, right, a, b))
            return a <= b;
        return _AreEqual(left, right) || _IsLess(left, right);
    }
    /// The opposite of `==`.
    friend bool operator!=(const nxDecimal& left, const nxDecimal& right) { return !(left == right); }
    /// The opposite of `<`.
    friend bool operator>=(const nxDecimal& left, const nxDecimal& right) { return !(left < right); }

    /// @return whether both stand for exactly the same number, or both are null, or both are no change. 1.50 and 1.5
    ///         are exactly equal. Transitive, without tolerance.
    bool EqualsExactly(const nxDecimal& other) const;
    /// @return a hash that agrees with EqualsExactly().
    std::size_t GetExactHash() const;

    /// For hash tables: `std::unordered_map<nxDecimal, Order, nxDecimal::ExactHash, nxDecimal::ExactEqual>`.
    struct ExactHash
    {
        /// See GetExactHash().
        std::size_t operator()(const nxDecimal& value) const { return value.GetExactHash(); }
    };
    /// @copydoc ExactHash
    struct ExactEqual
    {
        /// See EqualsExactly().
        bool operator()(const nxDecimal& left, const nxDecimal& right) const { return left.EqualsExactly(right); }
    };
    /// @}

    /// @name Text
    /// The plain forms of a value that is not valid are empty, the log forms "NULL" and "NO_CHANGE". A number shows all
    /// its places, trailing zeros included, but never more than twelve: further decimals are cut off, not rounded. The
    /// trimmed forms show @p places decimals at most. The forms that fill a buffer terminate it with a NUL, use up to
    /// MaxTextSize bytes of it and return the length of the text.
    /// @{

    /// Reads an optional '-' or '+', then digits with at most one @p separator among them: ".5" and "5." are numbers.
    /// The number of digits behind the separator becomes the number of places. There is no limit on digits: the
    /// mantissa wraps modulo 2^64 and the places modulo 256.
    /// @return NX_ERR_INVALID_PARAMETER for a text without a digit or with any other character; the object then keeps
    ///         its value.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text, char separator)
    {
        return SetFromStringView(text, separator);
    }
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text, char separator)
    {
        return SetFromStringView(text, separator);
    }
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromStringView(const char* text, char separator)
    {
        return SetFromStringView(text != nullptr ? std::string_view(text) : std::string_view(), separator);
    }
    /// The same for a text that need not be terminated.
    [[nodiscard]] nxErrorEnum SetFromStringView(std::string_view text, char separator)
    {
        if (_SetFromShortString(text, separator)) [[likely]]
            return nxErrorEnum();
        nxDecimal read;  // so that this object may stay in registers
        if (!_ReadAnyString(text, separator, read))
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        *this = read;
        return nxErrorEnum();
    }

    /// The worker behind the plain and trimmed forms: writes @p places decimals at most.
    std::size_t _GetAsString(char* buffer, char separator, const unsigned char& places) const;
    /// Fills @p buffer, MaxTextSize bytes, with the plain form; @return its length without the NUL.
    std::size_t GetAsString(char* buffer, char separator) const;
    void GetAsString(std::string& text, char separator) const;     ///< Replaces @p text.
    std::string GetAsString(char separator) const;                 ///< @return the plain form.
    void AppendAsString(std::string& text, char separator) const;  ///< Appends the plain form.
    /// @return the plain form with @p places decimals at most, the others cut off.
    std::string GetAsTrimmedString(const unsigned char& places, char separator) const;

    /// Fills @p buffer, MaxTextSize bytes, with the log form; @return its length without the NUL.
    std::size_t GetAsLogString(char* buffer, char separator) const;
    void GetAsLogString(std::string& text, char separator) const;     ///< Replaces @p text.
    std::string GetAsLogString(char separator) const;                 ///< @return the log form.
    void AppendAsLogString(std::string& text, char separator) const;  ///< Appends the log form.
    /// @return the log form with @p places decimals at most, the others cut off.
    std::string GetAsTrimmedLogString(const unsigned char& places, char separator) const;

    /// Writes the number with all its decimals, up to 255; nothing unless valid.
    void Write(nxOStream<nxSimpleAsciiStringWriter>& stream, char separator) const;
    /// @}

private:
    struct _FromParts
    {
    };
    constexpr nxDecimal(_FromParts, long long mantissa, unsigned char places) : _mantissa(mantissa), _format(places) {}

    // Places in the low byte, the status code in the byte above it: one compare tells whether two values are valid and
    // of one scale, and one store sets both.
    static constexpr std::uint64_t _null = 0x100;
    static constexpr std::uint64_t _noChange = 0x200;
    static constexpr long long _encodedNull = INT64_MAX;
    static constexpr long long _encodedNoChange = INT64_MAX - 1;

    constexpr bool _SharesScale(const nxDecimal& other) const { return _format == other._format && _format < _null; }
    constexpr bool _AreValid(const nxDecimal& other) const { return (_format | other._format) < _null; }
    constexpr unsigned char _LargerFormat(const nxDecimal& other) const
    {
        return static_cast<unsigned char>(std::max(_format, other._format));
    }

    // Integer arithmetic modulo 2^64.
    static constexpr long long _Wrapped(std::uint64_t value) { return static_cast<long long>(value); }
    static constexpr long long _Sum(long long a, long long b)
    {
        return _Wrapped(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
    }
    static constexpr long long _Difference(long long a, long long b)
    {
        return _Wrapped(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
    }
    constexpr std::uint64_t _Magnitude() const
    {
        const auto bits = static_cast<std::uint64_t>(_mantissa);
        return _mantissa < 0 ? 0 - bits : bits;
    }
    constexpr void _Negate() { _mantissa = _Difference(0, _mantissa); }

    // SetFromDouble() for every double and place count. Like the other functions behind the quick paths it takes and
    // returns values, so that an object in registers stays there.
    static nxDecimal _FromAnyDouble(double number, unsigned char places);

    // GetAsDouble() of a value that is known to be valid, which saves cutting off the status.
    double _AsDouble() const
    {
        if (!IsValid())
            __builtin_unreachable();
        return GetAsDouble();
    }

    // SetFromDouble() in a thread that rounds to the nearest.
    void _SetFromNearest(double number, unsigned char places)
    {
        // Then the scaled fraction is below 10^15, which is what _Nearest() takes.
        const long long whole = nxDoubleHelper::ToInteger(number);
        if (places <= 15 && whole != nxDoubleHelper::TooLarge) [[likely]]
        {
            const double fraction = nxDoubleHelper::Rounded(number - static_cast<double>(whole));
            const std::uint64_t nearest = _Nearest(fraction * nxPowersOfTen::GetDouble(places));
            _mantissa = _Wrapped(static_cast<std::uint64_t>(whole) * nxPowersOfTen::GetInteger(places) + nearest);
            _format = places;
        }
        else
            *this = _FromAnyDouble(number, places);
    }

    // The integer nearest to `scaled`, of less than 2^51 in magnitude; a tie goes toward plus infinity.
    //
    // In the sum with 1.5 * 2^52 there is no room for a fraction: the addition rounds to the nearest integer, a tie to
    // even, and the integer stands in the low bits of the sum. Where it rounded a tie down, one is added. The result is
    // that of floor(), and of ceil() when the fraction is 0.5 or more, for less than the price of a conversion.
    static std::uint64_t _Nearest(double scaled)
    {
        constexpr double shift = 6755399441055744.0;
        const double number = nxDoubleHelper::Rounded(scaled);
        const double sum = nxDoubleHelper::Rounded(number + shift);
        const double nearest = nxDoubleHelper::Rounded(sum - shift);
        return std::bit_cast<std::uint64_t>(sum) - std::bit_cast<std::uint64_t>(shift) +
               (number - nearest >= 0.5 ? 1 : 0);
    }

    // Reads up to eight characters, digits with at most one separator among them, as one word. False, with nothing
    // done, for every other text and for what is no number.
    bool _SetFromShortString(std::string_view text, char separator)
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
        _mantissa = _Wrapped(nxDigits::Gather(word));
        _format = places;
        return true;
    }
    // SetFromStringView() for every text; false, with nothing done, for what is no number.
    static bool _ReadAnyString(std::string_view text, char separator, nxDecimal& value);

    // How far a mantissa may be scaled up and still stay below 2^49 units.
    static constexpr unsigned _maxSmallPlaces = 15;
    struct _Scaling
    {
        long long power;
        std::uint64_t limit;
    };
    struct _Scalings
    {
        _Scaling by[_maxSmallPlaces + 1];
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

    // Scales two valid values of at most 15 places to the larger of their place counts, if both then stay below 2^49
    // units in magnitude. For such values the integers give exactly what the doubles would.
    //
    // Let A and B be the numbers in units of 10^-P, P <= 15 the larger place count, and u = 2^-53 the relative error of
    // one rounding.
    // - Sum and difference S = A +- B: the mantissas and 10^P are exact doubles, so each conversion is one correctly
    //   rounded division, off by at most 2^49 u units. The sum of the doubles adds a rounding of at most 2^50 u units.
    //   Taking off the whole part is exact, and scaling the fraction, which is below |S| + 1 units, adds 2^50 u once
    //   more. The scaled fraction thus is off by less than (1 + 1 + 2 + 2) 2^49 u = 3/8 of a unit (terms of u^2 do not
    //   reach the remaining 1/8), and rounding it to the nearest integer gives the exact one. A whole part taken one too
    //   low, because the sum fell short of an integer, comes back with the fraction, which then rounds up to 10^P.
    // - Comparison: equal numbers are the same real number, which both divisions round to the same double. Unequal ones
    //   are at least one unit apart, so their doubles differ by at least 1 - 2 * 2^49 u = 7/8 of a unit, 8.75e-16 or
    //   more: beyond the tolerance, and in the right order.
    static bool _AreSmall(const nxDecimal& a, const nxDecimal& b, long long& left, long long& right)
    {
        const std::uint64_t places = std::max(a._format, b._format);
        if (places > _maxSmallPlaces)
            return false;
        const _Scaling& scaleA = _scalings.by[places - a._format];
        const _Scaling& scaleB = _scalings.by[places - b._format];
        if (!_IsWithin(a._mantissa, scaleA.limit) || !_IsWithin(b._mantissa, scaleB.limit))
            return false;
        left = a._mantissa * scaleA.power;
        right = b._mantissa * scaleB.power;
        return true;
    }
    static constexpr bool _IsWithin(long long value, std::uint64_t limit)
    {
        return static_cast<std::uint64_t>(value) + limit <= 2 * limit;
    }

    // Rounding. With the magnitude taken in whole steps and a rest, the multiple above is due when the rest exceeds a
    // threshold that the method sets; the threshold of `step` itself is never exceeded.
    static constexpr std::uint64_t _Threshold(unsigned method, bool negative, std::uint64_t step)
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
    // The class of the methods accepts nothing above its last one; what is below them means undefined or no change.
    static constexpr bool _IsMethod(unsigned method) { return method >= NX_ROUNDING_METHOD_DOWN; }
    // False, with nothing done, unless both are valid and small, the step is not 0 and the method is known.
    bool _RoundSmall(const nxDecimal& increment, unsigned method)
    {
        long long value, signedStep;
        if (increment._mantissa == 0 || !_IsMethod(method) || !_AreSmall(*this, increment, value, signedStep))
            return false;
        const bool negative = value < 0;
        const auto magnitude = static_cast<std::uint64_t>(negative ? -value : value);
        const auto step = static_cast<std::uint64_t>(signedStep < 0 ? -signedStep : signedStep);
        const std::uint64_t steps = magnitude / step;
        const std::uint64_t rest = magnitude - steps * step;
        const std::uint64_t rounded =
            (steps + (rest > _Threshold(method, negative, step) ? 1 : 0)) * increment._Magnitude();
        _mantissa = _Wrapped(negative ? 0 - rounded : rounded);
        _format = increment._format;
        return true;
    }
    static nxDecimal _RoundLarge(nxDecimal value, nxDecimal increment, unsigned method);

    // Everything beyond the quick paths; operands that are not valid included.
    static nxDecimal _AddDoubles(nxDecimal left, nxDecimal right);
    static nxDecimal _SubtractDoubles(nxDecimal left, nxDecimal right);
    static nxDecimal _MultiplyDoubles(nxDecimal left, nxDecimal right);
    static nxDecimal _DivideDoubles(nxDecimal left, nxDecimal right);
    static bool _AreEqual(nxDecimal left, nxDecimal right);
    static bool _IsLess(nxDecimal left, nxDecimal right);

    long long _mantissa = 0;
    std::uint64_t _format = 0;
};

static_assert(sizeof(nxDecimal) == 16);

/// Writes the log form with '.' as separator.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxDecimal& value);

#endif
