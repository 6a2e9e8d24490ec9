// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxVolumeConverter.h"

#include <cstdint>

#include "core/numeric/inline/nxDecimalQuick.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/price/internal/nxVolumeNumber.h"

nxVolumeConverter::~nxVolumeConverter() = default;

nxErrorEnum nxVolumeConverter::GetAsQuantity(const Units& units, nxDecimal& quantity) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    if (!units.IsValid())
    {
        quantity = units.IsNull() ? nxDecimal::GetNullDecimal() : nxDecimal::GetNoChangeDecimal();
        return nxErrorEnum();
    }
    nxVolumeNumber number = _GetQuantity(units);
    // Units of 10^-n that a mantissa does not hold may have zeros at the end.
    for (; number.digits > INT64_MAX && number.places != 0 && number.digits % 10 == 0; --number.places)
        number.digits /= 10;
    if (number.digits > INT64_MAX)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    quantity = nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<long long>(number.digits),
                                                             static_cast<unsigned char>(number.places));
    return nxErrorEnum();
}

nxErrorEnum nxVolumeConverter::GetAsUnits(const nxDecimal& quantity, Units& units) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    if (quantity.IsValid())
        return _Count(
            {nxDecimalQuick::GetMagnitude(quantity.GetValue()), quantity.GetDecimalPlaces(), quantity.IsNegative()},
            units);
    units = quantity.IsNull() ? Units::GetNullInstance() : Units::GetNoChangeInstance();
    return nxErrorEnum();
}

nxErrorEnum nxVolumeConverter::SetFromStringView(std::string_view text, Units& units, char separator) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    nxVolumeNumber number;
    const nxErrorEnum error = number.Read(text, separator);
    return error.IsOK() ? _Count(number, units) : error;
}

// Counts the units of a quantity.
nxErrorEnum nxVolumeConverter::_Count(const nxVolumeNumber& quantity, Units& units) const
{
    nxUnsignedWide count = quantity.digits;
    if (quantity.isNegative && count != 0)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    std::size_t places = quantity.places;
    if (count == 0)
        places = 0;
    for (; places > _places && count % 10 == 0; --places)
        count /= 10;
    if (places > _places)
        return nxErrorEnum(NX_ERR_NO_MATCH);
    if (places != _places)
    {
        if (count > UINT64_MAX)
            return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
        count *= nxPowersOfTen::GetInteger(_places - places);
    }
    if (_lotSize != 1)
    {
        const nxUnsignedWide lots = count / _lotSize;
        if (lots * _lotSize != count)
            return nxErrorEnum(NX_ERR_NO_MATCH);
        count = lots;
    }
    if (count > _maximum || (count < _minimum && count != 0))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    units = static_cast<unsigned long long>(count);
    return nxErrorEnum();
}

nxVolumeNumber nxVolumeConverter::_GetQuantity(const Units& units) const
{
    return {nxUnsignedWide{static_cast<unsigned long long>(units)} * _lotSize, _places};
}

std::size_t nxVolumeConverter::GetAsString(char* buffer, const Units& units, char separator) const
{
    char* const end = units.IsValid() ? _GetQuantity(units).Write(buffer, separator) : buffer;
    *end = '\0';
    return static_cast<std::size_t>(end - buffer);
}

std::string nxVolumeConverter::GetAsString(const Units& units, char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, GetAsString(buffer, units, separator));
}

void nxVolumeConverter::AppendAsString(std::string& text, const Units& units, char separator) const
{
    char buffer[MaxTextSize];
    text.append(buffer, GetAsString(buffer, units, separator));
}

std::string nxVolumeConverter::GetAsLogString(const Units& units, char separator) const
{
    return units.IsValid() ? GetAsString(units, separator) : units.GetAsLogString();
}

void nxVolumeConverter::AppendAsLogString(std::string& text, const Units& units, char separator) const
{
    if (units.IsValid())
        AppendAsString(text, units, separator);
    else
        units.AppendAsLogString(text);
}
