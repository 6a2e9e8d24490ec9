#include "PriceGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Failure.h"
#include "Text.h"

namespace nxtick
{
namespace
{
// Numbers stay below this many units, so that a tick can be added to any of them and still fits 64 bits.
constexpr std::int64_t maximumUnits = 1'000'000'000'000'000'000;
constexpr int maximumDigits = 18;

std::string_view WithoutBlanks(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Digits behind leading zeros; the decimal reads any number of them and would wrap around silently.
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
}  // namespace

const char* PriceGrid::ReadPrice(std::string_view text, nxDecimal& price) const
{
    const std::string_view number = WithoutBlanks(text);
    nxDecimal value;
    if (!value.SetFromStringView(number, '.').IsOK())
        return "is not a price";
    const std::size_t point = number.find('.');
    const std::size_t places = point == std::string_view::npos ? 0 : number.size() - point - 1;
    if (SignificantDigits(number) > maximumDigits || places > maximumDigits || !Fits(value, _places))
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

nxDecimal PriceGrid::GetBelow(const nxDecimal& price) { return _Neighbour(price, NX_ROUNDING_METHOD_DOWN, -1); }

nxDecimal PriceGrid::GetAbove(const nxDecimal& price) { return _Neighbour(price, NX_ROUNDING_METHOD_UP, 1); }

nxDecimal PriceGrid::_Neighbour(const nxDecimal& price, nxEnumValue method, int ticks)
{
    nxDecimal neighbour = price;
    Round(nxRoundingMethodEnum(method), neighbour);
    if (neighbour.EqualsExactly(price))
        Step(neighbour, ticks);
    return neighbour;
}

FixedGrid::FixedGrid(const nxDecimal& increment) : _increment(increment) { _AddTick(increment); }

void FixedGrid::Step(nxDecimal& price, int ticks)
{
    const unsigned char places = MorePlaces(price, _increment);
    nxDecimal tick = _increment;
    tick.SetDecimalPlaces(places, true);
    price.SetDecimalPlaces(places, true);
    price = nxDecimal::ConstructFromValueAndDecimalPlaces(price.GetValue() + ticks * tick.GetValue(), places);
}
}  // namespace nxtick
