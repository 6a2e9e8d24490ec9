// SPDX-License-Identifier: Apache-2.0
#include "core/price/internal/nxTickRun.h"

#include <algorithm>
#include <iterator>

#include "core/numeric/nxPowersOfTen.h"

// The number of steps from a price of the stretch that come at once: all that stay in it and the one that leaves it. A
// price that may drop zeros stays, because the step that leaves may wrap and change the last digit.
std::uint64_t nxTickRun::_CountSteps(const _Stretch& stretch, std::int64_t value) const
{
    const std::uint64_t room = _isUp ? stretch.GetPrices().CountAbove(value) : stretch.GetPrices().CountBelow(value);
    if (room < stretch.step || stretch.changesLastDigit)
        return 1;
    return room / stretch.step + (stretch.mayDropZeros ? 0 : 1);
}

// The stretch that holds the mantissa; null when none is known.
const nxTickRun::_Stretch* nxTickRun::_Find(std::uint64_t scale, std::int64_t value)
{
    const auto holds = [&](const _Stretch& stretch)
    { return stretch.scale == scale && stretch.GetPrices().Contains(value); };
    if (holds(_stretches[_last])) [[likely]]
        return &_stretches[_last];
    const auto end = _stretches.begin() + static_cast<std::ptrdiff_t>(std::min(_learnt, _stretches.size()));
    const auto found = std::find_if(_stretches.begin(), end, holds);
    if (found == end)
        return nullptr;
    _last = static_cast<std::size_t>(found - _stretches.begin());
    return &*found;
}

std::uint64_t nxTickRun::_LeapAsLearnt(nxDecimal& price, std::uint64_t wanted)
{
    std::int64_t value = price.GetValue();
    std::uint64_t done = 0;
    while (done != wanted)
    {
        const _Stretch* const stretch = _Find(price.GetScale(), value);
        if (stretch == nullptr || (stretch->mayDropZeros && value % 10 == 0))
            break;
        const std::uint64_t steps = std::min(wanted - done, _CountSteps(*stretch, value));
        const std::uint64_t distance = steps * stretch->step;
        const auto start = static_cast<std::uint64_t>(value);
        const auto landing = static_cast<std::int64_t>(_isUp ? start + distance : start - distance);
        if (stretch->mayDropZeros && landing % 10 == 0)
            break;
        value = landing;
        done += steps;
    }
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(value, price.GetDecimalPlaces());
    return done;
}

// The band whose tick a step takes; the end of the bands when the price has none.
nxTickRun::Band nxTickRun::_BandOfStep(const nxDecimal& price) const
{
    const Band band = _rules.FindBand(price);
    return band == _rules.End() ? band
                                : _rules.GetBandOfStep(band, _IsOutwards(price.IsNegative()), nxDecimal::Abs(price));
}

// Whether the price belongs to a stretch of the band, by claims 1 and 3.
bool nxTickRun::_GoesBy(Band band, const _Stretch& stretch, const nxDecimal& price) const
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
    return !(isOutwards && landing.IsNegative()) && _rules.GetBandAfterStep(band, isOutwards, landing) == band;
}

void nxTickRun::_Learn(const nxDecimal& price)
{
    const Band band = _BandOfStep(price);
    if (band == _rules.End() || !band->second.IsPositive() || price.GetScale() < band->second.GetScale())
        return;
    const unsigned char places = price.GetDecimalPlaces();
    const unsigned char tickPlaces = band->second.GetDecimalPlaces();
    const Band next = std::next(band) == _rules.End() ? band : std::next(band);
    const unsigned char nextPlaces = next->second.GetDecimalPlaces();
    _Stretch stretch;
    stretch.scale = price.GetScale();
    stretch.step = static_cast<std::uint64_t>(band->second.GetValue()) *
                   nxPowersOfTen::GetInteger(std::size_t{places} - tickPlaces);
    stretch.mayDropZeros = places > tickPlaces;
    stretch.changesLastDigit = stretch.mayDropZeros && stretch.step % 10 != 0;
    stretch.staysInItsBand = places == tickPlaces && nextPlaces != places;
    if (_overflow == Overflow::IsLeft && stretch.step / nxPowersOfTen::GetInteger(std::size_t{places} - tickPlaces) !=
                                             static_cast<std::uint64_t>(band->second.GetValue()))
        return;
    if (stretch.step == 0 || (places > tickPlaces && nextPlaces > places) || !_GoesBy(band, stretch, price))
        return;

    // Claim 1: the last magnitude on the way from one inside to `end` that goes by the band.
    const auto findLast = [&](bool isNegative, std::uint64_t inside, std::uint64_t end)
    {
        while (inside != end)
        {
            const bool isAbove = end > inside;
            const std::uint64_t distance = isAbove ? end - inside : inside - end;
            const std::uint64_t half = distance - distance / 2;
            const std::uint64_t middle = isAbove ? inside + half : inside - half;
            const auto mantissa = static_cast<std::int64_t>(middle);
            if (_GoesBy(band, stretch,
                        nxDecimal::ConstructFromValueAndDecimalPlaces(isNegative ? -mantissa : mantissa, places)))
                inside = middle;
            else
                end = isAbove ? middle - 1 : middle + 1;
        }
        return inside;
    };
    if (_rules.IsFirst(band) && !stretch.staysInItsBand)
    {
        // The first band lies on both sides of 0.
        const std::uint64_t least = findLast(true, 0, INT64_MAX);
        stretch.first = 0 - least;
        stretch.span = least + findLast(false, 0, INT64_MAX);
    }
    else
    {
        const bool isNegative = price.IsNegative();
        const std::uint64_t magnitude = nxTickZone::Magnitude(price.GetValue());
        const std::uint64_t least = findLast(isNegative, magnitude, isNegative ? 1 : 0);
        const std::uint64_t most = findLast(isNegative, magnitude, INT64_MAX);
        stretch.first = isNegative ? 0 - most : least;
        stretch.span = most - least;
    }
    if (_overflow == Overflow::IsLeft && !_CutToFittingSteps(stretch))
        return;
    _last = _learnt++ % _stretches.size();
    _stretches[_last] = stretch;
}

// Leaves only the prices from which a step fits; false when there is none.
bool nxTickRun::_CutToFittingSteps(_Stretch& stretch) const
{
    if (stretch.step > std::uint64_t{INT64_MAX})
        return false;
    const auto step = static_cast<std::int64_t>(stretch.step);
    auto first = static_cast<std::int64_t>(stretch.first);
    auto last = static_cast<std::int64_t>(stretch.first + stretch.span);
    if (_isUp)
        last = std::min(last, INT64_MAX - step);
    else
        first = std::max(first, -INT64_MAX + step);
    stretch.first = static_cast<std::uint64_t>(first);
    stretch.span = static_cast<std::uint64_t>(last) - stretch.first;
    return first <= last;
}
