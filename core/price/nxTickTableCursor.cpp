// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxTickTableCursor.h"

const nxDecimal& nxTickTableCursor::_FindTick(nxDecimal price) { return _place.FindTick(_table->_GetRules(), price); }

unsigned char nxTickTableCursor::NumberOfDecimalPlaces(const nxDecimal& price)
{
    const nxTickRules rules = _table->_GetRules();
    return rules.GetPlaces(_place.FindBand(rules, price));
}

nxDecimal nxTickTableCursor::_Step(bool up, std::uint64_t ticks, nxDecimal price)
{
    return _place.Step(_table->_GetRules(), up, ticks, price);
}

nxDecimal nxTickTableCursor::_Round(const nxRoundingMethodEnum& method, nxDecimal price)
{
    return _place.Round(_table->_GetRules(), method, price);
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
