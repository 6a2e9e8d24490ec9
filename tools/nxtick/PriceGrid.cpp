// SPDX-License-Identifier: Apache-2.0
#include "PriceGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

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

constexpr char notANumber[] = "is not a number";
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

nxDecimal PriceGrid::_GetNext(bool isUp, const nxDecimal& price)
{
    nxDecimal next;
    if (!FindNext(isUp, price, next).IsOK())
        throw Failure(std::string("the next price ") + (isUp ? "above " : "below ") + DecimalText(price) +
                      " has more digits than a price can hold");
    return next;
}

FixedGrid::FixedGrid(const nxDecimal& increment)
    : PriceGrid({{nxDecimal::GetMaximumDecimal(), increment}}), _manipulator(increment)
{
}
}  // namespace nxtick
