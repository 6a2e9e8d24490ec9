// System calls that fail, the nth of every kind for every n, once and from there on, in everything that the library
// does with the system: nothing crashes or hangs, a line of the log is in the file or counted as lost, and once the
// system works again so does the library.
//
// Every fault has a process of its own. NX_TEST_FAULTS sets how many there are (300), NX_TEST_SEED which errors they are.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "core/nxCore.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxPrivateMemory.h"
#include "tests/support/nxSystemCallFault.h"

// Under the thread sanitizer a process with threads would take a second to end, which is most of the time here.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() { return "atexit_sleep_ms=0"; }

namespace
{
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

unsigned long Setting(const char* name, unsigned long usual)
{
    const char* const text = std::getenv(name);
    return text != nullptr ? std::strtoul(text, nullptr, 10) : usual;
}

// What a part of the library does with the system.
class Scenario
{
public:
    virtual ~Scenario() = default;
    /// While a system call fails. What it makes of that is its own business, as long as it comes back.
    virtual void Run() = 0;
    /// Afterwards: everything works.
    virtual void Check() = 0;
};

constexpr int LinesWhileFailing = 60;
constexpr int LinesAfterwards = 20;

void LogLines(int first, int count)
{
    for (int i = first; i < first + count; ++i)
    {
        if (i % 10 == 0)
            NX_LOG(NX_LOG_LEVEL_WARNING) << "line " << i << ";";
        else
            NX_LOG(NX_LOG_LEVEL_INFO) << "line " << i << ";";
    }
}

// How often each number stands in the log files below the working directory.
std::map<int, int> LinesInFiles()
{
    std::map<int, int> found;
    std::error_code none;  // there may be no directory
    for (const auto& entry : fs::recursive_directory_iterator("log", none))
    {
        std::ifstream file(entry.path(), std::ios::binary);
        for (std::string line; std::getline(file, line);)
        {
            const std::size_t at = line.find("] line ");
            if (at == std::string::npos)
                continue;
            EXPECT_EQ(line.back(), '\r') << "a torn line: " << line;
            ++found[std::atoi(line.c_str() + at + 7)];
        }
    }
    return found;
}

// The log file: made with all its directories, begun anew by size and by request, written at once and later.
class LogFile : public Scenario
{
public:
    void Run() override
    {
        nxLogSetUp(nxValueWrapper<unsigned long long>(1'000));
        LogLines(0, LinesWhileFailing / 2);
        nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(1.0));
        nxFileLogDevice::GetInstance().CloseAndReopenLogFile();
        LogLines(LinesWhileFailing / 2, LinesWhileFailing / 2);
        nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(1.0));
        nxLogManager::GetInstance().FlushDevices();
    }
    void Check() override
    {
        LogLines(LinesWhileFailing, LinesAfterwards);
        nxFileLogDevice::GetInstance().Destroy();
        const nxLogStatistics statistics = nxLogManager::GetInstance().GetStatistics();
        const std::uint64_t counted =
            nxFileLogDevice::GetInstance().GetLostLines() + statistics.dropped + statistics.unheard;
        const std::map<int, int> found = LinesInFiles();
        for (const auto& [number, times] : found)
            EXPECT_EQ(times, 1) << "line " << number;
        EXPECT_GE(found.size() + counted, static_cast<std::size_t>(LinesWhileFailing + LinesAfterwards));
        EXPECT_TRUE(nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>()));
        LogLines(1'000, 1);
        nxFileLogDevice::GetInstance().Destroy();
        EXPECT_EQ(LinesInFiles().count(1'000), 1U);
    }
};

// The log ended and started again as a whole.
class LogManager : public Scenario
{
public:
    void Run() override
    {
        nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>());
        LogLines(0, LinesWhileFailing);
        nxLogManager::GetInstance().Destroy();
    }
    void Check() override
    {
        EXPECT_TRUE(nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>()));
        LogLines(1'000, 1);
        nxLogManager::GetInstance().Destroy();
        EXPECT_EQ(LinesInFiles().count(1'000), 1U);
    }
};

template <class First, class... Arguments>
class NamedObjects : public Scenario
{
public:
    explicit NamedObjects(Arguments... arguments) : _arguments(arguments...) {}

    void Run() override
    {
        std::apply([&](auto... arguments) { _object.emplace("name", arguments...); }, _arguments);
        _TakeAndGive(*_object);
        std::apply([&](auto... arguments) { First another("another", arguments...); }, _arguments);
    }
    void Check() override
    {
        for (const char* const name : {"name", "another", "third"})
        {
            std::apply(
                [&](auto... arguments)
                {
                    First object(name, arguments...);
                    EXPECT_FALSE(object.IsNull()) << name;
                    _TakeAndGive(object);
                },
                _arguments);
        }
        _TakeAndGive(*_object);
    }

private:
    static void _TakeAndGive(nxWindowsMutex& mutex)
    {
        mutex.Lock();
        mutex.Unlock();
    }
    static void _TakeAndGive(nxWindowsSemaphore& semaphore)
    {
        EXPECT_TRUE(semaphore.TimedWait(0).IsOK());
        semaphore.Post();
    }

    std::tuple<Arguments...> _arguments;
    std::optional<First> _object;
};

class Threads : public Scenario
{
    class Worker : public nxThread
    {
        nxErrorEnum Run() override { return nxErrorEnum(); }
    };

public:
    void Run() override
    {
        if (_worker.Create().IsOK())
            _worker.Wait();
    }
    void Check() override
    {
        EXPECT_EQ(_worker.Wait(), NX_ERR_THR_NOT_RUNNING);
        EXPECT_TRUE(_worker.Create().IsOK());
        EXPECT_TRUE(_worker.Wait().IsOK());
    }

private:
    Worker _worker;
};

class SharedLocks : public Scenario
{
public:
    void Run() override
    {
        static_cast<void>(_mutex.InitialiseAsShared(true));
        static_cast<void>(_condition.InitialiseAsShared());
        static_cast<void>(_semaphore.InitialiseAsShared(1));
        _semaphore.TimedWait(0.001);
        nxThreadSpecificMemoryBuffer(64).GrowBuffer();
    }
    void Check() override
    {
        EXPECT_TRUE(_mutex.InitialiseAsShared(true).IsOK());
        EXPECT_TRUE(_condition.InitialiseAsShared().IsOK());
        EXPECT_TRUE(_semaphore.InitialiseAsShared(1).IsOK());
        EXPECT_TRUE(_semaphore.Wait().IsOK());
    }

private:
    nxMutex _mutex;
    nxConditionRaw _condition;
    nxSemaphore _semaphore{1};
};

class CommandLine : public Scenario
{
public:
    void Run() override
    {
        static char program[] = "program", option[] = "-price", value[] = "12.50", setting[] = "NX_SET=yes";
        static char* arguments[] = {program, option, value, nullptr};
        static char* environment[] = {setting, nullptr};
        nxCmdLineArgs::GetInstance().Initialise(arguments, environment);
        nxCmdLineArgs::GetInstance().SetEnvValue("NX_SET_WHILE_FAILING", "yes");
        nxCmdLineArgs::GetInstance().Dump(NX_LOG_LEVEL_INFO);
    }
    void Check() override
    {
        const nxCmdLineArgs& options = nxCmdLineArgs::GetInstance();
        EXPECT_EQ(options.GetArgValue("price"), "12.50");
        EXPECT_EQ(options.GetEnvValue("NX_SET"), "yes");
        EXPECT_TRUE(nxCmdLineArgs::GetInstance().SetEnvValue("NX_SET", "again"));
        EXPECT_EQ(options.GetEnvValue("NX_SET"), "again");
    }
};

class Application : public Scenario
{
public:
    void Run() override { EXPECT_FALSE(_Describe().empty()); }
    void Check() override { EXPECT_FALSE(_Describe().empty()); }

private:
    static std::string _Describe()
    {
        nxApplicationData::SetApplicationName("faults");
        return nxApplicationData::GetHostName() + nxApplicationData::GetIPAddress() +
               nxApplicationData::GetStartTime().GetAsString();
    }
};

class TickTableFile : public Scenario
{
public:
    TickTableFile()
    {
        std::ofstream("tables.csv") << "name,band,upper_bound,increment\nMINE,1,10,0.01\nMINE,2,,0.05\n";
    }
    void Run() override
    {
        nxCustomVariableTickTable::Tables tables;
        std::string reason;
        const nxErrorEnum error = nxCustomVariableTickTable::ReadFile("tables.csv", tables, reason);
        EXPECT_EQ(error.IsOK(), tables.size() == 1);
        EXPECT_EQ(error.IsOK(), reason.empty());
    }
    void Check() override
    {
        nxCustomVariableTickTable::Tables tables;
        std::string reason;
        EXPECT_TRUE(nxCustomVariableTickTable::ReadFile("tables.csv", tables, reason).IsOK()) << reason;
        EXPECT_EQ(tables.size(), 1U);
    }
};

// The clock's decision how to read the time, and the zones.
class Time : public Scenario
{
public:
    void Run() override { EXPECT_NO_FATAL_FAILURE(_Print()); }
    void Check() override
    {
        _Print();
        EXPECT_LE(std::abs(nxTimeStamp::Now().GetSeconds() - std::time(nullptr)), 2);
    }

private:
    // Right whatever fails, since the C library answers where no table can be made.
    static void _Print()
    {
        for (const char* const zone : {"Europe/London", "UTC0", "CET-1CEST,M3.5.0,M10.5.0/3"})
        {
            setenv("TZ", zone, 1);
            tzset();
            const std::time_t second = 1'689'000'000;
            std::tm fields{};
            localtime_r(&second, &fields);
            char hour[3];
            std::strftime(hour, sizeof hour, "%H", &fields);
            EXPECT_EQ(nxTimeStamp(second, 0).GetAsString().substr(8, 2), hour) << zone;
            EXPECT_EQ(nxTimeStamp(second, 0).GetAsDateTime().GetTime().GetHours(),
                      static_cast<unsigned>(fields.tm_hour));
        }
    }
};

template <class Made, class... Arguments>
std::function<std::unique_ptr<Scenario>()> Makes(Arguments... arguments)
{
    return [=] { return std::make_unique<Made>(arguments...); };
}

const struct
{
    const char* name;
    std::function<std::unique_ptr<Scenario>()> make;
} scenarios[] = {
    {"log file", Makes<LogFile>()},
    {"log manager", Makes<LogManager>()},
    {"named mutex", Makes<NamedObjects<nxWindowsMutex>>()},
    {"named semaphore", Makes<NamedObjects<nxWindowsSemaphore, unsigned, unsigned>>(1U, 1U)},
    {"threads", Makes<Threads>()},
    {"shared locks", Makes<SharedLocks>()},
    {"command line", Makes<CommandLine>()},
    {"application", Makes<Application>()},
    {"tick table file", Makes<TickTableFile>()},
    {"time", Makes<Time>()},
};

// Every function that reaches the system for files, memory, locks and threads.
constexpr const char* functions[] = {"open",      "openat",          "read",  "write",         "fstat", "mkdir", "mmap",
                                     "ftruncate", "posix_fallocate", "fcntl", "pthread_create"};
constexpr int errors[] = {ENOSPC, EIO, EFBIG, EMFILE, EACCES, EROFS, EINTR};

struct Outcome
{
    std::atomic<unsigned> hits{0};
    std::atomic<long> milliseconds{0};
};

// Executes the scenario in a process of its own, in an empty directory.
bool Survives(std::size_t scenario, const char* function, int error, const nxSystemCallFault::Options& options,
              Outcome& outcome)
{
    outcome.hits = 0;
    const fs::path directory = fs::temp_directory_path() / ("nxfaults" + std::to_string(getpid()));
    fs::remove_all(directory);
    fs::create_directory(directory);
    nxChildProcess child(
        [&]
        {
            fs::current_path(directory);
            // What the library complains of there is wanted only when something else goes wrong.
            dup2(open("errors", O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
            setenv("QRX_LOG_DIRECTORY", "log/in/several", 1);
            nxPrivateMemory::Mount();  // where it is not allowed, the table is there already and little can fail
            const auto made = scenarios[scenario].make();
            const Clock::time_point start = Clock::now();
            {
                const nxSystemCallFault fault(function, error, options);
                made->Run();
                outcome.hits = fault.GetHits();
            }
            made->Check();
            const long milliseconds =
                std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
            outcome.milliseconds = std::max(outcome.milliseconds.load(), milliseconds);
        });
    const bool survived = child.Succeeds();
    if (!survived)
    {
        std::ifstream complaints(directory / "errors");
        std::printf("%s\n", std::string(std::istreambuf_iterator<char>(complaints), {}).c_str());
    }
    fs::remove_all(directory);
    return survived;
}
}  // namespace

TEST(systemCallFaults, NothingCrashesHangsOrGetsLostUncounted)
{
    if (!nxInNewProcess())
        return;
    const unsigned long wanted = Setting("NX_TEST_FAULTS", 300);
    const auto seed = static_cast<unsigned>(Setting("NX_TEST_SEED", 1));
    std::mt19937 random(seed);
    nxSharedMemory<Outcome> outcome;
    std::set<std::pair<std::size_t, const char*>> unused;
    unsigned long faults = 0;
    for (unsigned pass = 0; faults < wanted; ++pass)
    {
        for (std::size_t scenario = 0; scenario < std::size(scenarios); ++scenario)
        {
            for (const char* const function : functions)
            {
                bool reached = unused.count({scenario, function}) == 0;
                for (unsigned call = 0; reached && faults < wanted; ++call)
                {
                    int error = errors[random() % std::size(errors)];
                    const bool lasting = (pass + call) % 2 != 0;
                    if (lasting && error == EINTR && function == std::string("read"))
                        error = EIO;  // the C++ library's own streams would read for ever
                    SCOPED_TRACE(std::string(scenarios[scenario].name) + ": " + function + ", errno " +
                                 std::to_string(error) + ", call " + std::to_string(call) +
                                 (lasting ? " and all later ones" : "") + ", seed " + std::to_string(seed));
                    ASSERT_TRUE(Survives(scenario, function, error,
                                         {.skip = call, .times = lasting ? UINT_MAX : 1, .anyThread = true}, *outcome));
                    reached = outcome->hits != 0;
                    faults += reached;
                    if (!reached && call == 0)
                        unused.insert({scenario, function});
                }
            }
        }
    }
    std::printf("   %lu system calls failed in %zu scenarios: the longest was over after %ld ms\n", faults,
                std::size(scenarios), outcome->milliseconds.load());
}
