// The log in processes that are killed, exit, fork and rotate. Each test's number of rounds comes from
// the environment, so that the endurance script can ask for more.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/nxSanitizer.h"
#include "tests/support/nxScratchDirectory.h"
#include "tests/support/nxTestThreads.h"

namespace
{
int Rounds(const char* name, int short_form)
{
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : short_form;
}

// A logger at work on a directory.
class Logger
{
public:
    Logger(const std::filesystem::path& directory, const std::vector<std::string>& words,
           std::vector<std::string> settings = {})
    {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        _output = ends[0];
        settings.push_back("QRX_LOG_DIRECTORY=" + directory.string());
        std::vector<const char*> arguments{NX_LOGGER};
        for (const std::string& word : words)
            arguments.push_back(word.c_str());
        arguments.push_back(nullptr);
        _id = ::fork();
        if (_id == 0)
        {
            ::unsetenv("QRX_LOG_LEVEL");
            for (std::string& setting : settings)
                ::putenv(setting.data());
            const rlimit none{0, 0};
            ::setrlimit(RLIMIT_CORE, &none);
            ::dup2(ends[1], STDOUT_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            ::execv(NX_LOGGER, const_cast<char* const*>(arguments.data()));
            ::_exit(127);
        }
        ::close(ends[1]);
    }
    ~Logger() { ::close(_output); }

    void Kill(int signal) { ::kill(_id, signal); }
    // The last number that it acknowledged; what it wrote is read to the end.
    int GetLastNumber()
    {
        int number = -1, last = -1;
        while (::read(_output, &number, sizeof number) == sizeof number)
            last = number;
        return last;
    }
    // How it ended. A process that hangs is killed, which then shows as its status.
    int Wait()
    {
        int status = -1;
        if (nxEventually([&] { return ::waitpid(_id, &status, WNOHANG) == _id; }))
            return status;
        Kill(SIGKILL);
        ::waitpid(_id, &status, 0);
        ADD_FAILURE() << "the process hung";
        return status;
    }

private:
    pid_t _id = -1;
    int _output = -1;
};

struct Found
{
    std::map<int, std::map<int, int>> numbers;  // by thread, how often each number stands
    int torn = 0;                               // lines without their end
    int files = 0;
    int directories = 0;
};

Found ReadLines(const std::filesystem::path& directory)
{
    Found found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
    {
        found.directories += entry.is_directory();
        if (!entry.is_regular_file())
            continue;
        ++found.files;
        const std::string text = nxReadFile(entry.path());
        std::size_t begin = 0;
        for (std::size_t end; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2)
        {
            int thread, number;
            const std::string line = text.substr(begin, end - begin);
            const std::size_t ours = line.find("] t");
            if (ours != std::string::npos && std::sscanf(line.c_str() + ours, "] t%d n%d;", &thread, &number) == 2)
                ++found.numbers[thread][number];
        }
        found.torn += begin != text.size();
    }
    return found;
}

// What a mode of the logger with devices of its own has put out, and how it ended.
class Output
{
public:
    explicit Output(const std::string& mode, const std::vector<std::string>& settings = {},
                    const std::string& rounds = "1")
    {
        const nxScratchDirectory scratch;
        const int ended = Logger(scratch.GetPath(), {mode, NX_TEST_LOG_PLUGIN, rounds}, settings).Wait();
        status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
        std::ifstream file(scratch.GetPath() / "output");
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
    }

    std::size_t Count(const std::string& text) const
    {
        const auto has = [&text](const std::string& line) { return line.find(text) != std::string::npos; };
        return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), has));
    }

    int status;
    std::vector<std::string> lines;
};

// Every number of every thread from 0 on stands exactly once.
void ExpectGapless(const Found& found)
{
    for (const auto& [thread, numbers] : found.numbers)
    {
        SCOPED_TRACE(thread);
        EXPECT_EQ(numbers.rbegin()->first + 1, static_cast<int>(numbers.size()));
        for (const auto& [number, times] : numbers)
            ASSERT_EQ(times, 1) << number;
    }
}

// What a logger that ends by itself has left.
Found LeftBy(const std::vector<std::string>& words, const std::vector<std::string>& settings = {})
{
    const nxScratchDirectory scratch;
    EXPECT_EQ(Logger(scratch.GetPath(), words, settings).Wait(), 0);
    const Found found = ReadLines(scratch.GetPath());
    EXPECT_EQ(found.torn, 0);
    ExpectGapless(found);
    return found;
}
}  // namespace

TEST(nxLogEndurance, WhatWasAcknowledgedSurvivesAKill)
{
    std::mt19937 random(static_cast<unsigned>(Rounds("NX_TEST_SEED", 1)));
    for (int round = 0, rounds = Rounds("NX_TEST_CRASHES", 100); round < rounds; ++round)
    {
        SCOPED_TRACE(round);
        const nxScratchDirectory scratch;
        Logger logger(scratch.GetPath(), {"acknowledge"});
        std::this_thread::sleep_for(std::chrono::microseconds(5'000 + random() % 40'000));
        logger.Kill(SIGKILL);
        const int last = logger.GetLastNumber();
        EXPECT_TRUE(WIFSIGNALED(logger.Wait()));
        const Found found = ReadLines(scratch.GetPath());
        EXPECT_LE(found.torn, 1);
        ExpectGapless(found);
        if (last >= 0)
        {
            ASSERT_EQ(found.numbers.size(), 1u);
            EXPECT_GE(found.numbers.begin()->second.rbegin()->first, last);
        }
    }
}

TEST(nxLogEndurance, AFatalSignalEndsTheProcessAsWithoutTheLibrary)
{
    for (const int signal : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGTERM})
    {
        SCOPED_TRACE(signal);
        const nxScratchDirectory scratch;
        Logger logger(scratch.GetPath(), {"signal", std::to_string(signal)});
        const int status = logger.Wait();
        // Sanitizers catch some of these themselves and exit.
        EXPECT_TRUE((WIFSIGNALED(status) && WTERMSIG(status) == signal) || (NX_SANITIZED && status != 0)) << status;
        const Found found = ReadLines(scratch.GetPath());
        ASSERT_EQ(found.numbers.size(), 1u);
        EXPECT_EQ(found.numbers.at(0).size(), 100u);
    }
}

TEST(nxLogEndurance, ExitWhileThreadsLogLosesNoLineInTheMiddleAndWritesNoneTwice)
{
    for (int round = 0, rounds = Rounds("NX_TEST_EXITS", 20); round < rounds; ++round)
    {
        SCOPED_TRACE(round);
        EXPECT_EQ(LeftBy({"exit"}).numbers.size(), 8u);
    }
}

TEST(nxLogEndurance, ForkWhileThreadsLogWritesNoLineTwice)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    // The address sanitizer's allocator does not survive a fork while other threads are in it.
    const char* const threads = nxUnderAddressSanitizer ? "0" : "8";
    for (int round = 0, rounds = Rounds("NX_TEST_EXITS", 20); round < rounds; ++round)
    {
        SCOPED_TRACE(round);
        Found found = LeftBy({"fork", threads}, {"ASAN_OPTIONS=detect_leaks=0"});
        EXPECT_EQ(found.numbers[200].size(), 4u) << "the parent's";
        for (int child = 100; child < 104; ++child)
            EXPECT_EQ(found.numbers[child].size(), 20u) << child;
    }
}

TEST(nxLogEndurance, RotationBySizeKeepsEveryRecordExactlyOnce)
{
    const int rotations = Rounds("NX_TEST_ROTATIONS", 50);
    const int lines = rotations * 4000 / 4 / 100 + 1;  // of four threads, of some hundred bytes, into files of 4000
    const Found found = LeftBy({"rotate", std::to_string(lines)});
    ASSERT_EQ(found.numbers.size(), 4u);
    for (const auto& [thread, numbers] : found.numbers)
        EXPECT_EQ(numbers.size(), static_cast<std::size_t>(lines)) << thread;
    EXPECT_GT(found.files, rotations / 4);  // a batch is not divided, so files may grow beyond the limit
}

TEST(nxLogEndurance, AChangeOfDateKeepsEveryRecordExactlyOnce)
{
    Found found = LeftBy({"dates", "100"}, {"QRX_LOG_RECREATE_ON_CHANGE_OF_DATE=TRUE"});
    EXPECT_EQ(found.numbers.size(), 1u);
    EXPECT_EQ(found.numbers[0].size(), 100u);
    EXPECT_GE(found.directories, 2);
}

TEST(nxLogProcess, WritesEverythingAtAnOrderlyEnd)
{
    for (const std::string mode : {"return-from-main", "exit-in-a-thread", "quick-exit"})
    {
        SCOPED_TRACE(mode);
        const Output run(mode);
        EXPECT_EQ(run.status, 0);
        const bool destructs = mode != "quick-exit";
        ASSERT_EQ(run.lines.size(), destructs ? 20'002u : 20'001u);
        EXPECT_EQ(run.lines.front().substr(0, 12), "before main ");
        EXPECT_EQ(run.lines.back().substr(0, 11) == "after main ", destructs);
        for (std::size_t number = 0; number < 20'000; ++number)
            ASSERT_EQ(run.lines[number + 1].find("row " + std::to_string(number) + " "), 0u);
    }
}

TEST(nxLogProcess, LosesNothingWhenItIsStoppedWhileItEnds)
{
    const Output run("exit-while-stopped");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.Count("row "), 20u);
}

TEST(nxLogProcess, EndsWhateverDevicesDo)
{
    const Output stalled("exit-while-stalled");
    EXPECT_EQ(stalled.status, 0);
    // The third one is with the device.
    EXPECT_EQ(stalled.Count("Log records that were not written when the process ended: 2"), 1u);
    const Output inside("exit-inside-a-device");
    EXPECT_EQ(inside.status, 0);
    EXPECT_GE(inside.Count("before main") + inside.Count("the last"), 1u);
}

TEST(nxLogProcess, WritesAFatalRecordBeforeTheStatementIsOver)
{
    for (int round = 0, rounds = Rounds("NX_TEST_EXITS", 20); round < rounds; ++round)
        ASSERT_EQ(Output("abort-after-a-fatal-record").Count("the last words"), 1u) << round;
}

TEST(nxLogProcess, EndsWithItsLastThread)
{
    if (NX_SANITIZED)
        GTEST_SKIP() << "sanitizers have threads of their own";
    const Output run("end-by-the-last-thread");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.Count("the worker's last") + run.Count("after main"), 2u);
}

TEST(nxLogProcess, HasAThreadThatDoesNotRunLikeWhoeverReportsFirst)
{
    EXPECT_EQ(Output("pinned").status, 0);
    EXPECT_EQ(Output("fault-in-a-device").status, 77) << "the handler of the process is asked";
}

TEST(nxLogProcess, GivesBackWhatThreadsHadWithoutAKeyThatTellsOfTheirEnd) { EXPECT_EQ(Output("no-keys").status, 0); }

TEST(nxLogProcess, WritesWithLittleMemoryLeft)
{
    if (NX_SANITIZED)
        GTEST_SKIP() << "sanitizers need more";
    for (const char* const kibibytes : {"1024", "1536", "2048", "4096"})
    {
        SCOPED_TRACE(kibibytes);
        Found found = LeftBy({"little-memory", kibibytes});
        EXPECT_EQ(found.numbers[0].size(), 1'000u);
    }
}

TEST(nxLogProcess, DoesNotWriteTheParentsQueueInTheChild)
{
    if (nxUnderAddressSanitizer)
        GTEST_SKIP() << nxNoForkAmongThreads;
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    const Output run("fork-with-a-full-queue");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.Count("row"), 0u);
    EXPECT_EQ(run.Count("only this"), 1u);
}

TEST(nxLogProcess, NeedsNothingOfAPluginThatIsUnloaded)
{
    const auto rounds = static_cast<std::size_t>(Rounds("NX_TEST_EXITS", 20));
    Output run("unload-a-plugin", {}, std::to_string(rounds));
    EXPECT_EQ(run.status, 0);
    for (const char* text : {"loaded plugin/load", "literal text of the plug-in plugin/report",
                             "record of the plug-in plugin/record", "unloaded plugin/unload"})
        EXPECT_EQ(std::erase(run.lines, text), rounds) << text;
    // What is left are the lines of the threads that logged meanwhile.
    const std::set<std::string> different(run.lines.begin(), run.lines.end());
    EXPECT_GE(different.size(), 8u);
    EXPECT_EQ(different.size(), run.lines.size());
}

TEST(nxLogProcess, KeepsRecordsForTheFirstDevice)
{
    const Output late("wait-for-a-device");
    EXPECT_EQ(late.status, 0);
    EXPECT_EQ(late.Count("before main"), 1u);
    EXPECT_EQ(late.Count("kept"), 1u);
}

TEST(nxLogProcess, TakesItsLevelFromTheEnvironment)
{
    const std::tuple<const char*, std::size_t, std::size_t> rows[] = {
        {"QRX_LOG_LEVEL=WRN", 0, 1}, {"QRX_LOG_LEVEL=FTL", 0, 0}, {"QRX_LOG_LEVEL=NO_CHANGE", 1, 1}};
    for (const auto& [environment, info, warning] : rows)
    {
        SCOPED_TRACE(environment);
        const Output run("levels", {environment});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.Count("info"), info);
        EXPECT_EQ(run.Count("before main"), info);
        EXPECT_EQ(run.Count("warning"), warning);
    }
}
