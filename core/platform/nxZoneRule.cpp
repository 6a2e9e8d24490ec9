// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxZoneRule.h"

#include <algorithm>

namespace
{
constexpr std::int64_t zoneRuleSecondsPerDay = 86'400;

bool IsLeapYear(std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

// Days from 1 January 1970 to 1 January of a year after the year 0.
std::int64_t DaysToYear(std::int64_t year)
{
    const std::int64_t before = year - 1;
    return before * 365 + before / 4 - before / 100 + before / 400 - 719'162;
}
}  // namespace

// Parses a rule from left to right. A Take function that does not match consumes nothing.
class nxZoneRule::Reader
{
public:
    explicit Reader(std::string_view text) : _rest(text) {}

    bool AtEnd() const { return _rest.empty(); }

    bool Take(char wanted)
    {
        if (_rest.empty() || _rest.front() != wanted)
            return false;
        _rest.remove_prefix(1);
        return true;
    }

    bool TakeNumber(int smallest, int largest, int& number)
    {
        std::size_t size = 0;
        int value = 0;
        while (size < _rest.size() && _IsDigit(_rest[size]) && value <= largest)
            value = value * 10 + (_rest[size++] - '0');
        if (size == 0 || value < smallest || value > largest)
            return false;
        _rest.remove_prefix(size);
        number = value;
        return true;
    }

    // The name of a zone: three letters or more, or any text between < and >.
    bool TakeName()
    {
        std::size_t size = 0;
        if (!_rest.empty() && _rest.front() == '<')
            size = _rest.find('>') + 1;  // 0 when there is none
        else
            while (size < _rest.size() && _IsLetter(_rest[size]))
                ++size;
        if (size < 3)
            return false;
        _rest.remove_prefix(size);
        return true;
    }

    // "[+-]hh[:mm[:ss]]", in seconds. The one exception: a text that fails may have lost its beginning.
    bool TakeTime(int largestHour, std::int32_t& seconds)
    {
        const bool negative = Take('-');
        if (!negative)
            Take('+');
        int hour = 0, minute = 0, second = 0;
        if (!TakeNumber(0, largestHour, hour))
            return false;
        if (Take(':') && !TakeNumber(0, 59, minute))
            return false;
        if (Take(':') && !TakeNumber(0, 59, second))
            return false;
        const int total = hour * 3'600 + minute * 60 + second;
        seconds = negative ? -total : total;
        return true;
    }

private:
    static bool _IsDigit(char c) { return '0' <= c && c <= '9'; }
    static bool _IsLetter(char c) { return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z'); }

    std::string_view _rest;
};

bool nxZoneRule::YearlyMoment::Read(Reader& reader)
{
    constexpr int largestHour = 167;
    return _ReadDay(reader) && (!reader.Take('/') || reader.TakeTime(largestHour, _time));
}

bool nxZoneRule::YearlyMoment::_ReadDay(Reader& reader)
{
    if (reader.Take('J'))
    {
        _kind = Kind::DayWithoutLeapDay;
        return reader.TakeNumber(1, 365, _day);
    }
    if (reader.Take('M'))
    {
        _kind = Kind::Weekday;
        return reader.TakeNumber(1, 12, _month) && reader.Take('.') && reader.TakeNumber(1, 5, _week) &&
               reader.Take('.') && reader.TakeNumber(0, 6, _day);
    }
    return reader.TakeNumber(0, 365, _day);
}

std::int64_t nxZoneRule::YearlyMoment::InYear(std::int64_t year, std::int32_t offset) const
{
    // The C library puts the rules of all years before 1970 into that year.
    const std::int64_t start = DaysToYear(std::max<std::int64_t>(year, 1970));
    return (start + _DayOfYear(year)) * zoneRuleSecondsPerDay + _time - offset;
}

std::int64_t nxZoneRule::YearlyMoment::_DayOfYear(std::int64_t year) const
{
    if (_kind == Kind::Day)
        return _day;
    if (_kind == Kind::DayWithoutLeapDay)
        return _day - 1 + (_day >= 60 && IsLeapYear(year) ? 1 : 0);
    return _DayOfYearOfWeekday(year);
}

std::int64_t nxZoneRule::YearlyMoment::_DayOfYearOfWeekday(std::int64_t year) const
{
    static constexpr int daysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
    const int first = daysBefore[_month - 1] + (IsLeapYear(year) && _month > 2 ? 1 : 0);
    const int next = daysBefore[_month] + (IsLeapYear(year) && _month > 1 ? 1 : 0);
    constexpr int thursday = 4;  // 1 January 1970
    const auto weekday = static_cast<int>(((DaysToYear(year) + first + thursday) % 7 + 7) % 7);
    const int found = first + (_day - weekday + 7) % 7 + (_week - 1) * 7;
    return found < next ? found : found - 7;
}

bool nxZoneRule::Read(std::string_view text)
{
    constexpr int largestHour = 24;
    Reader reader(text);
    if (!reader.TakeName() || !reader.TakeTime(largestHour, _standard))
        return false;
    // The text says how far local time is behind UTC.
    _standard = -_standard;
    if (reader.AtEnd())
        return true;
    _hasSummer = true;
    if (!reader.TakeName())
        return false;
    _summer = _standard + 3'600;
    if (!reader.Take(','))
    {
        if (!reader.TakeTime(largestHour, _summer) || !reader.Take(','))
            return false;
        _summer = -_summer;
    }
    return _summerBegins.Read(reader) && reader.Take(',') && _summerEnds.Read(reader) && reader.AtEnd();
}

std::int64_t nxZoneRule::_YearOf(std::int64_t second)
{
    const std::int64_t firstSecond = _FirstSecondOf(1'900);
    std::int64_t year = 1'900 + (second - firstSecond) / zoneRuleSecondsPerDay / 366;
    while (_FirstSecondOf(year + 1) <= second)
        ++year;
    return year;
}

std::int64_t nxZoneRule::_FirstSecondOf(std::int64_t year) { return DaysToYear(year) * zoneRuleSecondsPerDay; }

nxZoneRule::ChangesOfYear nxZoneRule::_GetChanges(std::int64_t year, std::int64_t begin) const
{
    const std::int64_t yearBegins = _FirstSecondOf(year);
    const std::int64_t yearEnds = _FirstSecondOf(year + 1);
    const std::int64_t summerBegins = _summerBegins.InYear(year, _standard);
    const std::int64_t summerEnds = _summerEnds.InYear(year, _summer);
    // In the south, summer begins late in the year and ends early in it.
    const bool south = summerBegins > summerEnds;
    const auto offsetAt = [&](std::int64_t second)
    {
        const bool summer =
            south ? second < summerEnds || second >= summerBegins : second >= summerBegins && second < summerEnds;
        return summer ? _summer : _standard;
    };
    ChangesOfYear changes;
    for (const std::int64_t moment :
         {yearBegins, std::min(summerBegins, summerEnds), std::max(summerBegins, summerEnds)})
    {
        const std::int64_t second = std::max({moment, yearBegins, begin});
        if (second >= yearEnds)
            continue;
        changes.seconds[changes.count] = second;
        changes.offsets[changes.count] = offsetAt(second);
        ++changes.count;
    }
    return changes;
}
