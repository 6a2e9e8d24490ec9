// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXSTRINGHELPER_H
#define CORE_TEXT_NXSTRINGHELPER_H

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/inline/nxIntegerText.h"
#include "core/text/inline/nxTextTargets.h"
#include "core/text/inline/nxTextTraits.h"

/// Converts between text and the library's value types, and edits strings in place: the library's one set of rules for
/// numeric text, used for configuration, command lines, files and log lines alike.
///
/// - Static operations only; no instances, no state. No operation consults a locale: letters are the 26 of ASCII,
///   other bytes are left alone and belong to no class.
/// - Errors: only reading fails. SetFromString() fails only with NX_ERR_INVALID_PARAMETER; the target is then untouched,
///   except a `bool`, which is set to false, and an enumeration, which becomes undefined when the text belongs to another
///   class. Only the allocation of a string can throw; a null `const char*` is read as an empty text.
/// - Reading is strict: no blanks are skipped, a '+' is accepted for decimals and money only, and the whole text must
///   be used.
/// - SetFromString() of an integer does NOT check the range: a number too large for the target wraps modulo 2 to the
///   number of its bits ("70000" into an `unsigned short` gives 4464). Use SetFromStringExact() for text from outside: it
///   reads every type, reports NX_ERR_VALUE_OUT_OF_RANGE for what the target does not hold, and never changes the target
///   when it fails.
/// - Threads: any thread, on strings of its own.
/// - Doubles, decimals, ratios, money, dates and times belong to layers above this class. They are declared here and
///   defined there, in core/numeric and core/time.
/// @code
/// unsigned volume = 0;
/// if (nxStringHelper::SetFromStringExact(field, volume).IsOK())
///     nxStringHelper::AppendAsString(line, volume);
/// double price = 0;
/// const bool read = nxStringHelper::SetFromString("1,5", price, ',').IsOK();  // true, 1.5
/// nxStringHelper::GetAsString(0.1 + 0.2);                                     // "0.3"
/// nxStringHelper::GetAsExactString(0.1 + 0.2);                                // "0.30000000000000004"
/// @endcode
class NX_CORE_API nxStringHelper
{
public:
    nxStringHelper() = delete;

    // ---------------------------------------------------------------- text to value

    /// Reads exactly "TRUE" or "FALSE".
    /// @return NX_ERR_INVALID_PARAMETER for any other text; @p value is then false.
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, bool& value);

    /// Reads digits, for signed types after an optional '-'. Wraps: see the class.
    /// @return NX_ERR_INVALID_PARAMETER for an empty text, "-" alone and any other character; @p value is then
    ///         untouched.
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, short& value)
    {
        return _ReadInteger(text, value);
    }
    /// @copydoc SetFromString(const std::string&, short&)
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, unsigned short& value)
    {
        return _ReadInteger(text, value);
    }
    /// @copydoc SetFromString(const std::string&, short&)
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, int& value)
    {
        return _ReadInteger(text, value);
    }
    /// @copydoc SetFromString(const std::string&, short&)
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, unsigned int& value)
    {
        return _ReadInteger(text, value);
    }
    /// @copydoc SetFromString(const std::string&, short&)
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, long& value)
    {
        return _ReadInteger(text, value);
    }
    /// @copydoc SetFromString(const std::string&, short&)
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, unsigned long& value)
    {
        return _ReadInteger(text, value);
    }
    /// @copydoc SetFromString(const std::string&, short&)
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, long long& value)
    {
        return _ReadInteger(text, value);
    }
    /// @copydoc SetFromString(const std::string&, short&)
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, unsigned long long& value)
    {
        return _ReadInteger(text, value);
    }

    /// Reads an optional '-', digits, and at most one @p separator before, between or after the digits; no exponent.
    /// With up to 15 digits the result is the double nearest to the number; with more it may differ by some units in the
    /// last place. From about 309 digits on, leading zeros not counted, the digits alone are infinite, and so is the power
    /// of ten from 309 decimals on: the result then is infinite, 0 or not a number.
    /// @return NX_ERR_INVALID_PARAMETER for any other text; @p value is then untouched.
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, double& value, char separator)
    {
        return _ReadDouble(text, value, separator) ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }

    /// Copies the text; always succeeds.
    static nxErrorEnum SetFromString(const std::string& text, std::string& value);
    /// Reads eight digits yyyymmdd; see nxDate::SetFromString().
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxDate& value);
    /// Reads a time of day; see nxTime::SetFromString().
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxTime& value);
    /// Reads a span such as "P1DT12H"; see nxDateTimeSpan::SetFromString().
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxDateTimeSpan& value);
    /// Reads a decimal; see nxDecimal::SetFromString().
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxDecimal& value, char separator);
    /// Reads an amount and a currency; see nxMoney::SetFromString().
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxMoney& value, char separator);
    /// Reads three capital letters; see nxCurrency::SetFromString().
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxCurrency& value);
    /// Reads a quotient such as "3/2"; see nxRatio::SetFromString(), which also fails with NX_ERR_VALUE_OUT_OF_RANGE.
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxRatio& value);
    /// Reads a short description (identifier) of any enumeration.
    /// @return NX_ERR_INVALID_PARAMETER when no value has that text (@p value is untouched) or when the value belongs
    ///         to another class (@p value is then undefined, as nxEnum's own setter leaves it).
    [[nodiscard]] static nxErrorEnum SetFromString(const std::string& text, nxEnum& value);

    /// Copies the text; always succeeds.
    static nxErrorEnum SetFromString(const char* text, std::string& value)
    {
        return SetFromString(GetAsString(text), value);
    }
    /// Reads any of the types above; a null pointer is an empty text.
    template <class Value, std::same_as<char>... Separator>
    requires requires(const std::string& text, Value& value, Separator... separator)
    {
        nxStringHelper::SetFromString(text, value, separator...);
    }
    [[nodiscard]] static nxErrorEnum SetFromString(const char* text, Value& value, Separator... separator)
    {
        return SetFromString(GetAsString(text), value, separator...);
    }

    /// Reads digits from a text that need not be terminated; otherwise as SetFromString() into an `unsigned int`.
    [[nodiscard]] static nxErrorEnum SetFromStringView(const std::string_view& text, unsigned int& value)
    {
        return _ReadInteger(text, value);
    }
    /// The same; a null pointer is an empty text.
    [[nodiscard]] static nxErrorEnum SetFromStringView(const char* text, unsigned int& value)
    {
        return _ReadInteger(text != nullptr ? std::string_view(text) : std::string_view(), value);
    }

    // ---------------------------------------------------------------- text to value, exactly

    /// Reads an integer as SetFromString() does, if the type can hold it. A `char` is a number from -128 to 127.
    /// @return NX_ERR_INVALID_PARAMETER for a text that is no integer, NX_ERR_VALUE_OUT_OF_RANGE for one beyond the type;
    ///         @p value is then untouched.
    template <nxTextInteger Integer>
    [[nodiscard]] static nxErrorEnum SetFromStringExact(std::string_view text, Integer& value)
    {
        return nxIntegerText::ReadExact(text, value);
    }
    /// Reads exactly "TRUE" or "FALSE".
    /// @return NX_ERR_INVALID_PARAMETER for any other text; @p value is then untouched.
    [[nodiscard]] static nxErrorEnum SetFromStringExact(std::string_view text, bool& value);
    /// Reads the form that SetFromString() reads as the nearest double, however many digits there are. It must keep
    /// the digits: printed with as many significant digits it gives the same number. Up to 15 digits always survive; of
    /// "9007199254740993" the nearest double is another integer. Every GetAsExactString() of a finite number is read back.
    /// The separator is neither a digit nor '-'.
    /// @return NX_ERR_INVALID_PARAMETER for any other text, or a wrong separator; NX_ERR_VALUE_OUT_OF_RANGE for a number
    ///         that is too large, or so small or long that digits are lost; @p value is then untouched.
    [[nodiscard]] static nxErrorEnum SetFromStringExact(std::string_view text, double& value, char separator);
    /// Reads a short description (identifier) of @p value's enumeration class.
    /// @return NX_ERR_INVALID_PARAMETER for any other text; @p value is then untouched.
    [[nodiscard]] static nxErrorEnum SetFromStringExact(std::string_view text, nxEnum& value);
    /// Reads a type that has an exact reader of its own, such as the wrappers.
    template <class Value, std::same_as<char>... Separator>
    requires requires(std::string_view text, Value& value, Separator... separator)
    {
        value.SetFromStringExact(text, separator...);
    }
    [[nodiscard]] static nxErrorEnum SetFromStringExact(std::string_view text, Value& value, Separator... separator)
    {
        return value.SetFromStringExact(text, separator...);
    }
    /// Reads a type whose SetFromString() loses nothing.
    template <class Value>
    requires std::same_as<Value, nxDate> || std::same_as<Value, nxTime> || std::same_as<Value, nxDateTimeSpan> ||
        std::same_as<Value, nxCurrency> || std::same_as<Value, nxRatio> || std::same_as<Value, std::string>
    [[nodiscard]] static nxErrorEnum SetFromStringExact(std::string_view text, Value& value)
    {
        return SetFromString(std::string(text), value);
    }
    /// Reads any of the types above; a null pointer is an empty text.
    template <class Value, std::same_as<char>... Separator>
    requires requires(std::string_view text, Value& value, Separator... separator)
    {
        nxStringHelper::SetFromStringExact(text, value, separator...);
    }
    [[nodiscard]] static nxErrorEnum SetFromStringExact(const char* text, Value& value, Separator... separator)
    {
        return SetFromStringExact(text != nullptr ? std::string_view(text) : std::string_view(), value, separator...);
    }

    // ---------------------------------------------------------------- value to text

    /// Appends the character's NUMBER in decimal: 'A' gives "65". A `char` is signed: byte 0xFF gives "-1".
    static void AppendAsString(std::string& out, char value)
    {
        nxIntegerText::Append(out, static_cast<signed char>(value));
    }
    /// Appends the character's number in decimal, 0 to 255.
    static void AppendAsString(std::string& out, unsigned char value) { nxIntegerText::Append(out, value); }
    /// Appends the number in plain decimal, with '-' when it is negative.
    static void AppendAsString(std::string& out, short value) { nxIntegerText::Append(out, value); }
    /// @copydoc AppendAsString(std::string&, short)
    static void AppendAsString(std::string& out, unsigned short value) { nxIntegerText::Append(out, value); }
    /// @copydoc AppendAsString(std::string&, short)
    static void AppendAsString(std::string& out, int value) { nxIntegerText::Append(out, value); }
    /// @copydoc AppendAsString(std::string&, short)
    static void AppendAsString(std::string& out, unsigned int value) { nxIntegerText::Append(out, value); }
    /// Deleted, because the width of `long` depends on the platform: convert to `long long`.
    static void AppendAsString(std::string& out, long value) = delete;
    /// @copydoc AppendAsString(std::string&, short)
    static void AppendAsString(std::string& out, unsigned long value) { nxIntegerText::Append(out, value); }
    /// @copydoc AppendAsString(std::string&, short)
    static void AppendAsString(std::string& out, long long value) { nxIntegerText::Append(out, value); }
    /// @copydoc AppendAsString(std::string&, short)
    static void AppendAsString(std::string& out, unsigned long long value) { nxIntegerText::Append(out, value); }
    /// Appends "TRUE" or "FALSE".
    static void AppendAsString(std::string& out, bool value) { out.append(value ? "TRUE" : "FALSE"); }
    /// As for a double with nine decimals.
    static void AppendAsString(std::string& out, float value) { AppendAsString(out, static_cast<double>(value), 9); }
    /// As for a double with nine decimals.
    static void AppendAsString(std::string& out, double value) { AppendAsString(out, value, 9); }
    /// Appends the number rounded to at most @p decimals decimals (9 when it is more), trailing zeros and a trailing
    /// point left out: 2.5 with nine decimals is "2.5", 3.0 is "3". A negative number that rounds to zero is "-0".
    ///
    /// Magnitudes above 2147483647, infinities and NaN come in the form of the C format "%e" ("2.147484e+09", "inf").
    /// An exact half is rounded away from zero where the last digit kept is odd or all decimals kept are zero, else
    /// toward zero; without decimals, to the even number (0.5 is "0", 1.5 is "2").
    static void AppendAsString(std::string& out, double value, unsigned int decimals);
    /// Appends the shortest plain decimal, without an exponent, that SetFromStringExact() reads as @p value: at most 327
    /// characters. NaN and the infinities have none; they give "nan", "inf" and "-inf", which no operation reads.
    static void AppendAsExactString(std::string& out, double value) { out.append(GetAsExactString(value)); }
    /// Appends the text; nothing for a null pointer.
    static void AppendAsString(std::string& out, const char* value);
    /// Appends the text.
    static void AppendAsString(std::string& out, const std::string& value) { out.append(value); }
    /// Appends the decimal with "." as separator, nothing unless it is valid; see nxDecimal::GetAsString().
    static void AppendAsString(std::string& out, const nxDecimal& value);
    /// Appends three letters, nothing for null.
    static void AppendAsString(std::string& out, const nxCurrency& value);
    /// Appends "3/2", nothing for null; see nxRatio::GetAsString().
    static void AppendAsString(std::string& out, const nxRatio& value);
    /// Appends eight digits yyyymmdd, nothing for null.
    static void AppendAsString(std::string& out, const nxDate& value);
    /// Appends "HH:MM:SS", nothing for null; see nxTime::GetAsString().
    static void AppendAsString(std::string& out, const nxTime& value);
    /// Appends "05 Mar 2024 09:07:03", nothing for null; see nxDateTime::GetAsString().
    static void AppendAsString(std::string& out, const nxDateTime& value);
    /// Appends "P1DT12H", nothing for null; see nxDateTimeSpan::GetAsString().
    static void AppendAsString(std::string& out, const nxDateTimeSpan& value);
    /// Appends the short description.
    static void AppendAsString(std::string& out, const nxEnum& value);
    /// Appends the number, nothing for null and no change.
    static void AppendAsString(std::string& out, const nxDoubleValueWrapper& value);
    /// Appends the number, nothing for null and no change.
    template <class T, T NullMark, T NoChangeMark>
    static void AppendAsString(std::string& out, const nxValueWrapper<T, NullMark, NoChangeMark>& value)
    {
        value.AppendAsString(out);
    }
    /// Deleted, because a pointer to anything but `char` is not a text, and would otherwise convert to bool.
    template <nxPointer Pointer>
    requires(!std::convertible_to<Pointer, const char*>) static void AppendAsString(std::string& out,
                                                                                    Pointer value) = delete;

    /// @return the character's NUMBER in decimal: 'A' gives "65", byte 0xFF gives "-1".
    static std::string GetAsString(char value) { return nxIntegerText::Get(static_cast<signed char>(value)); }
    /// @return the character's number in decimal, 0 to 255.
    static std::string GetAsString(unsigned char value) { return nxIntegerText::Get(value); }
    /// @return the number in plain decimal, with '-' when it is negative.
    static std::string GetAsString(short value) { return nxIntegerText::Get(value); }
    /// @copydoc GetAsString(short)
    static std::string GetAsString(unsigned short value) { return nxIntegerText::Get(value); }
    /// @copydoc GetAsString(short)
    static std::string GetAsString(int value) { return nxIntegerText::Get(value); }
    /// @copydoc GetAsString(short)
    static std::string GetAsString(unsigned int value) { return nxIntegerText::Get(value); }
    /// @copydoc GetAsString(short)
    static std::string GetAsString(long value) { return nxIntegerText::Get(value); }
    /// @copydoc GetAsString(short)
    static std::string GetAsString(unsigned long value) { return nxIntegerText::Get(value); }
    /// @copydoc GetAsString(short)
    static std::string GetAsString(long long value) { return nxIntegerText::Get(value); }
    /// @copydoc GetAsString(short)
    static std::string GetAsString(unsigned long long value) { return nxIntegerText::Get(value); }
    /// @return "TRUE" or "FALSE".
    static std::string GetAsString(bool value) { return value ? "TRUE" : "FALSE"; }
    /// @return the text that AppendAsString() appends for a double with nine decimals.
    static std::string GetAsString(float value) { return GetAsString(static_cast<double>(value), 9); }
    /// @return the text that AppendAsString() appends for a double with nine decimals.
    static std::string GetAsString(double value) { return GetAsString(value, 9); }
    /// @return the text that AppendAsString() appends for a double.
    static std::string GetAsString(double value, unsigned int decimals);
    /// @return the text that AppendAsExactString() appends.
    static std::string GetAsExactString(double value);
    /// Deleted, because a double does not hold every integer. GetAsString() prints integers exactly.
    template <std::integral Integer>
    static std::string GetAsExactString(Integer) = delete;
    /// @return a copy; empty for a null pointer.
    static std::string GetAsString(const char* value);
    /// @return a copy.
    static std::string GetAsString(const std::string& value) { return value; }
    /// @return the decimal with "." as separator, empty unless it is valid; see nxDecimal::GetAsString().
    static std::string GetAsString(const nxDecimal& value);
    /// @return three letters, empty for null.
    static std::string GetAsString(const nxCurrency& value);
    /// @return "3/2", empty for null; see nxRatio::GetAsString().
    static std::string GetAsString(const nxRatio& value);
    /// @return eight digits yyyymmdd, empty for null.
    static std::string GetAsString(const nxDate& value);
    /// @return "HH:MM:SS", empty for null; see nxTime::GetAsString().
    static std::string GetAsString(const nxTime& value);
    /// @return "05 Mar 2024 09:07:03", empty for null; see nxDateTime::GetAsString().
    static std::string GetAsString(const nxDateTime& value);
    /// @return "P1DT12H", empty for null; see nxDateTimeSpan::GetAsString().
    static std::string GetAsString(const nxDateTimeSpan& value);
    /// @return the short description.
    static std::string GetAsString(const nxEnum& value);
    /// @return the number, empty for null and no change.
    static std::string GetAsString(const nxDoubleValueWrapper& value);
    /// @return the number, empty for null and no change.
    template <class T, T NullMark, T NoChangeMark>
    static std::string GetAsString(const nxValueWrapper<T, NullMark, NoChangeMark>& value)
    {
        return value.GetAsString();
    }
    /// Deleted, because a pointer to anything but `char` is not a text, and would otherwise convert to bool.
    template <nxPointer Pointer>
    requires(!std::convertible_to<Pointer, const char*>) static std::string GetAsString(Pointer value) = delete;

    // ---------------------------------------------------------------- editing and queries

    /// Inserts copies of @p fill at the front until @p s has @p width characters; a longer text stays as it is.
    static void PadLeft(std::string& s, const unsigned int& width, const char& fill);
    /// Appends copies of @p fill until @p s has @p width characters; a longer text stays as it is.
    static void PadRight(std::string& s, const unsigned int& width, const char& fill);
    /// Removes every @p c.
    static void Strip(std::string& s, char c);
    /// Removes blanks, tabs, newlines and carriage returns at the end; no other white space.
    static void RightTrim(std::string& s);
    /// Removes blanks, tabs, newlines and carriage returns at the front; no other white space.
    static void LeftTrim(std::string& s);
    /// Removes the characters at the end that are among @p chars.
    static void RightTrim(std::string& s, const std::string& chars);
    /// @return a copy without blanks, tabs, newlines and carriage returns at the end.
    static std::string GetRightTrimmed(const std::string& s);
    /// @return a copy without blanks, tabs, newlines and carriage returns at the front.
    static std::string GetLeftTrimmed(const std::string& s);
    /// Replaces every @p what, from left to right, by @p with; inserted text is not searched again. Nothing happens
    /// when @p what is empty. The arguments may be the same string.
    static void Replace(std::string& s, const std::string& what, const std::string& with);
    static void ToUpper(std::string& s);                              ///< Turns a to z into A to Z.
    static void ToLower(std::string& s);                              ///< Turns A to Z into a to z.
    static bool IsUppercase(char c) { return c >= 'A' && c <= 'Z'; }  ///< @return whether @p c is one of A to Z.
    static bool IsLowercase(char c) { return c >= 'a' && c <= 'z'; }  ///< @return whether @p c is one of a to z.
    /// @return camel case as upper case with underscores: "orderId" gives "ORDER_ID", "ABCValue" gives "ABCVALUE".
    static std::string GetUppercaseAndUnderscoreFormatted(const std::string& text);
    /// @return whether the texts are equal, byte by byte (NUL included); false when @p sensitivity is neither of its
    ///         two values.
    static bool Compare(const std::string& a, const std::string& b, const nxCaseSensitivityEnum& sensitivity);
    /// Orders by byte value (unsigned), case-insensitively by that of the lower-case letters; only the
    /// characters before the first NUL count.
    /// @return negative, 0 or positive (-1, 0 or 1 when case-sensitive); 0 when @p sensitivity is neither of its two
    ///         values.
    static int CompareAlphabetically(const std::string& a, const std::string& b,
                                     const nxCaseSensitivityEnum& sensitivity);

private:
    static constexpr char _ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
    static constexpr char _ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

    static bool _ReadDouble(const std::string& text, double& value, char separator);

    template <class Integer>
    static nxErrorEnum _ReadInteger(std::string_view text, Integer& value)
    {
        return nxIntegerText::Read(text, value) ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
};

#endif
