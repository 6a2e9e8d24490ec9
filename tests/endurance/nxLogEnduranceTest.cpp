// SPDX-License-Identifier: Apache-2.0
// The log in processes that are killed, exit, fork, rotate and remove files. Each test's number of rounds comes from
// the environment, so that the endurance script can ask for more.

#include <fcntl.h>
#include <algorithm>

#include "tests/support/nxLogFolderTest.h"

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

// Every number of every thread from 0 on is there exactly once.
void ExpectEachOnce(const Found& found)
{
    for (const auto& [thread, numbers] : found.numbers)
    {
        SCOPED_TRACE(thread);
        EXPECT_EQ(numbers.rbegin()->first + 1, static_cast<int>(numbers.size()));
        for (const auto& [number, times] : numbers)
            EXPECT_EQ(times, 1) << number;
    }
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

    // What is in its log files.
    Found GetFound() const
    {
        const Found found = ReadLines(_scratch.GetPath() / "log");
        ExpectEachOnce(found);
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
// A log directory that is kept small by the library or by logrotate, while processes write, rotate and are killed.
class nxLogFolder : public nxLogFolderTest
{
protected:
    static void LogNumbers(int thread, int first, int count)
    {
        for (int number = first; number < first + count; ++number)
            NX_LOG(NX_LOG_LEVEL_INFO) << "t" << thread << " n" << number << "; some text to fill the line with";
        WaitUntilWritten();
    }

    // All lines, those of compressed files too.
    Found Read() const
    {
        const std::string expand = "find " + GetDirectory().string() + " -name '*.gz' -size +4c -exec gzip -df {} +";
        EXPECT_EQ(std::system(expand.c_str()), 0);
        Found found = ReadLines(GetDirectory());
        ExpectEachOnce(found);
        return found;
    }
};
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

// The recipes are those of the page for operators.
TEST_F(nxLogFolder, LogrotateLosesNothing)
{
    if (!std::filesystem::exists("/usr/sbin/logrotate"))
        GTEST_SKIP() << "logrotate is not installed";
    const std::string page = nxReadFile(NX_OPERATING_PAGE), fence = "```logrotate\n", place = "/var/log/orders";
    std::size_t begin = 0;
    for (const bool renames : {true, false})
    {
        SCOPED_TRACE(renames);
        begin = page.find(fence, begin) + fence.size();
        std::string recipe = page.substr(begin, page.find("```", begin) - begin);
        for (std::size_t at; (at = recipe.find(place)) != std::string::npos;)
            recipe.replace(at, place.size(), GetDirectory());
        nxWriteFile(GetRoot() / "conf", recipe);
        std::filesystem::permissions(GetRoot() / "conf", std::filesystem::perms::owner_read);
        std::filesystem::remove_all(GetDirectory());
        Create({});
        LogNumbers(0, 0, 1'000);
        Device().Flush();
        std::atomic<bool> done{false};
        int number = 1'000;
        std::thread meanwhile(
            [&]
            {
                for (; renames && !done; number += 10, usleep(1'000))
                    LogNumbers(0, number, 10);
            });
        const std::string rotate = "/usr/sbin/logrotate -f -s " + (GetRoot() / "state").string() + " ";
        EXPECT_EQ(std::system((rotate + (GetRoot() / "conf").string()).c_str()), 0) << GetErrors();
        done = true;
        meanwhile.join();
        LogNumbers(0, number, 1'000);
        Device().Destroy();
        EXPECT_EQ(
            FindFiles([](const std::filesystem::path& path) { return path.string().ends_with(".log.1.gz"); }).size(),
            1U);
        EXPECT_EQ(static_cast<int>(Read().numbers[0].size()), number + 1'000);
    }
}

TEST_F(nxLogFolder, ProcessesThatRotateAtOnceKeepTheLimitAndTheirFiles)
{
    constexpr std::size_t limit = 6;
    const int lines = Rounds("NX_TEST_ROTATIONS", 50) * 40;  // in files of 4000 bytes
    {
        std::deque<nxChildProcess> children;
        for (int child = 0; child < 4; ++child)
            children.emplace_back(
                [child, lines]
                {
                    Create({limit, 0, 0, child == 0 ? "gzip" : ""}, 4'000);
                    for (int number = 0; number < lines; number += 20)
                        LogNumbers(child, number, 20);
                    ASSERT_TRUE(std::filesystem::exists(Device().GetFileName()));
                    Device().Destroy();
                });
        for (nxChildProcess& child : children)
            EXPECT_TRUE(child.Succeeds());
    }
    EXPECT_EQ(GetErrors().find("removed"), std::string::npos) << GetErrors();
    Create({limit, 0, 0, ""});
    EXPECT_TRUE(nxEventually([&] { return CountFiles() <= limit; }));
}

TEST_F(nxLogFolder, KillsDuringCompressionLoseNoRecord)
{
    // Every other compressor is killed when it has written a part.
    const std::string compressor = MakeCompressor(
        "[ $(($$ % 2)) = 0 ] && exec /usr/bin/gzip \"$@\"\nprintf half > \"$2.gz\"\n"
        "touch -d '1 hour ago' \"$2.gz\"\nkill -9 $$\n");
    const int rounds = Rounds("NX_TEST_COMPRESSIONS", 10);
    std::mt19937 random(static_cast<unsigned>(Rounds("NX_TEST_SEED", 1)));
    std::vector<int> written;
    for (int round = 0; round < rounds; ++round)
    {
        const nxStage stage;
        nxChildProcess child(
            [&]
            {
                Create({0, 0, 0, compressor});
                for (int number = 0;; Device().CloseAndReopenLogFile())
                {
                    LogNumbers(round, number, 20);
                    Device().Flush();
                    const_cast<nxStage&>(stage).Reach(number += 20);
                }
            });
        stage.WaitFor(100);
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 20));
        child.Kill();
        written.push_back(stage.Get());
    }
    // A compressor that was started just before the last kill may be at work still, or about to begin. It holds the claim on
    // its file, without which Read() would take the compressed half for the whole.
    const auto isClaimed = [](const std::filesystem::path& path)
    {
        struct flock lock
        {
        };
        lock.l_type = F_WRLCK;
        const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
        const bool isFree = file < 0 || (fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type == F_UNLCK);
        static_cast<void>(close(file));
        return !isFree;
    };
    ASSERT_TRUE(nxEventually([&] { return FindFiles(isClaimed).empty(); }));
    Found found = Read();
    for (int round = 0; round < rounds; ++round)
        EXPECT_GE(static_cast<int>(found.numbers[round].size()), written[static_cast<std::size_t>(round)]) << round;
}

// While a thousand files are removed the log goes on. The longest time that it took is printed.
TEST_F(nxLogFolder, GoesOnInADirectoryOfManyFiles)
{
    const int count = Rounds("NX_TEST_SMALL_FILES", 600);
    for (int i = 1; i <= count; ++i)
        Make("01Mar2024/orders_090703_1_" + std::to_string(i) + ".log.gz", 1, 2);
    Create({100, 0, 0, ""});
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    Clock::duration longest{};
    int number = 0;
    const std::size_t left = static_cast<std::size_t>(std::max(100, count - 1'000));
    for (std::size_t looks = 0; looks % 1'000 != 0 || CountFiles() > left; ++looks, number += 100)
    {
        const Clock::time_point before = Clock::now();
        LogNumbers(0, number, 100);
        longest = std::max(longest, Clock::now() - before);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    using Seconds = std::chrono::duration<double>;
    std::printf("%zu of %d files are left after %.1f s; a hundred records were written in %.3f s at most\n", left,
                count, Seconds(Clock::now() - begin).count(), Seconds(longest).count());
    Device().Destroy();
    EXPECT_EQ(static_cast<int>(Read().numbers[0].size()), number);
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
            EXPECT_EQ(
                std::count_if(lines.begin(), lines.end(),
                              [&text = text](const std::string& line) { return line.find(text) != std::string::npos; }),
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
        Logger logger({round % 2 == 0 ? "abort-after-a-fatal-record" : "end-by-an-exception"});
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
