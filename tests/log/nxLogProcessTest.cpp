#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/nxSanitizer.h"

namespace
{
/// A run of the scenario program, and what it has written to its log.
class ScenarioRun
{
public:
    explicit ScenarioRun(const std::string& scenario, const std::string& environment = "")
    {
        const std::string path = testing::TempDir() + "nxLogProcess_" + std::to_string(getpid()) + "_" + scenario;
        const std::string command = "env -u QRX_LOG_LEVEL " + environment + " " NX_TEST_LOG_PROCESS " " + scenario +
                                    " " + path + " " NX_TEST_LOG_PLUGIN;
        const int result = std::system(command.c_str());
        status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        unlink(path.c_str());
    }

    std::size_t Count(const std::string& text) const
    {
        return static_cast<std::size_t>(std::count_if(
            lines.begin(), lines.end(), [&](const std::string& line) { return line.find(text) != std::string::npos; }));
    }

    int status;
    std::vector<std::string> lines;
};
}  // namespace

TEST(nxLogProcess, WritesEverythingAtAnOrderlyEnd)
{
    for (const char* scenario : {"ReturnFromMain", "ExitInAThread"})
    {
        SCOPED_TRACE(scenario);
        const ScenarioRun run(scenario);
        EXPECT_EQ(run.status, 0);
        ASSERT_EQ(run.lines.size(), 20'002u);
        EXPECT_EQ(run.lines.front().substr(0, 12), "before main ");
        EXPECT_EQ(run.lines.back().substr(0, 11), "after main ");
        for (std::size_t number = 0; number < 20'000; ++number)
            ASSERT_EQ(run.lines[number + 1].find("row " + std::to_string(number) + " "), 0u);
    }
}

TEST(nxLogProcess, EndsWhateverDevicesDo)
{
    EXPECT_EQ(ScenarioRun("ExitWhileStalled").status, 0);
    const ScenarioRun inside("ExitInsideADevice");
    EXPECT_EQ(inside.status, 0);
    EXPECT_GE(inside.Count("before main") + inside.Count("the last"), 1u);
    EXPECT_EQ(ScenarioRun("LogNothing").status, 0);
}

TEST(nxLogProcess, DoesNotWriteTheParentsQueueInTheChild)
{
    if (nxUnderAddressSanitizer)
        GTEST_SKIP() << nxNoForkAmongThreads;
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    const ScenarioRun run("ForkWithAFullQueue");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.Count("row"), 0u);
    EXPECT_EQ(run.Count("only this"), 1u);
}

TEST(nxLogProcess, NeedsNothingOfAPluginThatIsUnloaded)
{
    const ScenarioRun run("UnloadAPlugin");
    EXPECT_EQ(run.status, 0);
    for (const char* text : {"loaded plugin/load", "literal text of the plug-in plugin/report",
                             "record of the plug-in plugin/record", "unloaded plugin/unload"})
        EXPECT_GE(run.Count(text), 3u) << text;
}

TEST(nxLogProcess, HasOnDiskWhatWasWaitedForOrKeptForTheFirstDevice)
{
    const ScenarioRun ended("ExitAtOnce");
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.Count("waited for"), 1u);
    EXPECT_LE(ended.lines.size(), 3u);
    const ScenarioRun late("WaitForADevice");
    EXPECT_EQ(late.status, 0);
    EXPECT_EQ(late.Count("before main"), 1u);
    EXPECT_EQ(late.Count("kept"), 1u);
}

TEST(nxLogProcess, TakesItsLevelFromTheEnvironment)
{
    const struct
    {
        const char* environment;
        std::size_t info;
        std::size_t warning;
    } rows[] = {{"QRX_LOG_LEVEL=WRN", 0, 1}, {"QRX_LOG_LEVEL=FTL", 0, 0}, {"QRX_LOG_LEVEL=NO_CHANGE", 1, 1}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.environment);
        const ScenarioRun run("Levels", row.environment);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.Count("info"), row.info);
        EXPECT_EQ(run.Count("before main"), row.info);
        EXPECT_EQ(run.Count("warning"), row.warning);
    }
}
