#ifndef CORE_FORMAT_NXPRINTEDTEXT_H
#define CORE_FORMAT_NXPRINTEDTEXT_H

#include <concepts>
#include <string>

#include "core/enum/nxBitMask.h"
#include "core/enum/nxBitMask64.h"
#include "core/enum/nxEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxMoney.h"
#include "core/time/nxTimeStamp.h"

/// @file
/// The text as which a value prints itself in a log record, for the formatters of nxFmt.h and nxFormat.h.

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

/// A time stamp's 24 characters, or nothing for a moment whose year fits no calendar.
template <std::derived_from<nxTimeStamp> Stamp>
std::string nxPrintedText(const Stamp& value)
{
    char text[nxTimeStamp::TextSize];
    const unsigned written = value.GetAsStringFast(text, sizeof text);
    return written == 0 ? std::string() : std::string(text, written - 1);
}

/// The log form of a wrapper, a date, a time, a string value.
template <class Value>
requires requires(const Value& value)
{
    {
        value.GetAsLogString()
        } -> std::same_as<std::string>;
}
std::string nxPrintedText(const Value& value) { return value.GetAsLogString(); }

/// Values of the library that print themselves.
template <class Value>
concept nxPrintable = requires(const Value& value)
{
    nxPrintedText(value);
};

#endif
