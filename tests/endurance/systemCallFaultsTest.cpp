// SPDX-License-Identifier: Apache-2.0
// System calls that fail, the nth of every kind for every n, once and from there on, in everything that the library
// does with the system: nothing crashes or hangs, a line of the log is in the file or counted as lost, and once the
// system works again so does the library.
//
// Every fault has a process of its own. NX_TEST_FAULTS sets how many there are (300), NX_TEST_SEED which errors they are.

#include <climits>

#include "core/nxCore.h"
#include "tests/support/nxPrivateMemory.h"
#include "tests/support/nxRandomTest.h"
#include "tests/support/nxSystemTest.h"

// Under the thread sanitizer a process with threads would take a second to end, which is most of the time here.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() { return "atexit_sleep_ms=0"; }

namespace
{
namespace fs = std::filesystem;

constexpr int LinesWhileFailing = 60;
constexpr int LinesAfterwards = 20;

void LogLines(int first, int count)
{
    for (int i = first; i < first + count; ++i)
        NX_LOG(i % 10 == 0 ? NX_LOG_LEVEL_WARNING : NX_LOG_LEVEL_INFO) << "line " << i << ";";
}

// How often each number is in the log files below the working directory.
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

// Below are the parts of the library that have to do with the system. Each is called twice in a process of its own: while
// a system call fails, when it may make of that what it likes as long as it comes back, and afterwards, when everything
// works.

// The log file: made with all its directories, started again by size and by request, written at once and later.
void LogFile(bool fails)
{
    nxLogManager& manager = nxLogManager::GetInstance();
    nxFileLogDevice& device = nxFileLogDevice::GetInstance();
    if (fails)
    {
        nxLogSetUp(nxValueWrapper<unsigned long long>(1'000));
        LogLines(0, LinesWhileFailing / 2);
        manager.WaitForWriteThreadToWriteQueueToDisk(1.0);
        device.CloseAndReopenLogFile();
        LogLines(LinesWhileFailing / 2, LinesWhileFailing / 2);
        manager.WaitForWriteThreadToWriteQueueToDisk(1.0);
        manager.FlushDevices();
        return;
    }
    LogLines(LinesWhileFailing, LinesAfterwards);
    device.Destroy();
    const nxLogStatistics statistics = manager.GetStatistics();
    const std::uint64_t counted = device.GetLostLines() + statistics.dropped + statistics.unheard;
    const std::map<int, int> found = LinesInFiles();
    for (const auto& [number, times] : found)
        EXPECT_EQ(times, 1) << "line " << number;
    EXPECT_GE(found.size() + counted, static_cast<std::size_t>(LinesWhileFailing + LinesAfterwards));
    EXPECT_TRUE(device.Create(nxValueWrapper<unsigned long long>()));
    LogLines(1'000, 1);
    device.Destroy();
    EXPECT_EQ(LinesInFiles().count(1'000), 1U);
}

// The log ended and started again as a whole.
void LogManager(bool fails)
{
    const bool created = nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>());
    EXPECT_TRUE(created || fails);
    LogLines(fails ? 0 : 1'000, fails ? LinesWhileFailing : 1);
    Manager().Destroy();
    EXPECT_TRUE(fails || LinesInFiles().count(1'000) == 1);
}

void TakeAndGive(nxWindowsMutex& mutex)
{
    EXPECT_TRUE(mutex.Lock().IsOK());
    EXPECT_TRUE(mutex.Unlock().IsOK());
}

void TakeAndGive(nxWindowsSemaphore& semaphore)
{
    EXPECT_TRUE(semaphore.TimedWait(0).IsOK());
    EXPECT_TRUE(semaphore.Post().IsOK());
}

template <class Object, class... Counts>
void NamedObjects(bool fails, Counts... counts)
{
    static const auto object = std::make_unique<Object>("name", counts...);
    TakeAndGive(*object);
    if (fails)
        Object another("another", counts...);
    for (const char* const name : {"name", "another", "third"})
    {
        if (fails)
            break;
        Object made(name, counts...);
        EXPECT_FALSE(made.IsNull()) << name;
        TakeAndGive(made);
    }
}

void TickTableFile(bool fails)
{
    nxCustomVariableTickTable::Tables tables;
    std::string reason;
    const nxErrorEnum error = nxCustomVariableTickTable::ReadFile("tables.csv", tables, reason);
    EXPECT_TRUE(error.IsOK() || fails) << reason;
    EXPECT_EQ(error.IsOK(), tables.size() == 1);
    EXPECT_EQ(error.IsOK(), reason.empty());
}

const struct
{
    const char* name;
    void (*run)(bool fails);
} scenarios[] = {
    {"log file", LogFile},
    {"log manager", LogManager},
    {"named mutex", [](bool fails) { NamedObjects<nxWindowsMutex>(fails); }},
    {"named semaphore", [](bool fails) { NamedObjects<nxWindowsSemaphore>(fails, 1U, 1U); }},
    {"tick table file", TickTableFile},
};

// Every function that reaches the system for files, memory, locks and threads.
constexpr const char* functions[] = {"open",    "openat", "read",      "write",           "fstat", "mkdir",
                                     "mkdirat", "mmap",   "ftruncate", "posix_fallocate", "fcntl", "pthread_create"};
constexpr int errors[] = {ENOSPC, EIO, EFBIG, EMFILE, EACCES, EROFS, EINTR};

// Executes the scenario in a process of its own, in an empty directory.
bool Survives(std::size_t scenario, const char* function, int error, const nxSystemCallFault::Options& options,
              std::atomic<unsigned>& hits)
{
    hits = 0;
    const nxScratchDirectory directory;
    const bool survived = nxInChild(
        [&]
        {
            fs::current_path(directory.GetPath());
            // What the library complains of there is wanted only when something else goes wrong.
            dup2(open("errors", O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
            setenv("QRX_LOG_DIRECTORY", "log/in/several", 1);
            nxWriteFile("tables.csv", "name,band,upper_bound,increment\nMINE,1,10,0.01\nMINE,2,,0.05\n");
            nxPrivateMemory::Mount();  // where it is not allowed, the table is there already and little can fail
            {
                const nxSystemCallFault fault(function, error, options);
                scenarios[scenario].run(true);
                hits = fault.GetHits();
            }
            scenarios[scenario].run(false);
        });
    if (!survived)
        std::printf("%s\n", nxReadFile(directory.GetPath() / "errors").c_str());
    return survived;
}
}  // namespace

TEST(systemCallFaults, NothingCrashesHangsOrGetsLostUncounted)
{
    if (!nxInNewProcess())
        return;
    const char* const setting = std::getenv("NX_TEST_FAULTS");
    const unsigned long wanted = setting != nullptr ? std::strtoul(setting, nullptr, 10) : 300;
    const auto seed = static_cast<unsigned>(nxRandomTest::GetSeed(1));
    std::mt19937 random(seed);
    nxSharedMemory<std::atomic<unsigned>> hits;
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
                                         {.skip = call, .times = lasting ? UINT_MAX : 1, .anyThread = true}, *hits));
                    reached = *hits != 0;
                    faults += reached;
                    if (!reached && call == 0)
                        unused.insert({scenario, function});
                }
            }
        }
    }
    std::printf("   %lu system calls failed in %zu scenarios\n", faults, std::size(scenarios));
}
