#include "core/time/nxTimeStamp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <sstream>
#include <string>
#include <unordered_set>

namespace
{
std::string Fast(const nxTimeStamp& stamp)
{
    char text[nxTimeStamp::TextSize + 1];
    std::memset(text, '#', sizeof text);
    EXPECT_EQ(stamp.GetAsStringFast(text, sizeof text), 25U);
    EXPECT_EQ(text[24], '\0');
    EXPECT_EQ(text[25], '#');
    return text;
}

long long LocalSeconds(int year, int month, int day, int hour, int minute, int second)
{
    std::tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    fields.tm_isdst = -1;
    return std::mktime(&fields);
}
}  // namespace

TEST(nxTimeStamp, PrintsFixedLayout)
{
    const nxTimeStamp stamp(LocalSeconds(2024, 3, 5, 9, 7, 3), 123'456'789);
    EXPECT_EQ(Fast(stamp), "05Mar24 09:07:03.123.456");
    EXPECT_EQ(stamp.GetAsString(), "05Mar24 09:07:03.123");
    std::ostringstream stream;
    stream << stamp;
    EXPECT_EQ(stream.str(), Fast(stamp));
}

TEST(nxTimeStamp, PrintsEveryFractionInSixDigits)
{
    const long long noon = LocalSeconds(2024, 12, 31, 12, 0, 0);
    EXPECT_EQ(Fast(nxTimeStamp(noon, 0)), "31Dec24 12:00:00.000.000");
    EXPECT_EQ(Fast(nxTimeStamp(noon, 999)), "31Dec24 12:00:00.000.000");
    EXPECT_EQ(Fast(nxTimeStamp(noon, 1'000)), "31Dec24 12:00:00.000.001");
    EXPECT_EQ(Fast(nxTimeStamp(noon, 999'999'999)), "31Dec24 12:00:00.999.999");
    EXPECT_EQ(Fast(nxTimeStamp(noon, 1'000'000'000)), "31Dec24 12:00:00.000.000");
    EXPECT_EQ(Fast(nxTimeStamp(noon, 4'294'967'295U)), "31Dec24 12:00:00.294.967");
}

TEST(nxTimeStamp, WritesNothingWhenTheCalendarCannotHoldTheYear)
{
    for (const long long seconds : {9'223'372'036'854'775'807LL, -9'223'372'036'854'775'807LL - 1})
    {
        SCOPED_TRACE(seconds);
        char text[nxTimeStamp::TextSize] = "untouched";
        EXPECT_EQ(nxTimeStamp(seconds, 5).GetAsStringFast(text, sizeof text), 0U);
        EXPECT_STREQ(text, "untouched");
        EXPECT_EQ(nxTimeStamp(seconds, 5).GetAsString(), "");
    }
}

TEST(nxTimeStamp, GivesItsParts)
{
    const nxTimeStamp stamp(10, 500'000'000);
    EXPECT_EQ(stamp.GetTotalSecondsAsDouble(), 10.5);
    EXPECT_EQ(stamp.GetMilliseconds(), 500U);
    EXPECT_EQ(stamp.GetMicroseconds(), 500'000U);
    EXPECT_EQ(nxTimeStamp(-1, 999'999'999).GetMilliseconds(), 999U);
    EXPECT_LT(nxTimeStamp(9, 999'999'999), stamp);
    EXPECT_LT(stamp, nxTimeStamp(10, 500'000'001));
    const std::unordered_set<nxTimeStamp> set{stamp, nxTimeStamp(10, 500'000'000), nxTimeStamp(10, 5)};
    EXPECT_EQ(set.size(), 2U);
}

TEST(nxTimeStamp, DefaultIsNowInWholeMilliseconds)
{
    const std::time_t before = std::time(nullptr);
    for (int i = 0; i < 1000; ++i)
    {
        const nxTimeStamp stamp;
        ASSERT_EQ(stamp.GetNanoseconds() % 1'000'000, 0U);
        ASSERT_LT(stamp.GetNanoseconds(), 1'000'000'000U);
        ASSERT_GE(stamp.GetSeconds(), before - 1);
        ASSERT_LE(stamp.GetSeconds(), std::time(nullptr) + 1);
    }
}
