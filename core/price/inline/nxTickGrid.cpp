#include "core/price/inline/nxTickGrid.h"

#include <algorithm>
#include <array>
#include <bit>

#include "core/numeric/nxPowersOfTen.h"

namespace
{
constexpr unsigned char maxPlaces = 15;
constexpr std::uint64_t maxMagnitude = INT64_MAX;

// ceil(2^(63 + shift) / divisor), where 2^shift is the largest power of two not above the divisor: then
// (2n * reciprocal) >> (64 + shift) is n / divisor for every n below 2^50.
void SetReciprocal(std::uint64_t divisor, std::uint64_t& reciprocal, unsigned char& shift)
{
    shift = static_cast<unsigned char>(std::bit_width(divisor) - 1);
    __extension__ typedef unsigned __int128 Wide;
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): increments are positive, so a divisor is
    reciprocal = static_cast<std::uint64_t>(((Wide{1} << (63 + shift)) + divisor - 1) / divisor);
}

// The largest magnitude that stays within nxTickZone::MaxScaled when it gets so many more places.
constexpr auto maxExact = []
{
    std::array<std::uint64_t, maxPlaces + 1> limits{};
    for (unsigned places = 0; places <= maxPlaces; ++places)
        limits[places] = nxTickZone::MaxScaled / nxPowersOfTen::GetInteger(places);
    return limits;
}();

// Takes the common scale's codes of ends to magnitudes of one number of places.
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

    // Where a magnitude lies among the codes: 2x on a point x of the common scale, 2x + 1 behind it; behind all codes
    // when it is beyond GetMaxExact().
    std::uint64_t GetPosition(std::uint64_t magnitude) const
    {
        if (magnitude > GetMaxExact())
            return UINT64_MAX;
        return _isFiner ? 2 * (magnitude / _power) + (magnitude % _power != 0 ? 1 : 0) : 2 * magnitude * _power;
    }

    // The largest magnitude whose position is not behind the code, but GetMaxExact() at most.
    std::uint64_t GetLastAt(std::uint64_t code) const
    {
        if (_difference == 0)
            return std::min(code / 2, GetMaxExact());
        if (!_isFiner)
            return std::min(code / (2 * _power), GetMaxExact());
        const std::uint64_t point = code / 2 + code % 2;
        return point > maxExact[_difference] ? GetMaxExact() : point * _power - code % 2;
    }

private:
    unsigned _difference;
    std::uint64_t _power;
    bool _isFiner;
};

// Where a stretch lies, in magnitudes of one number of places.
struct Extent
{
    std::uint64_t first;      // 0 for the first stretch, which lies on both sides of 0
    std::uint64_t last;       // as far as the tick is known
    std::uint64_t lastExact;  // as far as everything is
    std::uint64_t firstInwards;
    bool isNegative;
    bool isFirst;

    nxTickZone::Range MakeRange(std::uint64_t from, std::uint64_t to) const
    {
        if (isFirst)
            return {0 - to, 2 * to};
        return {isNegative ? 0 - to : from, to - from};
    }
};

void SetRounding(const Extent& extent, const Scale& scale, std::uint64_t divisor, nxTickZone& zone)
{
    // The division takes the whole stretch and two ticks.
    if (extent.first > extent.lastExact || divisor > nxTickZone::MaxScaled / 4)
        return;
    const std::uint64_t factor = scale.IsFiner() ? 1 : scale.GetPower();
    const bool isNegative = extent.isNegative;
    // Towards zero by magnitude is upwards for a negative price.
    const std::uint64_t start = factor * (isNegative ? extent.lastExact : extent.first);
    const std::uint64_t ticks = (start + (isNegative ? divisor - 1 : 0)) / divisor;
    const std::uint64_t distance = 2 * (isNegative ? ticks * divisor - start : start - ticks * divisor);
    const std::uint64_t up = distance + divisor / 2 * 2;
    const std::uint64_t down = distance + (divisor - 1) / 2 * 2;
    zone.roundingPlaces = zone.places;
    zone.rounding = {isNegative ? 0 - extent.lastExact : extent.first, extent.lastExact - extent.first};
    zone.factor = 2 * factor;
    zone.tick = zone.increment->GetValue();
    zone.base = static_cast<std::int64_t>(ticks) * (isNegative ? -zone.tick : zone.tick);
    zone.start[0] = distance;
    zone.start[1] = distance + 2 * (divisor - 1);
    zone.start[2] = isNegative ? down : up;  // half a tick goes away from zero
    zone.start[3] = isNegative ? up : down;
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
        const std::uint64_t firstInwards = std::max(extent.firstInwards, step);
        // Then there are prices inwards, too: they begin one behind the first.
        if (last < extent.first + step)
            return;
        const nxTickZone::Range outwards = extent.MakeRange(extent.first, last - step);
        const nxTickZone::Range inwards = extent.MakeRange(firstInwards, last);
        zone.up = extent.isNegative ? inwards : outwards;
        zone.down = extent.isNegative ? outwards : inwards;
    }
    zone.step = static_cast<std::int64_t>(step);
    zone.steppingPlaces = zone.places;
}
}  // namespace

void nxTickGrid::Build(const Bands& bands)
{
    _ends.clear();
    _stretches.clear();
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
    _Stretch stretch;
    stretch.increment = &increment;
    _ScaleUp(increment, stretch.divisor);
    SetReciprocal(stretch.divisor, stretch.reciprocal, stretch.shift);
    stretch.band = static_cast<std::uint32_t>(band);
    stretch.hasOwnTick = hasOwnTick;
    _stretches.push_back(stretch);
    _ends.push_back(end);
}

// False unless the number, a band's or the sum of two, is positive and within the limits.
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
    if (_ends.empty() || places > maxPlaces)
        return NotFound;
    const Scale scale(_places, places);
    const std::uint64_t magnitude = nxTickZone::Magnitude(price.GetValue());
    // A coarse price beyond the exact ones is still above all bounds; a fine one need not be.
    if (magnitude > (scale.IsFiner() ? scale.GetMaxExact() : maxMagnitude))
        return NotFound;

    // The first end that is not before the price; there is one, as the last is before none. Without branches, because
    // prices that come here are those that could not be foretold.
    const std::uint64_t position = scale.GetPosition(magnitude);
    std::size_t first = 0;
    for (std::size_t count = _ends.size(); count > 1; count -= count / 2)
        first += _ends[first + count / 2 - 1] < position ? count / 2 : 0;
    return first;
}

void nxTickGrid::Fill(std::size_t index, const nxDecimal& price, nxTickZone& zone) const
{
    const unsigned char places = price.GetDecimalPlaces();
    const Scale scale(_places, places);
    const _Stretch& stretch = _stretches[index];
    Extent extent;
    extent.isNegative = price.IsNegative();
    extent.isFirst = index == 0;
    extent.first = extent.isFirst ? 0 : scale.GetLastAt(_ends[index - 1]) + 1;
    extent.lastExact = scale.GetLastAt(_ends[index]);
    extent.last = index + 1 == _ends.size() && !scale.IsFiner() ? maxMagnitude : extent.lastExact;
    // On the point where this band's tick begins a step towards zero still goes by the band below.
    extent.firstInwards = extent.isFirst ? 0 : scale.GetLastAt(_ends[index - 1] + 1) + 1;

    // Every member is written once, and singly: a copy would wait for the writes.
    zone.prices = extent.MakeRange(extent.first, extent.last);
    zone.places = places;
    zone.roundingPlaces = nxTickZone::NoPlaces;
    zone.steppingPlaces = nxTickZone::NoPlaces;
    zone.band = stretch.band;
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
    if (stretch.hasOwnTick)
        SetSteps(extent, zone);
}
