#include "core/price/internal/nxTickRun.h"

#include <algorithm>
#include <iterator>

#include "core/numeric/nxPowersOfTen.h"

namespace
{
bool EndsInZero(std::uint64_t mantissa) { return static_cast<std::int64_t>(mantissa) % 10 == 0; }
}  // namespace

std::uint64_t nxTickRun::Leap(nxDecimal& price, std::uint64_t wanted)
{
    const std::int64_t value = price.GetValue();
    const auto holds = [&](const _Stretch& stretch)
    { return stretch.scale == price.GetScale() && stretch.prices.Contains(value); };
    if (_learnt == 0)
        return 0;
    if (!holds(_stretches[_last]))
    {
        const auto end = _stretches.begin() + static_cast<std::ptrdiff_t>(std::min(_learnt, _stretches.size()));
        const auto found = std::find_if(_stretches.begin(), end, holds);
        if (found == end)
            return 0;
        _last = static_cast<std::size_t>(found - _stretches.begin());
    }

    const _Stretch& stretch = _stretches[_last];
    const std::uint64_t room = _isUp ? stretch.prices.CountAbove(value) : stretch.prices.CountBelow(value);
    const auto start = static_cast<std::uint64_t>(value);
    const std::uint64_t step = _isUp ? stretch.step : 0 - stretch.step;
    std::uint64_t steps = std::min(wanted, room / stretch.step + 1);
    if (stretch.mayDropZeros)
    {
        // Within the stretch the last digit stays; the last step may lead out of it, and wrap.
        if (!EndsInZero(stretch.step))
            steps = 1;
        steps -= EndsInZero(start + steps * step) ? 1 : 0;
        if (EndsInZero(start))
            return 0;
    }
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<std::int64_t>(start + steps * step),
                                                          price.GetDecimalPlaces());
    return steps;
}

// The end when the price has no band.
nxTickRun::iterator nxTickRun::_BandOfStep(const nxDecimal& price) const
{
    const iterator band = _table._Find(price);
    return band == _table._ranges.end()
               ? band
               : _table._BandOfStep(band, _IsOutwards(price.IsNegative()), nxDecimal::Abs(price));
}

bool nxTickRun::_GoesBy(iterator band, const _Stretch& stretch, const nxDecimal& price) const
{
    if (_BandOfStep(price) != band)
        return false;
    if (!stretch.staysInItsBand)
        return true;
    const bool isOutwards = _IsOutwards(price.IsNegative());
    nxDecimal landing = nxDecimal::Abs(price);
    const auto mantissa = static_cast<std::uint64_t>(landing.GetValue());
    landing = nxDecimal::ConstructFromValueAndDecimalPlaces(
        static_cast<std::int64_t>(isOutwards ? mantissa + stretch.step : mantissa - stretch.step),
        price.GetDecimalPlaces());
    return isOutwards != landing.IsNegative() && _table._BandAfterStep(band, isOutwards, landing) == band;
}

void nxTickRun::_Learn(const nxDecimal& price)
{
    const iterator band = _BandOfStep(price);
    if (band == _table._ranges.end() || !band->second.IsPositive() || price.GetScale() < band->second.GetScale())
        return;
    const unsigned char places = price.GetDecimalPlaces();
    const unsigned char tickPlaces = band->second.GetDecimalPlaces();
    const iterator next = std::next(band) == _table._ranges.end() ? band : std::next(band);
    const unsigned char nextPlaces = next->second.GetDecimalPlaces();
    _Stretch stretch;
    stretch.scale = price.GetScale();
    stretch.step = static_cast<std::uint64_t>(band->second.GetValue()) *
                   nxPowersOfTen::GetInteger(std::size_t{places} - tickPlaces);
    stretch.mayDropZeros = places > tickPlaces;
    stretch.staysInItsBand = places == tickPlaces && nextPlaces != places;
    if (stretch.step == 0 || (places > tickPlaces && nextPlaces > places) || !_GoesBy(band, stretch, price))
        return;

    // The last magnitude on the way from the price's own to `end` that goes by the band.
    const bool isNegative = price.IsNegative();
    const auto findLast = [&](std::uint64_t inside, std::uint64_t end)
    {
        std::uint64_t outside = end;
        while (inside != outside)
        {
            const bool isAbove = outside > inside;
            const std::uint64_t distance = isAbove ? outside - inside : inside - outside;
            const std::uint64_t half = distance - distance / 2;
            const std::uint64_t middle = isAbove ? inside + half : inside - half;
            const auto mantissa = static_cast<std::int64_t>(middle);
            if (_GoesBy(band, stretch,
                        nxDecimal::ConstructFromValueAndDecimalPlaces(isNegative ? -mantissa : mantissa, places)))
                inside = middle;
            else
                outside = isAbove ? middle - 1 : middle + 1;
        }
        return inside;
    };
    const std::uint64_t magnitude = nxTickZone::Magnitude(price.GetValue());
    const std::uint64_t least = findLast(magnitude, isNegative ? 1 : 0);
    const std::uint64_t most = findLast(magnitude, INT64_MAX);
    stretch.prices = {isNegative ? 0 - most : least, most - least};
    _last = _learnt++ % _stretches.size();
    _stretches[_last] = stretch;
}
