// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxTimeStamp.h"

#include <malloc.h>
#include <sys/resource.h>

#include <chrono>
#include <cstring>
#include <ctime>

#include "core/time/nxDateTime.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxSanitizer.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"
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

// The text of a stamp, and that of its date and time.
std::string Both(const nxTimeStamp& stamp) { return Fast(stamp) + " | " + stamp.GetAsDateTime().GetAsString(); }

// The same texts made by the C library. No date holds years beyond the calendar's four digits, and the second 60 of zones
// that have one is shown as 59 there.
std::string Expected(long long second, unsigned nanoseconds)
{
    const std::time_t moment = second;
    std::tm fields{};
    if (localtime_r(&moment, &fields) == nullptr)
        return " | ";
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const char* const month = months[fields.tm_mon];
    const long long year = 1900LL + fields.tm_year;
    char text[64], dateTime[64] = "";
    std::snprintf(text, sizeof text, "%02d%s%02lld %02d:%02d:%02d.%03u.%03u", fields.tm_mday, month,
                  (year % 100 + 100) % 100, fields.tm_hour, fields.tm_min, fields.tm_sec, nanoseconds / 1'000'000,
                  nanoseconds / 1'000 % 1'000);
    if (1 <= year && year <= 9'999)
        std::snprintf(dateTime, sizeof dateTime, "%02d %s %04lld %02d:%02d:%02d", fields.tm_mday, month, year,
                      fields.tm_hour, fields.tm_min, std::min(fields.tm_sec, 59));
    return std::string(text) + " | " + dateTime;
}

// One zone of each kind; nxTimeZone is compared in all of them. A zone that the machine does not know is UTC to the C
// library as well.
constexpr const char* zones[] = {"UTC0",
                                 "Australia/Lord_Howe",    // summer time of half an hour
                                 "Pacific/Apia",           // left out a day in 2011
                                 "Africa/Monrovia",        // was 44 minutes and 30 seconds behind until 1972
                                 "right/Europe/Paris",     // counts leap seconds
                                 "ABC3DEF,J100/3,J300/3",  // a rule
                                 "nowhere"};
}  // namespace

TEST(nxTimeStamp, PrintsTheFixedLayout)
{
    const nxZoneOfProcess zone("UTC0");
    const nxTimeStamp stamp(1'709'629'623, 123'456'789);
    EXPECT_EQ(stamp.GetAsString(), "05Mar24 09:07:03.123");
    EXPECT_EQ(Streamed(stamp), "05Mar24 09:07:03.123.456");
    EXPECT_EQ(nxTimeStamp(LLONG_MAX, 5).GetAsString() + Streamed(nxTimeStamp(LLONG_MIN, 5)), "");  // no such years
    const std::pair<unsigned, const char*> fractions[] = {
        {0, ".000.000"},         {999, ".000.000"},         {1'000, ".000.001"},         {999'999, ".000.999"},
        {1'000'000, ".001.000"}, {999'999'999, ".999.999"}, {1'000'000'000, ".000.000"}, {4'294'967'295U, ".294.967"}};
    for (const auto& [nanoseconds, text] : fractions)
        EXPECT_EQ(Fast(nxTimeStamp(1'735'689'599, nanoseconds)), std::string("31Dec24 23:59:59") + text);
}

TEST(nxTimeStamp, PrintsWhatTheCLibraryFindsInEveryZoneAtAnyMomentInManyThreads)
{
    for (const char* setting : zones)
    {
        SCOPED_TRACE(setting);
        const nxZoneOfProcess zone(setting);
        const auto print = [](int thread)
        {
            std::mt19937_64 random(static_cast<unsigned>(thread));
            for (int i = 0; i < 1'500 && !testing::Test::HasFailure(); ++i)
            {
                // From years near today to years beyond both ends of the calendar.
                const auto bits = static_cast<long long>(random());
                const long long second = bits >> (random() % 36);
                const auto nanoseconds = static_cast<unsigned>(random() % 1'000'000'000);
                EXPECT_EQ(Both(nxTimeStamp(second, nanoseconds)), Expected(second, nanoseconds)) << second;
            }
        };
        nxInThreads(4, print);
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
    constexpr long long halfHour = 1'800, month = 30 * 86'400;
    for (const char* setting : zones)
    {
        SCOPED_TRACE(setting);
        const nxZoneOfProcess zone(setting);
        for (long long second = 0; second < 2'000'000'000; second += halfHour)
        {
            // Most of the time passes without a change.
            if (second % month == 0 && offset(second) == offset(second + month))
                second += month - halfHour;
            if (offset(second) == offset(second + halfHour))
                continue;
            for (long long each = second - 70; each < second + halfHour + 70; each += 7)
                ASSERT_EQ(Both(nxTimeStamp(each, 0)), Expected(each, 0)) << each;
        }
    }
}

TEST(nxTimeStamp, FollowsAChangeOfTheProcessesZone)
{
    const nxTimeStamp stamp(1'689'000'000, 0);  // 10 July 2023, 14:40 UTC
    const nxZoneOfProcess zone("UTC0");
    // The last two have the same names and the same standard time, but only one of them still has summer time.
    for (const char* setting : {"EST5EDT,M3.2.0,M11.1.0", "CET-1CEST,M3.5.0,M10.5.0/3", "UTC0", "America/Chicago"})
    {
        nxZoneOfProcess::Set(setting);
        EXPECT_EQ(Both(stamp), Expected(stamp.GetSeconds(), 0)) << setting;
    }
    nxZoneOfProcess::Set("America/Mexico_City");
    const std::string mexicoCity = Expected(stamp.GetSeconds(), 0);
    for (int i = 0; i < 256; ++i)
        Fast(stamp);
    EXPECT_EQ(Both(stamp), mexicoCity);
    // Another thread has printed nothing in the old zone.
    nxInThreads(1, [&] { EXPECT_EQ(Both(stamp), mexicoCity); });
}

TEST(nxTimeStamp, PrintsWhatTheCLibraryKnowsThoughTheZonesFileCannotBeRead)
{
    const auto expectTheLibrarys = [](int texts)
    {
        constexpr long long summer = 1'720'616'400;  // 10 July 2024, 13:00 UTC
        for (long long second = summer; second < summer + 61 * texts; second += 61)
            ASSERT_EQ(Both(nxTimeStamp(second, 0)), Expected(second, 0)) << second;
    };
    // The C library has read the zone. Then no file can be opened for a while.
    const nxZoneOfProcess zone("Europe/London");
    struct rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    // The sanitizers need descriptors to inspect memory.
    const struct rlimit none = {nxUnderAddressSanitizer ? files.rlim_cur : 0, files.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    expectTheLibrarys(600);
    setrlimit(RLIMIT_NOFILE, &files);
    expectTheLibrarys(10'000);
    // Summer time without its rule: the C library has one of its own.
    nxZoneOfProcess::Set("GMT0BST");
    expectTheLibrarys(600);
}

TEST(nxTimeStamp, FollowsAChangeToAZoneThatDiffersOnlyLongAgo)
{
    const long long now = 1'720'616'400, past = 1'000'000'000;
    const nxZoneOfProcess zone("Pacific/Guadalcanal");
    Fast(nxTimeStamp(now, 0));
    nxZoneOfProcess::Set("Pacific/Bougainville");
    for (int i = 0; i < 256; ++i)
        Fast(nxTimeStamp(now + 61 * i, 0));
    for (long long second = past; second < past + 3 * 61; second += 61)
        EXPECT_EQ(Expected(second, 0).substr(0, 24), Fast(nxTimeStamp(second, 0)));
}

TEST(nxTimeStamp, PrintsInAForkedChild)
{
    const nxZoneOfProcess zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const nxTimeStamp stamp(1'689'000'000, 0);
    const std::string expected = "10Jul23 16:40:00.000.000";
    EXPECT_EQ(Fast(stamp), expected);
    // Holds locks of the C library and of this one, but none of an allocator, because the address sanitizer does not release
    // its own in the child.
    const nxBusyThread busy(
        []
        {
            const std::time_t second = 0;
            std::tm fields;
            localtime_r(&second, &fields);
            char text[nxTimeStamp::TextSize];
            nxTimeStamp(0, 0).GetAsStringFast(text, sizeof text);
        });
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(nxInChild(
            [&]
            {
                for (int text = 0; text < 600; ++text)
                    EXPECT_EQ(Fast(stamp), expected);
            }));
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
    EXPECT_EQ(text, expected.substr(0, expected.find(" | ")));
}

TEST(nxTimeStamp, GivesItsPartsAndOrdersByThem)
{
    const nxTimeStamp stamp(10, 500'000'000), late(-1, 999'999'999);
    nxTimeStamp assigned(0, 0);
    EXPECT_EQ(assigned = stamp, stamp);
    EXPECT_EQ(stamp.GetTotalSecondsAsDouble(), 10.5);
    EXPECT_EQ(nxTimeStamp(-10, 500'000'000).GetTotalSecondsAsDouble(), -9.5);
    EXPECT_EQ((std::pair{stamp.GetMilliseconds(), stamp.GetMicroseconds()}), (std::pair{500U, 500'000U}));
    EXPECT_EQ((std::pair{late.GetMilliseconds(), late.GetMicroseconds()}), (std::pair{999U, 999'999U}));
    EXPECT_LT(nxTimeStamp(9, 999'999'999), stamp);
    EXPECT_LT(stamp, nxTimeStamp(10, 500'000'001));
    EXPECT_EQ(std::unordered_set<nxTimeStamp>({stamp, nxTimeStamp(10, 500'000'000), nxTimeStamp(10, 5)}).size(), 2U);
    EXPECT_EQ(stamp.GetAsDateTime().GetTime().GetNanoseconds(), 500'000'000U);
}

// Seconds that no table covers are asked of the C library, whose lock a fork does not take.
TEST(nxTimeStamp, IsPrintedInChildrenThatAreForkedWhileItIsPrinted)
{
    const auto print = [] { static_cast<void>(nxTimeStamp(32'503'680'000, 0).GetAsString()); };
    const nxBusyThread printing(print);
    for (int i = 0; i < 500 && !HasFailure(); ++i)
        EXPECT_TRUE(nxInChild(print));
}

TEST(nxTimeStamp, ConvertsToAndFromTimePoints)
{
    using namespace std::chrono;
    using Nanoseconds = sys_time<nanoseconds>;
    // The milliseconds are rounded down.
    const std::tuple<long long, unsigned, long long> rows[] = {{0, 0, 0},
                                                               {1, 1, 1'000},
                                                               {-1, 999'999'999, -1},
                                                               {-1, 0, -1'000},
                                                               {1'709'629'623, 123'456'789, 1'709'629'623'123},
                                                               {-9'000'000'000, 1'000'000, -8'999'999'999'999}};
    for (const auto& [second, nanosecond, millisecond] : rows)
    {
        SCOPED_TRACE(second);
        const nxTimeStamp stamp(second, nanosecond);
        EXPECT_EQ(stamp.GetAsTimePoint<sys_time<milliseconds>>().time_since_epoch().count(), millisecond);
        EXPECT_EQ(nxTimeStamp(stamp.GetAsTimePoint<Nanoseconds>()), stamp);
        EXPECT_EQ(stamp.GetAsTimePoint<sys_days>(), floor<days>(stamp.GetAsTimePoint<sys_seconds>()));
    }
    EXPECT_EQ(nxTimeStamp(sys_days(days(-1))), nxTimeStamp(-86'400, 0));
    for (const nanoseconds offset : {0ns, 1ns, 999'999'999ns, 1'000'000'000ns})
        for (const Nanoseconds moment : {Nanoseconds::min() + offset, Nanoseconds::max() - offset})
            EXPECT_EQ(nxTimeStamp(moment).GetAsTimePoint<Nanoseconds>(), moment);
    EXPECT_EQ(nxTimeStamp(sys_time<hours>::max()), nxTimeStamp(LLONG_MAX, 999'999'999));
    EXPECT_EQ(nxTimeStamp(sys_time<hours>::min()), nxTimeStamp(LLONG_MIN, 0));
    EXPECT_EQ(nxTimeStamp(LLONG_MAX, 0).GetAsTimePoint<Nanoseconds>(), Nanoseconds::max());
    EXPECT_EQ(nxTimeStamp(LLONG_MIN, 0).GetAsTimePoint<Nanoseconds>(), Nanoseconds::min());
    EXPECT_EQ(nxTimeStamp(LLONG_MAX, 0).GetAsTimePoint<sys_seconds>().time_since_epoch().count(), LLONG_MAX);
}
