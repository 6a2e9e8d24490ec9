// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXBUSINESSCALENDAR_H
#define CORE_TIME_NXBUSINESSCALENDAR_H

#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/time/inline/nxDayTable.h"
#include "core/time/nxDate.h"

class nxCSVParser;

/// The business days of a market: all days but its weekends and holidays, from a first day to a last.
///
/// - Range: the days for which the list of holidays is complete, see SetRange(). An answer that needs a day outside it is
///   NX_ERR_INSUFFICIENT_DATA and never a guess, so a list that nobody continued is noticed.
/// - Null: a new calendar has Saturday and Sunday as weekend, no holidays and no range.
/// - Errors: returned, never thrown; only the allocation of memory can throw. NX_ERR_OBJECT_IS_NULL for a date that is null;
///   NX_ERR_NOT_INITIALISED for a question before there is a range. A target is unchanged on failure.
/// - Threads: readers may share a calendar; a writer needs the caller's lock.
/// - Ownership: a value that is copied with its holidays. The range takes two bits a day.
/// @code
/// nxBusinessCalendar calendar;
/// nxDate settlement;
/// if (calendar.SetRange(nxDate(2024, 1, 1), nxDate(2024, 12, 31)).IsOK() &&
///     calendar.AddHoliday(nxDate(2024, 3, 29)).IsOK() &&
///     calendar.AddBusinessDays(nxDate(2024, 3, 27), 2, settlement).IsOK())
///     settlement.GetAsISOString();  // "2024-04-01"
/// @endcode
class NX_CORE_API nxBusinessCalendar
{
public:
    /// What becomes of a date that is not a business day. A business day stays as it is.
    enum class Adjustment : unsigned char
    {
        None,               ///< It stays as well.
        Following,          ///< The next business day.
        ModifiedFollowing,  ///< The next business day of its month; where there is none, the last one before.
        Preceding,          ///< The last business day before.
        ModifiedPreceding,  ///< The last business day before in its month; where there is none, the next one.
        Nearest             ///< The business day that is nearest; the next of two that are equally near.
    };

    /// @name Days of the week
    /// Bits for SetWeekend().
    /// @{
    static constexpr unsigned Monday = 1;     ///< Every Monday.
    static constexpr unsigned Tuesday = 2;    ///< Every Tuesday.
    static constexpr unsigned Wednesday = 4;  ///< Every Wednesday.
    static constexpr unsigned Thursday = 8;   ///< Every Thursday.
    static constexpr unsigned Friday = 16;    ///< Every Friday.
    static constexpr unsigned Saturday = 32;  ///< Every Saturday.
    static constexpr unsigned Sunday = 64;    ///< Every Sunday.
    /// @}

    /// @param days such as Friday | Saturday; 0 for a market that is open at weekends.
    /// @return NX_ERR_INVALID_PARAMETER when no day is left, and for bits that are no day.
    [[nodiscard]] nxErrorEnum SetWeekend(unsigned days);
    /// Adds a holiday. One that is a holiday already, or at a weekend, changes nothing. One outside the range is kept, and
    /// counts when the range reaches it.
    [[nodiscard]] nxErrorEnum AddHoliday(nxDate date);
    /// Replaces all holidays by those of a list: one in the first field of each row, as "2024-03-29" or "20240329". Further
    /// fields, such as a name, are not read. Empty lines and comments are skipped, and so is the first row when the dialect
    /// has a header. Weekend and range stay as they are.
    /// @param failedLine receives the line of the row that is at fault, from 1, and 0 after a success.
    /// @return the parser's error; NX_ERR_INVALID_PARAMETER when a field is not a date, and when the header is one: a list
    ///         without a header would lose its first holiday.
    [[nodiscard]] nxErrorEnum SetFromCSV(nxCSVParser& rows, unsigned long long& failedLine);
    /// The same.
    [[nodiscard]] nxErrorEnum SetFromCSV(nxCSVParser& rows)
    {
        unsigned long long failedLine = 0;
        return SetFromCSV(rows, failedLine);
    }
    /// States from which day to which day, both included, all holidays are known. Holidays may be added before and after.
    /// @return NX_ERR_INVALID_PARAMETER when @p last is before @p first.
    [[nodiscard]] nxErrorEnum SetRange(nxDate first, nxDate last);

    /// @return the calendar of the days that are business days in both, over the range that both have: payments between two
    ///         places wait for both. It has no range when the two have no day in common.
    static nxBusinessCalendar GetJoint(const nxBusinessCalendar& left, const nxBusinessCalendar& right);

    nxDate GetFirstDay() const;  ///< The first day of the range; null without a range.
    nxDate GetLastDay() const;   ///< The last day of the range; null without a range.

    /// @param isBusinessDay receives whether @p date is neither at a weekend nor a holiday.
    [[nodiscard]] nxErrorEnum IsBusinessDay(nxDate date, bool& isBusinessDay) const;
    /// Moves a date to a business day.
    /// @param adjusted receives it. With Adjustment::None every date is given back, also one outside the range.
    [[nodiscard]] nxErrorEnum Adjust(nxDate date, Adjustment adjustment, nxDate& adjusted) const;
    /// Counts business days from a date, which need not be one: one business day after a Saturday is a Monday.
    /// @param days negative for business days before @p date. With 0 every date is given back, also a holiday.
    [[nodiscard]] nxErrorEnum AddBusinessDays(nxDate date, int days, nxDate& result) const;
    /// @param count receives the number of business days from @p from, which is included, to @p to, which is not. Where
    ///        @p to is earlier, it is negative, and the days after @p to up to @p from are counted.
    [[nodiscard]] nxErrorEnum GetBusinessDaysBetween(nxDate from, nxDate to, int& count) const;

private:
    [[gnu::visibility("hidden")]] nxErrorEnum _GetErrorOf(nxDate date) const;
    [[gnu::visibility("hidden")]] bool _Find(nxDate date, Adjustment adjustment, int& found) const;
    [[gnu::visibility("hidden")]] nxDayTable _MakeDays(int first, int last, unsigned weekend) const;

    unsigned _weekend = Saturday | Sunday;
    std::vector<int> _holidays;  // counted from 1970, in order, each once
    nxDayTable _days;            // the business days of the range
};

#endif
