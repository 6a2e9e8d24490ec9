// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxDate.h"

#include "core/time/nxDateTime.h"
#include "core/time/nxTime.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxZoneOfProcess.h"

TEST(nxDate, RefusesWhatIsNoDay)
{
    // The last one is 20240305 modulo 2^32.
    for (const char* text :
         {"20230229", "19000229", "20240132", "20240431", "20241301", "20240001", "20240100", "00000101", "00000000",
          "2024030", "020240305", "", "-2024030", "2024 305", "2024030x", "2024-03-05", "4315207601"})
    {
        nxDate date(1999, 12, 31);
        EXPECT_EQ(date.SetFromString(text), nxErrorEnum(NX_ERR_INVALID_PARAMETER)) << text;
        EXPECT_EQ(date.GetAsString(), "19991231") << text;
    }
    for (const nxDate& none : {nxDate(20230229U), nxDate(2023, 2, 29), nxDate(UINT_MAX, UINT_MAX, UINT_MAX),
                               nxDate(2024, 102, 1)})  // not October of another century
        EXPECT_TRUE(none.IsNull());
    nxDate date(2024, 1, 1);
    EXPECT_FALSE(date.SetFromISODate(20240230).IsOK());
    EXPECT_EQ(date.GetISODate(), 20240101U);
}

TEST(nxDate, NullIsNoDayAndComesFirst)
{
    const nxDate null;
    EXPECT_EQ(null.GetAsString(), "");
    EXPECT_EQ(Streamed(null), "NULL");
    EXPECT_EQ(null.GetDayOfWeek(), 0U);
    EXPECT_TRUE(null.IsNull() && null.GetWithDaysAdded(1).IsNull());
    EXPECT_LT(null, nxDate(1, 1, 1));
    EXPECT_LT(nxDate(2023, 12, 31), nxDate(2024, 1, 1));
    EXPECT_EQ(std::unordered_set<nxDate>({null, nxDate(), nxDate(2024, 1, 1)}).size(), 2U);
}

TEST(nxTime, ReadsTwoFormsAndLeavesItsValueAloneOtherwise)
{
    const std::pair<const char*, const char*> accepted[] = {{"00:00:00", "00:00:00"},
                                                            {"23:59:59", "23:59:59"},
                                                            {"235959", "23:59:59"},
                                                            {"09:07:03.5", "09:07:03.500"},
                                                            {"09:07:03.000001", "09:07:03.000001"},
                                                            {"09:07:03.000000001", "09:07:03.000000001"}};
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
    EXPECT_LT(nxTime(), nxTime(0, 0, 0));
    EXPECT_EQ(Streamed(nxTime()), "NULL");
    EXPECT_EQ(nxTime().GetAsString(), "");
    for (const nxTime& none : {nxTime(), nxTime(24, 0, 0), nxTime(0, 60, 0), nxTime(0, 0, 60),
                               nxTime(0, 0, 0, 1'000'000'000), nxTime(UINT_MAX, 0, 0)})
        EXPECT_TRUE(none.IsNull());
    const nxTime last(23, 59, 58, 999'999'999);
    EXPECT_EQ((std::tuple{last.GetHours(), last.GetMinutes(), last.GetSeconds(), last.GetNanoseconds()}),
              (std::tuple{23U, 59U, 58U, 999'999'999U}));
    EXPECT_EQ(last.GetSecondsSinceMidnight(), 86'398U);
    EXPECT_EQ(std::unordered_set<nxTime>({nxTime(), nxTime(0, 0, 0), last, last}).size(), 3U);
}

TEST(nxDateTime, IsTheLocalTimeOfAMoment)
{
    const nxZoneOfProcess zone("FIX-5:30");
    const std::tuple<long long, unsigned, const char*, unsigned> rows[] = {
        {1709609823, 123'456'789, "05 Mar 2024 09:07:03", 123'456'789},
        {-1, 999'999'999, "01 Jan 1970 05:29:59", 999'999'999},
        {0, 4'000'000'001, "01 Jan 1970 05:30:04", 1},
        {-62135616601, 0, "", 0},
        {-62135616601, 1'000'000'000, "01 Jan 0001 00:00:00", 0},
        {253402280999, 0, "31 Dec 9999 23:59:59", 0},
        {253402281000, 0, "", 0},
        {LLONG_MAX, 4'000'000'000, "", 0},
        {LLONG_MIN, 0, "", 0},
    };
    for (const auto& [seconds, nanoseconds, text, fraction] : rows)
    {
        const nxDateTime moment(seconds, nanoseconds);
        EXPECT_EQ(moment.GetAsString(), text) << seconds;
        EXPECT_EQ(moment.GetTime().GetNanoseconds(), fraction) << seconds;
        EXPECT_EQ(moment.IsNull(), *text == '\0') << seconds;
    }
}

TEST(nxDateTime, IsADateWithATimeOrATimeAlone)
{
    const nxDate date(2024, 3, 5);
    const nxDateTime whole(date, nxTime(9, 7, 3)), timeOnly(8, 30, 0);
    const std::pair<nxDateTime, const char*> values[] = {
        {whole, "05 Mar 2024 09:07:03"}, {nxDateTime(nxDate(), nxTime(9, 7, 3)), "09:07:03"},
        {timeOnly, "08:30:00"},          {nxDateTime(date, nxTime()), ""},
        {nxDateTime(24, 0, 0), ""},      {nxDateTime(), ""}};
    for (const auto& [value, text] : values)
    {
        const std::string shown = text;
        EXPECT_EQ(value.GetAsString(), shown);
        EXPECT_EQ(Streamed(value), shown.empty() ? "NULL" : shown);
        EXPECT_EQ(value.IsNull(), shown.empty());
        EXPECT_EQ(value.IsTimeOfDayOnly(), shown.size() == 8);
    }
    EXPECT_EQ(nxDateTime(date, nxTime()), nxDateTime());
    EXPECT_LT(nxDateTime(), timeOnly);
    EXPECT_LT(nxDateTime(23, 0, 0), nxDateTime(date, nxTime(0, 0, 0)));
    EXPECT_LT(nxDateTime(date, nxTime(0, 0, 0)), nxDateTime(date, nxTime(0, 0, 0, 1)));
    EXPECT_EQ(std::unordered_set<nxDateTime>({whole, nxDateTime(date, nxTime(9, 7, 3)), timeOnly}).size(), 2U);
}

TEST(nxDateTime, FormatsByAPatternInEnglish)
{
    const nxDateTime moment(nxDate(2024, 12, 5), nxTime(9, 7, 3)), time(9, 7, 3);
    const char* const rows[][3] = {
        // pattern, moment, time of day alone
        {"%d%b%Y", "05Dec2024", ""},
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
    moment.AppendAsString(withItsPattern, withItsPattern);
    EXPECT_STREQ(withItsPattern.c_str(), "%%%%%%%%%%%%%%d%%%%%%%d");
    std::string months;
    for (unsigned month = 1; month <= 12; ++month)
        months += nxDateTime(nxDate(2024, month, 1), nxTime(0, 0, 0)).GetAsString("%b");
    EXPECT_EQ(months, "JanFebMarAprMayJunJulAugSepOctNovDec");
}
