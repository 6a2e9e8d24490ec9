#ifndef CORE_PLATFORM_NXLOCALZONE_H
#define CORE_PLATFORM_NXLOCALZONE_H

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <ctime>

#include "core/platform/nxTimeZone.h"

/// A minute of the process's local time, or the part of one during which nothing unusual happens to the clock.
struct nxLocalMinute
{
    std::int64_t begin;    ///< Its first second, counted from 1 January 1970 00:00 UTC.
    unsigned length;       ///< How many seconds it has, at least one.
    unsigned firstSecond;  ///< What a clock's second hand shows at its beginning.
    std::int64_t year;
    unsigned yearOfCentury;  ///< The year modulo 100, also for years before the year 0.
    unsigned month;          ///< 1 to 12.
    unsigned day;
    unsigned hour;
    unsigned minute;
};

/// What can be seen, at the cost of two loads, of the zone that the C library has set for the process. Different marks
/// mean different zones; the same mark may hide two of them.
struct nxLocalZoneMark
{
    long timezone = 0;
    int daylight = 0;

    static nxLocalZoneMark Now()
    {
        return {__atomic_load_n(&::timezone, __ATOMIC_RELAXED), __atomic_load_n(&::daylight, __ATOMIC_RELAXED)};
    }
    friend bool operator==(const nxLocalZoneMark&, const nxLocalZoneMark&) = default;
};

/// The local time of the process: what localtime_r says, from a table where that says the same.
///
/// The C library changes the process's zone when some thread calls tzset(), localtime() or a function that does, after
/// the variable TZ was changed. A table is used only when it says the same as localtime_r on both sides of every change
/// of the clock and in every month of its two hundred years. It is compared again when the caller asks for it, once in
/// a while: about the second in question, and throughout when TZ has another text than the table was built for. Where
/// there is no such table, localtime_r answers each time; a table is tried again after some thousand answers.
class nxLocalZone
{
public:
    nxLocalZone() = delete;

    /// Finds the minute that @p second lies in without asking the C library.
    /// @return false when that cannot be done, see FindAndCheck().
    static bool Find(std::int64_t second, nxLocalMinute& minute)
    {
        const nxTimeZone* const table = _table.load(std::memory_order_acquire);
        if (!_Covers(table, second)) [[unlikely]]
            return false;
        minute = _FromTable(*table, second);
        return true;
    }

    /// Finds the minute that @p second lies in, and sees to it that the table is that of the process's zone: compares
    /// it with localtime_r, and builds it afresh if they differ or the zone's mark has changed.
    ///
    /// A forked child with a table whose mark is right goes without the comparison: it could wait for ever for a lock
    /// of the C library that another thread of the parent held.
    /// @return false when the C library's calendar does not reach that far.
    static bool FindAndCheck(std::int64_t second, nxLocalMinute& minute);

private:
    static bool _FindWithLibrary(std::int64_t second, nxLocalMinute& minute);
    static bool _IsOutOfDate(const nxTimeZone* table);
    static const nxTimeZone* _Replace(const nxTimeZone* old, std::int64_t second, bool isWrong);
    static const nxTimeZone* _Build(const char* setting, std::int64_t second);
    static bool _AgreesAbout(const nxTimeZone& zone, std::int64_t second);
    static bool _Agrees(const nxTimeZone& zone, std::int64_t second, const std::tm& fields);
    static bool _AgreesThroughout(const nxTimeZone& zone);

    static bool _Covers(const nxTimeZone* zone, std::int64_t second)
    {
        return zone != nullptr && nxTimeZone::FirstSecond <= second && second < nxTimeZone::EndSecond;
    }

    static nxLocalMinute _FromTable(const nxTimeZone& zone, std::int64_t second)
    {
        constexpr std::uint64_t secondsPerDay = 86'400;
        constexpr std::uint64_t daysAdded = 730'485;  // 2,000 years, so that no number is negative
        const nxTimeZoneSpan span = zone.Find(second);
        const auto local = static_cast<std::uint64_t>(second + span.offset) + daysAdded * secondsPerDay;
        const auto ofDay = static_cast<std::uint32_t>(local % secondsPerDay);
        const std::uint32_t minutes = ofDay / 60;
        const std::int64_t minuteBegins = second - (ofDay - 60 * minutes);
        nxLocalMinute minute;
        minute.begin = std::max(minuteBegins, span.begin);
        minute.length = static_cast<unsigned>(std::min(minuteBegins + 60, span.end) - minute.begin);
        minute.firstSecond = static_cast<unsigned>(minute.begin - minuteBegins);
        minute.hour = minutes / 60;
        minute.minute = minutes - 60 * minute.hour;
        _PutDate(static_cast<std::uint32_t>(local / secondsPerDay), minute);
        return minute;
    }

    // Year, month and day by multiplications in place of divisions (C. Neri, L. Schneider, "Euclidean affine functions
    // and their application to calendar algorithms"). Years begin in March here.
    // @param day counted from 1 January of the year -30, 2,000 years before 1970.
    static void _PutDate(std::uint32_t day, nxLocalMinute& minute)
    {
        constexpr std::uint32_t daysToMarch = 719'468 - 730'485 + 146'097;  // from 1 March of the year -400
        const std::uint32_t n1 = 4 * (day + daysToMarch) + 3;
        const std::uint32_t n2 = n1 % 146'097 | 3;
        const std::uint64_t p2 = std::uint64_t{2'939'745} * n2;
        const auto yearOfCentury = static_cast<std::uint32_t>(p2 >> 32);
        const std::uint32_t dayOfYear = static_cast<std::uint32_t>(p2) / 2'939'745 / 4;
        const std::uint32_t n3 = 2'141 * dayOfYear + 197'913;
        const unsigned nextYear = dayOfYear >= 306 ? 1 : 0;
        const unsigned year = yearOfCentury + nextYear;
        minute.year = std::int64_t{100 * (n1 / 146'097) + year} - 400;
        minute.yearOfCentury = year == 100 ? 0 : year;
        minute.month = (n3 >> 16) - 12 * nextYear;
        minute.day = (n3 & 0xFFFF) / 2'141 + 1;
    }

    static std::atomic<const nxTimeZone*> _table;  // null where localtime_r must be asked
};

#endif
