// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxBusinessCalendar.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "core/text/nxCSVParser.h"

namespace
{
bool FindNextBusinessDay(const nxDayTable& days, int day, int& found) { return days.FindAfter(day - 1, 1, found); }

bool FindPreviousBusinessDay(const nxDayTable& days, int day, int& found) { return days.FindBefore(day + 1, 1, found); }

bool FindNextInMonth(const nxDayTable& days, nxDate date, int& found)
{
    const int day = date.GetDayNumber();
    const int endOfMonth = date.GetEndOfMonth().GetDayNumber();
    const bool hasNext = FindNextBusinessDay(days, day, found);
    if (hasNext && found <= endOfMonth)
        return true;
    // Where the range ends within the month, the rest of the month is not known.
    return (hasNext || days.GetLast() >= endOfMonth) && FindPreviousBusinessDay(days, day, found);
}

bool FindPreviousInMonth(const nxDayTable& days, nxDate date, int& found)
{
    const int day = date.GetDayNumber();
    const int beginOfMonth = day - static_cast<int>(date.GetDay()) + 1;
    const bool hasPrevious = FindPreviousBusinessDay(days, day, found);
    if (hasPrevious && found >= beginOfMonth)
        return true;
    return (hasPrevious || days.GetFirst() <= beginOfMonth) && FindNextBusinessDay(days, day, found);
}

bool FindNearestBusinessDay(const nxDayTable& days, int day, int& found)
{
    int next = 0;
    int previous = 0;
    const bool hasNext = FindNextBusinessDay(days, day, next);
    const bool hasPrevious = FindPreviousBusinessDay(days, day, previous);
    // Where there is none, the first day outside the range may be one.
    const int toNext = (hasNext ? next : days.GetLast() + 1) - day;
    const int toPrevious = day - (hasPrevious ? previous : days.GetFirst() - 1);
    const bool isNextNearer = toNext <= toPrevious;
    found = isNextNearer ? next : previous;
    return isNextNearer ? hasNext : hasPrevious;
}

bool ReadHoliday(const nxCSVRow& row, nxDate& date)
{
    std::string scratch;
    std::string_view field;
    if (!row.GetField(0, scratch, field).IsOK())
        return false;
    const std::string text(field);
    return date.SetFromString(text).IsOK() || date.SetFromISOString(text).IsOK();
}

// Gives the holidays of a list in order, each once.
nxErrorEnum ReadHolidays(nxCSVParser& rows, std::vector<int>& holidays, unsigned long long& failedLine)
{
    bool isHeader = rows.GetDialect().hasHeader;
    nxCSVRow row;
    for (bool hasRow = true; hasRow;)
    {
        const nxErrorEnum error = rows.Next(row, hasRow);
        if (!error.IsOK())
        {
            failedLine = rows.GetErrorLine();
            return error;
        }
        if (!hasRow || !row.HasFields())
            continue;
        nxDate date;
        if (ReadHoliday(row, date) == isHeader)
        {
            failedLine = row.line;
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        }
        if (!isHeader)
            holidays.push_back(date.GetDayNumber());
        isHeader = false;
    }
    std::sort(holidays.begin(), holidays.end());
    holidays.erase(std::unique(holidays.begin(), holidays.end()), holidays.end());
    failedLine = 0;
    return nxErrorEnum();
}
}  // namespace

nxErrorEnum nxBusinessCalendar::SetWeekend(unsigned days)
{
    constexpr unsigned allDays = 2 * Sunday - 1;
    if (days >= allDays)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (!_days.IsEmpty())
        _days = _MakeDays(_days.GetFirst(), _days.GetLast(), days);
    _weekend = days;
    return nxErrorEnum();
}

nxErrorEnum nxBusinessCalendar::AddHoliday(nxDate date)
{
    if (date.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const int day = date.GetDayNumber();
    const auto place = std::lower_bound(_holidays.begin(), _holidays.end(), day);
    if (place == _holidays.end() || *place != day)
        _holidays.insert(place, day);
    _days.Remove(day);
    return nxErrorEnum();
}

nxErrorEnum nxBusinessCalendar::SetFromCSV(nxCSVParser& rows, unsigned long long& failedLine)
{
    nxBusinessCalendar changed;
    nxErrorEnum error = ReadHolidays(rows, changed._holidays, failedLine);
    if (!error.IsOK())
        return error;
    changed._weekend = _weekend;
    if (!_days.IsEmpty())
        changed._days = changed._MakeDays(_days.GetFirst(), _days.GetLast(), _weekend);
    *this = std::move(changed);
    return error;
}

nxErrorEnum nxBusinessCalendar::SetRange(nxDate first, nxDate last)
{
    if (first.IsNull() || last.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (last < first)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    _days = _MakeDays(first.GetDayNumber(), last.GetDayNumber(), _weekend);
    return nxErrorEnum();
}

nxBusinessCalendar nxBusinessCalendar::GetJoint(const nxBusinessCalendar& left, const nxBusinessCalendar& right)
{
    nxBusinessCalendar joint;
    joint._weekend = left._weekend | right._weekend;
    std::set_union(left._holidays.begin(), left._holidays.end(), right._holidays.begin(), right._holidays.end(),
                   std::back_inserter(joint._holidays));
    const int first = std::max(left._days.GetFirst(), right._days.GetFirst());
    const int last = std::min(left._days.GetLast(), right._days.GetLast());
    if (!left._days.IsEmpty() && !right._days.IsEmpty() && first <= last)
        joint._days = joint._MakeDays(first, last, joint._weekend);
    return joint;
}

nxDate nxBusinessCalendar::GetFirstDay() const
{
    return _days.IsEmpty() ? nxDate() : nxDate::GetFromDayNumber(_days.GetFirst());
}

nxDate nxBusinessCalendar::GetLastDay() const
{
    return _days.IsEmpty() ? nxDate() : nxDate::GetFromDayNumber(_days.GetLast());
}

nxErrorEnum nxBusinessCalendar::IsBusinessDay(nxDate date, bool& isBusinessDay) const
{
    const nxErrorEnum error = _GetErrorOf(date);
    if (!error.IsOK())
        return error;
    const int day = date.GetDayNumber();
    if (!_days.Covers(day))
        return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
    isBusinessDay = _days.Has(day);
    return nxErrorEnum();
}

nxErrorEnum nxBusinessCalendar::Adjust(nxDate date, Adjustment adjustment, nxDate& adjusted) const
{
    const nxErrorEnum error = _GetErrorOf(date);
    if (!error.IsOK())
        return error;
    if (adjustment > Adjustment::Nearest)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    int found = date.GetDayNumber();
    if (adjustment != Adjustment::None && (!_days.Covers(found) || !_Find(date, adjustment, found)))
        return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
    adjusted = nxDate::GetFromDayNumber(found);
    return nxErrorEnum();
}

nxErrorEnum nxBusinessCalendar::AddBusinessDays(nxDate date, int days, nxDate& result) const
{
    const nxErrorEnum error = _GetErrorOf(date);
    if (!error.IsOK())
        return error;
    const int day = date.GetDayNumber();
    int found = day;
    bool isFound = days == 0;
    if (days > 0)
        isFound = _days.Covers(day + 1) && _days.FindAfter(day, days, found);
    if (days < 0)
        isFound = _days.Covers(day - 1) && _days.FindBefore(day, -static_cast<long long>(days), found);
    if (!isFound)
        return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
    result = nxDate::GetFromDayNumber(found);
    return nxErrorEnum();
}

nxErrorEnum nxBusinessCalendar::GetBusinessDaysBetween(nxDate from, nxDate to, int& count) const
{
    const nxErrorEnum error = from.IsNull() ? _GetErrorOf(from) : _GetErrorOf(to);
    if (!error.IsOK())
        return error;
    const bool isForward = from <= to;
    const int first = isForward ? from.GetDayNumber() : to.GetDayNumber() + 1;
    const int end = isForward ? to.GetDayNumber() : from.GetDayNumber() + 1;
    if (first == end)
        count = 0;
    else if (!_days.Covers(first) || !_days.Covers(end - 1))
        return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
    else
        count = (_days.CountBefore(end) - _days.CountBefore(first)) * (isForward ? 1 : -1);
    return nxErrorEnum();
}

nxErrorEnum nxBusinessCalendar::_GetErrorOf(nxDate date) const
{
    if (_days.IsEmpty())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    return date.IsNull() ? nxErrorEnum(NX_ERR_OBJECT_IS_NULL) : nxErrorEnum();
}

bool nxBusinessCalendar::_Find(nxDate date, Adjustment adjustment, int& found) const
{
    switch (adjustment)
    {
        case Adjustment::Following:
            return FindNextBusinessDay(_days, date.GetDayNumber(), found);
        case Adjustment::ModifiedFollowing:
            return FindNextInMonth(_days, date, found);
        case Adjustment::Preceding:
            return FindPreviousBusinessDay(_days, date.GetDayNumber(), found);
        case Adjustment::ModifiedPreceding:
            return FindPreviousInMonth(_days, date, found);
        default:
            return FindNearestBusinessDay(_days, date.GetDayNumber(), found);
    }
}

// The business days of a range.
nxDayTable nxBusinessCalendar::_MakeDays(int first, int last, unsigned weekend) const
{
    nxDayTable days(first, last, weekend);
    days.Remove(_holidays);
    return days;
}
