#include "PriceGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>

#include "Failure.h"
#include "Text.h"
#include "WideMantissa.h"

namespace nxtick
{
namespace
{
// Numbers stay below this many units, so that a tick can be added to any of them and still fits 64 bits.
constexpr std::int64_t maximumUnits = 1'000'000'000'000'000'000;
constexpr int maximumDigits = widestPlaces;

std::string_view WithoutBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Counts digits after leading zeros, because the decimal reads any number of them and would wrap silently.
int SignificantDigits(std::string_view number)
{
    int count = 0;
    for (const char c : number)
        if (count > 0 ? '0' <= c && c <= '9' : '1' <= c && c <= '9')
            ++count;
    return count;
}

// The number at the larger of its own and the given places stays below the limit.
bool Fits(const nxDecimal& number, unsigned char places)
{
    std::int64_t limit = maximumUnits;
    for (unsigned char p = number.GetDecimalPlaces(); p < places; ++p)
        limit /= 10;
    return std::abs(number.GetValue()) <= limit;
}

unsigned char MorePlaces(const nxDecimal& a, const nxDecimal& b)
{
    return std::max(a.GetDecimalPlaces(), b.GetDecimalPlaces());
}

nxDecimal Negated(nxDecimal number)
{
    number.InvertSign();
    return number;
}

bool IsLess(const nxDecimal& a, const nxDecimal& b)
{
    return GetWideMantissa(a, widestPlaces) < GetWideMantissa(b, widestPlaces);
}

constexpr char notANumber[] = "is not a number";

WideMantissa RoundedDown(WideMantissa price, WideMantissa tick) { return price - price % tick; }
WideMantissa RoundedUp(WideMantissa price, WideMantissa tick) { return RoundedDown(price + tick - 1, tick); }
}  // namespace

const char* ReadNumber(std::string_view text, nxDecimal& number)
{
    nxDecimal value;
    if (!value.SetFromStringView(text, '.').IsOK())
        return notANumber;
    const std::size_t point = text.find('.');
    const std::size_t places = point == std::string_view::npos ? 0 : text.size() - point - 1;
    if (SignificantDigits(text) > maximumDigits)
        return "has more than 18 digits";
    if (places > maximumDigits)
        return "has more than 18 decimals";
    number = value;
    return nullptr;
}

PriceGrid::PriceGrid(const Bands& bands)
{
    for (const auto& [bound, tick] : bands)
        _AddTick(tick);
    _AddStretches(bands);
}

const char* PriceGrid::ReadPrice(std::string_view text, nxDecimal& price) const
{
    nxDecimal value;
    const char* const reason = ReadNumber(WithoutBlanks(text), value);
    if (reason == notANumber)
        return "is not a price";
    if (reason != nullptr || !Fits(value, _places))
        return "has more digits than a price can hold";
    price = value;
    return nullptr;
}

void PriceGrid::_AddTick(const nxDecimal& tick)
{
    _places = std::max(_places, tick.GetDecimalPlaces());
    _largestTick = std::max(_largestTick, tick.GetAsDouble());
    if (_places > maximumDigits || _largestTick * std::pow(10.0, _places) > static_cast<double>(maximumUnits))
        throw Failure("a tick of " + DecimalText(tick) + " has more digits than a price can hold");
}

void PriceGrid::CheckReach(const nxDecimal& price, int ticks) const
{
    const double farthest = std::abs(price.GetAsDouble()) + std::abs(static_cast<double>(ticks)) * _largestTick;
    if (farthest * std::pow(10.0, std::max(_places, price.GetDecimalPlaces())) > 9e18)
        throw Failure("the price " + std::to_string(ticks) + " ticks away has more digits than a price can hold");
}

bool PriceGrid::IsOnGrid(const nxDecimal& price)
{
    nxDecimal rounded = price;
    Round(nxRoundingMethodEnum(NX_ROUNDING_METHOD_DOWN), rounded);
    return rounded.EqualsExactly(price);
}

void PriceGrid::_AddStretches(const Bands& bands)
{
    WideMantissa start = 0;  // from where on prices have the band's tick
    for (std::size_t i = 0; i < bands.size(); ++i)
    {
        const unsigned char places = bands[i].second.GetDecimalPlaces();
        const WideMantissa bound = GetWideMantissa(bands[i].first, widestPlaces);
        const WideMantissa tick = GetWideMantissa(bands[i].second, widestPlaces);
        // A band narrower than the lower tick has its own only above its bound.
        const WideMantissa first = start <= bound ? RoundedUp(start, tick) : RoundedDown(bound, tick) + tick;
        WideMantissa last = RoundedUp(bound, tick);
        if (i + 1 < bands.size())
            if (const auto nextBound = GetWideMantissa(bands[i + 1].first, widestPlaces); last > nextBound)
                last = RoundedDown(nextBound, tick);
        start = bound + tick;

        const WideMantissa unit =
            GetWideMantissa(nxDecimal::ConstructFromValueAndDecimalPlaces(1, places), widestPlaces);
        _Stretch stretch{{}, nxDecimal::GetMaximumDecimal(), bands[i].second};
        if (!MakeDecimal(first / unit, places, stretch.first))
            break;                                       // no price gets so far
        MakeDecimal(last / unit, places, stretch.last);  // nor to a last one that stays the maximum
        if (first <= last)
            _stretches.push_back(stretch);
    }
    _stretches.back().last = nxDecimal::GetMaximumDecimal();
}

nxDecimal PriceGrid::GetBelow(const nxDecimal& price) const
{
    return price.IsPositive() ? _Inwards(price) : Negated(_Outwards(Negated(price)));
}

nxDecimal PriceGrid::GetAbove(const nxDecimal& price) const
{
    return price.IsNegative() ? Negated(_Inwards(Negated(price))) : _Outwards(price);
}

// The next price of the grid above one that is not negative.
nxDecimal PriceGrid::_Outwards(nxDecimal price) const
{
    const auto stretch = std::partition_point(_stretches.begin(), _stretches.end(),
                                              [&price](const _Stretch& each) { return !IsLess(price, each.last); });
    if (IsLess(price, stretch->first))
        return stretch->first;
    price.Round(stretch->tick, nxRoundingMethodEnum(NX_ROUNDING_METHOD_DOWN));
    return price += stretch->tick;
}

// The next price of the grid below one that is positive.
nxDecimal PriceGrid::_Inwards(nxDecimal price) const
{
    const auto stretch = std::prev(std::partition_point(
        _stretches.begin(), _stretches.end(), [&price](const _Stretch& each) { return IsLess(each.first, price); }));
    if (IsLess(stretch->last, price))
        return stretch->last;
    price.Round(stretch->tick, nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP));
    return price -= stretch->tick;
}

FixedGrid::FixedGrid(const nxDecimal& increment)
    : PriceGrid({{nxDecimal::GetMaximumDecimal(), increment}}), _increment(increment)
{
}

void FixedGrid::Step(nxDecimal& price, int ticks)
{
    const unsigned char places = MorePlaces(price, _increment);
    nxDecimal tick = _increment;
    tick.SetDecimalPlaces(places, true);
    price.SetDecimalPlaces(places, true);
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(price.GetValue() + ticks * tick.GetValue(), places);
}
}  // namespace nxtick
