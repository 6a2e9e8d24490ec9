// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxTimeZone.h"

#include <ctime>
#include <filesystem>
#include <optional>

#include "tests/support/nxTest.h"
#include "tests/support/nxZoneOfProcess.h"

namespace
{
constexpr std::size_t scratchSize = 16'384;

std::optional<std::int32_t> OffsetOfLibrary(std::int64_t second)
{
    const std::time_t moment = second;
    std::tm fields{};
    if (localtime_r(&moment, &fields) == nullptr)
        return std::nullopt;
    // The tables hold no zone with leap seconds, so that the offset is enough.
    return static_cast<std::int32_t>(fields.tm_gmtoff);
}

std::string Difference(const nxTimeZone& zone, std::int64_t second)
{
    const nxTimeZoneSpan span = zone.Find(second);
    const std::optional<std::int32_t> expected = OffsetOfLibrary(second);
    if (span.begin <= second && second < span.end && expected == span.offset)
        return "";
    return "second " + std::to_string(second) + ": [" + std::to_string(span.begin) + ", " + std::to_string(span.end) +
           ") " + std::to_string(span.offset) + ", C library " + (expected ? std::to_string(*expected) : "none");
}

// The first moment at which table and C library differ, around every change of the offset and at random.
std::string FirstDifference(const nxTimeZone& zone, std::mt19937_64& random)
{
    std::vector<std::int64_t> seconds;
    std::int64_t begin = nxTimeZone::FirstSecond;
    for (std::size_t i = 0; i < zone.GetSpanCount(); ++i)
    {
        const nxTimeZoneSpan span = zone.GetSpan(i);
        if (span.begin != begin || span.end <= span.begin)
            return "spans do not join at " + std::to_string(begin);
        begin = span.end;
        for (const std::int64_t second : {span.begin - 1, span.begin, span.begin + 1})
            seconds.push_back(std::max(second, nxTimeZone::FirstSecond));
    }
    if (begin != nxTimeZone::EndSecond)
        return "the last span ends at " + std::to_string(begin);
    seconds.push_back(nxTimeZone::EndSecond - 1);
    std::uniform_int_distribution<std::int64_t> anywhere(nxTimeZone::FirstSecond, nxTimeZone::EndSecond - 1);
    std::uniform_int_distribution<std::int64_t> ourDays(0, nxTimeZone::EndSecond - 1);
    for (int i = 0; i < 50; ++i)
    {
        seconds.push_back(anywhere(random));
        seconds.push_back(ourDays(random));
    }
    for (const std::int64_t second : seconds)
        if (std::string difference = Difference(zone, second); !difference.empty())
            return difference;
    return "";
}

// A zone file by hand: two offsets, one transition at `transition`, and a rule.
std::string ZoneFile(std::int64_t transition, std::int32_t offset, const std::string& rule)
{
    const auto number = [](std::uint64_t value, int size)
    {
        std::string bytes;
        while (size-- > 0)
            bytes += static_cast<char>(value >> (8 * size));
        return bytes;
    };
    const auto header = [&](unsigned times)
    {
        return "TZif2" + std::string(15, '\0') + number(0, 4) + number(0, 4) + number(0, 4) + number(times, 4) +
               number(times + 1, 4) + number(4, 4);
    };
    const std::string standard = number(0, 4) + number(0, 2);
    const std::string other = number(static_cast<std::uint32_t>(offset), 4) + number(0, 2);
    const std::string names("ABC\0", 4);
    return header(0) + standard + names + header(1) + number(static_cast<std::uint64_t>(transition), 8) + number(1, 1) +
           standard + other + names + "\n" + rule + "\n";
}
}  // namespace

TEST(nxTimeZone, AgreesWithTheCLibraryInEveryZoneOfTheDatabase)
{
    const std::filesystem::path database = "/usr/share/zoneinfo";
    if (!std::filesystem::exists(database / "Europe"))
        GTEST_SKIP() << "no zone database on this machine";
    std::mt19937_64 random(1'709'629'623);
    nxTimeZone zone;
    char scratch[scratchSize];
    int zones = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(database))
    {
        const std::string name = std::filesystem::relative(entry.path(), database).string();
        if (!entry.is_regular_file() || name.starts_with("right/") || name.starts_with("posix/") ||
            name.find('.') != std::string::npos || name == "leapseconds" || name == "leap-seconds.list")
            continue;
        const nxZoneOfProcess process(name.c_str());
        ASSERT_TRUE(zone.Load(name.c_str(), scratch)) << name;
        ASSERT_EQ(FirstDifference(zone, random), "") << name;
        ++zones;
    }
    EXPECT_GT(zones, 100);
}

TEST(nxTimeZone, ReadsRulesAsTheCLibraryDoes)
{
    std::mt19937_64 random(7);
    nxTimeZone zone;
    char scratch[scratchSize];
    for (const char* setting : {
             "UTC0", "", ":", "EST5EDT,M3.2.0,M11.1.0", "CET-1CEST,M3.5.0,M10.5.0/3",
             "AEST-10AEDT,M10.1.0,M4.1.0/3",  // summer around the turn of the year
             "NZST-12:00:00NZDT-13:00:00,M9.5.0/2:45:30,M4.1.0/3:45:30",
             "IST-1GMT0,M10.5.0,M3.5.0/1",          // negative summer time
             "<-02>2<-01>,M3.5.0/-1,M10.5.0/0",     // hours before midnight
             "<+0330>-3:30<+0430>,J79/24,J263/24",  // days without 29 February
             "ABC-2DEF,59/0,300/5",                 // days with it
             "ABC3DEF,0/0,J365/25",                 // summer time all year
             "AAA+4BBB+3,M10.4.6/0,M2.3.6/24",
             static_cast<const char*>(nullptr),  // the machine's
         })
    {
        SCOPED_TRACE(testing::PrintToString(setting));
        const nxZoneOfProcess process(setting);
        ASSERT_TRUE(zone.Load(setting, scratch));
        EXPECT_EQ(FirstDifference(zone, random), "");
    }
}

TEST(nxTimeZone, RefusesWhatCannotBeReadAndRulesThatAreNone)
{
    nxTimeZone zone;
    char scratch[scratchSize];
    EXPECT_FALSE(zone.Load("no such zone", scratch));
    for (const char* const text :
         {"", "5", "ES5", "EST", "EST25", "EST5:60", "EST5EDT", "EST99999999999", "<+03", "<>5"})
        EXPECT_FALSE(zone.ReadRule(text)) << text;
    for (const char* const dates : {",", ",M3.2.0", ",M3.2.0,M11.1.0,", ",M13.2.0,M11.1.0", ",M3.6.0,M11.1.0",
                                    ",M3.0.0,M11.1.0", ",M3.2.7,M11.1.0", ",J0,J1", ",366,1", ",M3.2.0/168,M11.1.0"})
        EXPECT_FALSE(zone.ReadRule(std::string("EST5EDT") + dates)) << dates;
}

TEST(nxTimeZone, ReadsAFileAndRefusesADamagedOne)
{
    constexpr std::int64_t transition = 1'000'000'000;
    const std::string good = ZoneFile(transition, 3'600, "ABC-1");
    nxTimeZone zone;
    ASSERT_TRUE(zone.ReadFile(good));
    EXPECT_EQ(zone.GetSpanCount(), 2U);
    EXPECT_EQ(zone.Find(transition - 1), (nxTimeZoneSpan{nxTimeZone::FirstSecond, transition, 0}));
    EXPECT_EQ(zone.Find(transition), (nxTimeZoneSpan{transition, nxTimeZone::EndSecond, 3'600}));

    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(zone.ReadFile(good.substr(0, size))) << size;
    EXPECT_FALSE(zone.ReadFile(ZoneFile(transition, 1'000'000, "ABC-1")));
    EXPECT_FALSE(zone.ReadFile(ZoneFile(transition, 3'600, "no rule")));
    constexpr std::size_t secondHalf = 44 + 6 + 4;
    std::string wrongType = good;
    wrongType[secondHalf + 44 + 8] = 2;
    EXPECT_FALSE(zone.ReadFile(wrongType));
    std::string leapSeconds = good;
    leapSeconds[secondHalf + 31] = 1;
    EXPECT_FALSE(zone.ReadFile(leapSeconds + std::string(12, '\n')));
}
