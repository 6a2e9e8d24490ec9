#include "core/time/nxDate.h"

#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "core/time/nxDateTime.h"
#include "core/time/nxTime.h"
#include "tests/support/nxStreamed.h"
#include "tests/support/nxZoneOfProcess.h"

TEST(nxDate, AcceptsTheDaysOfTheCalendarAndNoOthers)
{
    const std::pair<const char*, bool> rows[] = {
        {"20240229", true},    {"20230228", true},  {"20230229", false}, {"19000228", true},  {"19000229", false},
        {"20000229", true},    {"20240131", true},  {"20240132", false}, {"20240430", true},  {"20240431", false},
        {"20241231", true},    {"20241301", false}, {"20240001", false}, {"20240100", false}, {"00010101", true},
        {"00000101", false},   {"99991231", true},  {"00000000", false}, {"2024030", false},  {"020240305", false},
        {"", false},           {"-2024030", false}, {"2024 305", false}, {"2024030x", false}, {"2024-03-05", false},
        {"4315207601", false},  // 20240305 modulo 2^32
    };
    for (const auto& [text, accepted] : rows)
    {
        SCOPED_TRACE(text);
        nxDate date(1999, 12, 31);
        EXPECT_EQ(date.SetFromString(text), nxErrorEnum(accepted ? NX_ENUM_UNDEFINED : NX_ERR_INVALID_PARAMETER));
        EXPECT_EQ(date.GetAsString(), accepted ? text : "19991231");
    }
    EXPECT_TRUE(nxDate(20230229U).IsNull());
    EXPECT_TRUE(nxDate(2023, 2, 29).IsNull());
    EXPECT_TRUE(nxDate(UINT_MAX, UINT_MAX, UINT_MAX).IsNull());
    EXPECT_TRUE(nxDate(2024, 102, 1).IsNull());  // not October of another century
    nxDate date(2024, 1, 1);
    EXPECT_FALSE(date.SetFromISODate(20240230).IsOK());
    EXPECT_EQ(date.GetISODate(), 20240101U);
}

TEST(nxDate, NullIsNoDayAndComesFirst)
{
    const nxDate null;
    EXPECT_TRUE(null.IsNull());
    EXPECT_EQ(null.GetAsString(), "");
    EXPECT_EQ(Streamed(null), "NULL");
    EXPECT_EQ(null.GetDayOfWeek(), 0U);
    EXPECT_TRUE(null.GetWithDaysAdded(1).IsNull());
    EXPECT_LT(null, nxDate(1, 1, 1));
    EXPECT_LT(nxDate(2023, 12, 31), nxDate(2024, 1, 1));
    EXPECT_EQ(std::unordered_set<nxDate>({null, nxDate(), nxDate(2024, 1, 1)}).size(), 2U);
}

TEST(nxDate, CountsDaysWithoutAGap)
{
    // Every day of ten thousand years: its number, its weekday and its successor.
    nxDate date(1, 1, 1);
    int number = -719162;
    unsigned weekday = 1;
    for (; date.IsValid(); ++number, weekday = weekday % 7 + 1)
    {
        ASSERT_EQ(date.GetDayNumber(), number) << date;
        ASSERT_EQ(date.GetDayOfWeek(), weekday) << date;
        ASSERT_EQ(nxDate::GetFromDayNumber(number), date);
        const nxDate next = date.GetWithDaysAdded(1);
        if (next.IsValid() && next.GetDay() != date.GetDay() + 1)
        {
            ASSERT_EQ(next.GetDay(), 1U) << date;
            ASSERT_FALSE(nxDate(date.GetYear(), date.GetMonth(), date.GetDay() + 1).IsValid()) << date;
        }
        date = next;
    }
    EXPECT_EQ(nxDate::GetFromDayNumber(number - 1), nxDate(9999, 12, 31));
    EXPECT_EQ(nxDate::GetFromDayNumber(0), nxDate(1970, 1, 1));
    EXPECT_EQ(nxDate(2020, 4, 20).GetDayOfWeek(), 1U);
    EXPECT_TRUE(nxDate::GetFromDayNumber(-719163).IsNull());
    EXPECT_TRUE(nxDate::GetFromDayNumber(LLONG_MIN).IsNull());
    EXPECT_TRUE(nxDate(2024, 1, 1).GetWithDaysAdded(INT_MAX).IsNull());
    EXPECT_TRUE(nxDate(2024, 1, 1).GetWithDaysAdded(INT_MIN).IsNull());
}

TEST(nxTime, ReadsTwoFormsAndLeavesItsValueAloneOtherwise)
{
    const std::pair<const char*, const char*> accepted[] = {
        {"00:00:00", "00:00:00"},
        {"23:59:59", "23:59:59"},
        {"235959", "23:59:59"},
        {"083000", "08:30:00"},
        {"09:07:03.5", "09:07:03.500"},
        {"09:07:03.000001", "09:07:03.000001"},
        {"09:07:03.000000001", "09:07:03.000000001"},
        {"09:07:03.120", "09:07:03.120"},
    };
    for (const auto& [text, after] : accepted)
    {
        nxTime time(1, 2, 3);
        EXPECT_TRUE(time.SetFromString(text).IsOK()) << text;
        EXPECT_EQ(time.GetAsString(), after);
    }
    for (const std::string text :
         {"24:00:00", "23:60:00", "23:59:60", "999999", "9:07:03", "09:07", "0907", "09:07:0", "09:07:03.", "090703.5",
          "09:07:03,5", "09.07.03", " 9:07:03", "-9:07:03", "09:07:03 ", "", "09:07:03.0000000001", "09\00007"})
    {
        nxTime time(1, 2, 3);
        EXPECT_FALSE(time.SetFromString(text).IsOK()) << text;
        EXPECT_EQ(time.GetAsString(), "01:02:03");
    }
}

TEST(nxTime, HoldsOnlyTimesOfADay)
{
    EXPECT_NE(nxTime(), nxTime(0, 0, 0));
    EXPECT_LT(nxTime(), nxTime(0, 0, 0));
    EXPECT_EQ(Streamed(nxTime()), "NULL");
    EXPECT_EQ(nxTime().GetAsString(), "");
    for (const nxTime& none : {nxTime(), nxTime(24, 0, 0), nxTime(0, 60, 0), nxTime(0, 0, 60),
                               nxTime(0, 0, 0, 1'000'000'000), nxTime(UINT_MAX, 0, 0)})
        EXPECT_TRUE(none.IsNull());
    const nxTime last(23, 59, 58, 999'999'999);
    EXPECT_EQ(last.GetHours(), 23U);
    EXPECT_EQ(last.GetMinutes(), 59U);
    EXPECT_EQ(last.GetSeconds(), 58U);
    EXPECT_EQ(last.GetNanoseconds(), 999'999'999U);
    EXPECT_EQ(last.GetSecondsSinceMidnight(), 86'398U);
    EXPECT_EQ(std::unordered_set<nxTime>({nxTime(), nxTime(0, 0, 0), last, last}).size(), 3U);
}

TEST(nxDateTime, IsTheLocalTimeOfAMoment)
{
    const nxZoneOfProcess zone("FIX-5:30");
    const std::tuple<long long, unsigned, const char*, unsigned> rows[] = {
        {0, 0, "01 Jan 1970 05:30:00", 0},
        {1709609823, 123'456'789, "05 Mar 2024 09:07:03", 123'456'789},
        {-1, 999'999'999, "01 Jan 1970 05:29:59", 999'999'999},
        {0, 4'000'000'001, "01 Jan 1970 05:30:04", 1},
        {-62135616600, 0, "01 Jan 0001 00:00:00", 0},
        {-62135616601, 0, "", 0},
        {-62135616601, 1'000'000'000, "01 Jan 0001 00:00:00", 0},
        {253402280999, 0, "31 Dec 9999 23:59:59", 0},
        {253402281000, 0, "", 0},
        {LLONG_MAX, 4'000'000'000, "", 0},
        {LLONG_MIN, 0, "", 0},
    };
    for (const auto& [seconds, nanoseconds, text, fraction] : rows)
    {
        SCOPED_TRACE(seconds);
        const nxDateTime moment(seconds, nanoseconds);
        EXPECT_EQ(moment.GetAsString(), text);
        EXPECT_EQ(moment.GetTime().GetNanoseconds(), fraction);
        EXPECT_EQ(moment.IsNull(), *text == '\0');
    }
}

TEST(nxDateTime, IsADateWithATimeOrATimeAlone)
{
    const nxDate date(2024, 3, 5);
    const nxDateTime whole(date, nxTime(9, 7, 3));
    const nxDateTime timeOnly(8, 30, 0);
    const std::pair<nxDateTime, const char*> values[] = {
        {whole, "05 Mar 2024 09:07:03"}, {nxDateTime(nxDate(), nxTime(9, 7, 3)), "09:07:03"}, {timeOnly, "08:30:00"}};
    for (const auto& [value, text] : values)
    {
        EXPECT_FALSE(value.IsNull()) << text;
        EXPECT_EQ(value.IsTimeOfDayOnly(), text[2] == ':') << text;
        EXPECT_EQ(Streamed(value), text);
        EXPECT_EQ(value.GetAsString(), text);
    }
    for (const nxDateTime& null : {nxDateTime(date, nxTime()), nxDateTime(24, 0, 0), nxDateTime()})
    {
        EXPECT_TRUE(null.IsNull() && !null.IsTimeOfDayOnly());
        EXPECT_EQ(Streamed(null), "NULL");
        EXPECT_EQ(null.GetAsString(), "");
    }
    EXPECT_EQ(nxDateTime(date, nxTime()), nxDateTime());
    EXPECT_LT(nxDateTime(), nxDateTime(8, 30, 0));
    EXPECT_LT(nxDateTime(23, 0, 0), nxDateTime(date, nxTime(0, 0, 0)));
    EXPECT_LT(nxDateTime(date, nxTime(0, 0, 0)), nxDateTime(date, nxTime(0, 0, 0, 1)));
    EXPECT_EQ(std::unordered_set<nxDateTime>({whole, nxDateTime(date, nxTime(9, 7, 3)), timeOnly}).size(), 2U);
}

TEST(nxDateTime, FormatsByAPatternInEnglish)
{
    const nxDateTime moment(nxDate(2024, 12, 5), nxTime(9, 7, 3));
    const nxDateTime time(9, 7, 3);
    const char* const rows[][3] = {
        // pattern, moment, time of day alone
        {"%d%b%Y", "05Dec2024", ""},
        {"%H%M%S", "090703", "090703"},
        {"%d%b%y %H:%M:%S", "05Dec24 09:07:03", " 09:07:03"},
        {"%Y-%m-%d", "2024-12-05", "--"},
        {"100%% %q %", "100% %q %", "100% %q %"},
        {"c:\\log%", "c:\\log%", "c:\\log%"},
        {"%n%s%x", "%n%s%x", "%n%s%x"},
        {"", "", ""},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(moment.GetAsString(row[0]), row[1]);
        EXPECT_EQ(time.GetAsString(row[0]), row[2]);
    }
    std::string withItsPattern = "%%%%%%%%%%%%%%d";  // all that fits into a string without an allocation
    nxDateTime(nxDate(2024, 12, 5), nxTime(9, 7, 3)).AppendAsString(withItsPattern, withItsPattern);
    EXPECT_STREQ(withItsPattern.c_str(), "%%%%%%%%%%%%%%d%%%%%%%d");
    std::string months;
    for (unsigned month = 1; month <= 12; ++month)
        months += nxDateTime(nxDate(2024, month, 1), nxTime(0, 0, 0)).GetAsString("%b");
    EXPECT_EQ(months, "JanFebMarAprMayJunJulAugSepOctNovDec");
}
