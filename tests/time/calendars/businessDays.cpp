// SPDX-License-Identifier: Apache-2.0
// businessDays WEEKEND HOLIDAY...: prints, for each day of 2023 to 2025, where it is adjusted to, days that are some business days
// away, and the number of business days since the beginning of 2023. The calendar's range is longer on both sides.

#include <cstdlib>
#include <iostream>

#include "core/time/nxBusinessCalendar.h"

int main(int count, char** arguments)
{
    using Adjustment = nxBusinessCalendar::Adjustment;
    nxBusinessCalendar calendar;
    bool isGood = calendar.SetWeekend(static_cast<unsigned>(std::atoi(arguments[1]))).IsOK() &&
                  calendar.SetRange(nxDate(2020, 1, 1), nxDate(2028, 12, 31)).IsOK();
    for (int i = 2; i < count; ++i)
    {
        nxDate holiday;
        isGood = isGood && holiday.SetFromISOString(arguments[i]).IsOK() && calendar.AddHoliday(holiday).IsOK();
    }
    const nxDate first(2023, 1, 1);
    for (int day = 0; day < 3 * 365 + 1; ++day)
    {
        const nxDate date = first.GetWithDaysAdded(day);
        std::cout << date.GetAsISOString();
        nxDate found;
        for (const Adjustment adjustment : {Adjustment::Following, Adjustment::ModifiedFollowing, Adjustment::Preceding,
                                            Adjustment::ModifiedPreceding})
        {
            isGood = isGood && calendar.Adjust(date, adjustment, found).IsOK();
            std::cout << ' ' << found.GetAsISOString();
        }
        for (const int days : {-200, -17, -3, -1, 1, 2, 16, 17, 200})
        {
            isGood = isGood && calendar.AddBusinessDays(date, days, found).IsOK();
            std::cout << ' ' << found.GetAsISOString();
        }
        int between = 0;
        isGood = isGood && calendar.GetBusinessDaysBetween(first, date, between).IsOK();
        std::cout << ' ' << between << '\n';
    }
    return isGood ? 0 : 1;
}
