// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxTickTableCursor.h"

#include "core/price/internal/nxTickViews.h"

// Scattered prices come to the first two all the time, so these look into the finished zones themselves.

const nxDecimal& nxTickTableCursor::_FindTick(nxDecimal price)
{
    const nxTickZone* const found = nxTickViews::Find(_table->_GetRules().GetGrid(), price);
    if (found == nullptr) [[unlikely]]
        return _place.FindTick(_table->_GetRules(), price);
    _place.Note(*found);
    return *found->increment;
}

nxDecimal nxTickTableCursor::_Round(const nxRoundingMethodEnum& method, nxDecimal price)
{
    const nxTickZone* const found = nxTickViews::Find(_table->_GetRules().GetGrid(), price);
    if (found == nullptr || !found->Round(method, price)) [[unlikely]]
        return _place.Round(_table->_GetRules(), method, price);
    _place.Note(*found);
    return price;
}

unsigned char nxTickTableCursor::NumberOfDecimalPlaces(const nxDecimal& price)
{
    const nxTickRules rules = _table->_GetRules();
    return rules.GetPlaces(_place.FindBand(rules, price));
}

nxDecimal nxTickTableCursor::_Step(bool up, std::uint64_t ticks, nxDecimal price)
{
    return _place.Step(_table->_GetRules(), up, ticks, price);
}

nxErrorEnum nxTickTableCursor::_StepExact(int ticks, nxDecimal& price)
{
    return _place.StepExact(_table->_GetRules(), ticks, price);
}

nxErrorEnum nxTickTableCursor::_RoundExact(const nxRoundingMethodEnum& method, nxDecimal& price)
{
    return _place.RoundExact(_table->_GetRules(), method, price);
}

bool nxTickTableCursor::_IsValidTick(nxDecimal price) { return _place.IsValidTick(_table->_GetRules(), price); }

nxErrorEnum nxTickTableCursor::_GetNext(bool up, nxDecimal price, nxDecimal& next)
{
    return _place.GetNext(_table->_GetRules(), up, price, next);
}

nxErrorEnum nxTickTableCursor::_GetTicksBetween(nxDecimal from, nxDecimal to, long long& ticks)
{
    return _place.GetTicksBetween(_table->_GetRules(), from, to, ticks);
}
