// SPDX-License-Identifier: Apache-2.0
#include "core/price/internal/nxBandRules.h"

#include <algorithm>

#include "core/numeric/nxPowersOfTen.h"
#include "core/price/internal/nxExactSum.h"
#include "core/text/nxOStream.h"
#include "core/text/nxPrintableText.h"
#include "core/text/nxSimpleAsciiStringWriter.h"

namespace
{
constexpr unsigned char maxBandPlaces = 15;
constexpr long long maxBandMantissa = 999'999'999'999'999'999;
constexpr std::size_t maxTableNameLength = 64;

bool IsTableName(std::string_view text)
{
    return !text.empty() && text.size() <= maxTableNameLength &&
           std::all_of(text.begin(), text.end(),
                       [](char c)
                       {
                           return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                                  c == '_' || c == '-' || c == '.';
                       });
}

}  // namespace

std::string nxBandRules::CheckName(std::string_view name)
{
    return IsTableName(name)
               ? ""
               : nxPrintableText::GetQuoted(name) + " is not a name: 1 to 64 letters, digits, '_', '-' or '.'";
}

std::string nxBandRules::CheckNumber(const char* what, const nxDecimal& number)
{
    if (!number.IsPositive())
        return std::string(what) + " " + GetNumberText(number) + " is not positive";
    if (number.GetDecimalPlaces() > maxBandPlaces || number.GetValue() > maxBandMantissa)
        return std::string(what) + " " + GetNumberText(number) + " has more than 18 digits or 15 decimals";
    return "";
}

bool nxBandRules::IsTop(const nxDecimal& bound)
{
    return bound.IsNull() || bound.EqualsExactly(nxDecimal::GetMaximumDecimal());
}

std::string nxBandRules::GetNumberText(const nxDecimal& number)
{
    if (!number.IsValid())
        return number.GetAsLogString('.');
    nxOStream<nxSimpleAsciiStringWriter> stream;
    number.Write(stream, '.');
    return stream.GetWriter().GetText();
}

// Whether a price at the bound can be moved by the increment.
std::string nxBandRules::_CheckStep(const nxDecimal& bound, const nxDecimal& increment)
{
    nxDecimal above = bound;
    return nxExactSum::TryAdd(above, increment, true)
               ? ""
               : GetNumberText(bound) + " plus increment " + GetNumberText(increment) +
                     " has more digits than a price can hold";
}

std::string nxBandRules::CheckBand(const Bands& before, const nxDecimal& bound, const nxDecimal& increment)
{
    if (!before.empty() && IsTop(before.back().first))
        return "a band follows the one without an upper bound";
    std::string fault = CheckNumber("increment", increment);
    if (fault.empty() && !IsTop(bound))
        fault = CheckNumber("upper bound", bound);
    if (fault.empty() && !IsTop(bound) && !before.empty() && !(bound > before.back().first))
        fault = "upper bound " + GetNumberText(bound) + " is not above " + GetNumberText(before.back().first);
    if (fault.empty() && !(IsTop(bound) && before.empty()))
        fault = _CheckStep(IsTop(bound) ? before.back().first : bound, increment);
    return fault;
}

nxWide nxBandRules::GetUnits(const nxDecimal& number)
{
    return nxWide{number.GetValue()} *
           nxPowersOfTen::GetInteger(std::size_t{maxBandPlaces} - number.GetDecimalPlaces());
}
