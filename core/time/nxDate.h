// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXDATE_H
#define CORE_TIME_NXDATE_H

#include <compare>
#include <cstddef>
#include <iosfwd>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"
#include "core/time/nxCalendar.h"

/// A nullable day of the Gregorian calendar, from 1 January of the year 1 to 31 December 9999.
///
/// - Units: the day is held and written as one number, yyyymmdd (20240305 is 5 March 2024). It has no time zone.
/// - Null: a default-constructed date is null; null comes before every day.
/// - Errors: an impossible day is never held. The constructors make null instead; the setters return
///   NX_ERR_INVALID_PARAMETER and leave the date as it was.
/// - Threads: like an int.
/// - Ownership: a 4-byte value that owns nothing; pass it by value.
/// @code
/// nxDate expiry;
/// if (expiry.SetFromString("20240229").IsOK())
///     expiry = expiry.GetWithDaysAdded(1);         // 1 March 2024
/// expiry = nxDate::GetNthDayOfWeek(2024, 3, 3, 5);  // the third Friday of March: 15 March 2024
/// expiry - nxDate(2024, 3, 1);                      // 14 days
/// @endcode
class NX_CORE_API nxDate
{
public:
    constexpr nxDate() = default;                   ///< Null.
    constexpr explicit nxDate(nxNullInitalizer) {}  ///< Null.
    /// The day with the number @p isoDate (yyyymmdd), or null when there is no such day.
    constexpr explicit nxDate(unsigned isoDate) : nxDate(isoDate / 10000, isoDate / 100 % 100, isoDate % 100) {}
    /// Month 1 to 12, day from 1; null when there is no such day.
    constexpr nxDate(unsigned year, unsigned month, unsigned day)
        : _isoDate(nxCalendar::IsDate(year, month, day) ? year * 10000 + month * 100 + day : 0)
    {
    }

    static constexpr nxDate GetNullInstance() { return nxDate(); }  ///< A null date.
    /// @return the day that is @p dayNumber days after 1 January 1970 (before it when negative), or null when that lies
    ///         outside the years 1 to 9999.
    static nxDate GetFromDayNumber(long long dayNumber);

    /// The day on which options expire, an auction is held: the third Friday, the last Monday of a month.
    /// @param month 1 to 12.
    /// @param n 1 to 5 count from the begin of the month, -1 to -5 from its end.
    /// @param dayOfWeek 1 for Monday to 7 for Sunday.
    /// @return null for any other argument, and when the month has only four of these days.
    static nxDate GetNthDayOfWeek(unsigned year, unsigned month, int n, unsigned dayOfWeek);

    constexpr void SetNull() { _isoDate = 0; }               ///< Becomes null.
    constexpr bool IsNull() const { return _isoDate == 0; }  ///< There is no day.
    constexpr bool IsValid() const { return !IsNull(); }     ///< There is a day.

    /// @return the day as the number yyyymmdd; 0 for null.
    constexpr unsigned GetISODate() const { return _isoDate; }
    constexpr unsigned GetYear() const { return _isoDate / 10000; }       ///< 1 to 9999; 0 for null.
    constexpr unsigned GetMonth() const { return _isoDate / 100 % 100; }  ///< 1 to 12; 0 for null.
    constexpr unsigned GetDay() const { return _isoDate % 100; }          ///< 1 to 31; 0 for null.
    /// @return 1 for Monday to 7 for Sunday; 0 for null.
    unsigned GetDayOfWeek() const;
    /// @return days since 1 January 1970, negative before it; 0 for null.
    int GetDayNumber() const;
    /// @return the day @p days later (earlier when negative); null when this date is null or the result is out of
    /// range.
    nxDate GetWithDaysAdded(int days) const;
    /// @return the same day of the month @p months later (earlier when negative), or the last day of that month where it
    ///         is shorter: 31 January and one month is the last of February. Null when this date is null or the result is
    ///         out of range.
    nxDate GetWithMonthsAdded(int months) const;
    /// @return the last day of the month; null for null.
    constexpr nxDate GetEndOfMonth() const
    {
        return nxDate(GetYear(), GetMonth(), nxCalendar::GetDaysInMonth(GetYear(), GetMonth()));
    }
    /// The week of ISO 8601. Weeks begin on Monday, and the first of a year is the one with 4 January: days of January may
    /// belong to the last week of the year before, and days of December to the first of the next.
    /// @param year becomes the year that the week belongs to; 0 for null.
    /// @return 1 to 53; 0 for null.
    unsigned GetISOWeek(unsigned& year) const;

    /// Takes the day with the number @p isoDate (yyyymmdd).
    /// @return NX_ERR_INVALID_PARAMETER when there is no such day; the date is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromISODate(unsigned isoDate);
    /// Reads exactly eight digits, yyyymmdd: no sign, no blanks.
    /// @return NX_ERR_INVALID_PARAMETER for any other text and for an impossible day; the date is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text);

    /// Reads the form of ISO 8601 with hyphens, "2024-03-05": four, two and two digits, no sign, no blanks.
    /// @return NX_ERR_INVALID_PARAMETER for any other text and for an impossible day; the date is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromISOString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromISOString(const char* text);

    /// @return "2024-03-05"; an empty text for null.
    std::string GetAsISOString() const;
    /// Appends what GetAsISOString() returns.
    void AppendAsISOString(std::string& out) const;
    /// @return the eight digits yyyymmdd; an empty text for null.
    std::string GetAsString() const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out) const;
    /// @return the eight digits yyyymmdd, or "NULL".
    std::string GetAsLogString() const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out) const;

    friend constexpr bool operator==(nxDate, nxDate) = default;   ///< Null equals null.
    friend constexpr auto operator<=>(nxDate, nxDate) = default;  ///< Earlier days are less; null comes first.
    /// @return the days from @p right to @p left, negative when @p right is later; 0 when one of them is null.
    friend int operator-(nxDate left, nxDate right)
    {
        return left.IsNull() || right.IsNull() ? 0 : left.GetDayNumber() - right.GetDayNumber();
    }

private:
    unsigned _isoDate = 0;  // yyyymmdd, 0 for null
};

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, nxDate date);

/// Dates can be keys of unordered containers.
template <>
struct std::hash<nxDate>
{
    /// Agrees with `==`.
    std::size_t operator()(nxDate date) const noexcept { return std::hash<unsigned>()(date.GetISODate()); }
};

#endif
