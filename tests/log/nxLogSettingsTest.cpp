// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogSettings.h"

#include "core/enum/nxRefusedTexts.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogSetUp.h"
#include "tests/support/nxSystemTest.h"

namespace
{
// The settings of an environment in which only `values` are set.
template <class Settings = nxLogSettings>
Settings With(const std::vector<std::pair<const char*, const char*>>& values)
{
    for (const auto& [key, value] : values)
        setenv(key, value, 1);
    Settings settings = Settings::Read();
    for (const auto& [key, value] : values)
        unsetenv(key);
    return settings;
}

using Console = nxLogSettings::Console;
}  // namespace

TEST(nxLogSettings, SettingUpTellsOnceWhatCouldNotBeRegistered)
{
    const nxScratchDirectory directory;
    const nxCapturingLogDevice log;
    nxRefusedTexts::AddOutside(7, "SEVENTH");
    setenv("QRX_LOG_DIRECTORY", directory.GetPath().c_str(), 1);
    for (int round = 0; round != 2; ++round)
        EXPECT_TRUE(nxLogSetUp());
    nxFileLogDevice::GetInstance().Destroy();
    unsetenv("QRX_LOG_DIRECTORY");
    WaitUntilWritten();
    EXPECT_EQ(
        log.Count(nxCapturingLogDevice::HasLevel(NX_LOG_LEVEL_ERROR) && nxCapturingLogDevice::Contains("'SEVENTH'")),
        1U);
}

TEST(nxLogSettings, TakeTheWordsTheyKnow)
{
    const std::pair<const char*, nxEnumValue> levels[] = {
        {"DBG", NX_LOG_LEVEL_DEBUG},     {"PB2", NX_LOG_LEVEL_PUBLIC_2}, {"FTL", NX_LOG_LEVEL_FATAL},
        {"", NX_ENUM_UNDEFINED},         {"dbg", NX_ENUM_UNDEFINED},     {"Debug", NX_ENUM_UNDEFINED},
        {" DBG", NX_ENUM_UNDEFINED},     {"31", NX_ENUM_UNDEFINED},      {"FALSE", NX_ENUM_UNDEFINED},
        {"NO_CHANGE", NX_ENUM_UNDEFINED}};
    for (const auto& [text, level] : levels)
        EXPECT_EQ(With({{"QRX_LOG_LEVEL", text}}).level, level) << text;

    const std::pair<const char*, Console> consoles[] = {{"TRUE", Console::Verbose},
                                                        {"yes", Console::Verbose},
                                                        {"BRIEF", Console::LevelAndText},
                                                        {"Brief", Console::LevelAndText},
                                                        {"TERSE", Console::TimeAndText},
                                                        {"FALSE", Console::Off},
                                                        {"NO", Console::Off},
                                                        {"1", Console::Off},
                                                        {"", Console::Off}};
    for (const auto& [text, console] : consoles)
        EXPECT_EQ(With({{"QRX_LOG_TO_CONSOLE", text}}).console, console) << text;

    const auto truths = [](const char* text)
    {
        const nxLogSettings settings = With({{"QRX_LOG_FORCE_FLUSH", text},
                                             {"QRX_LOG_RECREATE_ON_CHANGE_OF_DATE", text},
                                             {"QRX_LOG_THREAD_INDEX", text}});
        EXPECT_EQ(settings.forceFlush, settings.recreateOnChangeOfDate);
        return std::pair(settings.forceFlush, settings.threadIndex);
    };
    for (const char* const yes : {"TRUE", "True", "yes"})
        EXPECT_EQ(truths(yes), std::pair(true, true)) << yes;
    EXPECT_EQ(truths("no"), std::pair(false, false));
    for (const char* const junk : {"", "0", "1", "on", "BRIEF"})
        EXPECT_EQ(truths(junk), std::pair(false, true)) << junk << " leaves the default";
}

TEST(nxLogSettings, TakeNumbersWithinTheirLimitsAndNoJunk)
{
    const std::tuple<const char*, std::uint64_t, std::uint64_t, std::uint64_t> rows[] = {
        {"0", 0, 1, 0},
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
    for (const auto& [text, seconds, megabytes, entries] : rows)
    {
        SCOPED_TRACE(text);
        const nxLogSettings settings = With({{"QRX_LOG_TIME_BETWEEN_FLUSHES", text},
                                             {"QRX_LOG_FILE_BUFF_SIZE_MB", text},
                                             {"QRX_LOG_BUFF_RESERVE_ENTRIES", text}});
        EXPECT_EQ(settings.secondsBetweenFlushes, seconds);
        EXPECT_EQ(settings.fileBufferMegabytes, megabytes);
        EXPECT_EQ(settings.reservedEntries, entries);
    }
}

TEST(nxLogSettings, TakeWhereTheThreadRuns)
{
    using Processors = std::vector<unsigned>;
    const std::pair<const char*, Processors> rows[] = {{"0", {0}},   {"1023", {1'023}}, {"0,2-4,7", {0, 2, 3, 4, 7}},
                                                       {"", {}},     {"1024", {}},      {"3-2", {}},
                                                       {"1,", {}},   {",1", {}},        {"1 2", {}},
                                                       {"1-", {}},   {"-1", {}},        {"a", {}},
                                                       {"1-2-3", {}}};
    for (const auto& [text, processors] : rows)
        EXPECT_EQ(With<nxLogThreadSettings>({{"NX_LOG_THREAD_PROCESSORS", text}}).processors, processors) << text;
    EXPECT_EQ(With<nxLogThreadSettings>({{"NX_LOG_THREAD_PRIORITY", "100"}}).priority, 99u);
    EXPECT_EQ(With<nxLogThreadSettings>({}).priority, 0u);
}
