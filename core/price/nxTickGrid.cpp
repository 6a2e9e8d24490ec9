#include "core/price/nxTickGrid.h"

#include <algorithm>
#include <bit>

#include "core/numeric/nxPowersOfTen.h"

namespace
{
constexpr unsigned char maxPlaces = 15;
constexpr std::uint64_t maxMagnitude = INT64_MAX;

std::uint64_t Power(unsigned places) { return nxPowersOfTen::GetInteger(static_cast<unsigned char>(places)); }

// ceil(2^(63 + shift) / divisor), where 2^shift is the largest power of two not above the divisor: then
// (2n * reciprocal) >> (64 + shift) is n / divisor for every n up to nxTickZone::MaxScaled.
void SetReciprocal(std::uint64_t divisor, std::uint64_t& reciprocal, unsigned char& shift)
{
    shift = static_cast<unsigned char>(std::bit_width(divisor) - 1);
    __extension__ typedef unsigned __int128 Wide;
    reciprocal = static_cast<std::uint64_t>(((Wide{1} << (63 + shift)) + divisor - 1) / divisor);
}

nxTickZone::Range MakeRange(std::uint64_t first, std::uint64_t last)
{
    return first <= last ? nxTickZone::Range{first, last - first} : nxTickZone::Range{};
}

// Takes the common scale's codes of ends to magnitudes of one number of places.
struct Scale
{
    std::uint64_t power;  // between the two scales
    bool isFiner;         // whether the prices have more places than the common scale

    std::uint64_t MaxExact() const { return isFiner ? nxTickZone::MaxScaled : nxTickZone::MaxScaled / power; }

    // Where a magnitude lies among the codes: 2x on a point x of the common scale, 2x + 1 behind it. A magnitude beyond
    // MaxExact() lies behind all codes.
    std::uint64_t Position(std::uint64_t magnitude) const
    {
        if (magnitude > MaxExact())
            return UINT64_MAX;
        return isFiner ? 2 * (magnitude / power) + (magnitude % power != 0 ? 1 : 0) : 2 * magnitude * power;
    }

    // The largest magnitude whose position is not behind the code, but MaxExact() at most.
    std::uint64_t LastAt(std::uint64_t code) const
    {
        if (!isFiner)
            return std::min(code / (2 * power), MaxExact());
        const std::uint64_t point = code / 2 + code % 2;
        return point > MaxExact() / power ? MaxExact() : point * power - code % 2;
    }
};
}  // namespace

void nxTickGrid::Build(const Bands& bands)
{
    _ends.clear();
    _stretches.clear();
    // The maximum is the bound of a top band; anything else is a table still being built.
    if (bands.empty() || !bands.back().first.EqualsExactly(nxDecimal::GetMaximumDecimal()))
        return;
    _places = 0;
    for (const auto& [bound, increment] : bands)
        _places = std::max({_places, bound.GetDecimalPlaces(), increment.GetDecimalPlaces()});
    for (std::size_t band = 0; band < bands.size(); ++band)
    {
        if (_AddBand(bands, band))
            continue;
        _ends.clear();
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
    const std::uint64_t end = isTop ? UINT64_MAX : 2 * bound;
    if (band != 0)
    {
        const auto& [lowerBound, lowerIncrement] = bands[band - 1];
        std::uint64_t threshold = 0;
        if (end <= _ends.back() || !_ScaleUp(lowerBound + lowerIncrement, threshold))
            return false;
        _AddStretch(std::min(2 * threshold - 1, end), band, lowerIncrement, false);
        if (end == _ends.back())
            return true;
    }
    _AddStretch(end, band, increment, true);
    return true;
}

void nxTickGrid::_AddStretch(std::uint64_t end, std::size_t band, const nxDecimal& increment, bool hasOwnTick)
{
    Stretch stretch;
    stretch.increment = &increment;
    _ScaleUp(increment, stretch.divisor);
    SetReciprocal(stretch.divisor, stretch.reciprocal, stretch.shift);
    stretch.band = static_cast<std::uint32_t>(band);
    stretch.hasOwnTick = hasOwnTick;
    _stretches.push_back(stretch);
    _ends.push_back(end);
}

// False unless the number is positive and within the limits.
bool nxTickGrid::_ScaleUp(const nxDecimal& number, std::uint64_t& scaled) const
{
    if (!number.IsPositive() || _places > maxPlaces || number.GetDecimalPlaces() > _places)
        return false;
    const std::uint64_t power = Power(_places - number.GetDecimalPlaces());
    const std::uint64_t magnitude = nxTickZone::Magnitude(number.GetValue());
    scaled = magnitude * power;
    return magnitude <= nxTickZone::MaxScaled / power;
}

bool nxTickGrid::Locate(const nxDecimal& price, nxTickZone& zone) const
{
    const unsigned char places = price.GetDecimalPlaces();
    const std::uint64_t magnitude = nxTickZone::Magnitude(price.GetValue());
    const bool isFiner = places > _places;
    const Scale scale{Power(isFiner ? places - _places : _places - places), isFiner};
    // A coarse price beyond the exact ones is still above all bounds; a fine one need not be.
    if (_ends.empty() || places > maxPlaces || magnitude > (isFiner ? scale.MaxExact() : maxMagnitude))
        return false;

    const std::uint64_t position = scale.Position(magnitude);
    std::size_t index = 0;
    for (const std::uint64_t end : _ends)
        index += end < position ? 1 : 0;
    const Stretch& stretch = _stretches[index];
    const bool isTop = index + 1 == _ends.size();
    const std::uint64_t first = index == 0 ? 0 : scale.LastAt(_ends[index - 1]) + 1;
    const std::uint64_t lastExact = scale.LastAt(_ends[index]);
    const std::uint64_t last = isTop && !isFiner ? maxMagnitude : lastExact;

    nxTickZone found;
    found.prices = MakeRange(first, last);
    found.increment = stretch.increment;
    found.band = stretch.band;
    found.places = places;
    found.tick = stretch.increment->GetValue();
    found.tickPlaces = stretch.increment->GetDecimalPlaces();

    // Rounding divides at the finer of the two scales.
    found.factor = isFiner ? 1 : scale.power;
    found.divisor = stretch.divisor;
    found.reciprocal = stretch.reciprocal;
    found.shift = stretch.shift;
    if (!isFiner)
        found.rounding = MakeRange(first, lastExact);
    else if (stretch.divisor <= nxTickZone::MaxScaled / scale.power)
    {
        found.divisor = stretch.divisor * scale.power;
        SetReciprocal(found.divisor, found.reciprocal, found.shift);
        found.rounding = found.prices;
    }

    // Stepping adds at the price's own scale. With the very places of the tick that is exact whatever the size, but the
    // comparison with the band below subtracts at the common scale and must not come near an overflow there.
    if (stretch.hasOwnTick && places >= found.tickPlaces &&
        static_cast<std::uint64_t>(found.tick) <= nxTickZone::MaxScaled / Power(places - found.tickPlaces))
    {
        const auto step = static_cast<std::uint64_t>(found.tick) * Power(places - found.tickPlaces);
        const bool isExact = places == found.tickPlaces;
        const std::uint64_t outwardsLast = isExact ? last : lastExact;
        const std::uint64_t inwardsLast =
            isExact && isTop && index != 0 ? maxMagnitude / 2 / scale.power : outwardsLast;
        // On the point where this band's tick begins a step towards zero still goes by the band below.
        const std::uint64_t inwardsFirst = index == 0 ? 0 : scale.LastAt(_ends[index - 1] + 1) + 1;
        found.step = static_cast<std::int64_t>(step);
        if (outwardsLast >= step)
            found.outwards = MakeRange(first, outwardsLast - step);
        found.inwards = MakeRange(std::max(inwardsFirst, step), inwardsLast);
    }
    zone = found;
    return true;
}
