// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXDECIMAL_H
#define CORE_NUMERIC_NXDECIMAL_H

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/inline/nxDecimalArguments.h"
#include "core/numeric/inline/nxDecimalExact.h"
#include "core/numeric/inline/nxDecimalQuick.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/nxInitalizers.h"

class nxDoubleValueWrapper;
class nxPriceManipulator;
class nxSimpleAsciiStringWriter;
class nxValueStatusEnum;
template <class Writer>
class nxOStream;
template <std::integral T, T NullMark, T NoChangeMark>
class nxValueWrapper;

/// The fixed-point number in which every price, tick, rate and amount is held: a 64-bit mantissa, the number of decimal
/// places by which it is scaled, and a status.
///
/// - Value: mantissa / 10^places. 1.50 is (150, 2), 1.5 is (15, 1): equal numbers, different representations. Nothing
///   is normalised except by Normalise().
/// - Status: valid, null (no value) or no change ("leave the receiver's value as it is"). A value that is not valid has
///   mantissa 0 and places 0. Arithmetic with an operand that is not valid leaves the left operand as it is.
/// - Exactness: sums, differences and comparisons of one scale are exact integer operations. Across scales,
///   multiplication (unless both have 0 places) and division go through `double` and are rounded to the larger number
///   of places, a tie toward plus infinity. Round() is exact for every value and increment. No result depends on the
///   switches that a program is compiled with, -Ofast included, or on the direction of rounding of its threads.
/// - Money and input from outside: the operations whose names end in Exact round only where a method is given, never wrap,
///   and return an error for every result that does not fit. See "Exact operations".
/// - Limits: a result that does not fit 64 bits wraps modulo 2^64, silently; a place count beyond 255 wraps modulo 256.
///   Up to 18 places the power of ten fits; from 20 places on 10^places has itself wrapped modulo 2^64, from 64 places
///   on it is 0: the whole mantissa is then the fraction, and GetAsDouble() is infinite or NaN. No operation traps.
/// - Division by zero is not checked: the quotient, infinite or NaN, becomes mantissa 0 with 0 places and -2^63 with
///   more, and stays valid. Test the divisor.
/// - As a key: `==` and `<` across scales allow a tolerance of 2.2e-16 and are not transitive, so there is no
///   `std::hash<nxDecimal>`. Use ExactHash and ExactEqual for hash tables, and ExactLess for sorted containers.
/// - Errors: reading a text and the exact operations return theirs. Nothing throws but std::string when memory runs out.
/// - Threads: like an int. Readers may share one; a writer needs the caller's lock.
/// - Ownership: a trivially copyable value of 16 bytes that owns nothing. Pass it by value or by reference.
/// @code
/// nxDecimal price("99.87", '.');                                            // 9987 with 2 places
/// price.Round(nxDecimal("0.05", '.'), nxRoundingMethodEnum(NX_ROUNDING_METHOD_NEAREST));
/// std::string text = price.GetAsString('.');                                // "99.85"
/// @endcode
class NX_CORE_API nxDecimal
{
public:
    /// Bytes that the longest text needs, terminator included: a sign, 19 digits, the separator and 12 decimals.
    static constexpr std::size_t MaxTextSize = 34;
    /// The largest number of decimals that the texts show; Write() shows all.
    static constexpr unsigned char MaxTextPlaces = 12;
    /// The largest number of places of an exact result: 10^18 is the largest power of ten that a mantissa holds.
    static constexpr unsigned char MaxExactPlaces = 18;

    /// 0 with 0 places.
    constexpr nxDecimal() = default;
    /// No value.
    constexpr nxDecimal(nxNullInitalizer) : _number{0, _null} {}
    /// No change.
    constexpr nxDecimal(nxNoChangeInitalizer) : _number{0, _noChange} {}
    /// The whole number @p value shown with @p places zero decimals: (5, 2) is 5.00. Takes every integer type of up to 64
    /// bits; a number above 2^63 - 1 wraps.
    template <class Integer>
    requires nxDecimalArguments::IsWhole<Integer>
    constexpr nxDecimal(Integer value, unsigned char places);
    /// @p value rounded to @p places decimals, see SetFromDouble().
    template <std::floating_point Floating>
    nxDecimal(Floating value, unsigned char places);
    /// The quotient of the two numbers as doubles, rounded to @p places decimals: (1, 3, 2) is 0.33.
    nxDecimal(long long numerator, long long denominator, unsigned char places);
    /// The number that @p text spells, see SetFromString(); null when it spells none.
    nxDecimal(const std::string& text, char separator);
    /// The same; a null pointer is an empty text. No parameter of type `const char*`: a 0 is a number.
    template <std::convertible_to<const char*> Text>
    nxDecimal(Text text, char separator);
    /// Null, no change or the whole number of the wrapper; null when it does not fit with @p places zero decimals.
    template <class T, T NullMark, T NoChangeMark>
    explicit nxDecimal(const nxValueWrapper<T, NullMark, NoChangeMark>& value, unsigned char places);
    /// Null, no change or the number of the wrapper; null where SetFromDoubleExact() fails. No other type converts.
    template <std::same_as<nxDoubleValueWrapper> Wrapper>
    explicit nxDecimal(const Wrapper& value, unsigned char places);

    /// The number @p mantissa / 10^places: (5, 2) is 0.05.
    static constexpr nxDecimal ConstructFromValueAndDecimalPlaces(long long mantissa, unsigned char places);

    /// @name Arguments that would be cut silently do not compile
    /// @{

    /// No decimal is made of a character, a truth value, more than 64 bits, places with a fraction, or a text and places.
    template <class Value, class Places>
    requires nxDecimalArguments::AreMistaken<Value, Places> nxDecimal(Value value, Places places)
    = delete;
    /// Numerator and denominator are whole numbers.
    template <class Numerator, class Denominator, class Places>
    requires nxDecimalArguments::AreCut<Numerator, Denominator, Places> nxDecimal(Numerator, Denominator, Places)
    = delete;
    /// The mantissa is a whole number, and so is the number of places.
    template <class Mantissa, class Places>
    requires nxDecimalArguments::IsCut<Mantissa> || std::floating_point<Places>
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
    constexpr void SetNull() { *this = GetNullDecimal(); }                    ///< Number and places are forgotten.
    constexpr void SetNoChange() { *this = GetNoChangeDecimal(); }            ///< Number and places are forgotten.
    constexpr bool IsNull() const { return _number.scale == _null; }          ///< There is no number.
    constexpr bool IsNoChange() const { return _number.scale == _noChange; }  ///< The receiver keeps its number.
    constexpr bool IsValid() const { return _number.scale < _null; }          ///< There is a number.
    /// @return one of three constants that live as long as the process.
    const nxValueStatusEnum& GetStatus() const;
    /// @return whether the value is valid and 0.
    constexpr bool IsZero() const { return _number.mantissa == 0 && IsValid(); }
    constexpr bool IsPositive() const { return _number.mantissa > 0; }  ///< False unless valid.
    constexpr bool IsNegative() const { return _number.mantissa < 0; }  ///< False unless valid.
    constexpr long long GetValue() const { return _number.mantissa; }   ///< The mantissa; 0 unless valid.
    /// 0 unless valid.
    constexpr unsigned char GetDecimalPlaces() const { return static_cast<unsigned char>(_number.scale); }
    /// @return the number of places of a valid value, and otherwise a number above 255 for each status. One comparison
    ///         thus tells whether a value is valid and of a certain scale.
    constexpr std::uint64_t GetScale() const { return _number.scale; }
    /// The number without its fraction, truncated toward zero: -12 for -12.345.
    constexpr long long GetIntegerPart() const;
    /// The decimals as an integer in units of 10^-places, without sign: 345 for -12.345, 5 for 1.05.
    constexpr unsigned long long GetFractionalPart() const;
    /// @return this value if it is valid, and otherwise @p fallback.
    constexpr nxDecimal GetOr(const nxDecimal& fallback) const { return IsValid() ? *this : fallback; }
    /// Becomes @p request, null included; keeps its value when @p request is "no change".
    constexpr void UpdateFrom(const nxDecimal& request) { *this = request.IsNoChange() ? *this : request; }
    /// Puts the status into the value: null is (2^63 - 1, 0), no change (2^63 - 2, 0), a number (mantissa, places).
    /// A valid number with one of these two mantissas reads back as null or no change: GetMaximumDecimal() has one.
    constexpr void GetAsEncodedValues(long long& value, unsigned char& places) const;
    /// @copydoc GetAsEncodedValues(long long&, unsigned char&) const
    template <std::signed_integral Integer>
    requires(sizeof(Integer) == sizeof(long long)) constexpr void GetAsEncodedValues(Integer& value,
                                                                                     unsigned char& places) const;
    /// The same. @return NX_ERR_VALUE_OUT_OF_RANGE for a number that would read back as null or no change.
    [[nodiscard]] nxErrorEnum GetAsEncodedValuesExact(long long& value, unsigned char& places) const;
    /// Reads what GetAsEncodedValues() gave.
    constexpr void SetFromEncodedValues(const long long& value, const unsigned char& places);

    /// The mantissa as a double, divided by the power of ten as a double; 0.0 unless valid. That is the double nearest to
    /// the number up to 2^53 units and 19 places. Beyond 2^53 units two roundings may give a neighbour, and from 20 places
    /// on the power wraps, see the class. The quotient is rounded in the direction that the thread is set to.
    constexpr double GetAsDouble() const;
    /// Becomes @p value rounded to @p places decimals, valid in every case.
    /// The whole part and the fraction are taken apart, and the fraction, scaled as a double, is rounded to the nearest
    /// integer, a tie toward plus infinity: 1.25 at one place gives 1.3, -1.25 gives -1.2. A whole part or scaled
    /// fraction that no 64-bit integer can hold, NaN and the infinities included, counts as -2^63; the sum of the two
    /// wraps.
    void SetFromDouble(const double& value, unsigned char places);
    /// @}

    /// @name Changing the representation
    /// @{

    /// Makes @p places the number of decimal places: more places add zeros. Fewer cut decimals off, toward zero; with
    /// @p onlyDropZeros they remove trailing zeros alone and stop at the first other digit, so that no digit is lost.
    /// Nothing happens to a value that is not valid.
    void SetDecimalPlaces(const unsigned char& places, bool onlyDropZeros);
    /// Removes trailing zero decimals while there are more than @p minimumPlaces places: 12.340 with 0 gives 12.34.
    void Normalise(const unsigned char& minimumPlaces);

    /// Becomes a multiple of @p increment, with the increment's number of places.
    /// DOWN is the largest multiple not above the number and UP the smallest not below it, for negative numbers too.
    /// NEAREST takes the nearer multiple, a tie away from zero; MODIFIED_NEAREST a tie toward zero. The result is exact
    /// for every value and increment, whatever their scales; only a mantissa that does not fit 64 bits wraps. The
    /// increment's sign does not matter. Nothing happens when one of the two is not valid, when the increment is 0 or
    /// when @p method is none of the four.
    void Round(const nxDecimal& increment, const nxRoundingMethodEnum& method);
    /// Rounds to what @p manipulator holds: its variable tick table, or else its fixed tick increment.
    void Round(const nxPriceManipulator& manipulator, const nxRoundingMethodEnum& method);

    /// Negates a negative number. The most negative mantissa has no counterpart and stays.
    constexpr void Abs();
    /// @return @p value without its sign; one that is not valid as it is.
    static constexpr nxDecimal Abs(const nxDecimal& value);
    /// @return the negated copy of @p value, see InvertSign(); a value that is not valid as it is.
    static constexpr nxDecimal Negate(const nxDecimal& value);
    /// Negates the number. The most negative mantissa has no counterpart and stays.
    constexpr void InvertSign() { _Negate(); }
    /// Negates this object itself and returns it: after `y = -x` both are negated. Programs rely on it. A negated copy
    /// is made by Negate().
    constexpr nxDecimal& operator-();
    /// The smaller of the two; one that is not valid gives way to the other. A tie yields @p a.
    static nxDecimal GetMin(const nxDecimal& a, const nxDecimal& b);
    /// The larger of the two; one that is not valid gives way to the other. A tie yields @p a.
    static nxDecimal GetMax(const nxDecimal& a, const nxDecimal& b);
    /// @}

    /// @name Arithmetic
    /// The result has the larger of the two place counts.
    /// @{

    /// The exact sum where both have one scale, else that of the doubles. It wraps modulo 2^64.
    nxDecimal& operator+=(const nxDecimal& other);
    /// The exact difference where both have one scale, else that of the doubles. It wraps modulo 2^64.
    nxDecimal& operator-=(const nxDecimal& other);
    /// The exact integer product when both have 0 places; else that of the doubles: 1.5 * 1.5 is 2.3.
    nxDecimal& operator*=(const nxDecimal& other);
    /// The quotient of the doubles: 7 / 2 is 4. A divisor of 0 is not checked, see the class.
    nxDecimal& operator/=(const nxDecimal& other);
    friend nxDecimal operator+(nxDecimal left, const nxDecimal& right) { return left += right; }  ///< See operator+=.
    friend nxDecimal operator-(nxDecimal left, const nxDecimal& right) { return left -= right; }  ///< See operator-=.
    friend nxDecimal operator*(nxDecimal left, const nxDecimal& right) { return left *= right; }  ///< See operator*=.
    friend nxDecimal operator/(nxDecimal left, const nxDecimal& right) { return left /= right; }  ///< See operator/=.
    /// @return the sum that `+=` makes of the first valid value and those after it; 0 with 0 places when there is none.
    static nxDecimal GetSum(std::span<const nxDecimal> values);
    /// @}

    /// @name Exact operations
    /// They calculate with integers and lose nothing. On failure this object keeps its value. Results have at most
    /// MaxExactPlaces places. Each returns
    /// - NX_ERR_OBJECT_IS_NULL when this value or an operand is not valid, "no change" included;
    /// - NX_ERR_INVALID_PARAMETER for a divisor or an increment of 0, an undefined method, or NaN;
    /// - NX_ERR_VALUE_OUT_OF_RANGE when the result needs more than 64 bits or more places, or would lose a digit.
    /// The rounding methods are those of Round().
    /// @{
    [[nodiscard]] nxErrorEnum AddExact(const nxDecimal& other);       ///< The sum, at the larger scale.
    [[nodiscard]] nxErrorEnum SubtractExact(const nxDecimal& other);  ///< The difference, likewise.
    /// Becomes the sum of all values, at the largest scale among them; 0 with 0 places when there is none. Their order does not
    /// matter: only the sum has to fit. Values that are not valid count before all that does not fit.
    [[nodiscard]] nxErrorEnum SetFromSumExact(std::span<const nxDecimal> values);
    /// Multiplies: 1.5 * 1.5 is 2.25. The places add up; trailing zeros go while mantissa or places do not fit.
    [[nodiscard]] nxErrorEnum MultiplyExact(const nxDecimal& other);
    /// Becomes the exact product, rounded once to @p places decimals.
    [[nodiscard]] nxErrorEnum MultiplyExact(const nxDecimal& other, unsigned char places,
                                            const nxRoundingMethodEnum& method);
    /// Becomes the exact quotient, rounded once to @p places decimals.
    [[nodiscard]] nxErrorEnum DivideExact(const nxDecimal& divisor, unsigned char places,
                                          const nxRoundingMethodEnum& method);
    /// Makes @p places the number of decimal places; only zeros are cut off.
    [[nodiscard]] nxErrorEnum SetDecimalPlacesExact(unsigned char places);
    /// Becomes a multiple of @p increment, as Round() does.
    [[nodiscard]] nxErrorEnum RoundExact(const nxDecimal& increment, const nxRoundingMethodEnum& method);
    /// Becomes @p value rounded to @p places decimals, as SetFromDouble() does. An infinity does not fit.
    [[nodiscard]] nxErrorEnum SetFromDoubleExact(double value, unsigned char places);
    /// Gives a double from which SetFromDoubleExact() makes this number again, at the places it has without trailing zeros.
    /// Every number of up to 15 digits and MaxExactPlaces places has one.
    [[nodiscard]] nxErrorEnum GetAsDoubleExact(double& value) const;
    /// Gives the number as an integer; a fraction other than 0 does not fit.
    template <class Integer>
    requires nxDecimalArguments::IsWhole<Integer>
    [[nodiscard]] nxErrorEnum GetAsIntegerExact(Integer& value) const;
    /// @}

    /// @name Comparison
    /// Numbers of one scale compare exactly; across scales they are equal when their doubles differ by 2.2e-16 at most.
    /// Null equals null and no change equals no change; null is less than no change, and both are less than any number.
    /// @{

    /// Not transitive across scales; EqualsExactly() is.
    friend bool operator==(const nxDecimal& left, const nxDecimal& right) { return _IsEqual(left, right); }
    /// Sorts values of one scale; across scales the tolerance of `==` makes it no strict order.
    friend bool operator<(const nxDecimal& left, const nxDecimal& right) { return _IsBelow(left, right); }
    /// Neither equal within the tolerance nor less.
    friend bool operator>(const nxDecimal& left, const nxDecimal& right) { return _IsAbove(left, right); }
    /// Equal within the tolerance, or less.
    friend bool operator<=(const nxDecimal& left, const nxDecimal& right) { return _IsUpTo(left, right); }
    /// The opposite of `==`.
    friend bool operator!=(const nxDecimal& left, const nxDecimal& right) { return !(left == right); }
    /// The opposite of `<`.
    friend bool operator>=(const nxDecimal& left, const nxDecimal& right) { return !(left < right); }

    /// @return whether both are exactly the same number, or both null, or both no change. 1.50 and 1.5 are exactly
    ///         equal. Transitive, without tolerance.
    bool EqualsExactly(const nxDecimal& other) const;
    /// @return a hash that agrees with EqualsExactly().
    std::size_t GetExactHash() const;
    /// @return -1, 0 or 1 when this value is less than, exactly equal to or greater than @p other: a total order without
    ///         tolerance. Null is less than no change, and both are less than any number.
    int CompareExact(const nxDecimal& other) const;

    struct ExactHash;   ///< For hash tables, see GetExactHash().
    struct ExactEqual;  ///< For hash tables, see EqualsExactly().
    struct ExactLess;   ///< For sorting and sorted containers: `std::map<nxDecimal, Order, nxDecimal::ExactLess>`.
    /// @}

    /// @name Text
    /// The plain forms of a value that is not valid are empty, the log forms "NULL" and "NO_CHANGE". A number shows all
    /// its places, trailing zeros included, but never more than twelve: further decimals are cut off, not rounded. The
    /// trimmed forms show @p places decimals at most. The forms that fill a buffer terminate it with a NUL, use up to
    /// MaxTextSize bytes of it and return the length of the text.
    /// @{

    /// Reads an optional '-' or '+', then digits with at most one @p separator among them: ".5" and "5." are numbers.
    /// The number of digits after the separator becomes the number of places. There is no limit on digits: the
    /// mantissa wraps modulo 2^64 and the places modulo 256.
    /// @return NX_ERR_INVALID_PARAMETER for a text without a digit or with any other character; the object then keeps
    ///         its value.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text, char separator);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text, char separator);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromStringView(const char* text, char separator);
    /// The same for a text that need not be terminated.
    [[nodiscard]] nxErrorEnum SetFromStringView(std::string_view text, char separator);
    /// Reads what SetFromString() reads, and loses no digit.
    /// @return also NX_ERR_VALUE_OUT_OF_RANGE for a number beyond 64 bits or with more than MaxExactPlaces decimals.
    [[nodiscard]] nxErrorEnum SetFromStringExact(std::string_view text, char separator);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromStringExact(const char* text, char separator);

    /// What the plain and trimmed forms call: writes @p places decimals at most.
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

    /// @return the number with all its decimals, which reads back equal; an empty text unless valid.
    std::string GetAsExactString(char separator) const;
    void AppendAsExactString(std::string& text, char separator) const;  ///< Appends what GetAsExactString() returns.
    /// Writes the number with all its decimals, up to 255; nothing unless valid.
    void Write(nxOStream<nxSimpleAsciiStringWriter>& stream, char separator) const;
    /// @}

private:
    struct _FromParts
    {
    };
    constexpr nxDecimal(_FromParts, long long mantissa, unsigned char places) : _number{mantissa, places} {}

    // Places in the low byte, the status code in the byte above it: one compare tells whether two values are valid and
    // of one scale, and one store sets both.
    static constexpr std::uint64_t _null = 0x100;
    static constexpr std::uint64_t _noChange = 0x200;
    static constexpr long long _encodedNull = INT64_MAX;
    static constexpr long long _encodedNoChange = INT64_MAX - 1;
    constexpr bool _SharesScale(const nxDecimal& other) const;
    constexpr bool _AreValid(const nxDecimal& other) const { return (_number.scale | other._number.scale) < _null; }
    constexpr unsigned char _LargerScale(const nxDecimal& other) const;
    constexpr std::uint64_t _GetMagnitude() const { return nxDecimalQuick::GetMagnitude(_number.mantissa); }
    constexpr void _Negate();
    // SetFromDouble() in a thread that rounds to the nearest.
    void _SetFromNearest(double number, unsigned char places);
    // Integers that compare as the values do; false when the slow paths have to compare.
    static bool _AsIntegers(const nxDecimal& left, const nxDecimal& right, long long& a, long long& b);
    static bool _IsEqual(const nxDecimal& left, const nxDecimal& right);
    static bool _IsBelow(const nxDecimal& left, const nxDecimal& right);
    static bool _IsAbove(const nxDecimal& left, const nxDecimal& right);
    static bool _IsUpTo(const nxDecimal& left, const nxDecimal& right);
    // Everything beyond the quick paths, also for operands that are not valid. By value: what is in registers stays there.
    static nxDecimal _FromAnyDouble(double number, unsigned char places);
    static bool _ReadAnyString(std::string_view text, char separator, nxDecimal& value);
    static nxDecimal _RoundLarge(nxDecimal value, nxDecimal increment, unsigned method);
    static nxDecimal _AddDoubles(nxDecimal left, nxDecimal right);
    static nxDecimal _SubtractDoubles(nxDecimal left, nxDecimal right);
    static nxDecimal _MultiplyDoubles(nxDecimal left, nxDecimal right);
    static nxDecimal _DivideDoubles(nxDecimal left, nxDecimal right);
    static bool _AreEqual(nxDecimal left, nxDecimal right);
    static bool _IsLess(nxDecimal left, nxDecimal right);

    nxDecimalQuick::Number _number;
};

static_assert(sizeof(nxDecimal) == 16);

/// Writes the log form with '.' as separator.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxDecimal& value);

#include "core/numeric/inline/nxDecimalBodies.inc"

#endif
