// SPDX-License-Identifier: Apache-2.0
// The log in processes that are killed, exit, fork and rotate. Each test's number of rounds comes from
// the environment, so that the endurance script can ask for more.

#include "tests/support/nxSystemTest.h"

namespace
{
using Texts = std::vector<std::string>;

int Rounds(const char* name, int shortForm)
{
    const char* const text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : shortForm;
}

struct Found
{
    std::map<int, std::map<int, int>> numbers;  // by thread, how often each number is there
    int torn = 0;                               // lines without their end
    int files = 0;
};

Found ReadLines(const std::filesystem::path& directory)
{
    Found found;
    std::error_code none;  // there is no directory when the process was killed early
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory, none))
    {
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

// A logger at work on a directory of its own, with its standard output in a file there.
class Logger
{
public:
    explicit Logger(const Texts& words, Texts settings = {})
    {
        settings.push_back("QRX_LOG_DIRECTORY=" + (_scratch.GetPath() / "log").string());
        std::vector<const char*> arguments{NX_LOGGER};
        for (const std::string& word : words)
            arguments.push_back(word.c_str());
        arguments.push_back(nullptr);
        _id = fork();
        if (_id != 0)
            return;
        unsetenv("QRX_LOG_LEVEL");
        for (std::string& setting : settings)
            putenv(setting.data());
        const rlimit none{0, 0};
        setrlimit(RLIMIT_CORE, &none);
        dup2(open(_GetOutputFile().c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600), STDOUT_FILENO);
        execv(NX_LOGGER, const_cast<char* const*>(arguments.data()));
        _exit(127);
    }

    void Kill(int signal = SIGKILL) { kill(_id, signal); }

    // Its exit code, or the signal that ended it, as a negative number. A process that hangs is killed.
    int Wait()
    {
        int status = -1;
        if (!nxEventually([&] { return waitpid(_id, &status, WNOHANG) == _id; }))
        {
            Kill();
            waitpid(_id, &status, 0);
            ADD_FAILURE() << "the process hung";
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    std::string GetOutput() const { return nxReadFile(_GetOutputFile()); }

    // What is in its log files: every number of every thread from 0 on is there exactly once.
    Found GetFound() const
    {
        Found found = ReadLines(_scratch.GetPath() / "log");
        for (const auto& [thread, numbers] : found.numbers)
        {
            SCOPED_TRACE(thread);
            EXPECT_EQ(numbers.rbegin()->first + 1, static_cast<int>(numbers.size()));
            for (const auto& [number, times] : numbers)
                EXPECT_EQ(times, 1) << number;
        }
        return found;
    }

private:
    std::filesystem::path _GetOutputFile() const { return _scratch.GetPath() / "output"; }

    const nxScratchDirectory _scratch;
    pid_t _id = -1;
};

// What a logger with the log's own file device has left when it has ended by itself.
Found LeftBy(const Texts& words, const Texts& settings = {})
{
    Logger logger(words, settings);
    EXPECT_EQ(logger.Wait(), 0);
    Found found = logger.GetFound();
    EXPECT_EQ(found.torn, 0);
    return found;
}

// What a logger with devices of its own has put out when it has ended with `status`.
Texts OutputOf(const Texts& words, int status, const Texts& settings = {})
{
    Logger logger(words, settings);
    EXPECT_EQ(logger.Wait(), status);
    std::istringstream output(logger.GetOutput());
    Texts lines;
    for (std::string line; std::getline(output, line);)
        lines.push_back(line);
    return lines;
}
}  // namespace

// Whatever the signal: the library installs no handler.
TEST(nxLogEndurance, WhatWasAcknowledgedSurvivesAKill)
{
    // Sanitizers catch the others themselves.
    const std::vector<int> signals =
        NX_SANITIZED ? std::vector{SIGKILL, SIGTERM} : std::vector{SIGKILL, SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGTERM};
    std::mt19937 random(static_cast<unsigned>(Rounds("NX_TEST_SEED", 1)));
    for (int round = 0, rounds = Rounds("NX_TEST_CRASHES", 100); round < rounds; ++round)
    {
        const int signal = signals[static_cast<std::size_t>(round) % signals.size()];
        SCOPED_TRACE(testing::Message() << "round " << round << ", signal " << signal);
        Logger logger({"acknowledge"});
        std::this_thread::sleep_for(std::chrono::microseconds(5'000 + random() % 40'000));
        logger.Kill(signal);
        EXPECT_EQ(logger.Wait(), -signal);
        const Found found = logger.GetFound();
        EXPECT_LE(found.torn, 1);
        const std::string acknowledged = logger.GetOutput();
        if (acknowledged.empty())
            continue;
        ASSERT_EQ(found.numbers.size(), 1u);
        EXPECT_GE(found.numbers.at(0).rbegin()->first, std::stoi(acknowledged.substr(acknowledged.rfind(' ') + 1)));
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

TEST(nxLogProcess, WritesEverythingAtAnOrderlyEnd)
{
    for (const std::string mode : {"return-from-main", "exit-in-a-thread", "quick-exit"})
    {
        SCOPED_TRACE(mode);
        const Texts lines = OutputOf({mode}, 0);
        const bool destructs = mode != "quick-exit";
        ASSERT_EQ(lines.size(), destructs ? 20'002u : 20'001u);
        EXPECT_TRUE(lines.front().starts_with("before main "));
        EXPECT_EQ(lines.back().starts_with("after main "), destructs);
        for (std::size_t number = 0; number < 20'000; ++number)
            ASSERT_TRUE(lines[number + 1].starts_with("row " + std::to_string(number) + " "));
    }
}

TEST(nxLogProcess, EndsAndWritesWhateverBecomesOfIt)
{
    const char* const ownThreads = NX_SANITIZED ? "sanitizers have threads of their own" : nullptr;
    const struct
    {
        const char* mode;
        int status;
        std::vector<std::pair<const char*, std::ptrdiff_t>> lines = {};  // that hold this text
        const char* leftOut = nullptr;
        Texts settings = {};
    } rows[] = {
        {"exit-while-stopped", 0, {{"row ", 20}}},
        {"exit-while-stalled", 0, {{"Log records that were not written when the process ended: 2", 1}}},
        {"exit-inside-a-device", 0, {{"before main", 1}}},
        {"end-by-the-last-thread", 0, {{"the worker's last", 1}, {"after main", 1}}, ownThreads},
        {"pinned", 0},              // its thread does not run like the one that reports first
        {"fault-in-a-device", 77},  // the handler of the process is asked
        {"no-keys", 0},
        {"return-from-main", 0, {{"row", 0}, {"before main", 0}}, nullptr, {"QRX_LOG_LEVEL=WRN"}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.mode);
        if (row.leftOut != nullptr)
            continue;
        const Texts lines = OutputOf({row.mode}, row.status, row.settings);
        for (const auto& [text, count] : row.lines)
            EXPECT_EQ(std::ranges::count_if(lines, [&text = text](const std::string& line)
                                            { return line.find(text) != std::string::npos; }),
                      count)
                << text;
    }
}

TEST(nxLogProcess, WritesAFatalRecordBeforeTheStatementIsOver)
{
    constexpr int tookTooLong = 6;
    const int rounds = Rounds("NX_TEST_EXITS", 20);
    int inTime = 0;
    for (int round = 0; inTime < rounds && round < 10 * rounds; ++round)
    {
        Logger logger({"abort-after-a-fatal-record"});
        const int status = logger.Wait();
        if (status == tookTooLong)
            continue;
        ASSERT_EQ(status, -SIGABRT);
        ASSERT_NE(logger.GetOutput().find("the last words"), std::string::npos) << round;
        ++inTime;
    }
    EXPECT_GT(inTime, 0);
}

TEST(nxLogProcess, WritesWithLittleMemoryLeft)
{
    if (NX_SANITIZED)
        GTEST_SKIP() << "sanitizers need more";
    for (const char* const kibibytes : {"1024", "1536", "2048", "4096"})
    {
        SCOPED_TRACE(kibibytes);
        Logger logger({"little-memory", kibibytes}, {"QRX_LOG_FILE_BUFF_SIZE_MB=1024"});
        EXPECT_EQ(logger.Wait(), 0);
        EXPECT_EQ(logger.GetFound().numbers[0].size(), 1'000u);
        EXPECT_EQ(logger.GetOutput(), "Failed to set a buffer for the log file, performance may be degraded.\n");
    }
}

TEST(nxLogProcess, NeedsNothingOfAPluginThatIsUnloaded)
{
    const auto rounds = static_cast<std::size_t>(Rounds("NX_TEST_EXITS", 20));
    Texts lines = OutputOf({"unload-a-plugin", NX_TEST_LOG_PLUGIN, std::to_string(rounds)}, 0);
    for (const char* text : {"loaded plugin/load", "literal text of the plug-in plugin/report",
                             "record of the plug-in plugin/record", "unloaded plugin/unload"})
        EXPECT_EQ(std::erase(lines, text), rounds) << text;
    // What is left are the lines of the threads that logged meanwhile.
    const std::set<std::string> different(lines.begin(), lines.end());
    EXPECT_GE(different.size(), 8u);
    EXPECT_EQ(different.size(), lines.size());
}
