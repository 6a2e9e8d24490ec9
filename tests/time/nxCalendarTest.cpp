// SPDX-License-Identifier: Apache-2.0
#include <chrono>

#include "core/time/nxDateTime.h"
#include "core/time/nxTimeStamp.h"
#include "tests/support/nxSanitizer.h"
#include "tests/support/nxTest.h"

namespace
{
using std::chrono::last, std::chrono::months, std::chrono::sys_days, std::chrono::year_month_day;

nxDate GetAsDate(const year_month_day& day)
{
    return nxDate(static_cast<unsigned>(static_cast<int>(day.year())), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()));
}

template <class Value>
void ExpectRefused(const Value& before, std::initializer_list<const char*> texts)
{
    for (const char* text : texts)
    {
        Value value = before;
        EXPECT_EQ(value.SetFromISOString(text), nxErrorEnum(NX_ERR_INVALID_PARAMETER)) << text;
        EXPECT_EQ(value, before);
    }
}
}  // namespace

TEST(nxDate, AgreesWithTheStandardsCalendarOnEveryDay)
{
    std::mt19937 random(20240305);
    std::pair<unsigned, unsigned> week;  // and its year
    // The first day is a Monday. Under the sanitizers the last 1,999 years have to do.
    const unsigned firstYear = nxUnderAddressSanitizer || nxUnderThreadSanitizer ? 8001 : 1;
    int number = sys_days(std::chrono::year(static_cast<int>(firstYear)) / 1 / 1).time_since_epoch().count();
    for (nxDate date(firstYear, 1, 1); date.IsValid(); date = date.GetWithDaysAdded(1), ++number)
    {
        const sys_days point{std::chrono::days(number)};
        const year_month_day day(point);
        const unsigned weekday = std::chrono::weekday(point).iso_encoding();
        ASSERT_EQ(date, GetAsDate(day));
        ASSERT_EQ((std::pair{date.GetDayNumber(), date.GetDayOfWeek()}), (std::pair{number, weekday})) << date;
        ASSERT_EQ(date.GetEndOfMonth(), GetAsDate(day.year() / day.month() / last)) << date;
        // The standard leaves it to the caller to find the last day of a shorter month.
        const int distance = static_cast<int>(random() % 512) - 256;
        year_month_day moved = day + months(distance);
        moved = moved.ok() ? moved : moved.year() / moved.month() / last;
        ASSERT_EQ(date.GetWithMonthsAdded(distance), GetAsDate(moved)) << date << ' ' << distance;
        // The first week of a year is the one with 4 January.
        const nxDate sunday = date.GetWithDaysAdded(6);
        if (weekday == 1)
            week = sunday.GetMonth() == 1 && sunday.GetDay() >= 4 && sunday.GetDay() <= 10
                       ? std::pair{1U, sunday.GetYear()}
                       : std::pair{week.first + 1, week.second};
        unsigned year = 0;
        const unsigned found = date.GetISOWeek(year);
        ASSERT_EQ((std::pair{found, year}), week) << date;
        const int fromBegin = static_cast<int>(date.GetDay() - 1) / 7 + 1;
        const int fromEnd = -(date.GetEndOfMonth() - date) / 7 - 1;
        const auto find = [&date, weekday](int n)
        { return nxDate::GetNthDayOfWeek(date.GetYear(), date.GetMonth(), n, weekday); };
        ASSERT_EQ((std::pair{find(fromBegin), find(fromEnd)}), (std::pair{date, date}));
        const bool areFour = fromBegin - fromEnd == 5;
        ASSERT_EQ((std::pair{find(5).IsNull(), find(-5).IsNull()}), (std::pair{areFour, areFour})) << date;
        nxDate read, readISO;
        const std::string text = date.GetAsString();
        ASSERT_EQ(date.GetAsISOString(), text.substr(0, 4) + '-' + text.substr(4, 2) + '-' + text.substr(6));
        ASSERT_TRUE(read.SetFromString(text).IsOK() && readISO.SetFromISOString(date.GetAsISOString()).IsOK());
        ASSERT_EQ((std::pair{read, readISO}), (std::pair{date, date}));
    }
    EXPECT_EQ(nxDate::GetFromDayNumber(number - 1), nxDate(9999, 12, 31));
}

TEST(nxDate, FindsNoDayForWhatIsNone)
{
    const nxDate leap(2024, 2, 29), first(1, 1, 1), final(9999, 12, 31);
    EXPECT_EQ(leap.GetWithMonthsAdded(12), nxDate(2025, 2, 28));
    EXPECT_EQ(leap.GetWithMonthsAdded(48), nxDate(2028, 2, 29));
    EXPECT_EQ(final.GetWithMonthsAdded(-9998 * 12 - 11), nxDate(1, 1, 31));
    const auto nth = &nxDate::GetNthDayOfWeek;
    for (const nxDate& none :
         {nxDate::GetFromDayNumber(-719163), nxDate::GetFromDayNumber(LLONG_MIN), leap.GetWithDaysAdded(INT_MAX),
          leap.GetWithDaysAdded(INT_MIN), nxDate().GetWithMonthsAdded(1), leap.GetWithMonthsAdded(INT_MAX),
          leap.GetWithMonthsAdded(INT_MIN), first.GetWithMonthsAdded(-1), final.GetWithMonthsAdded(1),
          nxDate().GetEndOfMonth(), nth(2024, 3, 0, 5), nth(2024, 3, INT_MIN, 5), nth(2024, 3, 6, 5),
          nth(2024, 3, 1, 0), nth(2024, 3, 1, 8), nth(2024, 13, 1, 1), nth(0, 1, 1, 1), nth(10000, 1, 1, 1)})
        EXPECT_TRUE(none.IsNull()) << none;
    unsigned year = 7;
    EXPECT_EQ(nxDate().GetISOWeek(year) + year, 0U);
    EXPECT_EQ(final - first, 3'652'058);
    EXPECT_EQ(nxDate() - first, 0);
    ExpectRefused(leap, {"", "20240305", "2024-3-05", "2024-02-30", "0000-01-01", "2024/03/05", "-024-03-05",
                         "2024-03-05 ", "2024-03-0x"});
}

TEST(nxDateTime, CountsSpansOverAllYears)
{
    const nxTime midnight(0, 0, 0), lastTime(23, 59, 59, 999'999'999);
    const nxDateTime first(nxDate(1, 1, 1), midnight), final(nxDate(9999, 12, 31), lastTime), time(9, 7, 3);
    const nxDateTimeSpan all = final - first, tick(0, 1);
    EXPECT_EQ(all.GetAsString(), "P3652058DT23H59M59.999999999S");
    EXPECT_EQ(first - final, -all);
    EXPECT_EQ(first.GetWithSpanAdded(all), final);
    EXPECT_EQ(final.GetWithSpanAdded(-all), first);
    EXPECT_EQ(nxDateTime(nxDate(2024, 2, 28), lastTime).GetWithSpanAdded(tick).GetAsISOString(), "2024-02-29T00:00:00");
    for (const nxDateTime& none :
         {first.GetWithSpanAdded(-tick), final.GetWithSpanAdded(tick), final.GetWithSpanAdded(all + tick),
          first.GetWithSpanAdded(nxDateTimeSpan()), time.GetWithSpanAdded(tick), nxDateTime().GetWithSpanAdded(tick)})
        EXPECT_TRUE(none.IsNull()) << none;
    EXPECT_TRUE((time - time).IsNull() && (first - time).IsNull() && (time - first).IsNull());
}

TEST(nxDateTime, ReadsAndWritesItsISOForm)
{
    for (const char* text :
         {"2024-03-05T09:07:03", "0001-01-01T00:00:00.000000001", "9999-12-31T23:59:59.123", "09:07:03.123456"})
    {
        nxDateTime dateTime;
        EXPECT_TRUE(dateTime.SetFromISOString(text).IsOK()) << text;
        EXPECT_EQ(dateTime.GetAsISOString(), text);
    }
    ExpectRefused(nxDateTime(1, 2, 3),
                  {"", "T", "2024-03-05", "2024-03-05T", "T09:07:03", "2024-03-05 09:07:03", "2024-03-05t09:07:03",
                   "20240305T09:07:03", "2024-03-05T090703", "090703", "2024-02-30T09:07:03", "2024-03-05T24:00:00",
                   "2024-03-05T09:07:03Z", "2024-03-05T09:07", "2024-03-05T09:07:03.1234567890"});
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
