// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxCmdLineArgs.h"

#include <unistd.h>

#include <cerrno>

#include "core/testing/nxCapturingLogDevice.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxFunctionLogDevice.h"
#include "tests/support/nxSystemCallFault.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestArguments.h"
#include "tests/support/nxTestThreads.h"

namespace
{
using Args = nxTestArguments;
using Map = Args::Map;
using Vector = nxTestPointers;
using Words = Args::Words;

TEST(nxCmdLineArgs, WordsBecomeOptionsValuesAndTheRest)
{
    const std::tuple<Words, Map, Words> rows[] = {
        {{"prog"}, {}, {}},
        {{"prog", "-a", "-b", "7", "file.txt", "-c"}, {{"a", ""}, {"b", "7"}, {"c", ""}}, {"file.txt"}},
        {{"prog", "-p", "-1.5"}, {{"p", "-1.5"}}, {}},
        {{"prog", "-p", "-.5", "-5."}, {{"p", "-.5"}, {"5.", ""}}, {}},  // a number, yet no option waits for it
        {{"prog", "-x", "-y"}, {{"x", ""}, {"y", ""}}, {}},
        {{"prog", "-x", "-1.5.2"}, {{"x", ""}, {"1.5.2", ""}}, {}},  // not a number
        {{"prog", "-x", "-"}, {{"x", ""}, {"", ""}}, {}},
        {{"prog", "-x", "--5"}, {{"x", ""}, {"-5", ""}}, {}},
        {{"prog", "-a", "1", "-a", "2"}, {{"a", "2"}}, {}},
        {{"prog", "-a", "1", "-a"}, {{"a", ""}}, {}},
        {{"prog", "-a", "", "b", ""}, {{"a", ""}}, {"b", ""}},
        {{"prog", "1", "2", "-a", "3", "4"}, {{"a", "3"}}, {"1", "2", "4"}},
    };
    for (const auto& [words, options, unprocessed] : rows)
    {
        const Args args(words, {});
        SCOPED_TRACE(testing::PrintToString(words));
        EXPECT_EQ(args.GetCommand(), "prog");
        EXPECT_EQ(args.Options(), options);
        Words rest;
        args.GetUnprocessedArgs(rest);
        EXPECT_EQ(rest, unprocessed);
        for (const auto& [name, value] : options)
            EXPECT_TRUE(args.IsArgDefined(name) && args.GetArgValue(name) == value) << name;
        EXPECT_FALSE(args.IsArgDefined("other") || args.GetArgValue("other") != "");
    }
}

TEST(nxCmdLineArgs, EnvironmentIsSplitAtTheFirstEqualsSign)
{
    const Args args({"prog"}, {"A=1", "B=x=y", "EMPTY=", "no sign", "A=2", "a=lower", "=C:=odd"});
    Map variables;
    args.GetEnvs(variables);
    EXPECT_EQ(variables, (Map{{"A", "2"}, {"B", "x=y"}, {"EMPTY", ""}, {"a", "lower"}, {"", "C:=odd"}}));
    EXPECT_EQ(args.GetEnvValue("B"), "x=y");
    EXPECT_EQ(args.GetEnvValue("missing"), "");
}

TEST(nxCmdLineArgs, WhatWasReadStaysAndTheLiveEnvironmentAnswersUntilThen)
{
    const std::string name = "NX_TEST_LIVE_" + std::to_string(::getpid());
    const std::string value(5000, 'x');  // longer than any fixed buffer
    ASSERT_EQ(::setenv(name.c_str(), value.c_str(), 1), 0);
    Vector first({"one", "-a", "1"});
    Vector second({"two", "-b", "2"});
    Vector environment({"A=1"});
    Vector otherEnvironment({"A=2"});

    Args args;
    EXPECT_EQ(args.GetEnvValue(name), value);
    args.Initialise(nullptr, nullptr);
    EXPECT_EQ(args.GetRawArgv(), nullptr);
    args.Initialise(first.Get(), nullptr);
    EXPECT_EQ(args.GetEnvValue(name), value);
    args.Initialise(second.Get(), environment.Get());
    args.Initialise(second.Get(), otherEnvironment.Get());
    EXPECT_EQ(args.GetCommand(), "one");
    EXPECT_EQ(args.Options(), (Map{{"a", "1"}}));
    EXPECT_EQ(args.GetEnvValue("A"), "1");
    EXPECT_EQ(args.GetEnvValue(name), "");
    EXPECT_EQ(args.GetRawArgv(), first.Get());
    EXPECT_EQ(args.GetRawEnvp(), environment.Get());
    ::unsetenv(name.c_str());

    char* none[] = {nullptr};  // argv may lack even the command
    Args empty;
    empty.Initialise(none, none);
    EXPECT_EQ(empty.GetCommand(), "");
    EXPECT_TRUE(empty.Options().empty());
    const Args live;
    EXPECT_NE(live.GetEnvValue("PATH"), "");
    EXPECT_EQ(live.GetEnvValue(std::string("PATH") + '\0' + "X"), "");
    std::string path;
    EXPECT_TRUE(live.GetEnvValueExact("PATH", path).IsOK() && path == live.GetEnvValue("PATH"));
    EXPECT_EQ(live.GetEnvValueExact(name, path), nxErrorEnum(NX_ERR_NOT_FOUND));
    ASSERT_EQ(::setenv(name.c_str(), "", 1), 0);
    EXPECT_EQ(live.GetEnvValueExact(name, path), nxErrorEnum(NX_ERR_OBJECT_IS_NULL));
    ::unsetenv(name.c_str());
    EXPECT_EQ(empty.GetEnvValue("PATH"), "") << "an empty environment was read; the live one is not asked";
}

TEST(nxCmdLineArgs, WhatWasSetBeforeTheEnvironmentIsReadCountsToo)
{
    if (!nxInNewProcess())
        return;
    char** const given = environ;  // as main gets it
    Args args;
    ASSERT_TRUE(args.SetEnvValue("NX_TEST_SET_EARLY", "1"));
    ASSERT_TRUE(args.SetEnvValue("NX_TEST_SET_EARLY", std::string(5000, 'x')));
    ASSERT_TRUE(args.SetEnvValue("PATH", "/nowhere"));
    char* none[] = {nullptr};
    args.Initialise(none, given);
    EXPECT_EQ(args.GetEnvValue("NX_TEST_SET_EARLY"), std::string(5000, 'x'));
    EXPECT_EQ(args.GetEnvValue("PATH"), "/nowhere");
}

TEST(nxCmdLineArgs, BooleansKnowFourWords)
{
    // With true and with false as the default, and with none.
    const std::pair<const char*, const char*> rows[] = {{"TRUE", "111"}, {"yes", "111"},   {"Yes", "111"},
                                                        {"no", "000"},   {"False", "000"}, {"maybe", "100"},
                                                        {"1", "100"},    {"", "100"},      {"TRUE ", "100"}};
    for (const auto& [text, expected] : rows)
    {
        const Args args({}, {std::string("K=") + text});
        std::string found;
        for (const bool is :
             {args.GetEnvValueAsBool("K", true), args.GetEnvValueAsBool("K", false), args.GetEnvValueAsBool("K")})
            found += is ? '1' : '0';
        EXPECT_EQ(found, expected) << text;
        bool value = found == "000";
        EXPECT_EQ(args.GetEnvValueExact("K", value).IsOK(), found != "100") << text;
        EXPECT_EQ(value, found == "111") << text;
    }
}

TEST(nxCmdLineArgs, NumbersAreNullUnlessTheTextIsOne)
{
    const nxErrorEnum ok, empty(NX_ERR_OBJECT_IS_NULL), missing(NX_ERR_NOT_FOUND);
    const std::tuple<const char*, const char*, const char*, double, nxErrorEnum> rows[] = {
        {"12", "12", "12", 12, ok},
        {"1.50", "1.50", "NULL", 1.5, nxErrorEnum(NX_ERR_INVALID_PARAMETER)},
        {"12x", "NULL", "NULL", nxDoubleValueWrapper::NullValue, nxErrorEnum(NX_ERR_INVALID_PARAMETER)},
        {"", "NULL", "NULL", nxDoubleValueWrapper::NullValue, empty},
        // Whole numbers are read modulo their range, but not by the exact readers.
        {"4294967297", "4294967297", "1", 4294967297.0, nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE)},
    };
    for (const auto& [text, decimal, volume, doubleValue, error] : rows)
    {
        SCOPED_TRACE(text);
        const Args args({"prog", "-k", text}, {std::string("K=") + text});
        EXPECT_EQ(args.GetEnvValueAsDecimal("K").GetAsLogString('.'), decimal);
        EXPECT_EQ(args.GetArgValueAsDecimal("k").GetAsLogString('.'), decimal);
        EXPECT_EQ(args.GetEnvValueAsVolume("K").GetAsLogString(), volume);
        EXPECT_EQ(args.GetArgValueAsVolume("k").GetAsLogString(), volume);
        EXPECT_EQ(static_cast<double>(args.GetEnvValueAsDoubleValue("K")), doubleValue);
        EXPECT_EQ(static_cast<double>(args.GetArgValueAsDoubleValue("k")), doubleValue);
        nxValueWrapper<unsigned> exact(7), exactVariable(7);
        EXPECT_EQ(args.GetArgValueExact("k", exact), error);
        EXPECT_EQ(args.GetEnvValueExact("K", exactVariable), error);
        EXPECT_TRUE(exact == exactVariable && exact == (error.IsOK() ? 12 : 7));
        EXPECT_EQ(args.GetArgValueExact("K", exact), missing);
    }
    const Args args({}, {"BIG=18446744073709551613"});
    EXPECT_EQ(args.GetEnvValueAsUInteger64("BIG").GetAsLogString(), "18446744073709551613");
    EXPECT_TRUE(args.GetEnvValueAsUInteger64("MISSING").IsNull() && args.GetArgValueAsDecimal("MISSING").IsNull());
}

TEST(nxCmdLineArgs, TimesOfDayAreSixDigitsInRange)
{
    const auto read = [](const std::string& text) { return Args({}, {"T=" + text}).GetEnvValueAsHHMMSS("T"); };
    EXPECT_EQ(read("093005"), nxDateTime(9, 30, 5));
    EXPECT_TRUE(read("000000").IsValid() && read("235959").IsValid());
    for (const char* const text :
         {"240000", "236000", "235960", "", "93005", "0930050", "09:005", "-93005", "09305\xB2"})
        EXPECT_FALSE(read(text).IsValid()) << text;
}

TEST(nxCmdLineArgs, SetEnvValueReachesTheProcessAndTheCopy)
{
    const std::string name = "NX_TEST_SET_" + std::to_string(::getpid());
    Args live, read({}, {"A=1"});
    EXPECT_TRUE(read.SetEnvValue(name, "v=1"));
    EXPECT_STREQ(std::getenv(name.c_str()), "v=1");
    EXPECT_EQ(read.GetEnvValue(name), "v=1");
    EXPECT_EQ(live.GetEnvValue(name), "v=1");
    EXPECT_TRUE(live.SetEnvValue(name, ""));
    EXPECT_STREQ(std::getenv(name.c_str()), "");
    ::unsetenv(name.c_str());

    const std::string withNul("A\0B", 3);
    const std::pair<std::string, std::string> refused[] = {{"", "x"}, {"A=B", "x"}, {withNul, "x"}, {"A", withNul}};
    for (const auto& [badName, badValue] : refused)
        EXPECT_FALSE(read.SetEnvValue(badName, badValue)) << badName;
    const nxSystemCallFault noMemory("setenv", ENOMEM);
    EXPECT_FALSE(read.SetEnvValue("A", "2"));
    EXPECT_EQ(read.GetEnvValue("A"), "1");
}

TEST(nxCmdLineArgs, ReadersAndASetterOfTheEnvironmentMeet)
{
    const std::string name = "NX_TEST_RACE_" + std::to_string(::getpid());
    Args args;
    std::atomic<int> torn{0};
    const auto look = [&]
    {
        const std::string value = args.GetEnvValue(name);
        torn += value.find_first_not_of(value.substr(0, 1)) != std::string::npos;
    };
    {
        const nxBusyThread readers[] = {nxBusyThread(look), nxBusyThread(look), nxBusyThread(look)};
        for (int i = 0; i < 2000; ++i)
            args.SetEnvValue(name, std::string(static_cast<std::size_t>(1 + i % 300), static_cast<char>('a' + i % 26)));
    }
    EXPECT_EQ(torn, 0);
    ::unsetenv(name.c_str());
}

// The texts that have reached the device, up to and including `last`.
Words Texts(const nxCapturingLogDevice& log, const std::string& last)
{
    EXPECT_TRUE(log.WaitFor(nxCapturingLogDevice::Contains(last)));
    Words texts;
    for (const nxCapturedRecord& record : log.GetRecords())
        texts.push_back(record.text);
    return texts;
}

TEST(nxCmdLineArgs, DumpWritesOneRecordAnEntryAndHidesPasswords)
{
    const Args args({"prog", "-user", "jane", "-dbPassword", "hunter2", "-empty", "-x", "a\r\nb\x1b[2J",
                     "-password=hunter2", "--pass=hunter2", "-level=5", "-token", "-hunter2", "-url=ftp://u:hunter2@h"},
                    {"QRX_DB_PASSWORD=hunter2", "MY_SECRET_KEY=hunter2", "api_token=hunter2", "LAST=1",
                     "MYSQL_PWD=hunter2", "API_KEY=hunter2", "PWD=/home", "QRX_PASSIVE_MODE=1",
                     "DB=two://u@h pg://jane:hun@ter2@h:1/db", "DB_AUTH=hunter2"});
    const nxCapturingLogDevice log;
    args.Dump(nxLogLevelEnum(NX_LOG_LEVEL_WARNING));
    EXPECT_EQ(Texts(log, "api_token = ***"), (Words{"Command Line Args:",

                                                    "-pass = ***",
                                                    "dbPassword = ***",
                                                    "empty = ",
                                                    "*** = ",
                                                    "level=5 = ",
                                                    "password = ***",
                                                    "token = ***",
                                                    "url=ftp://u:***@h = ",
                                                    "user = jane",
                                                    "x = a\\x0D\\x0Ab\\x1B[2J",
                                                    "Environment Variables:",
                                                    "API_KEY = ***",
                                                    "DB = two://u@h pg://jane:***@h:1/db",
                                                    "DB_AUTH = ***",
                                                    "LAST = 1",
                                                    "MYSQL_PWD = ***",
                                                    "MY_SECRET_KEY = ***",
                                                    "PWD = /home",
                                                    "QRX_DB_PASSWORD = ***",
                                                    "QRX_PASSIVE_MODE = 1",
                                                    "api_token = ***"}));
    EXPECT_EQ(log.Count(nxCapturingLogDevice::HasLevel(NX_LOG_LEVEL_WARNING)), 22U);
}

TEST(nxCmdLineArgs, TellsTheLogWithoutHoldingItsMutex)
{
    Args args({}, {"A=1"});
    const nxCapturingLogDevice before;  // takes what others reported
    // A device that asks for settings while it writes, as a file device does.
    std::atomic<int> answered{0};
    const nxFunctionLogDevice device([&](const nxLog&) { answered += args.GetEnvValue("A") == "1"; });
    const nxCapturingLogDevice log;  // is written to after the other
    args.Dump(nxLogLevelEnum(NX_LOG_LEVEL_ERROR));
    EXPECT_TRUE(args.SetEnvValue("A", "1"));
    EXPECT_FALSE(args.SetEnvValue("", ""));
    EXPECT_EQ(Texts(log, "Failed to change environment variable."),
              (Words{"Command Line Args:", "Environment Variables:", "A = 1",
                     "Successfully changed environment variable.", "Failed to change environment variable."}));
    EXPECT_EQ(answered, 5);
    ::unsetenv("A");
}
}  // namespace
