// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_FORMAT_NXPRINTEDTEXT_H
#define CORE_FORMAT_NXPRINTEDTEXT_H

#include <concepts>
#include <string>
#include <string_view>

#include "core/enum/nxBitMask.h"
#include "core/enum/nxBitMask64.h"
#include "core/enum/nxEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxExchangeRate.h"
#include "core/numeric/nxMoney.h"
#include "core/time/nxTimeStamp.h"

class nxCurrency;
class nxDate;
class nxDateTime;
class nxDateTimeSpan;
class nxDoubleValueWrapper;
class nxRatio;
class nxStringValue;
class nxTime;
template <std::integral T, T NullMark, T NoChangeMark>
class nxValueWrapper;

/// @file
/// The text that a value has in a log record, for the formatters of nxFmt.h and nxFormat.h.

/// An enumeration's identifier.
template <std::derived_from<nxEnum> Enum>
const std::string& nxPrintedText(const Enum& value)
{
    return value.GetShortDescription();
}

/// A mask's flags, separated by blanks.
template <class Mask>
requires std::derived_from<Mask, nxBitMask> || std::derived_from<Mask, nxBitMask64> std::string nxPrintedText(
    const Mask& value)
{
    return value.GetShortDescription(" ");
}

/// A decimal with all its places up to twelve, "NULL" or "NO_CHANGE".
template <std::same_as<nxDecimal> Decimal>
std::string nxPrintedText(const Decimal& value)
{
    return value.GetAsLogString('.');
}

/// The log form of an amount of money.
template <std::same_as<nxMoney> Money>
std::string nxPrintedText(const Money& value)
{
    return value.GetAsLogString('.');
}

/// The log form of an exchange rate.
template <std::same_as<nxExchangeRate> Rate>
std::string nxPrintedText(const Rate& value)
{
    return value.GetAsLogString('.');
}

/// A time stamp's 24 characters, or an empty text for a moment whose year fits no calendar.
template <std::derived_from<nxTimeStamp> Stamp>
std::string nxPrintedText(const Stamp& value)
{
    char text[nxTimeStamp::TextSize];
    const unsigned written = value.GetAsStringFast(text, sizeof text);
    return written == 0 ? std::string() : std::string(text, written - 1);
}

/// The types of the library whose text is their GetAsLogString(). They are listed by name, so that no class of an
/// application is mistaken for one of them.
template <class Value>
concept nxPrintsLogForm = std::same_as<Value, nxDate> || std::same_as<Value, nxDateTime> ||
    std::same_as<Value, nxDateTimeSpan> || std::same_as<Value, nxTime> || std::same_as<Value, nxCurrency> ||
    std::same_as<Value, nxRatio> || std::same_as<Value, nxDoubleValueWrapper> || std::same_as<Value, nxStringValue>;

/// The log form of a date, a time, a span, a currency, a ratio, a double wrapper, a string value.
template <nxPrintsLogForm Value>
std::string nxPrintedText(const Value& value)
{
    return value.GetAsLogString();
}

/// The log form of an integer wrapper.
template <class T, T NullMark, T NoChangeMark>
std::string nxPrintedText(const nxValueWrapper<T, NullMark, NoChangeMark>& value)
{
    return value.GetAsLogString();
}

/// Values of the library that print themselves.
template <class Value>
concept nxPrintable = requires(const Value& value)
{
    nxPrintedText(value);
};

/// Values whose text may be truncated to a precision: names, flags and texts. A truncated number, date or time would be a
/// different one.
template <class Value>
concept nxCuttable = std::derived_from<Value, nxEnum> || std::derived_from<Value, nxBitMask> ||
    std::derived_from<Value, nxBitMask64> || std::same_as<Value, nxStringValue>;

/// @return whether a format for texts has a precision: a point that is not a fill character, which would be followed by
///         an alignment.
constexpr bool nxHasPrecision(std::string_view format)
{
    for (std::size_t at = 0; at < format.size(); ++at)
        if (format[at] == '.' && std::string_view("<>^").find(format.substr(at + 1, 1)) == std::string_view::npos)
            return true;
    return false;
}

/// The text of the error for such a format.
inline constexpr const char* nxPrecisionRefused = "a number, a date or a time is not cut to a precision";

#endif
