// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxAbbreviatedVolumeConverter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "core/numeric/nxPowersOfTen.h"

namespace
{
constexpr std::size_t digitsOfThousand = 3;
constexpr std::string_view thousandSuffixes = "KMBT";
constexpr std::string_view deskSuffixes = "MM";
constexpr std::size_t longestText =
    nxVolumeConverter::MaxTextSize - 4;  // leaves room for separator, suffix and terminator

bool IsVolumeDigit(char character) { return static_cast<unsigned char>(character - '0') < 10; }

// The text of the number times 10^power. @param text a number as nxDecimal reads it.
std::string MoveSeparator(std::string_view text, std::size_t power, char separator)
{
    const std::size_t point = std::min(text.find(separator), text.size());
    const std::string_view decimals = text.substr(std::min(point + 1, text.size()));
    const std::size_t moved = std::min(power, decimals.size());
    std::string number(text.substr(0, point));
    number.append(decimals.substr(0, moved)).append(power - moved, '0').append(1, separator);
    return number.append(decimals.substr(moved));
}

// Multiplies by a power of ten; false when 64 bits do not hold the product.
bool MultiplyByPower(nxDecimal& number, std::size_t power)
{
    const std::size_t places = number.GetDecimalPlaces();
    const std::size_t dropped = std::min(places, power);
    long long mantissa = 0;
    if (__builtin_mul_overflow(number.GetValue(), static_cast<long long>(nxPowersOfTen::GetInteger(power - dropped)),
                               &mantissa))
        return false;
    number = nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, static_cast<unsigned char>(places - dropped));
    return true;
}
}  // namespace

nxAbbreviatedVolumeConverter::nxAbbreviatedVolumeConverter(const nxVolumeConverter& exact, Suffixes suffixes,
                                                           unsigned char digits)
    : nxVolumeConverter(exact.IsValid() && digits != 0), _exact(exact), _suffixes(suffixes), _digits(digits)
{
}

nxErrorEnum nxAbbreviatedVolumeConverter::GetAsQuantity(const Units& units, nxDecimal& quantity) const
{
    return IsValid() ? _exact.GetAsQuantity(units, quantity) : nxErrorEnum(NX_ERR_NOT_INITIALISED);
}

nxErrorEnum nxAbbreviatedVolumeConverter::GetAsUnits(const nxDecimal& quantity, Units& units) const
{
    return IsValid() ? _exact.GetAsUnits(quantity, units) : nxErrorEnum(NX_ERR_NOT_INITIALISED);
}

nxErrorEnum nxAbbreviatedVolumeConverter::SetFromStringView(std::string_view text, Units& units, char separator) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    const std::size_t power = _TakeSuffix(text);
    if (power == 0)
        return _exact.SetFromStringView(text, units, separator);
    nxDecimal quantity;
    const nxErrorEnum error = quantity.SetFromStringExact(text, separator);
    if (error.IsOK() && MultiplyByPower(quantity, power)) [[likely]]
        return _exact.GetAsUnits(quantity, units);
    if (!error.IsOK() && error != nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE))
        return error;
    return _exact.SetFromStringView(MoveSeparator(text, power, separator), units, separator);
}

// Removes the suffix from the end of the text. Returns the power of ten that it means.
std::size_t nxAbbreviatedVolumeConverter::_TakeSuffix(std::string_view& text) const
{
    if (text.empty() || IsVolumeDigit(text.back()))
        return 0;
    constexpr char smallLetter = 'a' - 'A';
    const char last = text.back();
    const char letter = last >= 'a' && last <= 'z' ? static_cast<char>(last - smallLetter) : last;
    std::size_t thousands = 0;
    if (_suffixes == Suffixes::KMBT)
        thousands = thousandSuffixes.find(letter) + 1;  // 0 when it is none of them
    else if (letter == deskSuffixes.front())
        thousands = text.size() > 1 && text[text.size() - 2] == last ? 2 : 1;
    text.remove_suffix(_suffixes == Suffixes::KMBT ? std::min<std::size_t>(thousands, 1) : thousands);
    return digitsOfThousand * thousands;
}

std::string_view nxAbbreviatedVolumeConverter::_GetSuffix(std::size_t thousands) const
{
    if (_suffixes == Suffixes::MMM)
        return deskSuffixes.substr(0, thousands);
    return thousands == 0 ? std::string_view() : thousandSuffixes.substr(thousands - 1, 1);
}

std::size_t nxAbbreviatedVolumeConverter::GetAsString(char* buffer, const Units& units, char separator) const
{
    const std::size_t size = _exact.GetAsString(buffer, units, separator);
    const std::size_t whole = std::min(std::string_view(buffer, size).find(separator), size);
    if (!IsValid() || whole == 0 || size > longestText || !IsVolumeDigit(buffer[size - 1]))
        return size;
    // All digits in a row, then the separator at its new place.
    const bool hasDecimals = whole != size;
    const std::size_t count = size - (hasDecimals ? 1 : 0);
    if (hasDecimals)
        std::memmove(buffer + whole, buffer + whole + 1, count - whole);
    const std::size_t most = _suffixes == Suffixes::KMBT ? thousandSuffixes.size() : deskSuffixes.size();
    const std::size_t thousands = std::min((whole - 1) / digitsOfThousand, most);
    const std::size_t shownWhole = whole - digitsOfThousand * thousands;
    char* end = buffer + shownWhole;
    if (const std::size_t decimals = _CountShown({buffer, count}, shownWhole) - shownWhole; decimals != 0)
    {
        std::memmove(end + 1, end, decimals);
        *end = separator;
        end += 1 + decimals;
    }
    const std::string_view suffix = _GetSuffix(thousands);
    end = std::copy(suffix.begin(), suffix.end(), end);
    *end = '\0';
    return static_cast<std::size_t>(end - buffer);
}

// The number of digits that are shown, @p whole of which come before the separator.
std::size_t nxAbbreviatedVolumeConverter::_CountShown(std::string_view digits, std::size_t whole) const
{
    const std::size_t first = std::min(digits.find_first_not_of('0'), digits.size());
    std::size_t shown = std::clamp(first + _digits, whole, digits.size());
    while (shown > whole && digits[shown - 1] == '0')
        --shown;
    return shown;
}
