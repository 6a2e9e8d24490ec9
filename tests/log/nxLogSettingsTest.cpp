#include "core/log/nxLogSettings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>

namespace
{
constexpr const char* keys[] = {"QRX_LOG_LEVEL",
                                "QRX_LOG_DIRECTORY",
                                "QRX_LOG_TO_CONSOLE",
                                "QRX_LOG_FORCE_FLUSH",
                                "QRX_LOG_TIME_BETWEEN_FLUSHES",
                                "QRX_LOG_FILE_BUFF_SIZE_MB",
                                "QRX_LOG_BUFF_RESERVE_ENTRIES",
                                "QRX_LOG_THREAD_INDEX",
                                "QRX_LOG_RECREATE_ON_CHANGE_OF_DATE"};

// The settings of an environment in which only `values` are set.
nxLogSettings With(std::initializer_list<std::pair<const char*, const char*>> values)
{
    for (const char* const key : keys)
        unsetenv(key);
    for (const auto& [key, value] : values)
        setenv(key, value, 1);
    nxLogSettings settings = nxLogSettings::Read();
    for (const char* const key : keys)
        unsetenv(key);
    return settings;
}

using Console = nxLogSettings::Console;
}  // namespace

TEST(nxLogSettings, HaveDefaults)
{
    const nxLogSettings settings = With({});
    EXPECT_EQ(settings.level, NX_ENUM_UNDEFINED);
    EXPECT_EQ(settings.directory, "");
    EXPECT_EQ(settings.console, Console::Off);
    EXPECT_FALSE(settings.forceFlush);
    EXPECT_EQ(settings.secondsBetweenFlushes, 1U);
    EXPECT_EQ(settings.fileBufferMegabytes, 1U);
    EXPECT_EQ(settings.reservedEntries, 0U);
    EXPECT_TRUE(settings.threadIndex);
    EXPECT_FALSE(settings.recreateOnChangeOfDate);
}

TEST(nxLogSettings, TakeLevelsByTheirShortDescriptionOnly)
{
    EXPECT_EQ(With({{"QRX_LOG_LEVEL", "DBG"}}).level, NX_LOG_LEVEL_DEBUG);
    EXPECT_EQ(With({{"QRX_LOG_LEVEL", "PB2"}}).level, NX_LOG_LEVEL_PUBLIC_2);
    EXPECT_EQ(With({{"QRX_LOG_LEVEL", "FTL"}}).level, NX_LOG_LEVEL_FATAL);
    for (const char* junk : {"", "dbg", "Debug", " DBG", "31", "FALSE", "NO_CHANGE", "UNDEFINED"})
        EXPECT_EQ(With({{"QRX_LOG_LEVEL", junk}}).level, NX_ENUM_UNDEFINED) << junk;
}

TEST(nxLogSettings, TakeTheFormsOfTheConsole)
{
    const std::pair<const char*, Console> rows[] = {{"TRUE", Console::Verbose},
                                                    {"yes", Console::Verbose},
                                                    {"BRIEF", Console::LevelAndText},
                                                    {"Brief", Console::LevelAndText},
                                                    {"TERSE", Console::TimeAndText},
                                                    {"FALSE", Console::Off},
                                                    {"NO", Console::Off},
                                                    {"1", Console::Off},
                                                    {"", Console::Off}};
    for (const auto& [text, console] : rows)
        EXPECT_EQ(With({{"QRX_LOG_TO_CONSOLE", text}}).console, console) << text;
}

TEST(nxLogSettings, TakeNumbersWithinTheirLimitsAndNoJunk)
{
    const struct
    {
        const char* text;
        std::uint64_t seconds, megabytes, entries;
    } rows[] = {{"0", 0, 1, 0},
                {"5", 5, 5, 5},
                {"3601", 3'600, 1'024, 3'601},
                {"4096", 3'600, 1'024, 4'096},
                {"18446744073709551616", 3'600, 1'024, 100'000'000},
                {"-1", 1, 1, 0},
                {"+5", 1, 1, 0},
                {" 5", 1, 1, 0},
                {"5s", 1, 1, 0},
                {"1e3", 1, 1, 0},
                {"", 1, 1, 0}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        const nxLogSettings settings = With({{"QRX_LOG_TIME_BETWEEN_FLUSHES", row.text},
                                             {"QRX_LOG_FILE_BUFF_SIZE_MB", row.text},
                                             {"QRX_LOG_BUFF_RESERVE_ENTRIES", row.text}});
        EXPECT_EQ(settings.secondsBetweenFlushes, row.seconds);
        EXPECT_EQ(settings.fileBufferMegabytes, row.megabytes);
        EXPECT_EQ(settings.reservedEntries, row.entries);
    }
}

TEST(nxLogSettings, TakeTruthValuesInAnyCase)
{
    for (const char* yes : {"TRUE", "True", "yes"})
        EXPECT_TRUE(With({{"QRX_LOG_FORCE_FLUSH", yes}}).forceFlush &&
                    With({{"QRX_LOG_RECREATE_ON_CHANGE_OF_DATE", yes}}).recreateOnChangeOfDate)
            << yes;
    EXPECT_FALSE(With({{"QRX_LOG_THREAD_INDEX", "no"}}).threadIndex);
    for (const char* junk : {"", "0", "1", "on", "BRIEF"})
        EXPECT_TRUE(!With({{"QRX_LOG_FORCE_FLUSH", junk}}).forceFlush &&
                    With({{"QRX_LOG_THREAD_INDEX", junk}}).threadIndex)
            << junk;
}
