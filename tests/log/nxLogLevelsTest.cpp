// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogLevels.h"

#include <cstring>

#include "tests/support/nxSystemTest.h"

namespace
{
/// Undoes what a test has set.
class Undo
{
public:
    Undo() = default;
    ~Undo()
    {
        nxLogLevels::Clear();
        EXPECT_TRUE(nxLogLevels::SetFile("").IsOK());
        nxLogManager::SetLogLevel(NX_LOG_LEVEL_INFO);
    }
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;
};

bool Set(const char* rules)
{
    std::string fault;
    const bool isSet = nxLogLevels::Set(rules, &fault).IsOK();
    EXPECT_EQ(isSet, fault.empty()) << rules;
    return isSet;
}

std::string LevelOf(const char* path) { return nxLogLevels::GetLevelFor(path).GetShortDescription(); }

// Logs at a place of the test's choice. @return whether what was streamed was evaluated.
bool Reports(nxEnumValue level)
{
    bool reports = false;
    NX_LOG_FROM(level, ("src/orders/Book.cpp", 7, 11)) << (reports = true);
    return reports;
}

void WriteFile(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path.string() + ".new") << text;
    std::filesystem::rename(path.string() + ".new", path);
}
}  // namespace

TEST(nxLogLevels, TheRuleThatFitsBestDecides)
{
    const Undo undo;
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"orders/=DBG", "orders/a.cpp", "DBG"},
        {"orders/=DBG", "/x/orders/deep/a.cpp", "DBG"},
        {"orders/=DBG", "/x/reorders/a.cpp", "INF"},
        {"orders/=DBG", "/x/orders", "INF"},
        {"core/price/=WRN", "/x/core/price/a.cpp", "WRN"},
        {"core/price/=WRN", "/x/core/y/price/a.cpp", "INF"},
        {"/x/=WRN", "/x/a.cpp", "WRN"},
        {"/x/=WRN", "/y/x/a.cpp", "INF"},
        {"a.cpp=ERR", "/x/a.cpp", "ERR"},
        {"a.cpp=ERR", "a.cpp", "ERR"},
        {"a.cpp=ERR", "/x/aa.cpp", "INF"},
        {"a.cpp=ERR", "a.cpp/b.cpp", "INF"},
        {"x/a.cpp=ERR", "y/a.cpp", "INF"},
        {"core/trunk/nxMutex=FTL", "core/trunk/nxMutex", "FTL"},
        {"nxMutex=FTL", "core/trunk/nxMutex", "FTL"},
        {"a.cpp=ERR,very/long/folder/=DBG", "very/long/folder/a.cpp", "ERR"},
        {"x/=DBG,core/x/=WRN", "core/x/a.cpp", "WRN"},
        {"aa/=DBG,bb/=WRN", "aa/bb/a.cpp", "WRN"},
        {"aa/=DBG,bb/=WRN", "bb/aa/a.cpp", "DBG"},
        {"x/=DBG,x/=PB1", "x/a.cpp", "PB1"},
        {"ERR", "x/a.cpp", "ERR"},
        {"\n # all\r\n level = ERR # most\n\n x/\t= DBG , y/=PB3", "y/a.cpp", "PB3"},
        {"a=b/=DBG", "a=b/c.cpp", "DBG"},
        {"", "x/a.cpp", "INF"},
        {"x/=DBG", "", "INF"}};
    for (const auto& [rules, path, level] : cases)
    {
        nxLogManager::SetLogLevel(NX_LOG_LEVEL_INFO);
        EXPECT_TRUE(Set(rules));
        EXPECT_EQ(LevelOf(path), level) << rules << " at " << path;
    }
}

TEST(nxLogLevels, ATextWithAMistakeChangesNothing)
{
    const Undo undo;
    EXPECT_TRUE(Set("x/=DBG"));
    std::string tooMany, tooLong(256, 'a');
    for (int i = 0; i < 257; ++i)
        tooMany += std::to_string(i) + "/=DBG,";
    const std::pair<std::string, const char*> cases[] = {{"y/=DBG\nx/=LOUD", "line 2: 'LOUD' is no level."},
                                                         {"dbg", "line 1: 'dbg' is no level."},
                                                         {"x/=", "line 1: '' is no level."},
                                                         {"=DBG", "line 1: '' names no sources."},
                                                         {"/ = DBG", "line 1: '/' names no sources."},
                                                         {"x/=DBG=", "line 1: '' is no level."},
                                                         {tooLong + "=DBG", "line 1: 'aaaa"},
                                                         {tooMany, "line 1: there are more than 256 rules"}};
    for (const auto& [text, wanted] : cases)
    {
        std::string fault;
        EXPECT_FALSE(nxLogLevels::Set(text, &fault).IsOK()) << text;
        EXPECT_EQ(fault.rfind(wanted, 0), 0U) << fault;
    }
    EXPECT_EQ(nxLogLevels::SetLevelFor("y,z/", NX_LOG_LEVEL_DEBUG), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxLogLevels::SetLevelFor("y/", nxLogLevelEnum()), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxLogLevels::SetFile("relative"), NX_ERR_INVALID_PARAMETER);
    nxCapturingLogDevice log;
    nxLogLevels::Apply({"x/=LOUD", "relative"});
    EXPECT_EQ(TakeReports(log, "core/trunk/nxLogLevels").size(), 2U) << "each is told";
    ASSERT_EQ(nxLogLevels::GetRules().size(), 1U);
    EXPECT_EQ(nxLogLevels::GetRules()[0].where, "x/");
}

TEST(nxLogLevels, TheNextStatementObeys)
{
    const Undo undo;
    const auto reporting = []
    {
        std::string levels;
        for (const nxLogLevelEnum level : nxLogLevelEnum::GetRegisteredValues())
            if (Reports(level.GetEnumValue()))
                levels += level.GetShortDescription() + ' ';
        return levels;
    };
    const std::string fromError = "ERR FTL ", fromInfo = "INF PB1 PB2 PB3 WRN " + fromError;
    EXPECT_EQ(reporting(), fromInfo);
    EXPECT_TRUE(Set("orders/=DBG"));
    EXPECT_EQ(reporting(), "DBG " + fromInfo);
    EXPECT_TRUE(Set("price/=DBG"));
    EXPECT_EQ(reporting(), fromInfo);
    EXPECT_TRUE(nxLogLevels::SetLevelFor("Book.cpp", NX_LOG_LEVEL_ERROR).IsOK());
    EXPECT_EQ(reporting(), fromError);
    EXPECT_EQ(nxLogManager::GetLogLevel(), NX_LOG_LEVEL_INFO);
    EXPECT_TRUE(nxLogManager::ShouldLog(NX_LOG_LEVEL_DEBUG)) << "another source may report it";
    EXPECT_FALSE(Reports(NX_ENUM_UNDEFINED));
    nxLogLevels::Clear();
    EXPECT_EQ(reporting(), fromInfo);
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_FATAL);
    EXPECT_EQ(reporting(), "FTL ");
}

TEST(nxLogLevels, EachThreadObeysAtOnceWhileOthersChangeTheirs)
{
    const Undo undo;
    nxInThreads(4,
                [](int thread)
                {
                    const std::string folder = "thread" + std::to_string(thread) + "/";
                    for (int i = 0; i < 2'000; ++i)
                    {
                        const bool mustFork = thread == 0 && i % 400 == 0;  // a child finds no lock held
                        ASSERT_TRUE(!mustFork || nxInChild([] { EXPECT_EQ(LevelOf("child/a"), "INF"); }));
                        const nxEnumValue level = i % 2 == 0 ? NX_LOG_LEVEL_DEBUG : NX_LOG_LEVEL_ERROR;
                        ASSERT_TRUE(nxLogLevels::SetLevelFor(folder, level).IsOK());
                        bool reports[4] = {};
                        NX_LOG_AT(NX_LOG_LEVEL_DEBUG, "thread0/a", 1) << (reports[0] = true);
                        NX_LOG_AT(NX_LOG_LEVEL_DEBUG, "thread1/a", 1) << (reports[1] = true);
                        NX_LOG_AT(NX_LOG_LEVEL_DEBUG, "thread2/a", 1) << (reports[2] = true);
                        NX_LOG_AT(NX_LOG_LEVEL_DEBUG, "thread3/a", 1) << (reports[3] = true);
                        ASSERT_EQ(reports[thread], level == NX_LOG_LEVEL_DEBUG);
                    }
                });
}

// Such a program tests the lowest level of all, and knows no folders.
TEST(nxLogLevels, SiftStatementsOfProgramsThatDoNotKnowThem)
{
    const Undo undo;
    nxCapturingLogDevice log;
    const auto logOld = [](const char* file, nxEnumValue level)
    {
        nxLogSite site(file, 3);
        std::memset(reinterpret_cast<char*>(&site) + sizeof site - sizeof(unsigned), 0, sizeof(unsigned));
        if (nxLogManager::ShouldLog(level))
            nxLogStatement(level, site).Stream() << "old";
    };
    logOld("Old.cpp", NX_LOG_LEVEL_INFO);
    WaitUntilWritten();
    EXPECT_TRUE(Set("orders/=DBG,Other.cpp=DBG,Old.cpp=PB1"));
    logOld("Old.cpp", NX_LOG_LEVEL_INFO);
    logOld("Old.cpp", NX_LOG_LEVEL_PUBLIC_1);
    logOld("Other.cpp", NX_LOG_LEVEL_DEBUG);
    logOld("Unknown.cpp", NX_LOG_LEVEL_DEBUG);
    EXPECT_TRUE(Reports(NX_LOG_LEVEL_DEBUG));
    const auto all = [](const char* source) { return nxCapturingLogDevice::From(source); };
    WaitUntilWritten();
    EXPECT_EQ(log.Count(all("Old.cpp")), 2U);
    EXPECT_EQ(log.Count(all("Other.cpp")), 1U);
    EXPECT_EQ(log.Count(all("Unknown.cpp")), 0U);
    EXPECT_EQ(log.Count(all("Book.cpp")), 1U);
}

TEST(nxLogLevels, AFileHoldsAsLongAsItIsThere)
{
    const Undo undo;
    const nxScratchDirectory directory;
    const std::filesystem::path path = directory.GetPath() / "levels";
    nxCapturingLogDevice log;
    const auto becomes = [](const char* level)
    { return nxEventually([level] { return LevelOf("orders/a.cpp") == level; }); };
    const auto watchAgain = [&] { EXPECT_TRUE(nxLogLevels::SetFile(path.string()).IsOK()); };
    // The log's thread may be the one that sees a change, and reports it after the change is in force.
    const auto isToldOnce = [&](const std::string& text)
    {
        const auto count = [&] { return log.Count(nxCapturingLogDevice::Contains(text)); };
        const bool isTold = nxEventually([&] { return count() > 0; });
        watchAgain();
        WaitUntilWritten();
        return isTold && count() == 1;
    };
    const std::string name = "file '" + path.string() + "'";

    EXPECT_TRUE(Set("orders/=PB1"));
    watchAgain();
    EXPECT_EQ(LevelOf("orders/a.cpp"), "PB1");
    WriteFile(path, "WRN\nprice/=DBG\ncore/trunk/nxLogLevels=INF\n");
    EXPECT_TRUE(becomes("WRN"));
    EXPECT_TRUE(isToldOnce("Log levels of " + name + ": WRN, price/=DBG, core/trunk/nxLogLevels=INF"));
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_ERROR);
    EXPECT_EQ(LevelOf("a.cpp"), "WRN");
    EXPECT_EQ(LevelOf("price/a.cpp"), "DBG");
    WriteFile(path, "level=INF\norders/=FTL\n");
    watchAgain();
    EXPECT_TRUE(isToldOnce("Log levels of " + name + ": INF, orders/=FTL"));
    WriteFile(path, "orders/=DBG\nprice=LOUD\n");
    watchAgain();
    EXPECT_TRUE(isToldOnce("Log level " + name +
                           " is refused as a whole. In line 2: 'LOUD' is no level. Levels are DBG, INF, PB1, PB2, PB3, "
                           "WRN, ERR and FTL"));
    EXPECT_EQ(LevelOf("orders/a.cpp"), "FTL");
    EXPECT_EQ(TakeReports(log, "core/trunk/nxLogLevels").size(), 3U);
    std::filesystem::remove(path);
    EXPECT_TRUE(becomes("PB1"));
    EXPECT_EQ(LevelOf("a.cpp"), "ERR");

    // What is no regular file, or too large, is refused and holds nothing up.
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_INFO);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    watchAgain();
    EXPECT_TRUE(isToldOnce("cannot be read, errno: 22"));
    WriteFile(path, std::string(70'000, '#'));
    watchAgain();
    EXPECT_TRUE(isToldOnce("cannot be read, errno: 27"));
}
