// SPDX-License-Identifier: Apache-2.0
#include "core/price/internal/nxVolumeNumber.h"

#include <algorithm>
#include <cstdint>

#include "core/numeric/inline/nxDecimalQuick.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/text/inline/nxDigits.h"

namespace
{
constexpr std::size_t digitsOfVolumePart = 19;  // every number of this many digits fits 64 bits

// Appends digits to a number, which wraps; false for any other character.
bool AppendVolumeDigits(std::string_view text, nxUnsignedWide& number)
{
    while (!text.empty())
    {
        const std::size_t size = std::min(text.size(), digitsOfVolumePart);
        std::uint64_t part = 0;
        if (!nxDigits::Parse(text.data(), text.data() + size, part))
            return false;
        number = number * nxPowersOfTen::GetInteger(size) + part;
        text.remove_prefix(size);
    }
    return true;
}

// Whether 128 bits hold a number of this many digits that begins with this one. @param wrapped the number in 128 bits.
bool FitsVolumeNumber(std::size_t count, char first, nxUnsignedWide wrapped)
{
    constexpr std::size_t mostDigits = 2 * digitsOfVolumePart + 1;
    if (count < mostDigits)
        return true;
    // A number that was too large begins with another digit now, because 2^128 is 3.4 * 10^38.
    const nxUnsignedWide unit =
        nxUnsignedWide{nxPowersOfTen::GetInteger(digitsOfVolumePart)} * nxPowersOfTen::GetInteger(digitsOfVolumePart);
    return count == mostDigits && wrapped / unit == static_cast<unsigned>(first - '0');
}

char* WriteVolumeDigits(char* out, nxUnsignedWide number)
{
    if (number <= UINT64_MAX) [[likely]]
        return nxDigits::Write(out, static_cast<std::uint64_t>(number));
    const std::uint64_t unit = nxPowersOfTen::GetInteger(digitsOfVolumePart);
    out = WriteVolumeDigits(out, number / unit);
    nxDigits::WritePadded(out, static_cast<std::uint64_t>(number % unit), digitsOfVolumePart);
    return out + digitsOfVolumePart;
}
}  // namespace

nxErrorEnum nxVolumeNumber::Read(std::string_view text, char separator)
{
    nxDecimalQuick::Number number;
    if (!nxDecimalQuick::Read(text, separator, number))
        return _ReadAny(text, separator);
    *this = {nxDecimalQuick::GetMagnitude(number.mantissa), static_cast<std::size_t>(number.scale)};
    return nxErrorEnum();
}

nxErrorEnum nxVolumeNumber::_ReadAny(std::string_view text, char separator)
{
    isNegative = !text.empty() && text.front() == '-';
    if (isNegative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    const std::size_t point = std::min(text.find(separator), text.size());
    std::string_view whole = text.substr(0, point);
    std::string_view decimals = text.substr(std::min(point + 1, text.size()));
    if (whole.empty() && decimals.empty())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    // npos + 1 is 0: there is nothing but zeros.
    decimals = decimals.substr(0, decimals.find_last_not_of('0') + 1);
    digits = 0;
    if (!AppendVolumeDigits(whole, digits) || !AppendVolumeDigits(decimals, digits))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    places = decimals.size();
    // All are digits; zeros in front do not count.
    whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
    if (whole.empty())
        decimals.remove_prefix(std::min(decimals.find_first_not_of('0'), decimals.size()));
    const char first = whole.empty() ? (decimals.empty() ? '0' : decimals.front()) : whole.front();
    return FitsVolumeNumber(whole.size() + decimals.size(), first, digits) ? nxErrorEnum()
                                                                           : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
}

char* nxVolumeNumber::Write(char* out, char separator) const
{
    if (places == 0)
        return WriteVolumeDigits(out, digits);
    const std::uint64_t unit = nxPowersOfTen::GetInteger(places);
    const auto number = static_cast<std::uint64_t>(digits);
    out = nxDigits::Write(out, number / unit);
    *out++ = separator;
    nxDigits::WritePadded(out, number % unit, places);
    return out + places;
}
