// SPDX-License-Identifier: Apache-2.0
#include "core/price/inline/nxTickGrid.h"

#include <algorithm>
#include <array>

#include "core/numeric/nxPowersOfTen.h"
#include "core/price/inline/nxReciprocal.h"

namespace
{
constexpr unsigned char maxPlaces = nxTickGrid::MaxPlaces;
constexpr std::uint64_t maxMagnitude = INT64_MAX;

void SetReciprocal(std::uint64_t divisor, std::uint64_t& factor, unsigned char& shift)
{
    const nxReciprocal reciprocal = nxReciprocal::Of(divisor);
    factor = reciprocal.factor;
    shift = reciprocal.shift;
}

// The largest magnitude that stays within nxTickZone::MaxScaled with the given number of places added.
constexpr auto maxExact = []
{
    std::array<std::uint64_t, maxPlaces + 1> limits{};
    for (unsigned places = 0; places <= maxPlaces; ++places)
        limits[places] = nxTickZone::MaxScaled / nxPowersOfTen::GetInteger(places);
    return limits;
}();

// Takes codes of the common scale to magnitudes of one number of places, and back.
class Scale
{
public:
    Scale(unsigned commonPlaces, unsigned places)
        : _difference(places > commonPlaces ? places - commonPlaces : commonPlaces - places),
          _power(nxPowersOfTen::GetInteger(_difference)),
          _isFiner(places > commonPlaces)
    {
    }

    std::uint64_t GetPower() const { return _power; }
    // Whether the prices have more places than the common scale.
    bool IsFiner() const { return _isFiner; }
    // The largest magnitude of which all is known that the rules ask.
    std::uint64_t GetMaxExact() const { return _isFiner ? nxTickZone::MaxScaled : maxExact[_difference]; }

    // Where a magnitude lies on the common scale; after everything when it is beyond GetMaxExact().
    nxTickGrid::Code GetCode(std::uint64_t magnitude) const
    {
        if (magnitude > GetMaxExact())
            return nxTickGrid::Code::Last();
        if (!_isFiner)
            return nxTickGrid::Code::At(magnitude * _power);
        const std::uint64_t point = magnitude / _power;
        return magnitude % _power != 0 ? nxTickGrid::Code::After(point) : nxTickGrid::Code::At(point);
    }

    // The largest magnitude whose code is not after this one, but GetMaxExact() at most.
    std::uint64_t GetLastAt(nxTickGrid::Code code) const
    {
        if (_difference == 0)
            return std::min(code.GetPointBelow(), GetMaxExact());
        if (!_isFiner)
            return std::min(code.GetPointBelow() / _power, GetMaxExact());
        const std::uint64_t point = code.GetPointAbove();
        return point > maxExact[_difference] ? GetMaxExact() : point * _power - (code.IsGap() ? 1 : 0);
    }

private:
    unsigned _difference;
    std::uint64_t _power;
    bool _isFiner;
};

// Where a stretch lies, in magnitudes of one number of places. The zone of negative prices is its mirror.
struct Extent
{
    std::uint64_t first;             // 0 for the first stretch, which lies on both sides of 0
    std::uint64_t last;              // as far as the tick is known
    std::uint64_t lastExact;         // as far as everything is known
    std::uint64_t firstStepInwards;  // from where a step towards zero takes the tick of the stretch
    bool isNegative;                 // which side the zone is for
    bool isFirst;

    // The prices of the given magnitudes: on both sides of 0, or on the zone's own.
    nxTickZone::Range MakeRange(std::uint64_t from, std::uint64_t to) const
    {
        return isFirst ? nxTickZone::Range{0 - to, 2 * to} : MakeOneSided(from, to);
    }
    nxTickZone::Range MakeOneSided(std::uint64_t from, std::uint64_t to) const
    {
        return {isNegative ? 0 - to : from, to - from};
    }
};

// The largest multiple that is not above the number, in divisors.
std::int64_t DivideDownwards(std::int64_t number, std::int64_t divisor)
{
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

// One tick is `divisor` at the scale of the division, which is the finer one of the prices and the grid.
void SetRounding(const Extent& extent, const Scale& scale, std::uint64_t divisor, nxTickZone& zone)
{
    // The division takes the whole stretch and two ticks.
    if (extent.first > extent.lastExact || divisor > nxTickZone::MaxScaled / 4)
        return;
    zone.rounding = extent.MakeOneSided(extent.first, extent.lastExact);
    zone.roundingPlaces = zone.places;

    const std::uint64_t factor = scale.IsFiner() ? 1 : scale.GetPower();
    const auto tick = static_cast<std::int64_t>(divisor);
    const auto lowest = static_cast<std::int64_t>(zone.rounding.first * factor);
    const std::int64_t ticks = DivideDownwards(lowest, tick);
    const std::uint64_t distance = 2 * static_cast<std::uint64_t>(lowest - ticks * tick);
    zone.factor = 2 * factor;
    zone.tick = zone.increment->GetValue();
    zone.base = ticks * zone.tick;
    // Half a tick goes away from zero when rounded to the nearest, and towards zero by the modified method.
    const std::uint64_t tieUp = distance + divisor / 2 * 2;
    const std::uint64_t tieDown = distance + (divisor - 1) / 2 * 2;
    zone.start[0] = distance;
    zone.start[1] = distance + 2 * (divisor - 1);
    zone.start[2] = extent.isNegative ? tieDown : tieUp;
    zone.start[3] = extent.isNegative ? tieUp : tieDown;
}

// A step adds at the price's own scale.
void SetSteps(const Extent& extent, nxTickZone& zone)
{
    const unsigned morePlaces = static_cast<unsigned>(zone.places - zone.tickPlaces);
    const std::uint64_t tick = nxTickZone::Magnitude(zone.increment->GetValue());
    if (zone.places < zone.tickPlaces || tick > maxExact[morePlaces])
        return;
    const std::uint64_t step = tick * nxPowersOfTen::GetInteger(morePlaces);
    const std::uint64_t last = morePlaces == 0 ? extent.last : extent.lastExact;
    if (extent.isFirst)
    {
        if (2 * last < step)
            return;
        zone.up = {0 - last, 2 * last - step};
        zone.down = {step - last, 2 * last - step};
    }
    else
    {
        const std::uint64_t firstInwards = std::max(extent.firstStepInwards, step);
        // Then the range inwards is not empty either: it begins right after the first price, and a top band ends beyond
        // 2^49 units.
        if (last < extent.first + step)
            return;
        const nxTickZone::Range outwards = extent.MakeOneSided(extent.first, last - step);
        const nxTickZone::Range inwards = extent.MakeOneSided(firstInwards, last);
        zone.up = extent.isNegative ? inwards : outwards;
        zone.down = extent.isNegative ? outwards : inwards;
    }
    zone.step = static_cast<std::int64_t>(step);
    zone.steppingPlaces = zone.places;
}
}  // namespace

void nxTickGrid::Build(const Bands& bands)
{
    _views.reset();
    _stretches.clear();
    _key.Renew();
    // The maximum is the bound of a top band; anything else is a table still being built.
    if (!bands.back().first.EqualsExactly(nxDecimal::GetMaximumDecimal()))
        return;
    _places = 0;
    for (const auto& [bound, increment] : bands)
        _places = std::max({_places, bound.GetDecimalPlaces(), increment.GetDecimalPlaces()});
    for (std::size_t band = 0; band < bands.size(); ++band)
    {
        if (_AddBand(bands, band))
            continue;
        _stretches.clear();
        return;
    }
}

bool nxTickGrid::_AddBand(const Bands& bands, std::size_t band)
{
    const nxDecimal& increment = bands[band].second;
    const bool isTop = band + 1 == bands.size();
    std::uint64_t bound = 0;
    std::uint64_t tick = 0;
    if (!_ScaleUp(increment, tick) || (!isTop && !_ScaleUp(bands[band].first, bound)))
        return false;
    const Code end = isTop ? Code::Last() : Code::At(bound);
    if (band != 0)
    {
        const auto& [lowerBound, lowerIncrement] = bands[band - 1];
        std::uint64_t threshold = 0;
        const Code endBefore = _stretches.back().end;
        if (!(endBefore < end) || !_ScaleUp(lowerBound + lowerIncrement, threshold))
            return false;
        _AddStretch(std::min(Code::Before(threshold), end), band, lowerIncrement, false);
        if (end == _stretches.back().end)
            return true;
    }
    _AddStretch(end, band, increment, true);
    return true;
}

void nxTickGrid::_AddStretch(Code end, std::size_t band, const nxDecimal& increment, bool isUpperPart)
{
    _Stretch stretch{.end = end};
    stretch.increment = &increment;
    _ScaleUp(increment, stretch.divisor);
    SetReciprocal(stretch.divisor, stretch.reciprocal, stretch.shift);
    stretch.band = static_cast<std::uint32_t>(band);
    stretch.isUpperPart = isUpperPart;
    _stretches.push_back(stretch);
}

// Takes a number of a band, or the sum of two, to the common scale; false when it is not positive or beyond the limits.
bool nxTickGrid::_ScaleUp(const nxDecimal& number, std::uint64_t& scaled) const
{
    if (!number.IsPositive() || _places > maxPlaces)
        return false;
    const std::uint64_t power = nxPowersOfTen::GetInteger(_places - number.GetDecimalPlaces());
    const std::uint64_t magnitude = nxTickZone::Magnitude(number.GetValue());
    scaled = magnitude * power;
    return magnitude <= nxTickZone::MaxScaled / power;
}

std::size_t nxTickGrid::Find(const nxDecimal& price) const
{
    const unsigned char places = price.GetDecimalPlaces();
    if (_stretches.empty() || places > maxPlaces)
        return NotFound;
    const Scale scale(_places, places);
    const std::uint64_t magnitude = nxTickZone::Magnitude(price.GetValue());
    // A coarse price beyond the exact ones is still above all bounds; a fine one need not be.
    if (magnitude > (scale.IsFiner() ? scale.GetMaxExact() : maxMagnitude))
        return NotFound;

    // The first end that is not before the price; there is one, because the last is after everything. Branch-free,
    // because prices that miss the remembered zone are unpredictable.
    const Code code = scale.GetCode(magnitude);
    std::size_t first = 0;
    for (std::size_t count = _stretches.size(); count > 1; count -= count / 2)
        first += _stretches[first + count / 2 - 1].end < code ? count / 2 : 0;
    return first;
}

std::uint64_t nxTickGrid::GetLast(std::size_t index, unsigned char places) const
{
    const Scale scale(_places, places);
    return index + 1 == _stretches.size() && !scale.IsFiner() ? maxMagnitude : scale.GetLastAt(_stretches[index].end);
}

void nxTickGrid::Fill(std::size_t index, unsigned char places, bool isNegative, nxTickZone& zone) const
{
    const Scale scale(_places, places);
    const _Stretch& stretch = _stretches[index];
    Extent extent;
    extent.isNegative = isNegative;
    extent.isFirst = index == 0;
    extent.first = extent.isFirst ? 0 : GetLast(index - 1, places) + 1;
    extent.last = GetLast(index, places);
    extent.lastExact = scale.GetLastAt(stretch.end);
    // On the point where this band's tick begins a step towards zero still goes by the band below.
    extent.firstStepInwards = extent.isFirst ? 0 : scale.GetLastAt(_stretches[index - 1].end.GetNext()) + 1;

    zone.prices = extent.MakeRange(extent.first, extent.last);
    zone.places = places;
    zone.roundingPlaces = nxTickZone::NoPlaces;
    zone.steppingPlaces = nxTickZone::NoPlaces;
    zone.band = stretch.band;
    zone.stretch = static_cast<std::uint32_t>(index);
    zone.increment = stretch.increment;
    zone.tickPlaces = stretch.increment->GetDecimalPlaces();
    if (!scale.IsFiner())
    {
        zone.reciprocal = stretch.reciprocal;
        zone.shift = stretch.shift;
        SetRounding(extent, scale, stretch.divisor, zone);
    }
    else if (stretch.divisor <= nxTickZone::MaxScaled / scale.GetPower())
    {
        const std::uint64_t divisor = stretch.divisor * scale.GetPower();
        SetReciprocal(divisor, zone.reciprocal, zone.shift);
        SetRounding(extent, scale, divisor, zone);
    }
    if (stretch.isUpperPart)
        SetSteps(extent, zone);
}
