// SPDX-License-Identifier: Apache-2.0
#include "PriceGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "Failure.h"
#include "Text.h"

namespace nxtick
{
namespace
{
// Numbers stay below this many units, so that a tick can be added to any of them and still fits 64 bits.
constexpr std::int64_t maximumUnits = 1'000'000'000'000'000'000;
constexpr std::size_t maximumDigits = 18;

// Counts digits after leading zeros, because the decimal reads any number of them and would wrap silently.
std::size_t SignificantDigits(std::string_view number)
{
    std::size_t count = 0;
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

// What is wrong with the length of a number; null for nothing.
const char* FindTooMany(std::string_view number, char separator)
{
    const std::size_t point = number.find(separator);
    const std::size_t places = point == std::string_view::npos ? 0 : number.size() - point - 1;
    if (SignificantDigits(number) > maximumDigits)
        return "has more than 18 digits";
    return places > maximumDigits ? "has more than 18 decimals" : nullptr;
}

constexpr char notANumber[] = "is not a number";

// The number after the "e", or nothing. Beyond 99 it is 99, which no price can have either.
std::optional<int> ReadExponent(std::string_view text)
{
    const bool isNegative = text.substr(0, 1) == "-";
    if (isNegative || text.substr(0, 1) == "+")
        text.remove_prefix(1);
    if (text.empty() || !std::all_of(text.begin(), text.end(), &IsDigit))
        return std::nullopt;
    int value = 0;
    for (const char c : text)
        value = std::min(value * 10 + (c - '0'), 99);
    return isNegative ? -value : value;
}

// Writes a number that ends in an exponent without it; empty if the text is none.
std::string WithoutExponent(std::string_view text, char point)
{
    const std::size_t mark = text.find_first_of("eE");
    const std::optional<int> exponent =
        mark == std::string_view::npos ? std::nullopt : ReadExponent(text.substr(mark + 1));
    std::string digits(text.substr(0, mark));
    const bool hasSign = !digits.empty() && (digits.front() == '-' || digits.front() == '+');
    const std::string sign = hasSign ? digits.substr(0, 1) : "";
    digits.erase(0, sign.size());
    const std::size_t places = std::min(digits.find(point), digits.size());
    digits.erase(places, 1);
    if (!exponent || digits.empty() || !std::all_of(digits.begin(), digits.end(), &IsDigit))
        return {};
    const int before = static_cast<int>(places) + *exponent;
    if (before < 0)
        digits.insert(0, static_cast<std::size_t>(-before), '0');
    else if (static_cast<std::size_t>(before) > digits.size())
        digits.append(static_cast<std::size_t>(before) - digits.size(), '0');
    const std::size_t at = before < 0 ? 0 : static_cast<std::size_t>(before);
    if (at < digits.size())
        digits.insert(at, at == 0 ? std::string("0") + point : std::string(1, point));
    return sign + digits;
}
}  // namespace

const char* ReadNumber(std::string_view text, nxDecimal& number, const NumberForm& form)
{
    nxDecimal value;
    if (!value.SetFromStringView(text, form.point).IsOK())
    {
        const std::string plain = form.hasExponents ? WithoutExponent(text, form.point) : std::string();
        return plain.empty() ? notANumber : ReadNumber(plain, number, {form.point});
    }
    if (text.size() > maximumDigits)
        if (const char* const reason = FindTooMany(text, form.point); reason != nullptr)
            return reason;
    number = CopyFresh(value);
    return nullptr;
}

PriceGrid::PriceGrid(const Bands& bands)
{
    for (const auto& [bound, tick] : bands)
        _AddTick(tick);
}

const char* PriceGrid::ReadPrice(std::string_view text, nxDecimal& price, const NumberForm& form) const
{
    nxDecimal value;
    const char* const reason = ReadNumber(WithoutBlanks(text), value, form);
    if (reason == notANumber)
        return "is not a price";
    if (reason != nullptr || !HasRoomAt(value))
        return "has more digits than a price can hold";
    price = CopyFresh(value);
    return nullptr;
}

bool PriceGrid::HasRoomAt(const nxDecimal& price) const { return Fits(price, _places); }

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
