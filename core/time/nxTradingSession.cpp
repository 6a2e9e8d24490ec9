// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxTradingSession.h"

#include <utility>

nxErrorEnum nxTradingSession::Set(const nxZone* zone, nxBusinessCalendar calendar, nxTime open, nxTime close,
                                  OpenDay openDay)
{
    if (zone == nullptr || open.IsNull() || close.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const bool lasts = openDay == OpenDay::Same ? open < close : close <= open;
    if (!lasts || openDay > OpenDay::Before)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    _calendar = std::move(calendar);
    _zone = zone;
    _open = open;
    _close = close;
    _openDay = openDay;
    return nxErrorEnum();
}

nxErrorEnum nxTradingSession::GetOpen(nxDate tradeDate, nxTimeStamp& moment) const
{
    const nxErrorEnum error = _CheckTradeDate(tradeDate);
    return error.IsOK() ? _FindOpen(tradeDate, moment) : error;
}

nxErrorEnum nxTradingSession::GetClose(nxDate tradeDate, nxTimeStamp& moment) const
{
    const nxErrorEnum error = _CheckTradeDate(tradeDate);
    return error.IsOK() ? _FindClose(tradeDate, moment) : error;
}

nxErrorEnum nxTradingSession::GetTradeDate(const nxTimeStamp& moment, nxDate& tradeDate) const
{
    if (_zone == nullptr)
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    const nxDate today = _zone->GetLocal(moment).GetDate();
    if (today.IsNull())
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    // Where clocks skip the closing time of yesterday, yesterday may close only today.
    nxDate first = today.GetWithDaysAdded(-1);
    for (nxTimeStamp close(moment);; first = first.GetWithDaysAdded(1))
    {
        const nxErrorEnum error = _FindClose(first, close);
        if (!error.IsOK())
            return error;
        if (close > moment)
            break;
    }
    return _calendar.Adjust(first, nxBusinessCalendar::Adjustment::Following, tradeDate);
}

nxErrorEnum nxTradingSession::IsOpen(const nxTimeStamp& moment, bool& isOpen) const
{
    nxDate tradeDate;
    nxErrorEnum error = GetTradeDate(moment, tradeDate);
    nxTimeStamp open(moment);
    if (error.IsOK())
        error = _FindOpen(tradeDate, open);
    if (error.IsOK())
        isOpen = open <= moment;
    return error;
}

nxErrorEnum nxTradingSession::_CheckTradeDate(nxDate tradeDate) const
{
    if (_zone == nullptr)
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    bool isBusinessDay = false;
    const nxErrorEnum error = _calendar.IsBusinessDay(tradeDate, isBusinessDay);
    return error.IsOK() && !isBusinessDay ? nxErrorEnum(NX_ERR_NOT_FOUND) : error;
}

nxErrorEnum nxTradingSession::_FindOpen(nxDate tradeDate, nxTimeStamp& moment) const
{
    const nxDate day = _openDay == OpenDay::Before ? tradeDate.GetWithDaysAdded(-1) : tradeDate;
    return _zone->GetMoment(nxDateTime(day, _open), moment);
}

nxErrorEnum nxTradingSession::_FindClose(nxDate tradeDate, nxTimeStamp& moment) const
{
    return _zone->GetMoment(nxDateTime(tradeDate, _close), moment);
}
