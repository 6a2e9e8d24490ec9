// SPDX-License-Identifier: Apache-2.0
#include "core/price/internal/nxValidPrices.h"

#include <algorithm>
#include <cstdint>

#include "core/numeric/nxPowersOfTen.h"

namespace
{
// A division of 128 bits costs several of 64 bits, which mostly hold both numbers.
inline nxUnsignedWide CountIn(nxUnsignedWide number, nxUnsignedWide tick)
{
    if (((number | tick) >> 64) == 0) [[likely]]
        return static_cast<std::uint64_t>(number) / static_cast<std::uint64_t>(tick);
    return number / tick;
}

nxUnsignedWide GetMultipleBelow(nxUnsignedWide number, nxUnsignedWide tick) { return CountIn(number, tick) * tick; }
nxUnsignedWide GetMultipleAbove(nxUnsignedWide number, nxUnsignedWide tick)
{
    return GetMultipleBelow(number + tick - 1, tick);
}
}  // namespace

bool nxValidPrices::IsMultiple(const nxDecimal& price, const nxDecimal& tick)
{
    const auto scale = [](long long mantissa, int zeros)
    { return nxWide{mantissa} * nxPowersOfTen::GetInteger(static_cast<std::size_t>(std::max(zeros, 0))); };
    const int morePlaces = price.GetDecimalPlaces() - tick.GetDecimalPlaces();
    return scale(price.GetValue(), -morePlaces) % scale(tick.GetValue(), morePlaces) == 0;
}

nxValidPrices::_Position nxValidPrices::_GetPosition(const nxDecimal& magnitude) const
{
    const auto mantissa = static_cast<std::uint64_t>(magnitude.GetValue());
    const std::size_t places = magnitude.GetDecimalPlaces();
    if (places <= _places)
        return {nxUnsignedWide{mantissa} * nxPowersOfTen::GetInteger(_places - places), false};
    const std::size_t surplus = places - _places;
    if (surplus > MostPlaces)  // the power would not fit, and is larger than every mantissa
        return {0, mantissa != 0};
    const std::uint64_t power = nxPowersOfTen::GetInteger(surplus);
    return {mantissa / power, mantissa % power != 0};
}

// The index of the price's band; the number of bands where it has none. The most negative mantissa has no magnitude.
std::size_t nxValidPrices::_FindBand(const nxDecimal& price, const _Position& position) const
{
    if (price.GetValue() == INT64_MIN)
        return _bands.size();
    const auto found = std::partition_point(_bands.begin(), _bands.end(),
                                            [&](const Band& band)
                                            {
                                                const _Position bound = _GetPosition(band.first);
                                                return bound.units < position.units ||
                                                       (bound.units == position.units && position.hasRest);
                                            });
    return static_cast<std::size_t>(found - _bands.begin());
}

// The number of a band in units; false when it is not positive or has more places.
bool nxValidPrices::_GetUnits(const nxDecimal& number, nxUnsignedWide& units) const
{
    const _Position position = _GetPosition(number);
    units = position.units;
    return number.IsPositive() && !position.hasRest;
}

bool nxValidPrices::_MakeInterval(std::size_t band, _Lattice& interval) const
{
    nxUnsignedWide bound = 0;
    if (!_GetUnits(_bands[band].first, bound) || !_GetUnits(_bands[band].second, interval.tick))
        return false;
    interval.first = 0;
    if (band != 0)
    {
        nxUnsignedWide lowerBound = 0, lowerTick = 0;
        if (!_GetUnits(_bands[band - 1].first, lowerBound) || !_GetUnits(_bands[band - 1].second, lowerTick))
            return false;
        // In a band that is narrower than the lower tick the band's own tick holds only above the bound.
        interval.first = std::min(lowerBound + lowerTick, bound + 1);
    }
    // Less than one tick above the bound, but not beyond the next band.
    nxUnsignedWide end = bound;
    if (band + 1 != _bands.size() && !_GetUnits(_bands[band + 1].first, end))
        return false;
    interval.last = std::min(bound + interval.tick - 1, end);
    return true;
}

bool nxValidPrices::_MakeLattice(std::size_t band, _Lattice& lattice) const
{
    if (!_MakeInterval(band, lattice))
        return false;
    lattice.first = GetMultipleAbove(lattice.first, lattice.tick);
    lattice.last = GetMultipleBelow(lattice.last, lattice.tick);
    return true;
}

bool nxValidPrices::Contains(const nxDecimal& price) const
{
    if (!price.IsValid())
        return false;
    const _Position position = _GetPosition(nxDecimal::Abs(price));
    const std::size_t band = _FindBand(price, position);
    if (band == _bands.size() || position.hasRest)
        return false;
    nxUnsignedWide tick = 0;
    if (!_GetUnits(_bands[band].second, tick))
        return false;
    if (band != 0)
    {
        nxUnsignedWide lowerBound = 0, lowerTick = 0;
        if (!_GetUnits(_bands[band - 1].first, lowerBound) || !_GetUnits(_bands[band - 1].second, lowerTick))
            return false;
        if (position.units < lowerBound + lowerTick)
            tick = lowerTick;
    }
    return GetMultipleBelow(position.units, tick) == position.units;
}

nxErrorEnum nxValidPrices::GetNext(bool isUp, const nxDecimal& price, nxDecimal& next) const
{
    if (!price.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const _Position position = _GetPosition(nxDecimal::Abs(price));
    const std::size_t band = _FindBand(price, position);
    if (band == _bands.size() || !_bands[band].second.IsPositive())
        return nxErrorEnum(NX_ERR_NO_MATCH);
    const bool isNegative = isUp ? price.IsNegative() : !price.IsPositive();
    nxDecimal found;
    const nxErrorEnum error =
        isUp != isNegative ? _GetOutwards(band, position, found) : _GetInwards(band, position, found);
    if (error.IsOK())
    {
        if (isNegative)
            found.InvertSign();
        next = found;
    }
    return error;
}

nxErrorEnum nxValidPrices::_GetOutwards(std::size_t band, const _Position& position, nxDecimal& next) const
{
    for (std::size_t i = band == 0 ? 0 : band - 1; i != _bands.size(); ++i)
    {
        _Lattice lattice;
        if (!_MakeLattice(i, lattice))
            break;
        const nxUnsignedWide above = GetMultipleBelow(position.units, lattice.tick) + lattice.tick;
        if (const nxUnsignedWide candidate = std::max(above, lattice.first); candidate <= lattice.last)
            return _Store(candidate, i, next);
    }
    return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
}

// For a position above 0, which always has 0 below it.
nxErrorEnum nxValidPrices::_GetInwards(std::size_t band, const _Position& position, nxDecimal& next) const
{
    const nxUnsignedWide highest = position.hasRest ? position.units : position.units - 1;
    for (std::size_t i = band + 1; i-- != 0;)
    {
        _Lattice lattice;
        if (!_MakeLattice(i, lattice))
            break;
        const nxUnsignedWide candidate = std::min(GetMultipleBelow(highest, lattice.tick), lattice.last);
        if (lattice.first <= candidate)
            return _Store(candidate, i, next);
    }
    return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
}

// Writes a multiple of the band's tick, which has no digit below the tick's places.
nxErrorEnum nxValidPrices::_Store(nxUnsignedWide units, std::size_t band, nxDecimal& next) const
{
    const unsigned char tickPlaces = _bands[band].second.GetDecimalPlaces();
    const std::size_t fewer = tickPlaces < _places ? std::size_t{_places} - tickPlaces : 0;
    const nxUnsignedWide mantissa = units / nxPowersOfTen::GetInteger(fewer);
    if (mantissa > nxUnsignedWide{INT64_MAX})
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    next = nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<std::int64_t>(mantissa),
                                                         std::min(tickPlaces, _places));
    return nxErrorEnum();
}

bool nxValidPrices::_CountOutwards(const nxDecimal& lower, const nxDecimal& upper, nxUnsignedWide& count) const
{
    const _Position start = _GetPosition(nxDecimal::Abs(lower));
    const nxUnsignedWide end = _GetPosition(nxDecimal::Abs(upper)).units;
    const std::size_t band = _FindBand(lower, start);
    for (std::size_t i = band == 0 ? 0 : band - 1; i != _bands.size(); ++i)
    {
        _Lattice interval;
        if (!_MakeInterval(i, interval))
            return false;
        const nxUnsignedWide first = std::max(interval.first, start.units + 1);
        const nxUnsignedWide last = std::min(interval.last, end);
        if (first <= last)
            count += CountIn(last, interval.tick) - CountIn(first - 1, interval.tick);
        if (end <= interval.last)
            break;
    }
    return true;
}

nxErrorEnum nxValidPrices::CountTicks(std::span<const Band> bands, const nxDecimal& from, const nxDecimal& to,
                                      long long& ticks)
{
    if (!from.IsValid() || !to.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    unsigned char places = 0;
    for (const auto& [bound, tick] : bands)
        places = std::max({places, bound.GetDecimalPlaces(), tick.GetDecimalPlaces()});
    const nxValidPrices prices(bands, std::min(places, MostPlaces));
    if (!prices.Contains(from) || !prices.Contains(to))
        return nxErrorEnum(NX_ERR_NO_MATCH);
    const nxDecimal zero;
    const bool isUp = from.CompareExact(to) <= 0;
    const nxDecimal& inner = from.IsNegative() == isUp ? to : from;
    const nxDecimal& outer = from.IsNegative() == isUp ? from : to;
    nxUnsignedWide count = 0;
    const bool isCounted = from.IsNegative() == to.IsNegative()
                               ? prices._CountOutwards(inner, outer, count)
                               : prices._CountOutwards(zero, from, count) && prices._CountOutwards(zero, to, count);
    if (!isCounted || count > nxUnsignedWide{INT64_MAX})
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    ticks = isUp ? static_cast<long long>(count) : -static_cast<long long>(count);
    return nxErrorEnum();
}
