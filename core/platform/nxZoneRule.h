// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXZONERULE_H
#define CORE_PLATFORM_NXZONERULE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The offsets of a time zone as a rule for every year, such as "EST5" or "CET-1CEST,M3.5.0,M10.5.0/3": one offset, or
/// two with the moments at which they alternate.
///
/// - Units: seconds counted from 1 January 1970 00:00 UTC; offsets are local time less UTC, in seconds.
/// - Null: a default-constructed rule is that of UTC.
/// - Threads: once read, any thread may use it. Ownership: a plain value that owns nothing.
class nxZoneRule
{
public:
    /// Reads a rule: a name and an offset, then optionally those of summer time and the moments at which summer time
    /// begins and ends. Summer time without its moments is refused.
    /// @return false when the text is no such rule; the rule is then undefined.
    bool Read(std::string_view text);

    /// Calls @p add(second, offset) for @p begin and for each later moment before @p end at which another offset may
    /// begin, in order of time. Two calls in a row may give the same second, of which the later one holds, or the same
    /// offset. @pre the year of @p begin is 1900 or later, and @p end is the first second of a year.
    template <class Add>
    void Unroll(std::int64_t begin, std::int64_t end, Add add) const
    {
        if (!_hasSummer)
            return add(begin, _standard);
        for (std::int64_t year = _YearOf(begin); _FirstSecondOf(year) < end; ++year)
        {
            const ChangesOfYear changes = _GetChanges(year, begin);
            for (std::size_t i = 0; i < changes.count; ++i)
                add(changes.seconds[i], changes.offsets[i]);
        }
    }

private:
    class Reader;

    // A day of every year, and a time on it.
    class YearlyMoment
    {
    public:
        // Reads "J59", "59" or "M10.5.0", and "/3" for a time other than two o'clock.
        bool Read(Reader& reader);

        // The moment in a year, shown by a clock that is `offset` ahead of UTC.
        std::int64_t InYear(std::int64_t year, std::int32_t offset) const;

    private:
        enum class Kind
        {
            DayWithoutLeapDay,  // 1 to 365; 29 February is not counted
            Day,                // 0 to 365
            Weekday             // the _week-th _day of _month; the fifth is the last
        };

        bool _ReadDay(Reader& reader);
        std::int64_t _DayOfYear(std::int64_t year) const;
        std::int64_t _DayOfYearOfWeekday(std::int64_t year) const;

        Kind _kind = Kind::Day;
        int _day = 0;
        int _week = 0;
        int _month = 0;
        std::int32_t _time = 7'200;  // seconds after midnight
    };

    // A year begins with an offset and changes it twice.
    struct ChangesOfYear
    {
        std::int64_t seconds[3] = {};
        std::int32_t offsets[3] = {};
        std::size_t count = 0;
    };

    static std::int64_t _YearOf(std::int64_t second);
    static std::int64_t _FirstSecondOf(std::int64_t year);
    ChangesOfYear _GetChanges(std::int64_t year, std::int64_t begin) const;

    std::int32_t _standard = 0;
    std::int32_t _summer = 0;
    bool _hasSummer = false;
    YearlyMoment _summerBegins;
    YearlyMoment _summerEnds;
};

#endif
