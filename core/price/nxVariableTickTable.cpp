// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxVariableTickTable.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "core/log/nxLogMacros.h"
#include "core/price/internal/nxTickViews.h"
#include "core/price/internal/nxValidPrices.h"
#include "core/thread/nxMutexGuard.h"

nxVariableTickTable::~nxVariableTickTable() = default;

void nxVariableTickTable::_SetCache(iterator range) const
{
    _lock.AssertHeld();
    _cache = range;
    _place.zone.Clear();
    _grid.GetKey().SetBand(static_cast<std::size_t>(range - _ranges.begin()));
}

void nxVariableTickTable::_AddRange(const nxDecimal& upperBound, const nxDecimal& increment)
{
    const nxMutexGuard guard(_lock);
    _isAscending = _isAscending && (_ranges.empty() || upperBound > _ranges.back().first);
    _ranges.emplace_back(upperBound, increment);
    _cache = _ranges.begin();
    _place.zone.Clear();
    _grid.Build(_ranges);
    _grid.SetViews(nxTickViews::Make(_grid));
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

bool nxVariableTickTable::_CheckConstraints() const { return _GetRules().KeepConstraints(); }

nxDecimal nxVariableTickTable::GetMinimumTickIncrement() const
{
    const auto smallest = std::min_element(_ranges.begin(), _ranges.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
    return smallest == _ranges.end() ? nxDecimal::GetNullDecimal() : smallest->second;
}

nxVariableTickTable::iterator nxVariableTickTable::_FindRange(const nxDecimal& price) const
{
    const nxTickRules rules = _GetRules();
    if (const nxTickZone* const zone = _GetZone(price); zone != nullptr)
        return rules.GetBand(*zone);
    const nxDecimal magnitude = nxTickRules::GetMagnitude(price);
    if (magnitude.IsNegative())
        return _ranges.end();
    const nxMutexGuard guard(_lock);
    if (_place.zone.Contains(price) || _Search(price) != nxTickGrid::NotFound)
        return _cache;
    if (_cache != _ranges.end() && !(_cache->first < magnitude) &&
        (_cache == _ranges.begin() || std::prev(_cache)->first < magnitude))
        return _cache;
    const iterator band = rules.FindBandByDecimals(magnitude);
    if (band != _ranges.end())
        _SetCache(band);
    return band;
}

const nxTickZone* nxVariableTickTable::_GetZone(const nxDecimal& price) const
{
    const std::uint64_t key = _grid.GetKey().Get();
    const nxTickMemory::Place& place = nxTickMemory::Get(key);
    if (place.IsOf(key, price.GetScale()) && place.zone->prices.Contains(price.GetValue())) [[likely]]
        return place.zone;
    const nxTickZone* const zone = _FindZone(price);
    return zone != nullptr ? zone : _FindZoneSlowly(price);
}

inline const nxTickZone* nxVariableTickTable::_FindZone(const nxDecimal& price) const
{
    const nxTickZone* const zone = nxTickViews::Find(_grid, price);
    const std::uint64_t key = _grid.GetKey().Get();
    if (zone == nullptr || !nxTickKey::HasBand(key, zone->band))
        return nullptr;
    nxTickMemory::Remember(key, *zone);
    return zone;
}

const nxTickZone* nxVariableTickTable::_FindZoneSlowly(const nxDecimal& price) const
{
    const nxTickZone* const zone = nxTickViews::FindOrMake(_grid, price);
    if (zone == nullptr)
        return nullptr;
    std::uint64_t key = _grid.GetKey().Get();
    if (!nxTickKey::HasBand(key, zone->band))
        key = _ChangeBand(zone->band);
    if (nxTickKey::HasBand(key, zone->band))  // an override may not have remembered it
        nxTickMemory::Remember(key, *zone);
    return zone;
}

std::uint64_t nxVariableTickTable::_ChangeBand(std::uint32_t band) const
{
    const iterator found = _ranges.begin() + band;
    const nxMutexGuard guard(_lock);
    if (found != _cache)
        _SetCache(found);
    return _grid.GetKey().Get();
}

std::size_t nxVariableTickTable::_Search(const nxDecimal& price) const
{
    const nxTickRules rules = _GetRules();
    const std::size_t stretch = rules.FindStretch(price);
    if (stretch == nxTickGrid::NotFound)
        return stretch;
    const iterator band = rules.GetBand(stretch);
    if (band != _cache)
        _SetCache(band);
    if (band != _cache)  // an override did not remember it
        return nxTickGrid::NotFound;
    _place.Note(rules, stretch, price);
    return stretch;
}

const nxDecimal* nxVariableTickTable::_SearchTick(nxDecimal price) const
{
    const std::size_t stretch = _Search(price);
    return stretch == nxTickGrid::NotFound ? nullptr : &_GetRules().GetTick(stretch);
}

bool nxVariableTickTable::_Relocate(const nxDecimal& price) const
{
    if (_place.zone.Contains(price))
        return true;
    const std::size_t stretch = _Search(price);
    if (stretch == nxTickGrid::NotFound)
        return false;
    if (!_place.zone.Contains(price))
        _GetRules().FillZone(stretch, price, _place.zone);
    return true;
}

const nxDecimal& nxVariableTickTable::_GetIncrementForPrice(const nxDecimal& price) const
{
    const iterator band = _FindRange(price);
    return band == _ranges.end() ? nxTickRules::ReportUnknownBand()
                                 : _GetRules().GetTickIn(band, nxTickRules::GetMagnitude(price));
}

unsigned char nxVariableTickTable::NumberOfDecimalPlaces(const nxDecimal& price) const
{
    return _GetRules().GetPlaces(_FindRange(price));
}

void nxVariableTickTable::_IncreasePrice(nxDecimal& price, iterator band) const { _GetRules().Move(true, price, band); }

void nxVariableTickTable::_DecreasePrice(nxDecimal& price, iterator band) const
{
    _GetRules().Move(false, price, band);
}

const nxDecimal& nxVariableTickTable::_LookUpTick(nxDecimal price) const
{
    if (const nxTickZone* const zone = _FindZone(price); zone != nullptr) [[likely]]
        return *zone->increment;
    return _LookUpTickSlowly(price);
}

const nxDecimal& nxVariableTickTable::_LookUpTickSlowly(const nxDecimal& price) const
{
    if (const nxTickZone* const zone = _FindZoneSlowly(price); zone != nullptr)
        return *zone->increment;
    {
        const nxMutexGuard guard(_lock);
        if (_place.zone.Contains(price))
            return *_place.zone.increment;
        if (const nxDecimal* const tick = _SearchTick(price); tick != nullptr)
            return *tick;
    }
    return _GetIncrementForPrice(price);
}

nxDecimal nxVariableTickTable::_LookUpAndStep(bool up, nxDecimal price) const
{
    const nxTickZone* const zone = _GetZone(price);
    return zone != nullptr && zone->Step(up, 1, price) != 0 ? price : _StepSlowly(up, price);
}

nxDecimal nxVariableTickTable::_LookUpAndRound(const nxRoundingMethodEnum& method, nxDecimal price) const
{
    const nxTickZone* const zone = _FindZone(price);
    if (zone != nullptr && zone->Round(method, price)) [[likely]]
        return price;
    return _LookUpAndRoundSlowly(method, price);
}

nxDecimal nxVariableTickTable::_LookUpAndRoundSlowly(const nxRoundingMethodEnum& method, nxDecimal price) const
{
    const nxDecimal* tick = nullptr;
    if (const nxTickZone* const zone = _FindZoneSlowly(price); zone != nullptr)
    {
        if (zone->Round(method, price))
            return price;
        tick = zone->increment;
    }
    else
    {
        const nxMutexGuard guard(_lock);
        if (_place.zone.Round(method, price))
            return price;
        tick = _SearchTick(price);
    }
    return _RoundBy(tick, method, price);
}

nxErrorEnum nxVariableTickTable::_LookUpAndRoundExactly(const nxRoundingMethodEnum& method, nxDecimal& price) const
{
    const nxDecimal* tick = nullptr;
    if (const nxTickZone* const zone = _GetZone(price); zone != nullptr)
    {
        if (zone->Round(method, price))
            return nxErrorEnum();
        tick = zone->increment;
    }
    else
    {
        const nxMutexGuard guard(_lock);
        if (_place.zone.Round(method, price))
            return nxErrorEnum();
        tick = _SearchTick(price);
    }
    return _RoundExactlyBy(tick, method, price);
}

nxDecimal nxVariableTickTable::_StepSlowly(bool up, nxDecimal price) const
{
    if (!price.IsValid())
        return price;
    {
        const nxMutexGuard guard(_lock);
        if (!_place.zone.Contains(price) && _Relocate(price) && _place.zone.Step(up, 1, price) != 0)
            return price;
    }
    const iterator band = _FindRange(price);
    if (band == _ranges.end())
        nxTickRules::ReportUnknownBand();
    else
        _GetRules().StepFrom(band, up, price);
    return price;
}

nxDecimal nxVariableTickTable::_RoundBy(const nxDecimal* tick, const nxRoundingMethodEnum& method,
                                        nxDecimal price) const
{
    if (price.IsValid())
        price.Round(tick != nullptr ? *tick : _GetIncrementForPrice(price), method);
    return price;
}

nxErrorEnum nxVariableTickTable::_RoundExactlyBy(const nxDecimal* tick, const nxRoundingMethodEnum& method,
                                                 nxDecimal& price) const
{
    return _GetRules().RoundExactly(tick, method, price);
}

nxErrorEnum nxVariableTickTable::IncrementExact(nxDecimal& price, int ticks) const
{
    nxTickPlace place = _StartPlace(price);
    return place.StepExact(_GetRules(), ticks, price);
}

bool nxVariableTickTable::IsValidTick(const nxDecimal& price) const
{
    if (!price.IsValid())
        return false;
    bool isMultiple = false;
    const nxDecimal* tick = nullptr;
    if (const nxTickZone* const zone = _GetZone(price); zone != nullptr) [[likely]]
    {
        if (zone->CheckMultiple(price, isMultiple)) [[likely]]
            return isMultiple;
        tick = zone->increment;
    }
    else
    {
        const nxMutexGuard guard(_lock);
        if (_place.zone.CheckMultiple(price, isMultiple))
            return isMultiple;
        tick = _SearchTick(price);
    }
    return tick != nullptr ? nxValidPrices::IsMultiple(price, *tick) : nxValidPrices(_ranges).Contains(price);
}

nxErrorEnum nxVariableTickTable::_GetNext(bool up, const nxDecimal& price, nxDecimal& next) const
{
    if (const nxTickZone* const zone = _GetZone(price); zone != nullptr)
    {
        if (zone->FindNext(up, price, next)) [[likely]]
            return nxErrorEnum();
    }
    else if (price.IsValid())
    {
        const nxMutexGuard guard(_lock);
        if (_Relocate(price) && _place.zone.FindNext(up, price, next))
            return nxErrorEnum();
    }
    return nxValidPrices(_ranges).GetNext(up, price, next);
}

nxErrorEnum nxVariableTickTable::GetTicksBetween(const nxDecimal& from, const nxDecimal& to, long long& ticks) const
{
    if (from.IsValid())
    {
        const nxMutexGuard guard(_lock);
        if (_Relocate(from) && _place.zone.CountTicks(from, to, ticks))
            return nxErrorEnum();
    }
    return nxValidPrices::CountTicks(_ranges, from, to, ticks);
}

nxTickPlace nxVariableTickTable::_StartPlace(const nxDecimal& price) const
{
    if (const nxTickZone* const zone = _GetZone(price); zone != nullptr)
        return {*zone, zone->stretch, 0};
    const nxMutexGuard guard(_lock);
    _Relocate(price);
    return _place;
}

void nxVariableTickTable::GetTickIncrement(std::span<const nxDecimal> prices, std::span<nxDecimal> increments) const
{
    const std::size_t count = std::min(prices.size(), increments.size());
    if (count == 0)
        return;
    const nxTickRules rules = _GetRules();
    nxTickPlace place = _StartPlace(prices.front());
    for (std::size_t i = 0; i < count; ++i)
        increments[i] = place.zone.Contains(prices[i]) ? *place.zone.increment : place.FindTick(rules, prices[i]);
}

void nxVariableTickTable::Increment(nxDecimal& price, int ticks) const { Increment(std::span(&price, 1), ticks); }

void nxVariableTickTable::Increment(std::span<nxDecimal> prices, int ticks) const
{
    if (prices.empty() || ticks == 0)
        return;
    const nxTickRules rules = _GetRules();
    nxTickPlace place = _StartPlace(prices.front());
    const auto moveAll = [&](bool isUp, std::uint64_t count)
    {
        for (nxDecimal& price : prices)
            if (const std::uint64_t done = place.zone.Step(isUp, count, price); done != count) [[unlikely]]
                price = place.Step(rules, isUp, count - done, price);
    };
    if (ticks == 1)
        moveAll(true, 1);
    else
        moveAll(ticks > 0, nxTickPlace::CountSteps(ticks));
}

void nxVariableTickTable::RoundToValidTick(const nxRoundingMethodEnum& method, std::span<nxDecimal> prices) const
{
    if (prices.empty())
        return;
    const nxTickRules rules = _GetRules();
    nxTickPlace place = _StartPlace(prices.front());
    for (nxDecimal& price : prices)
        if (!place.zone.Round(method, price)) [[unlikely]]
            price = place.Round(rules, method, price);
}
