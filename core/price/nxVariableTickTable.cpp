#include "core/price/nxVariableTickTable.h"

#include <algorithm>
#include <cstdlib>

#include "core/log/nxLogMacros.h"
#include "core/price/internal/nxExactSum.h"
#include "core/price/nxTickTableCursor.h"

nxVariableTickTable::~nxVariableTickTable() = default;

void nxVariableTickTable::_SetCache(iterator range) const
{
    _lock.AssertHeld();
    _cache = range;
    _zone.Clear();
}

void nxVariableTickTable::_AddRange(const nxDecimal& upperBound, const nxDecimal& increment)
{
    const nxMutexGuard guard(_lock);
    _isAscending = _isAscending && (_ranges.empty() || upperBound > _ranges.back().first);
    _ranges.emplace_back(upperBound, increment);
    _cache = _ranges.begin();
    _zone.Clear();
    _grid.Build(_ranges);
}

void nxVariableTickTable::_AddTopRange(const nxDecimal& increment)
{
    _AddRange(nxDecimal::GetMaximumDecimal(), increment);
    if (!_CheckConstraints())
        NX_LOG(NX_LOG_LEVEL_ERROR) << "Variable tick table: the bands are not ascending, or a bound or an increment is "
                                      "not positive";
}

void nxVariableTickTable::_AddRanges(std::string_view bands)
{
    const auto read = [](std::string_view text)
    {
        nxDecimal number = nxDecimal::GetNullDecimal();
        return number.SetFromStringView(text, '.').IsOK() ? number : nxDecimal::GetNullDecimal();
    };
    constexpr std::string_view separator = "; ";
    for (std::size_t end = bands.find(separator); end != std::string_view::npos; end = bands.find(separator))
    {
        const std::string_view band = bands.substr(0, end);
        const std::size_t space = std::min(band.find(' '), band.size());
        _AddRange(read(band.substr(0, space)), read(band.substr(std::min(space + 1, band.size()))));
        bands.remove_prefix(end + separator.size());
    }
    _AddTopRange(read(bands));
}

bool nxVariableTickTable::_CheckConstraints() const
{
    if (_ranges.empty() || !(_ranges.back().first == nxDecimal::GetMaximumDecimal()))
        return false;
    for (auto band = _ranges.begin(); band != _ranges.end(); ++band)
    {
        // Asked of the mantissa: a comparison with 0 tolerates what is less than 2.2e-16.
        if (!band->first.IsPositive() || !band->second.IsPositive())
            return false;
        if (band != _ranges.begin() && !(band->first > std::prev(band)->first))
            return false;
    }
    return true;
}

nxDecimal nxVariableTickTable::GetMinimumTickIncrement() const
{
    const auto smallest = std::min_element(_ranges.begin(), _ranges.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
    return smallest == _ranges.end() ? nxDecimal::GetNullDecimal() : smallest->second;
}

nxDecimal nxVariableTickTable::_Magnitude(const nxDecimal& price)
{
    return price.IsValid() ? nxDecimal::Abs(price) : nxDecimal();
}

const nxDecimal& nxVariableTickTable::_ReportUnknownBand()
{
    static constexpr nxDecimal empty = nxDecimal::GetNullDecimal();
    NX_LOG_AT(NX_LOG_LEVEL_FATAL, "core/trunk/nxVariableTickTable", 108) << "Fatal error in variable tick table";
    return empty;
}

nxVariableTickTable::iterator nxVariableTickTable::_Scan(const nxDecimal& magnitude) const
{
    if (magnitude.IsNegative())
        return _ranges.end();
    const auto isBelow = [&magnitude](const auto& band) { return band.first < magnitude; };
    // The first bound that is not below the price; a table of a file may have a hundred thousand.
    return _isAscending ? std::partition_point(_ranges.begin(), _ranges.end(), isBelow)
                        : std::find_if_not(_ranges.begin(), _ranges.end(), isBelow);
}

nxVariableTickTable::iterator nxVariableTickTable::_Find(const nxDecimal& price) const
{
    const std::size_t stretch = _grid.Find(price);
    return stretch == nxTickGrid::NotFound ? _Scan(_Magnitude(price))
                                           : _ranges.begin() + static_cast<std::ptrdiff_t>(_grid.GetBand(stretch));
}

nxVariableTickTable::iterator nxVariableTickTable::_FindRange(const nxDecimal& price) const
{
    const nxDecimal magnitude = _Magnitude(price);
    if (magnitude.IsNegative())
        return _ranges.end();
    const nxMutexGuard guard(_lock);
    if (_zone.Contains(price) || _Search(price) != nxTickGrid::NotFound)
        return _cache;
    if (_cache != _ranges.end() && !(_cache->first < magnitude) &&
        (_cache == _ranges.begin() || std::prev(_cache)->first < magnitude))
        return _cache;
    const iterator band = _Scan(magnitude);
    if (band != _ranges.end())
        _SetCache(band);
    return band;
}

std::size_t nxVariableTickTable::_Search(const nxDecimal& price) const
{
    const std::size_t stretch = _grid.Find(price);
    if (stretch == nxTickGrid::NotFound)
        return stretch;
    const iterator band = _ranges.begin() + static_cast<std::ptrdiff_t>(_grid.GetBand(stretch));
    if (band != _cache)
        _SetCache(band);
    if (band != _cache)  // an override has not remembered it
        return nxTickGrid::NotFound;
    if (stretch == _lastStretch)
        _grid.Fill(stretch, price, _zone);
    _lastStretch = stretch;
    return stretch;
}

const nxDecimal* nxVariableTickTable::_SearchTick(nxDecimal price) const
{
    const std::size_t stretch = _Search(price);
    return stretch == nxTickGrid::NotFound ? nullptr : &_grid.GetIncrement(stretch);
}

bool nxVariableTickTable::_Relocate(const nxDecimal& price) const
{
    if (_zone.Contains(price))
        return true;
    const std::size_t stretch = _Search(price);
    if (stretch == nxTickGrid::NotFound)
        return false;
    if (!_zone.Contains(price))
        _grid.Fill(stretch, price, _zone);
    return true;
}

const nxDecimal& nxVariableTickTable::_TickIn(iterator band, const nxDecimal& magnitude) const
{
    if (band == _ranges.begin())
        return band->second;
    const auto& [lowerBound, lowerIncrement] = *std::prev(band);
    nxDecimal ownTickFrom = lowerBound;
    nxExactSum::Add(ownTickFrom, lowerIncrement, true);
    return magnitude < ownTickFrom ? lowerIncrement : band->second;
}

const nxDecimal& nxVariableTickTable::_GetIncrementForPrice(const nxDecimal& price) const
{
    const iterator band = _FindRange(price);
    return band == _ranges.end() ? _ReportUnknownBand() : _TickIn(band, _Magnitude(price));
}

unsigned char nxVariableTickTable::NumberOfDecimalPlaces(const nxDecimal& price) const
{
    const iterator band = _FindRange(price);
    return band == _ranges.end() ? static_cast<unsigned char>(0) : band->second.GetDecimalPlaces();
}

void nxVariableTickTable::_IncreasePrice(nxDecimal& price, iterator band) const
{
    if (band == _ranges.end())
        return;
    nxExactSum::Add(price, band->second, true);
    price.SetDecimalPlaces(_BandAfterStep(band, true, price)->second.GetDecimalPlaces(), true);
}

void nxVariableTickTable::_DecreasePrice(nxDecimal& price, iterator band) const
{
    if (band == _ranges.end())
        return;
    nxExactSum::Add(price, band->second, false);
    price.SetDecimalPlaces(_BandAfterStep(band, false, price)->second.GetDecimalPlaces(), true);
}

// The band whose places the price gets that a step by the increment of `band` led to.
nxVariableTickTable::iterator nxVariableTickTable::_BandAfterStep(iterator band, bool isIncrease,
                                                                  const nxDecimal& price) const
{
    const bool isOutwards = isIncrease ? price.IsPositive() : price.IsNegative();
    if (!isOutwards || std::next(band) == _ranges.end())
        return band;
    const nxDecimal magnitude = nxDecimal::Abs(price);
    return magnitude.IsNegative() || magnitude > band->first ? std::next(band) : band;
}

// The band whose increment a step from a price in `band` uses.
nxVariableTickTable::iterator nxVariableTickTable::_BandOfStep(iterator band, bool isOutwards,
                                                               const nxDecimal& magnitude) const
{
    if (isOutwards || band == _ranges.begin())
        return band;
    const auto& [lowerBound, lowerIncrement] = *std::prev(band);
    nxDecimal inwards = magnitude;
    const bool isLower = nxExactSum::TryAdd(inwards, lowerIncrement, false)
                             ? inwards <= lowerBound
                             : nxExactSum::IsWithin(magnitude, lowerBound, lowerIncrement);
    return isLower ? std::prev(band) : band;
}

void nxVariableTickTable::_StepFrom(iterator band, bool up, nxDecimal& price) const
{
    // A negative price is stepped as its mirror image.
    const bool isNegative = price.IsNegative();
    const bool isOutwards = up != isNegative;
    if (isNegative)
        price.InvertSign();
    band = _BandOfStep(band, isOutwards, price);
    isOutwards ? _IncreasePrice(price, band) : _DecreasePrice(price, band);
    if (isNegative)
        price.InvertSign();
}

nxDecimal nxVariableTickTable::_StepSlowly(bool up, nxDecimal price) const
{
    if (!price.IsValid())
        return price;
    {
        const nxMutexGuard guard(_lock);
        if (!_zone.Contains(price) && _Relocate(price) && _zone.Step(up, 1, price) != 0)
            return price;
    }
    const iterator band = _FindRange(price);
    if (band == _ranges.end())
        _ReportUnknownBand();
    else
        _StepFrom(band, up, price);
    return price;
}

nxDecimal nxVariableTickTable::_RoundBy(const nxDecimal* tick, const nxRoundingMethodEnum& method,
                                        nxDecimal price) const
{
    if (price.IsValid())
        price.Round(tick != nullptr ? *tick : _GetIncrementForPrice(price), method);
    return price;
}

nxTickTableCursor nxVariableTickTable::_StartCursor(const nxDecimal& price) const
{
    const nxMutexGuard guard(_lock);
    _Relocate(price);
    return nxTickTableCursor(*this, _zone);
}

void nxVariableTickTable::GetTickIncrement(std::span<const nxDecimal> prices, std::span<nxDecimal> increments) const
{
    const std::size_t count = std::min(prices.size(), increments.size());
    if (count == 0)
        return;
    nxTickTableCursor cursor = _StartCursor(prices.front());
    for (std::size_t i = 0; i < count; ++i)
        increments[i] = cursor.GetTickIncrement(prices[i]);
}

void nxVariableTickTable::Increment(nxDecimal& price, int ticks) const { Increment(std::span(&price, 1), ticks); }

void nxVariableTickTable::Increment(std::span<nxDecimal> prices, int ticks) const
{
    if (prices.empty() || ticks == 0)
        return;
    nxTickTableCursor cursor = _StartCursor(prices.front());
    for (nxDecimal& price : prices)
        ticks == 1 ? cursor.Increment(price) : cursor.Increment(price, ticks);
}

void nxVariableTickTable::RoundToValidTick(const nxRoundingMethodEnum& method, std::span<nxDecimal> prices) const
{
    if (prices.empty())
        return;
    nxTickTableCursor cursor = _StartCursor(prices.front());
    for (nxDecimal& price : prices)
        cursor.RoundToValidTick(method, price);
}
