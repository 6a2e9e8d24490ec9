// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxVolumeConverter.h"

#include <cstdint>

#include "core/numeric/inline/nxDecimalQuick.h"
#include "core/numeric/internal/nxDecimalText.h"
#include "core/numeric/internal/nxPriceText.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/price/internal/nxVolumeNumber.h"
#include "core/text/inline/nxDigits.h"

namespace
{
constexpr std::size_t longestQuickInteger = 19;  // every number of this many digits fits 64 bits

// Reads the usual texts; false leaves all others to the general way.
bool ReadUsualVolume(std::string_view text, char separator, std::uint64_t& digits, std::size_t& places)
{
    if (text.size() <= longestQuickInteger && nxDigits::Parse(text.data(), text.data() + text.size(), digits))
        return true;
    return nxPriceText::Parse(text.data(), text.size(), separator, digits, places);
}
}  // namespace

// Counts the units of a quantity when 64 bits do; false leaves every other case, and all errors, to _Count().
inline bool nxVolumeConverter::_CountUsual(std::uint64_t digits, std::size_t places, Units& units) const
{
    std::uint64_t count = digits;
    if (places != _places &&
        (places > _places || __builtin_mul_overflow(digits, nxPowersOfTen::GetInteger(_places - places), &count)))
        return false;
    if (_lotSize != 1)
    {
        const std::uint64_t lots = count / _lotSize;
        if (lots * _lotSize != count)
            return false;
        count = lots;
    }
    if (count > _maximum || (count < _minimum && count != 0))
        return false;
    units = static_cast<unsigned long long>(count);
    return true;
}

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
    {
        if (!quantity.IsNegative() &&
            _CountUsual(static_cast<std::uint64_t>(quantity.GetValue()), quantity.GetDecimalPlaces(), units)) [[likely]]
            return nxErrorEnum();
        return _Count(
            {nxDecimalQuick::GetMagnitude(quantity.GetValue()), quantity.GetDecimalPlaces(), quantity.IsNegative()},
            units);
    }
    units = quantity.IsNull() ? Units::GetNullInstance() : Units::GetNoChangeInstance();
    return nxErrorEnum();
}

nxErrorEnum nxVolumeConverter::SetFromStringView(std::string_view text, Units& units, char separator) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    std::uint64_t digits = 0;
    std::size_t places = 0;
    if (ReadUsualVolume(text, separator, digits, places) && _CountUsual(digits, places, units)) [[likely]]
        return nxErrorEnum();
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
    char* end = buffer;
    if (units.IsValid())
    {
        unsigned long long digits = 0;
        const bool fits = !__builtin_mul_overflow(static_cast<unsigned long long>(units), _lotSize, &digits);
        if (_places != 0 && _places <= nxDecimalText::MaxPlaces)  // then a lot is 1
            return nxDecimalText::Print(buffer, false, digits, _places, _places, separator);
        end = fits && _places == 0 ? nxDigits::Write(buffer, digits) : _GetQuantity(units).Write(buffer, separator);
    }
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
