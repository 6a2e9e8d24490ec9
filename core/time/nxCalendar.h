// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXCALENDAR_H
#define CORE_TIME_NXCALENDAR_H

#include <string_view>

/// The rules of the Gregorian calendar, extended back to the year 1: pure functions without state, clock or locale.
///
/// Days are counted from 1 January 1970, which is day 0. Years run from MinYear to MaxYear.
/// @code
/// nxCalendar::GetDaysInMonth(2024, 2);          // 29
/// nxCalendar::GetMonthName(3);                  // "Mar"
/// nxCalendar::GetDayNumber(1970, 1, 2);         // 1
/// @endcode
class nxCalendar
{
public:
    static constexpr unsigned MinYear = 1;     ///< The first year that a date can have.
    static constexpr unsigned MaxYear = 9999;  ///< The last year that a date can have.

    /// @return whether @p year has a 29 February; the rule holds for any number, also beyond MaxYear.
    static constexpr bool IsLeapYear(unsigned year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

    /// @return 28 to 31, or 0 when @p month is not 1 to 12.
    static constexpr unsigned GetDaysInMonth(unsigned year, unsigned month)
    {
        if (month < 1 || month > 12)
            return 0;
        if (month == 2)
            return IsLeapYear(year) ? 29 : 28;
        return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
    }

    /// @return whether the calendar has such a day, in a year from MinYear to MaxYear.
    static constexpr bool IsDate(unsigned year, unsigned month, unsigned day)
    {
        return year >= MinYear && year <= MaxYear && day >= 1 && day <= GetDaysInMonth(year, month);
    }

    /// @return the three-letter English name, "Jan" to "Dec", or an empty text when @p month is not 1 to 12.
    static constexpr std::string_view GetMonthName(unsigned month)
    {
        constexpr std::string_view names = "JanFebMarAprMayJunJulAugSepOctNovDec";
        return month >= 1 && month <= 12 ? names.substr((month - 1) * 3, 3) : std::string_view();
    }

    /// @return the number of the day; the three fields must form a date.
    static constexpr int GetDayNumber(unsigned year, unsigned month, unsigned day)
    {
        // Years are taken to begin in March, so that the leap day comes last; 400 years have 146097 days.
        const unsigned marchYear = year - (month <= 2 ? 1 : 0);
        const unsigned marchMonth = month > 2 ? month - 3 : month + 9;
        const unsigned dayOfYear = (153 * marchMonth + 2) / 5 + day - 1;
        const unsigned days = marchYear * 365 + marchYear / 4 - marchYear / 100 + marchYear / 400 + dayOfYear;
        return static_cast<int>(days) - _epochFromMarchYearZero;
    }

    /// Finds the fields of the day with a number.
    /// @return false, with nothing stored, when the day lies outside the years MinYear to MaxYear.
    static constexpr bool GetDateOfDay(long long dayNumber, unsigned& year, unsigned& month, unsigned& day)
    {
        if (dayNumber < GetDayNumber(MinYear, 1, 1) || dayNumber > GetDayNumber(MaxYear, 12, 31))
            return false;
        const unsigned days = static_cast<unsigned>(dayNumber + _epochFromMarchYearZero);
        const unsigned era = days / 146097;
        const unsigned dayOfEra = days % 146097;
        const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
        const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
        const unsigned marchMonth = (5 * dayOfYear + 2) / 153;
        day = dayOfYear - (153 * marchMonth + 2) / 5 + 1;
        month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
        year = era * 400 + yearOfEra + (month <= 2 ? 1 : 0);
        return true;
    }

private:
    static constexpr int _epochFromMarchYearZero = 719468;  // days from 1 March of the year 0 to 1 January 1970
};

#endif
