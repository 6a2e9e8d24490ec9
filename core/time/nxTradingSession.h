// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXTRADINGSESSION_H
#define CORE_TIME_NXTRADINGSESSION_H

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/time/nxBusinessCalendar.h"
#include "core/time/nxDate.h"
#include "core/time/nxTime.h"
#include "core/time/nxTimeStamp.h"
#include "core/time/nxZone.h"

/// The trading hours of a market: when the session of a trade date opens and closes, and to which trade date a moment
/// belongs. Every business day of the calendar has one session, which closes on that day.
///
/// - A moment belongs to the first business day whose close is after it. Sunday evening, the morning of a holiday and the
///   time between two sessions thus belong to the next business day.
/// - Summer time: opening and closing times are what clocks at the market show, so a session may be an hour longer or
///   shorter. A time that clocks skip or show twice is taken as nxZone::GetMoment() takes it.
/// - Range: the range of the calendar, and the years 1900 to 2099.
/// - Null: a new session has no hours.
/// - Errors: returned, never thrown; only copying the calendar can throw. NX_ERR_NOT_INITIALISED before Set() succeeded, or
///   when the calendar has no range; NX_ERR_INSUFFICIENT_DATA when an answer needs a day outside the calendar's range;
///   NX_ERR_VALUE_OUT_OF_RANGE outside the zone's. A target is unchanged on failure.
/// - Threads: readers may share a session; a writer needs the caller's lock.
/// - Ownership: a value that has its own copy of the calendar. Zones are kept by the process.
/// @code
/// const nxZone* zone = nullptr;
/// nxTradingSession session;  // 17:00 on the day before to 16:00, in Chicago
/// if (nxZone::Get("America/Chicago", zone).IsOK() &&
///     session.Set(zone, calendar, nxTime(17, 0, 0), nxTime(16, 0, 0), nxTradingSession::OpenDay::Before).IsOK())
/// {
///     nxDate tradeDate;
///     if (session.GetTradeDate(nxTimeStamp(), tradeDate).IsOK())
///         NX_LOG << "trade date " << tradeDate;
/// }
/// @endcode
class NX_CORE_API nxTradingSession
{
public:
    /// On which day the session of a trade date opens.
    enum class OpenDay : unsigned char
    {
        Same,   ///< On the trade date.
        Before  ///< On the day of the calendar before it, whether that is a business day or not.
    };

    nxTradingSession() = default;  ///< Without hours.

    /// Sets the hours.
    /// @param calendar is copied: later changes to the original have no effect on the session.
    /// @param open a time on the day that @p openDay names.
    /// @param close a time on the trade date.
    /// @return NX_ERR_OBJECT_IS_NULL when the zone or a time is null; NX_ERR_INVALID_PARAMETER when a session would not
    ///         last, or would still be open when the next one opens: @p close has to be after @p open on the same day, and
    ///         must not be after it otherwise.
    [[nodiscard]] nxErrorEnum Set(const nxZone* zone, nxBusinessCalendar calendar, nxTime open, nxTime close,
                                  OpenDay openDay);

    /// @param moment receives when the session opens.
    /// @return NX_ERR_NOT_FOUND when @p tradeDate is not a business day; NX_ERR_OBJECT_IS_NULL when it is null.
    [[nodiscard]] nxErrorEnum GetOpen(nxDate tradeDate, nxTimeStamp& moment) const;
    /// @param moment receives when the session closes: the first moment after it.
    /// @return NX_ERR_NOT_FOUND when @p tradeDate is not a business day; NX_ERR_OBJECT_IS_NULL when it is null.
    [[nodiscard]] nxErrorEnum GetClose(nxDate tradeDate, nxTimeStamp& moment) const;
    /// @param tradeDate receives the first business day whose close is after @p moment.
    [[nodiscard]] nxErrorEnum GetTradeDate(const nxTimeStamp& moment, nxDate& tradeDate) const;
    /// @param isOpen receives whether @p moment is in a session. The moment of the opening is, that of the close is not.
    [[nodiscard]] nxErrorEnum IsOpen(const nxTimeStamp& moment, bool& isOpen) const;

private:
    [[gnu::visibility("hidden")]] nxErrorEnum _CheckTradeDate(nxDate tradeDate) const;
    [[gnu::visibility("hidden")]] nxErrorEnum _FindOpen(nxDate tradeDate, nxTimeStamp& moment) const;
    [[gnu::visibility("hidden")]] nxErrorEnum _FindClose(nxDate tradeDate, nxTimeStamp& moment) const;

    const nxZone* _zone = nullptr;  // null without hours
    nxBusinessCalendar _calendar;
    nxTime _open;
    nxTime _close;
    OpenDay _openDay = OpenDay::Same;
};

#endif
