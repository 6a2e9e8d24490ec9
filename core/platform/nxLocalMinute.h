// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXLOCALMINUTE_H
#define CORE_PLATFORM_NXLOCALMINUTE_H

#include <algorithm>
#include <cstdint>

#include "core/platform/nxTimeZone.h"

/// A minute of local time, or the part of one during which nothing unusual happens to the clock. A plain value.
struct nxLocalMinute
{
    std::int64_t begin;    ///< Its first second, counted from 1 January 1970 00:00 UTC.
    unsigned length;       ///< How many seconds it has, at least one.
    unsigned firstSecond;  ///< The position of a clock's second hand at its beginning.
    std::int64_t year;
    unsigned yearOfCentury;  ///< The year modulo 100, also for years before the year 0.
    unsigned month;          ///< 1 to 12.
    unsigned day;
    unsigned hour;
    unsigned minute;

    /// The minute that @p second lies in. @pre nxTimeZone::FirstSecond <= second < nxTimeZone::EndSecond
    static nxLocalMinute In(const nxTimeZone& zone, std::int64_t second)
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
        minute._SetDate(static_cast<std::uint32_t>(local / secondsPerDay));
        return minute;
    }

private:
    // Year, month and day by multiplications in place of divisions (C. Neri, L. Schneider, "Euclidean affine functions
    // and their application to calendar algorithms"). Years begin in March here.
    // @param daysSince counted from 1 January of the year -30, 2,000 years before 1970.
    void _SetDate(std::uint32_t daysSince)
    {
        constexpr std::uint32_t daysToMarch = 719'468 - 730'485 + 146'097;  // from 1 March of the year -400
        const std::uint32_t n1 = 4 * (daysSince + daysToMarch) + 3;
        const std::uint32_t n2 = n1 % 146'097 | 3;
        const std::uint64_t p2 = std::uint64_t{2'939'745} * n2;
        const auto marchYearOfCentury = static_cast<std::uint32_t>(p2 >> 32);
        const std::uint32_t dayOfYear = static_cast<std::uint32_t>(p2) / 2'939'745 / 4;
        const std::uint32_t n3 = 2'141 * dayOfYear + 197'913;
        const unsigned nextYear = dayOfYear >= 306 ? 1 : 0;
        const unsigned ofCentury = marchYearOfCentury + nextYear;
        year = std::int64_t{100 * (n1 / 146'097) + ofCentury} - 400;
        yearOfCentury = ofCentury == 100 ? 0 : ofCentury;
        month = (n3 >> 16) - 12 * nextYear;
        day = (n3 & 0xFFFF) / 2'141 + 1;
    }
};

#endif
