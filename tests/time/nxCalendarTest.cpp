// SPDX-License-Identifier: Apache-2.0
#include <chrono>

#include "core/time/nxDateTime.h"
#include "core/time/nxTimeStamp.h"
#include "tests/support/nxTest.h"

namespace
{
using Days = std::chrono::sys_days;

nxDate GetAsDate(std::chrono::year_month_day day)
{
    return nxDate(static_cast<unsigned>(static_cast<int>(day.year())), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()));
}

// The standard leaves it to the caller to find the last day of a shorter month.
nxDate AddMonths(std::chrono::year_month_day day, int months)
{
    const auto moved = day + std::chrono::months(months);
    if (static_cast<int>(moved.year()) < 1 || static_cast<int>(moved.year()) > 9999)
        return nxDate();
    return GetAsDate(moved.ok() ? moved : moved.year() / moved.month() / std::chrono::last);
}

std::string WithHyphens(std::string digits) { return digits.insert(6, "-").insert(4, "-"); }
}  // namespace

TEST(nxDate, AgreesWithTheStandardsCalendarOnEveryDay)
{
    std::mt19937 random(20240305);
    unsigned week = 0, weekYear = 0;
    for (nxDate date(1, 1, 1); date.IsValid(); date = date.GetWithDaysAdded(1))
    {
        const std::chrono::year_month_day day(Days(std::chrono::days(date.GetDayNumber())));
        const nxDate last = GetAsDate(day.year() / day.month() / std::chrono::last);
        ASSERT_EQ(date, GetAsDate(day));
        ASSERT_EQ(date.GetEndOfMonth(), last) << date;
        const int months = static_cast<int>(random() % 512) - 256;
        ASSERT_EQ(date.GetWithMonthsAdded(months), AddMonths(day, months)) << date << ' ' << months;
        // The first week of a year is the one with 4 January.
        const unsigned weekday = date.GetDayOfWeek();
        const nxDate sunday = date.GetWithDaysAdded(6);
        if (weekday == 1 && sunday.GetMonth() == 1 && sunday.GetDay() >= 4 && sunday.GetDay() < 11)
            week = 1, weekYear = sunday.GetYear();
        else if (weekday == 1)
            ++week;
        unsigned year = 0;
        ASSERT_EQ(date.GetISOWeek(year), week) << date;
        ASSERT_EQ(year, weekYear) << date;
        const int fromBegin = static_cast<int>(date.GetDay() - 1) / 7 + 1;
        const int fromEnd = -(last - date) / 7 - 1;
        const auto find = [&date, weekday](int n)
        { return nxDate::GetNthDayOfWeek(date.GetYear(), date.GetMonth(), n, weekday); };
        ASSERT_EQ((std::pair{find(fromBegin), find(fromEnd)}), (std::pair{date, date}));
        const bool areFour = fromBegin - fromEnd == 5;
        ASSERT_EQ((std::pair{find(5).IsNull(), find(-5).IsNull()}), (std::pair{areFour, areFour})) << date;
        nxDate read;
        ASSERT_EQ(date.GetAsISOString(), WithHyphens(date.GetAsString()));
        ASSERT_TRUE(read.SetFromISOString(date.GetAsISOString()).IsOK() && read == date);
    }
}

TEST(nxDate, FindsNoDayForWhatIsNone)
{
    const nxDate leap(2024, 2, 29), first(1, 1, 1), last(9999, 12, 31);
    EXPECT_EQ(leap.GetWithMonthsAdded(12), nxDate(2025, 2, 28));
    EXPECT_EQ(leap.GetWithMonthsAdded(48), nxDate(2028, 2, 29));
    EXPECT_EQ(last.GetWithMonthsAdded(-9998 * 12 - 11), nxDate(1, 1, 31));
    for (const nxDate& none :
         {nxDate().GetWithMonthsAdded(1), leap.GetWithMonthsAdded(INT_MAX), leap.GetWithMonthsAdded(INT_MIN),
          first.GetWithMonthsAdded(-1), last.GetWithMonthsAdded(1), nxDate().GetEndOfMonth(),
          nxDate::GetNthDayOfWeek(2024, 3, 0, 5), nxDate::GetNthDayOfWeek(2024, 3, INT_MIN, 5),
          nxDate::GetNthDayOfWeek(2024, 3, 6, 5), nxDate::GetNthDayOfWeek(2024, 3, 1, 0),
          nxDate::GetNthDayOfWeek(2024, 3, 1, 8), nxDate::GetNthDayOfWeek(2024, 13, 1, 1),
          nxDate::GetNthDayOfWeek(0, 1, 1, 1), nxDate::GetNthDayOfWeek(10000, 1, 1, 1)})
        EXPECT_TRUE(none.IsNull()) << none;
    unsigned year = 7;
    EXPECT_EQ(nxDate().GetISOWeek(year) + year, 0U);
    EXPECT_EQ(last - first, 3'652'058);
    EXPECT_EQ(nxDate() - first, 0);
    EXPECT_EQ(nxDate().GetAsISOString(), "");
    for (const char* text : {"", "20240305", "2024-3-05", "2024-02-30", "0000-01-01", "2024/03/05", "-024-03-05",
                             "2024-03-05 ", "+2024-03-05", "2024-03-0x"})
    {
        nxDate date = leap;
        EXPECT_EQ(date.SetFromISOString(text), nxErrorEnum(NX_ERR_INVALID_PARAMETER)) << text;
        EXPECT_EQ(date, leap);
    }
}

TEST(nxDateTime, CountsSpansOverAllYears)
{
    const nxTime midnight(0, 0, 0), lastTime(23, 59, 59, 999'999'999);
    const nxDateTime first(nxDate(1, 1, 1), midnight), last(nxDate(9999, 12, 31), lastTime), time(9, 7, 3);
    const nxDateTimeSpan all = last - first, tick(0, 1);
    EXPECT_EQ(all.GetAsString(), "P3652058DT23H59M59.999999999S");
    EXPECT_EQ(first - last, -all);
    EXPECT_EQ(first.GetWithSpanAdded(all), last);
    EXPECT_EQ(last.GetWithSpanAdded(-all), first);
    EXPECT_EQ(nxDateTime(nxDate(2024, 2, 28), lastTime).GetWithSpanAdded(tick).GetAsISOString(), "2024-02-29T00:00:00");
    for (const nxDateTime& none :
         {first.GetWithSpanAdded(-tick), last.GetWithSpanAdded(tick), last.GetWithSpanAdded(all + tick),
          first.GetWithSpanAdded(nxDateTimeSpan()), time.GetWithSpanAdded(tick), nxDateTime().GetWithSpanAdded(tick)})
        EXPECT_TRUE(none.IsNull()) << none;
    for (const nxDateTimeSpan& none : {time - time, first - time, time - first, first - nxDateTime()})
        EXPECT_TRUE(none.IsNull()) << none;
    std::mt19937_64 random(1);
    for (int i = 0; i < 100'000; ++i)
    {
        const nxDateTimeSpan a(static_cast<int>(random() % 3'652'059), static_cast<long long>(random() >> 18));
        const nxDateTimeSpan b(static_cast<int>(random() % 3'652'059), static_cast<long long>(random() >> 18));
        const nxDateTime from = first.GetWithSpanAdded(a), to = first.GetWithSpanAdded(b);
        if (from.IsNull() || to.IsNull())
            continue;
        ASSERT_EQ(to - from, b - a);
        ASSERT_EQ(from.GetWithSpanAdded(b - a), to);
        ASSERT_EQ(from <=> to, a <=> b);
        nxDateTime read;
        ASSERT_TRUE(read.SetFromISOString(from.GetAsISOString()).IsOK() && read == from) << from.GetAsISOString();
    }
}

TEST(nxDateTime, ReadsAndWritesItsISOForm)
{
    for (const char* text : {"2024-03-05T09:07:03", "0001-01-01T00:00:00.000000001", "9999-12-31T23:59:59.123",
                             "09:07:03", "09:07:03.123456"})
    {
        nxDateTime dateTime;
        EXPECT_TRUE(dateTime.SetFromISOString(text).IsOK()) << text;
        EXPECT_EQ(dateTime.GetAsISOString(), text);
    }
    for (const char* text :
         {"", "T", "2024-03-05", "2024-03-05T", "T09:07:03", "2024-03-05 09:07:03", "2024-03-05t09:07:03",
          "20240305T09:07:03", "2024-03-05T090703", "090703", "2024-02-30T09:07:03", "2024-03-05T24:00:00",
          "2024-03-05T09:07:03Z", "2024-03-05T09:07:03+01:00", "2024-03-05T09:07", "2024-03-05T09:07:03.1234567890"})
    {
        const nxDateTime before(1, 2, 3);
        nxDateTime dateTime = before;
        EXPECT_EQ(dateTime.SetFromISOString(text), nxErrorEnum(NX_ERR_INVALID_PARAMETER)) << text;
        EXPECT_EQ(dateTime, before);
    }
    EXPECT_EQ(nxDateTime().GetAsISOString(), "");
}

TEST(nxTimeStamp, CountsSpans)
{
    const nxErrorEnum ok, size(NX_ERR_VALUE_OUT_OF_RANGE), null(NX_ERR_OBJECT_IS_NULL);
    const nxTimeStamp earliest(LLONG_MIN, 0), latest(LLONG_MAX, 999'999'999), before(-1, 999'999'999), epoch(0, 0);
    const nxDateTimeSpan tick(0, 1), second = nxDateTimeSpan::GetFromSeconds(1);
    const std::tuple<nxTimeStamp, nxDateTimeSpan, nxErrorEnum, nxTimeStamp> rows[] = {
        {before, tick, ok, epoch},
        {epoch, -tick, ok, before},
        {epoch, nxDateTimeSpan(-1, 5), ok, nxTimeStamp(-86'400, 5)},
        {nxTimeStamp(0, 4'000'000'001), -second, ok, nxTimeStamp(3, 1)},
        {nxTimeStamp(LLONG_MAX, 0), second - tick, ok, latest},
        {latest, tick, size, latest},
        {earliest, -tick, size, earliest},
        {epoch, nxDateTimeSpan(), null, epoch},
    };
    for (const auto& [from, span, error, to] : rows)
    {
        nxTimeStamp stamp = from;
        EXPECT_EQ(stamp.AddExact(span), error) << span;
        EXPECT_EQ(stamp, to) << span;
        EXPECT_TRUE(to - from == span || !error.IsOK()) << span;
    }
    EXPECT_TRUE((latest - earliest).IsNull() && (earliest - latest).IsNull() && (latest - epoch).IsNull());
}
