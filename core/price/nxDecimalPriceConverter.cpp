// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxDecimalPriceConverter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/numeric/inline/nxDecimalQuick.h"
#include "core/numeric/inline/nxWide.h"
#include "core/numeric/internal/nxDecimalText.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/price/internal/nxValidPrices.h"
#include "core/text/inline/nxDigits.h"

namespace
{
constexpr int mostShownPlaces = nxDecimal::MaxExactPlaces;

std::uint64_t GetPowerOfPlaces(int places) { return nxPowersOfTen::GetInteger(static_cast<std::size_t>(places)); }

nxDecimal WithoutZeros(nxDecimal number)
{
    number.Normalise(0);
    return number;
}

// Whether each multiple of the tick is cut to a text of its own.
bool IsUsableTick(const nxDecimal& tick, int places, int shift)
{
    if (!tick.IsPositive() || tick.GetDecimalPlaces() > mostShownPlaces)
        return false;
    const int hidden = tick.GetDecimalPlaces() - shift - places;
    if (std::abs(hidden) > mostShownPlaces)
        return false;
    return hidden <= 0 || nxDecimalQuick::GetMagnitude(tick.GetValue()) >= GetPowerOfPlaces(hidden);
}

// The notation of a converter; empty when there is none.
std::string NameDecimals(int places, int shift, const nxDecimal& tick)
{
    if (places > mostShownPlaces || shift < -mostShownPlaces || shift > mostShownPlaces ||
        std::abs(places + shift) > mostShownPlaces || tick.IsNoChange() ||
        (tick.IsValid() && !IsUsableTick(tick, places, shift)))
        return {};
    std::string notation = "DECIMAL:" + std::to_string(places);
    if (shift != 0)
        (notation += '*').append(std::to_string(shift));
    if (tick.IsValid())
        tick.AppendAsExactString(notation += '/', '.');
    return notation;
}

// Digits with at most one separator among them, as nxDecimal reads them, of any length.
struct DecimalDigits
{
    std::string_view whole;
    std::string_view decimals;
};

DecimalDigits SplitDecimal(std::string_view text, char separator)
{
    const std::size_t point = std::min(text.find(separator), text.size());
    return {text.substr(0, point), text.substr(std::min(point + 1, text.size()))};
}

// The digits from the first to the last that is not 0; false when 64 bits do not hold their number.
bool ReadDecimalDigits(const DecimalDigits& digits, std::uint64_t& number, int& places)
{
    number = 0;
    bool fits = true;
    std::size_t zeros = 0;  // after the last other digit
    for (const std::string_view text : {digits.whole, digits.decimals})
        for (const char digit : text)
        {
            ++zeros;
            if (digit == '0' || !fits)
                continue;
            for (; zeros != 0; --zeros)
                fits = !__builtin_mul_overflow(number, 10, &number) && fits;
            fits = !__builtin_add_overflow(number, static_cast<std::uint64_t>(digit - '0'), &number) && fits;
        }
    constexpr std::int64_t farAway = 1000;
    const auto difference = static_cast<std::int64_t>(digits.decimals.size()) - static_cast<std::int64_t>(zeros);
    places = number == 0 ? 0 : static_cast<int>(std::clamp(difference, -farAway, farAway));
    return fits;
}

char* AppendZeros(char* out, int count)
{
    const std::size_t zeros = static_cast<std::size_t>(std::max(count, 0));
    std::memset(out, '0', zeros);
    return out + zeros;
}

char* AppendDigits(char* out, const char* digits, int count)
{
    const std::size_t size = static_cast<std::size_t>(std::max(count, 0));
    std::memcpy(out, digits, size);
    return out + size;
}

// Writes mantissa * 10^-places with this many decimals, which are not fewer than the places.
char* WriteShownNumber(char* out, std::uint64_t mantissa, int places, int decimals, char separator)
{
    char digits[nxDigits::MaxDigits];
    const int count = static_cast<int>(nxDigits::Write(digits, mantissa) - digits);
    const int whole = count - places;
    if (whole <= 0)
        *out++ = '0';
    else
        out = AppendZeros(AppendDigits(out, digits, std::min(whole, count)), mantissa == 0 ? 0 : whole - count);
    if (decimals == 0)
        return out;
    *out++ = separator;
    const int zeros = std::min(std::max(-whole, 0), decimals);
    const int shown = std::min(std::max(whole, 0), count);
    out = AppendDigits(AppendZeros(out, zeros), digits + shown, count - shown);
    return AppendZeros(out, decimals - zeros - (count - shown));
}
}  // namespace

nxDecimalPriceConverter::nxDecimalPriceConverter(unsigned char places, int displayShift, const nxDecimal& tick)
    : nxPriceConverter(NameDecimals(places, displayShift, WithoutZeros(tick))),
      _tick(WithoutZeros(tick)),
      _places(places),
      _shift(displayShift)
{
    if (IsValid())
        _gridPlaces = std::max({0, _places + _shift, static_cast<int>(_tick.GetDecimalPlaces())});
}

nxDecimal nxDecimalPriceConverter::GetTickIncrement() const
{
    if (!IsValid())
        return nxDecimal::GetNullDecimal();
    if (_tick.IsValid())
        return _tick;
    const int places = _places + _shift;
    return nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<long long>(GetPowerOfPlaces(std::max(-places, 0))),
                                                         static_cast<unsigned char>(std::max(places, 0)));
}

nxErrorEnum nxDecimalPriceConverter::SetFromStringView(std::string_view text, nxDecimal& price, char separator) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    nxDecimal number;
    const nxErrorEnum error = number.SetFromStringExact(text, separator);
    if (!error.IsOK() && error != nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE))
        return error;
    const bool isNegative = text.front() == '-';
    text.remove_prefix(isNegative || text.front() == '+' ? 1 : 0);
    _Shown shown = {nxDecimalQuick::GetMagnitude(number.GetValue()), number.GetDecimalPlaces()};
    std::size_t decimals = number.GetDecimalPlaces();
    if (!error.IsOK())
    {
        const DecimalDigits digits = SplitDecimal(text, separator);
        decimals = digits.decimals.size();
        if (!ReadDecimalDigits(digits, shown.mantissa, shown.places))
            return !_tick.IsValid() || decimals >= static_cast<std::size_t>(_places)
                       ? error
                       : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
    if (_tick.IsValid() && decimals < static_cast<std::size_t>(_places))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return _tick.IsValid() && decimals == static_cast<std::size_t>(_places) ? _Complete(isNegative, shown, price)
                                                                            : _Keep(isNegative, shown, price);
}

// Finds the multiple of the tick that is cut to the number.
nxErrorEnum nxDecimalPriceConverter::_Complete(bool isNegative, const _Shown& shown, nxDecimal& price) const
{
    // In units of the last decimal shown. The mantissa of the price, at the places of the grid, is not smaller.
    const int morePlaces = shown.mantissa == 0 ? 0 : _places - shown.places;
    const nxUnsignedWide cut = nxUnsignedWide{shown.mantissa} * GetPowerOfPlaces(std::min(morePlaces, mostShownPlaces));
    if (cut > UINT64_MAX || morePlaces > mostShownPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    // Both at the finer one of the two scales.
    const int hidden = _tick.GetDecimalPlaces() - _shift - _places;
    const nxUnsignedWide unit = GetPowerOfPlaces(std::max(hidden, 0));
    const nxUnsignedWide tick =
        nxDecimalQuick::GetMagnitude(_tick.GetValue()) * nxUnsignedWide{GetPowerOfPlaces(std::max(-hidden, 0))};
    const nxUnsignedWide count = (cut * unit + tick - 1) / tick;
    if (count * tick >= (cut + 1) * unit)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const nxUnsignedWide mantissa = count * nxDecimalQuick::GetMagnitude(_tick.GetValue());
    if (mantissa > UINT64_MAX)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    return _Keep(isNegative, {static_cast<std::uint64_t>(mantissa), _tick.GetDecimalPlaces() - _shift}, price);
}

// Takes the number as the price, at the places of the grid or more.
nxErrorEnum nxDecimalPriceConverter::_Keep(bool isNegative, _Shown shown, nxDecimal& price) const
{
    int places = shown.places + _shift;
    for (; places > _gridPlaces && shown.mantissa % 10 == 0; --places)
        shown.mantissa /= 10;
    const int zeros = std::max(_gridPlaces - places, 0);
    if (shown.mantissa == 0)
        places = _gridPlaces;
    else if (places > mostShownPlaces || zeros > mostShownPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const nxUnsignedWide magnitude =
        nxUnsignedWide{shown.mantissa} * (shown.mantissa == 0 ? 1 : GetPowerOfPlaces(zeros));
    if (magnitude > nxUnsignedWide{INT64_MAX} + (isNegative ? 1 : 0))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const auto bits = static_cast<std::uint64_t>(magnitude);
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(nxDecimalQuick::Wrap(isNegative ? 0 - bits : bits),
                                                          static_cast<unsigned char>(std::max(places, _gridPlaces)));
    return nxErrorEnum();
}

std::size_t nxDecimalPriceConverter::GetAsString(char* buffer, const nxDecimal& price, char separator) const
{
    nxDecimal number = price;
    number.Normalise(static_cast<unsigned char>(_gridPlaces));
    if (number.GetScale() > mostShownPlaces || !IsValid())
        return price.GetAsString(buffer, separator);
    _Shown shown = {nxDecimalQuick::GetMagnitude(number.GetValue()), number.GetDecimalPlaces() - _shift};
    int decimals = _places;
    const bool isCut = _IsCut(number);
    if (_tick.IsValid() && !isCut)
        ++decimals;
    // Zeros that the text does not need; of a number that is cut, other digits as well.
    while (shown.places > decimals && (isCut || shown.mantissa % 10 == 0))
    {
        shown.mantissa /= 10;
        --shown.places;
    }
    decimals = std::max(decimals, shown.places);
    if (shown.places == decimals && decimals <= static_cast<int>(nxDecimalText::MaxPlaces))
        return nxDecimalText::Print(buffer, number.IsNegative(), shown.mantissa, static_cast<std::size_t>(decimals),
                                    static_cast<std::size_t>(decimals), separator);
    *buffer = '-';
    char* const end =
        WriteShownNumber(buffer + (number.IsNegative() ? 1 : 0), shown.mantissa, shown.places, decimals, separator);
    *end = '\0';
    return static_cast<std::size_t>(end - buffer);
}

// Whether the text of the price shows the multiple of the tick, cut.
bool nxDecimalPriceConverter::_IsCut(const nxDecimal& price) const
{
    return _tick.IsValid() && nxValidPrices::IsMultiple(price, _tick);
}
