// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/internal/nxNearestRounding.h"
#include "core/numeric/nxDecimal.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/inline/nxDigits.h"

// The exact conversions of nxDecimal to and from doubles and texts.

nxErrorEnum nxDecimal::SetFromDoubleExact(double value, unsigned char places)
{
    if (value != value)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const long long whole = nxDoubleHelper::ToInteger(value);
    if ((whole == nxDoubleHelper::TooLarge && value != static_cast<double>(whole)) || places > MaxExactPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    // Rounded as by SetFromDouble(); the difference is exact.
    nxDecimal fraction;
    fraction.SetFromDouble(value - static_cast<double>(whole), places);
    return nxDecimalExact::Join(whole, fraction._number, _number);
}

nxErrorEnum nxDecimal::GetAsDoubleExact(double& value) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const nxNearestRounding rounding;
    nxDecimal number = *this;
    number.Normalise(0);  // trailing zeros would count as digits
    const double candidate = number.GetAsDouble();
    nxDecimal readBack;
    const nxErrorEnum error = readBack.SetFromDoubleExact(candidate, number.GetDecimalPlaces());
    if (!error.IsOK() || readBack._number.mantissa != number._number.mantissa)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    value = candidate;
    return nxErrorEnum();
}

void nxDecimal::AppendAsExactString(std::string& text, char separator) const
{
    if (!IsValid())
        return;
    char buffer[nxDigits::MaxDigits];
    const auto size = static_cast<std::size_t>(nxDigits::Write(buffer, _GetMagnitude()) - buffer);
    const std::size_t places = GetDecimalPlaces();
    const std::size_t wholeSize = size > places ? size - places : 0;
    text.append(IsNegative() ? "-" : "").append(buffer, wholeSize).append(wholeSize == 0 ? "0" : "");
    if (places == 0)
        return;
    const std::size_t decimals = size - wholeSize;
    text.append(1, separator).append(places - decimals, '0').append(buffer + wholeSize, decimals);
}

std::string nxDecimal::GetAsExactString(char separator) const
{
    std::string text;
    AppendAsExactString(text, separator);
    return text;
}
