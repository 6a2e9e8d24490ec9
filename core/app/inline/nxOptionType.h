// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_INLINE_NXOPTIONTYPE_H
#define CORE_APP_INLINE_NXOPTIONTYPE_H

#include <chrono>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/enum/nxEnum.h"
#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxStringHelper.h"
#include "core/text/nxValueWrapper.h"

/// How the texts of options become values. Every reader uses the whole text, refuses what does not fit, and leaves the
/// value as it was when it fails.
class NX_CORE_API nxOptionReader
{
public:
    nxOptionReader() = delete;

    /// Reads "TRUE" and "YES" as true, "FALSE" and "NO" as false, in any case.
    /// @return NX_ERR_INVALID_PARAMETER for any other text.
    [[nodiscard]] static nxErrorEnum ReadFlag(std::string_view text, bool& value);

    /// Reads a whole number with its unit: "250ms", "5s". The units are ns, us, ms, s, min and h.
    /// @return NX_ERR_INVALID_PARAMETER for any other text, NX_ERR_VALUE_OUT_OF_RANGE beyond 64 bits of nanoseconds.
    [[nodiscard]] static nxErrorEnum ReadNanoseconds(std::string_view text, std::int64_t& value);
    /// @return the text that ReadNanoseconds() reads back, with the largest unit that gives a whole number.
    static std::string GetNanosecondsText(std::int64_t value);

    /// @return " from 0 to 100".
    template <std::integral Integer>
    static std::string GetRangeText(Integer lowest, Integer highest)
    {
        std::string text = " from ";
        nxStringHelper::AppendAsString(text, _Widest(lowest));
        text += " to ";
        nxStringHelper::AppendAsString(text, _Widest(highest));
        return text;
    }

private:
    template <std::integral Integer>
    static auto _Widest(Integer value)
    {
        return static_cast<std::conditional_t<std::is_signed_v<Integer>, long long, unsigned long long>>(value);
    }
};

/// A type that reads itself from a text and says whether it could.
template <class Value>
concept nxReadsItself = std::copyable<Value> && requires(Value& value, const std::string& text)
{
    {
        value.SetFromString(text)
        } -> std::same_as<nxErrorEnum>;
};

/// The values of an option: how they are read, described and printed.
template <class Value>
struct nxOptionType;

/// A type that an option can have.
template <class Value>
concept nxOptionValue = requires
{
    sizeof(nxOptionType<Value>);
};

/// A type whose options have a value on the command line: all but flags.
template <class Value>
concept nxOptionWithLabel = nxOptionValue<Value> && !std::same_as<Value, bool>;

/// Types that read themselves.
template <nxReadsItself Value>
struct nxOptionType<Value>
{
    /// Reads the whole text.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, Value& value)
    {
        if constexpr (requires { value.SetFromStringExact(text); })
            return value.SetFromStringExact(text);
        else
            return value.SetFromString(text);
    }
    /// @return what a text must be, such as "a number"; empty when only the option's own label says so.
    static std::string GetKind() { return {}; }
    /// @return what a value must be besides, as the end of a sentence; empty for nothing.
    static std::string GetRange() { return {}; }
    /// @return the possible texts, where they are few.
    static std::vector<std::string> GetWords() { return {}; }
    /// @return the text of a default; empty for none.
    static std::string GetText(const Value& value)
    {
        if constexpr (requires { std::string(value.GetAsString()); })
            return value.GetAsString();
        else
            return {};
    }
};

/// What most types have in common.
struct nxPlainOptionType
{
    /// @return none.
    static std::string GetRange() { return {}; }
    /// @return none.
    static std::vector<std::string> GetWords() { return {}; }
    /// @return the text of a default.
    template <class Value>
    static std::string GetText(const Value& value)
    {
        return nxStringHelper::GetAsString(value);
    }
};

/// Flags.
template <>
struct nxOptionType<bool> : nxPlainOptionType
{
    /// See nxOptionReader::ReadFlag().
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, bool& value)
    {
        return nxOptionReader::ReadFlag(text, value);
    }
    static std::string GetKind() { return "TRUE, YES, FALSE or NO"; }                 ///< The words.
    static std::string GetText(bool value) { return value ? "YES" : std::string(); }  ///< Nothing for false.
};

/// Integers, but not single characters.
template <std::integral Integer>
requires(sizeof(Integer) > 1) struct nxOptionType<Integer> : nxPlainOptionType
{
    /// Reads digits, for signed types after an optional '-'.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, Integer& value)
    {
        return nxStringHelper::SetFromStringExact(text, value);
    }
    static std::string GetKind() { return "a whole number"; }  ///< Without a fraction.
    /// @return what fits.
    static std::string GetRange()
    {
        return nxOptionReader::GetRangeText(std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max());
    }
};

/// Doubles.
template <>
struct nxOptionType<double> : nxPlainOptionType
{
    /// Reads digits with an optional '-' and point.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, double& value)
    {
        return nxStringHelper::SetFromStringExact(text, value, '.');
    }
    static std::string GetKind() { return "a number of at most 15 digits"; }  ///< All of these fit.
    /// @return all digits.
    static std::string GetText(double value) { return nxStringHelper::GetAsExactString(value); }
};

/// Decimals.
template <>
struct nxOptionType<nxDecimal> : nxPlainOptionType
{
    /// Reads digits with an optional sign and point.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, nxDecimal& value)
    {
        return value.SetFromStringExact(text, '.');
    }
    static std::string GetKind() { return "a number of at most 18 digits"; }  ///< All of these fit.
    /// @return all digits; empty unless the number is valid.
    static std::string GetText(const nxDecimal& value) { return value.GetAsExactString('.'); }
};

/// Integers that may be null; a text is always a number.
template <class Integer, Integer NullMark, Integer NoChangeMark>
struct nxOptionType<nxValueWrapper<Integer, NullMark, NoChangeMark>> : nxPlainOptionType
{
    using Wrapper = nxValueWrapper<Integer, NullMark, NoChangeMark>;  ///< The type of the variable.

    /// Reads digits. The two numbers that mean null and no change do not fit.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, Wrapper& value)
    {
        return value.SetFromStringExact(text);
    }
    static std::string GetKind() { return "a whole number"; }  ///< Without a fraction.
    /// @return what fits, without the marks.
    static std::string GetRange()
    {
        Integer lowest = std::numeric_limits<Integer>::min();
        Integer highest = std::numeric_limits<Integer>::max();
        while (!Wrapper(lowest).IsValid())
            ++lowest;
        while (!Wrapper(highest).IsValid())
            --highest;
        return nxOptionReader::GetRangeText(lowest, highest);
    }
};

/// Doubles that may be null; a text is always a number.
template <>
struct nxOptionType<nxDoubleValueWrapper> : nxOptionType<double>
{
    /// Reads a double. The two numbers that mean null and no change do not fit.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, nxDoubleValueWrapper& value)
    {
        return value.SetFromStringExact(text);
    }
    /// @return the number; empty for null and no change.
    static std::string GetText(const nxDoubleValueWrapper& value)
    {
        return value.IsValid() ? nxStringHelper::GetAsExactString(static_cast<double>(value)) : std::string();
    }
};

/// Texts, which are taken as they are.
template <>
struct nxOptionType<std::string> : nxPlainOptionType
{
    /// Always succeeds.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, std::string& value)
    {
        value = text;
        return nxErrorEnum();
    }
    static std::string GetKind() { return "a text"; }  ///< Any.
};

/// Enumerations, by the identifiers of their own values.
template <std::derived_from<nxEnum> Enum>
struct nxOptionType<Enum> : nxPlainOptionType
{
    /// Reads an identifier; those of other classes and of the states "undefined" and "no change" are refused.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, Enum& value)
    {
        Enum read;
        if (!read.SetFromString(text) || !read.IsSpecificTypeForInstance())
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        value = read;
        return nxErrorEnum();
    }
    static std::string GetKind() { return "one of"; }  ///< Its words follow.
    /// @return the identifiers, in the order of the values.
    static std::vector<std::string> GetWords()
    {
        std::vector<std::string> words;
        for (const Enum value : Enum::GetRegisteredValues())
            words.push_back(value.GetShortDescription());
        return words;
    }
    /// @return the identifier, nothing for a value that cannot be read.
    static std::string GetText(const Enum& value)
    {
        return value.IsSpecificTypeForInstance() ? value.GetShortDescription() : std::string();
    }
};

/// Durations in whole units of a nanosecond or more.
template <class Count, class Period>
struct nxOptionType<std::chrono::duration<Count, Period>> : nxPlainOptionType
{
    using Duration = std::chrono::duration<Count, Period>;                           ///< The type of the variable.
    static constexpr std::int64_t Unit = Period::num * 1'000'000'000 / Period::den;  ///< In nanoseconds.
    static_assert(std::integral<Count> && Unit * Period::den == Period::num * 1'000'000'000,
                  "a duration of an option counts whole units of a nanosecond or more");

    /// See nxOptionReader::ReadNanoseconds().
    /// @return NX_ERR_VALUE_OUT_OF_RANGE also for a text with a fraction of the unit.
    [[nodiscard]] static nxErrorEnum Read(const std::string& text, Duration& value)
    {
        std::int64_t nanoseconds = 0;
        if (const nxErrorEnum error = nxOptionReader::ReadNanoseconds(text, nanoseconds); !error.IsOK())
            return error;
        if (nanoseconds % Unit != 0 || !std::in_range<Count>(nanoseconds / Unit))
            return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
        value = Duration(static_cast<Count>(nanoseconds / Unit));
        return nxErrorEnum();
    }
    /// @return an example and the precision.
    static std::string GetKind()
    {
        return "a duration such as 5s in multiples of " + nxOptionReader::GetNanosecondsText(Unit);
    }
    /// @return the text that Read() reads back, nothing for a duration that no text means.
    static std::string GetText(Duration value)
    {
        std::int64_t nanoseconds = 0;
        return __builtin_mul_overflow(value.count(), Unit, &nanoseconds)
                   ? std::string()
                   : nxOptionReader::GetNanosecondsText(nanoseconds);
    }
};

#endif
