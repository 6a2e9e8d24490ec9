#include "core/price/internal/nxTickRun.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>

#include "core/numeric/nxPowersOfTen.h"

namespace
{
__extension__ typedef __int128 WideInteger;

constexpr unsigned maxPlacesOfPower = 18;  // of 10^n in a 64-bit integer
constexpr unsigned placesOfInteger = 11;   // 2^11 is twice the rounding of a 64-bit integer to a double

// Of a positive number: 2^(exponent - 1) <= value < 2^exponent.
int ExponentOf(double value) { return static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1022; }
}  // namespace

// False where nothing repeats: at 0, and at prices without a value or a band.
bool nxTickRun::_FindRule(const nxDecimal& price, _Rule& rule) const
{
    const nxDecimal magnitude = nxDecimal::Abs(price);
    if (!magnitude.IsPositive())
        return false;
    const iterator band = _table._Find(price);
    if (band == _table._ranges.end())
        return false;
    rule.isNegative = price.IsNegative();
    rule.band = _table._BandOfStep(band, _isUp != rule.isNegative, magnitude);
    rule.scale = price.GetScale();
    rule.bits = static_cast<int>(std::bit_width(static_cast<std::uint64_t>(magnitude.GetValue())));
    rule.exponent = ExponentOf(magnitude.GetAsDouble());
    return true;
}

// Whether a step adds exactly one increment although it goes through doubles.
//
// Within one power of two the doubles lie w units of the price apart. The price is rounded by w/2 at most; what is
// added to it is always the same whole number of w, which misses the increment by a known part of a unit; the scaled
// fraction is rounded by 2^-53 of itself, which is below 10^places and below the sum. Less than half a unit in all
// leaves the nearest integer what it is.
bool nxTickRun::_SumsAreExact() const
{
    const nxDecimal& increment = _rule.band->second;
    if (_rule.scale > maxPlacesOfPower)
        return false;
    const double power = nxPowersOfTen::GetDouble(_rule.scale);
    const double middle = std::ldexp(1.5, _rule.exponent - 1);
    const double step =
        static_cast<double>(increment.GetValue()) * nxPowersOfTen::GetDouble(_rule.scale - increment.GetScale());
    const double spacing = std::ldexp(power, _rule.exponent - 53);
    if (step > std::ldexp(spacing, 50))  // an eighth of the doubles at least is left on both sides of the middle
        return false;
    const double added = (middle + increment.GetAsDouble()) - middle;
    const double missed = std::fabs(std::fma(added, power, -step)) + std::ldexp(step, -52);
    const double fraction = std::min(power, std::ldexp(power, _rule.exponent));
    return spacing / 2 + missed + std::ldexp(1.0, ExponentOf(fraction) - 54) < 0.5;
}

// Prices so many mantissas apart, or a multiple of that, are stepped alike; 0 when none are known to be.
std::uint64_t nxTickRun::_Unit() const
{
    const std::uint64_t tickScale = _rule.band->second.GetScale();
    if (_rule.scale == tickScale)
        return 1;
    if (_rule.scale < tickScale)
        return 0;
    // Zeros at the end are dropped after a step, so the last digit has to be the same.
    if (_SumsAreExact())
        return 10;
    // Whole numbers, so many that neither the mantissa's double nor that of the price rounds them.
    const auto places = static_cast<unsigned>(_rule.scale);
    return places > maxPlacesOfPower
               ? 0
               : nxPowersOfTen::GetInteger(places) << (placesOfInteger - std::min(places, placesOfInteger));
}

// A step towards zero first subtracts the increment of the band below, at that one's places, where the mantissa may
// wrap. Whether on the way from one magnitude down to another that goes as at both ends. The band below the rule's is
// asked for: where a step goes by the increment of the band below the price already, the price has that one's places.
bool nxTickRun::_ComparesAlike(std::uint64_t from, std::uint64_t to) const
{
    if (_IsOutwards() || _rule.band == _table._ranges.begin())
        return true;
    const auto& [bound, increment] = *std::prev(_rule.band);
    if (increment.GetScale() <= _rule.scale)
        return true;
    const auto places = static_cast<unsigned>(increment.GetScale() - _rule.scale);
    if (places > maxPlacesOfPower)
        return false;
    const std::uint64_t power = nxPowersOfTen::GetInteger(places);
    if (from <= (std::uint64_t{1} << 61) / power)
        return true;

    // It wraps. That does no harm while the wrapped difference falls as the price does and stays above the bound.
    const auto wrappedFrom = static_cast<std::int64_t>(from * power);
    const auto wrappedTo = static_cast<std::int64_t>(to * power);
    const double slack = std::ldexp(static_cast<double>(from) * static_cast<double>(power), -50) +
                         2 * static_cast<double>(increment.GetValue());
    const double lowest = bound.GetAsDouble() * nxPowersOfTen::GetDouble(increment.GetDecimalPlaces());
    return WideInteger{from - to} * WideInteger{power} == WideInteger{wrappedFrom} - WideInteger{wrappedTo} &&
           static_cast<double>(wrappedTo) - slack > lowest * 1.001 && static_cast<double>(wrappedFrom) + slack < 9.2e18;
}

// Whether the rule is the same all the way to the price so many times the distance further on. What it consists of only
// ever grows or falls with the price.
bool nxTickRun::_HoldsAt(const nxDecimal& price, std::int64_t distance, std::uint64_t times) const
{
    const WideInteger target = WideInteger{price.GetValue()} + WideInteger{distance} * WideInteger{times};
    if (target > INT64_MAX || target < -INT64_MAX)
        return false;
    const nxDecimal last =
        nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<std::int64_t>(target), price.GetDecimalPlaces());
    _Rule rule;
    const std::uint64_t from = nxTickZone::Magnitude(price.GetValue());
    const std::uint64_t to = nxTickZone::Magnitude(last.GetValue());
    return _FindRule(last, rule) && rule == _rule && _ComparesAlike(from, to);
}

std::uint64_t nxTickRun::Leap(nxDecimal& price, std::uint64_t limit)
{
    _Rule rule;
    const bool hasRule = _FindRule(price, rule);
    if (!hasRule || !_isRunning || !(rule == _rule))
    {
        _isRunning = hasRule;
        _rule = rule;
        _anchor = price.GetValue();
        _length = 0;
        _patience = 1;
        _unit = hasRule ? _Unit() : 0;
        return 0;
    }
    ++_length;
    const std::int64_t distance = price.GetValue() - _anchor;
    if (_unit == 0 || distance % static_cast<std::int64_t>(_unit) != 0)
    {
        if (_length == _patience)
        {
            _anchor = price.GetValue();
            _length = 0;
            _patience *= 2;
        }
        return 0;
    }

    // As many rounds as the rule holds for, the one behind them included: the sum may lie a little beyond the price.
    std::uint64_t rounds = 0;
    std::uint64_t tooMany = limit / _length + 1;
    while (tooMany - rounds > 1)
    {
        const std::uint64_t middle = rounds + (tooMany - rounds) / 2;
        (_HoldsAt(price, distance, middle + 1) ? rounds : tooMany) = middle;
    }
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(
        price.GetValue() + distance * static_cast<std::int64_t>(rounds), price.GetDecimalPlaces());
    const std::uint64_t steps = rounds * _length;
    Restart();
    return steps;
}
