#include "core/time/nxTimeStamp.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include "core/time/nxDateTime.h"
#include "tests/support/nxZoneOfProcess.h"

namespace
{
std::string Fast(const nxTimeStamp& stamp)
{
    char text[nxTimeStamp::TextSize + 1];
    std::memset(text, '#', sizeof text);
    if (stamp.GetAsStringFast(text, sizeof text) == 0)
        return text[0] == '#' ? "" : "wrote and returned 0";
    EXPECT_EQ(text[24], '\0');
    EXPECT_EQ(text[25], '#');
    return text;
}

// The same text by the C library's means.
std::string Expected(long long second, unsigned nanoseconds)
{
    const std::time_t moment = second;
    std::tm fields{};
    if (localtime_r(&moment, &fields) == nullptr)
        return "";
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const long long year = ((1900LL + fields.tm_year) % 100 + 100) % 100;
    char text[64];
    std::snprintf(text, sizeof text, "%02d%s%02lld %02d:%02d:%02d.%03u.%03u", fields.tm_mday, months[fields.tm_mon],
                  year, fields.tm_hour, fields.tm_min, fields.tm_sec, nanoseconds / 1'000'000,
                  nanoseconds / 1'000 % 1'000);
    return text;
}

// "2024-3-5 9:7:3", or nothing for years that no date holds; the second 60 of zones that have one is shown as 59.
std::string ExpectedDateTime(long long second)
{
    const std::time_t moment = second;
    std::tm fields{};
    if (localtime_r(&moment, &fields) == nullptr || fields.tm_year < 1 - 1'900 || fields.tm_year > 9'999 - 1'900)
        return "";
    std::ostringstream text;
    text << fields.tm_year + 1'900 << '-' << fields.tm_mon + 1 << '-' << fields.tm_mday << ' ' << fields.tm_hour << ':'
         << fields.tm_min << ':' << std::min(fields.tm_sec, 59);
    return text.str();
}

std::string Parts(const nxDateTime& moment)
{
    if (moment.IsNull())
        return "";
    std::ostringstream text;
    text << moment.GetDate().GetYear() << '-' << moment.GetDate().GetMonth() << '-' << moment.GetDate().GetDay() << ' '
         << moment.GetTime().GetHours() << ':' << moment.GetTime().GetMinutes() << ':' << moment.GetTime().GetSeconds();
    return text.str();
}

// Some zones of each kind; those that the machine does not know are UTC to the C library as well.
constexpr const char* zones[] = {"UTC0",
                                 "Europe/London",
                                 "America/New_York",
                                 "Australia/Lord_Howe",    // summer time of half an hour
                                 "Africa/Casablanca",      // negative summer time
                                 "Asia/Kathmandu",         // five hours and three quarters
                                 "Pacific/Apia",           // left out a day in 2011
                                 "Africa/Monrovia",        // was 44 minutes and 30 seconds behind until 1972
                                 "right/Europe/Paris",     // counts leap seconds
                                 "Antarctica/Troll",       // two hours of summer time
                                 "XXX3YYY,J100/3,J300/3",  // a rule
                                 "nowhere"};
}  // namespace

TEST(nxTimeStamp, PrintsTheFixedLayout)
{
    const nxZoneOfProcess zone("UTC0");
    const nxTimeStamp stamp(1'709'629'623, 123'456'789);
    EXPECT_EQ(Fast(stamp), "05Mar24 09:07:03.123.456");
    EXPECT_EQ(stamp.GetAsString(), "05Mar24 09:07:03.123");
    std::ostringstream stream;
    stream << stamp;
    EXPECT_EQ(stream.str(), "05Mar24 09:07:03.123.456");
}

TEST(nxTimeStamp, PrintsEveryFractionInSixDigits)
{
    const nxZoneOfProcess zone("UTC0");
    const struct
    {
        unsigned nanoseconds;
        const char* text;
    } rows[] = {
        {0, ".000.000"},         {999, ".000.000"},         {1'000, ".000.001"},         {999'999, ".000.999"},
        {1'000'000, ".001.000"}, {999'999'999, ".999.999"}, {1'000'000'000, ".000.000"}, {4'294'967'295U, ".294.967"}};
    for (const auto& row : rows)
        EXPECT_EQ(Fast(nxTimeStamp(1'735'689'599, row.nanoseconds)), std::string("31Dec24 23:59:59") + row.text);
}

TEST(nxTimeStamp, PrintsWhatTheCLibraryFindsInEveryZoneAtAnyMoment)
{
    std::mt19937_64 random(1'709'629'623);
    for (const char* setting : zones)
    {
        SCOPED_TRACE(setting);
        const nxZoneOfProcess zone(setting);
        for (int i = 0; i < 4'000; ++i)
        {
            // From the neighbourhood of today to the ends of the calendar, and beyond.
            const auto bits = static_cast<long long>(random());
            const long long second = bits >> (random() % 36);
            const auto nanoseconds = static_cast<unsigned>(random() % 1'000'000'000);
            ASSERT_EQ(Fast(nxTimeStamp(second, nanoseconds)), Expected(second, nanoseconds)) << second;
            ASSERT_EQ(Parts(nxTimeStamp(second, nanoseconds).GetAsDateTime()), ExpectedDateTime(second)) << second;
        }
    }
}

TEST(nxTimeStamp, PrintsSuccessiveSecondsThroughEveryChangeOfTheClock)
{
    const auto offset = [](std::time_t second)
    {
        std::tm fields{};
        localtime_r(&second, &fields);
        return fields.tm_gmtoff;
    };
    for (const char* setting : zones)
    {
        SCOPED_TRACE(setting);
        const nxZoneOfProcess zone(setting);
        constexpr long long halfHour = 1'800;
        for (long long second = 0; second < 2'000'000'000; second += halfHour)
        {
            // Most of the time passes without a change.
            if (second % (30 * 86'400) == 0 && offset(second) == offset(second + 30 * 86'400))
                second += 30 * 86'400 - halfHour;
            if (offset(second) == offset(second + halfHour))
                continue;
            for (long long each = second - 70; each < second + halfHour + 70; each += 7)
                ASSERT_EQ(Fast(nxTimeStamp(each, 0)), Expected(each, 0)) << each;
        }
    }
}

TEST(nxTimeStamp, FollowsAChangeOfTheProcessesZone)
{
    const nxTimeStamp stamp(1'689'000'000, 0);  // 10 July 2023, 14:40 UTC
    const nxZoneOfProcess zone("UTC0");
    EXPECT_EQ(Fast(stamp), "10Jul23 14:40:00.000.000");
    nxZoneOfProcess::Set("EST5EDT,M3.2.0,M11.1.0");
    EXPECT_EQ(Fast(stamp), "10Jul23 10:40:00.000.000");
    nxZoneOfProcess::Set("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(Fast(stamp), "10Jul23 16:40:00.000.000");
    // Two zones with the same names and the same standard time, only one of which still has summer time.
    nxZoneOfProcess::Set("America/Chicago");
    const std::string chicago = Fast(stamp);
    EXPECT_EQ(chicago, Expected(stamp.GetSeconds(), 0));
    nxZoneOfProcess::Set("America/Mexico_City");
    const std::string mexicoCity = Expected(stamp.GetSeconds(), 0);
    for (int i = 0; i < 256; ++i)
        Fast(stamp);
    EXPECT_EQ(Fast(stamp), mexicoCity);
    // Another thread has printed nothing in the old zone.
    std::thread([&] { EXPECT_EQ(Fast(stamp), mexicoCity); }).join();
}

TEST(nxTimeStamp, ManyThreadsMeetANewZoneAtOnce)
{
    for (const char* setting : zones)
    {
        SCOPED_TRACE(setting);
        const nxZoneOfProcess zone(setting);
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (unsigned t = 0; t < 4; ++t)
            threads.emplace_back(
                [&wrong, t]
                {
                    std::mt19937_64 random(t);
                    for (int i = 0; i < 500; ++i)
                    {
                        const auto second = static_cast<long long>(random() % 4'000'000'000);
                        wrong += Fast(nxTimeStamp(second, 0)) != Expected(second, 0);
                    }
                });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(wrong, 0);
    }
}

TEST(nxTimeStamp, PrintsInAForkedChild)
{
    const nxZoneOfProcess zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const nxTimeStamp stamp(1'689'000'000, 0);
    EXPECT_EQ(Fast(stamp), "10Jul23 16:40:00.000.000");
    std::atomic<bool> stop{false};
    std::thread busy(
        [&stop]
        {
            while (!stop)
            {
                const std::time_t now = 0;
                std::tm fields{};
                localtime_r(&now, &fields);
            }
        });
    for (int i = 0; i < 20; ++i)
    {
        const pid_t child = fork();
        if (child == 0)
        {
            alarm(20);
            bool right = true;
            for (int text = 0; text < 600; ++text)
                right = right && Fast(stamp) == "10Jul23 16:40:00.000.000";
            _exit(right ? EXIT_SUCCESS : EXIT_FAILURE);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    stop = true;
    busy.join();
}

TEST(nxTimeStamp, PrintsWithoutAllocating)
{
    const nxZoneOfProcess zone("Asia/Gaza");  // in no other test, so that its table is not built yet
    char text[nxTimeStamp::TextSize];
    const std::string expected = Expected(1'689'000'000, 0);
    const std::size_t before = mallinfo2().uordblks;
    const unsigned written = nxTimeStamp(1'689'000'000, 0).GetAsStringFast(text, sizeof text);
    EXPECT_EQ(mallinfo2().uordblks, before);
    EXPECT_EQ(written, nxTimeStamp::TextSize);
    EXPECT_EQ(text, expected);
}

TEST(nxTimeStamp, WritesNothingWhenTheCalendarCannotHoldTheYear)
{
    for (const long long second : {LLONG_MAX, LLONG_MIN})
    {
        SCOPED_TRACE(second);
        char text[nxTimeStamp::TextSize] = "untouched";
        const nxTimeStamp stamp(second, 5);
        EXPECT_EQ(stamp.GetAsStringFast(text, sizeof text), 0U);
        EXPECT_STREQ(text, "untouched");
        EXPECT_EQ(stamp.GetAsString(), "");
        std::ostringstream stream;
        stream << '<' << stamp << '>';
        EXPECT_EQ(stream.str(), "<>");
    }
}

TEST(nxTimeStamp, GivesItsPartsAndOrdersByThem)
{
    const nxTimeStamp stamp(10, 500'000'000);
    EXPECT_EQ(stamp.GetTotalSecondsAsDouble(), 10.5);
    EXPECT_EQ(nxTimeStamp(-10, 500'000'000).GetTotalSecondsAsDouble(), -9.5);
    EXPECT_EQ(stamp.GetMilliseconds(), 500U);
    EXPECT_EQ(stamp.GetMicroseconds(), 500'000U);
    EXPECT_EQ(nxTimeStamp(-1, 999'999'999).GetMilliseconds(), 999U);
    EXPECT_EQ(nxTimeStamp(-1, 999'999'999).GetMicroseconds(), 999'999U);
    EXPECT_LT(nxTimeStamp(9, 999'999'999), stamp);
    EXPECT_LT(stamp, nxTimeStamp(10, 500'000'001));
    const std::unordered_set<nxTimeStamp> set{stamp, nxTimeStamp(10, 500'000'000), nxTimeStamp(10, 5)};
    EXPECT_EQ(set.size(), 2U);
}

TEST(nxTimeStamp, GivesALocalDateTime)
{
    const nxZoneOfProcess zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const nxDateTime moment = nxTimeStamp(1'689'000'000, 5).GetAsDateTime();
    EXPECT_EQ(moment.GetDate(), nxDate(2023, 7, 10));
    EXPECT_EQ(moment.GetAsString(), "10 Jul 2023 16:40:00");
    EXPECT_NE(moment, nxTimeStamp(1'689'000'000, 6).GetAsDateTime());
    EXPECT_TRUE(nxTimeStamp(LLONG_MAX, 0).GetAsDateTime().IsNull());
}

TEST(nxTimeStamp, ConvertsToAndFromTimePoints)
{
    using namespace std::chrono;
    using Nanoseconds = sys_time<nanoseconds>;
    const struct
    {
        long long second;
        unsigned nanoseconds;
        long long milliseconds;  // rounded down
    } rows[] = {{0, 0, 0},
                {1, 1, 1'000},
                {-1, 999'999'999, -1},
                {-1, 0, -1'000},
                {1'709'629'623, 123'456'789, 1'709'629'623'123},
                {-9'000'000'000, 1'000'000, -8'999'999'999'999}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.second);
        const nxTimeStamp stamp(row.second, row.nanoseconds);
        EXPECT_EQ(stamp.GetAsTimePoint<sys_time<milliseconds>>().time_since_epoch().count(), row.milliseconds);
        EXPECT_EQ(nxTimeStamp(stamp.GetAsTimePoint<Nanoseconds>()), stamp);
        EXPECT_EQ(stamp.GetAsTimePoint<sys_days>(), floor<days>(stamp.GetAsTimePoint<sys_seconds>()));
    }
    EXPECT_EQ(nxTimeStamp(sys_days(days(-1))), nxTimeStamp(-86'400, 0));
    EXPECT_EQ(nxTimeStamp(LLONG_MAX, 0).GetAsTimePoint<Nanoseconds>(), Nanoseconds::max());
    EXPECT_EQ(nxTimeStamp(LLONG_MIN, 0).GetAsTimePoint<Nanoseconds>(), Nanoseconds::min());
    EXPECT_EQ(nxTimeStamp(LLONG_MAX, 0).GetAsTimePoint<sys_seconds>().time_since_epoch().count(), LLONG_MAX);
}

TEST(nxTimeStamp, TakesTheTimeInWholeMillisecondsOrAsFineAsTheClock)
{
    long long fractions = 0;
    for (int i = 0; i < 1'000; ++i)
    {
        const auto before = std::chrono::system_clock::now() - std::chrono::milliseconds(2);
        const nxTimeStamp stamp;
        const nxTimeStamp fine = nxTimeStamp::Now();
        const auto after = std::chrono::system_clock::now() + std::chrono::milliseconds(2);
        ASSERT_EQ(stamp.GetNanoseconds() % 1'000'000, 0U);
        fractions += fine.GetNanoseconds() % 1'000'000 != 0;
        for (const nxTimeStamp& each : {stamp, fine})
        {
            const auto moment = each.GetAsTimePoint<std::chrono::system_clock::time_point>();
            ASSERT_TRUE(before <= moment && moment <= after) << each;
        }
    }
    EXPECT_GT(fractions, 500);
}
