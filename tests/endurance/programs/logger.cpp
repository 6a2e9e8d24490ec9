// SPDX-License-Identifier: Apache-2.0
// A process that logs in one of several ways and ends, or is ended: logger MODE [ARGUMENT]. The directory and the other
// settings come from the environment. With the log's own file device every line of ours holds "t<thread> n<number>;";
// modes with devices of their own write what these are given to standard output.

#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSetUp.h"
#include "tests/support/nxFunctionLogDevice.h"

namespace
{
std::atomic<bool> stop{false};
std::atomic<int> logging{0};  // how many of the threads have begun

void LogLine(int thread, int number, nxEnumValue level = NX_LOG_LEVEL_INFO)
{
    NX_LOG(level) << "t" << thread << " n" << number << "; some text to fill the line with";
}

void WaitForLog() { nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(30.0); }

// An end for a process that is not killed: some hundred megabytes of lines.
constexpr int mostLines = 2'000'000;

// Logs until the process ends; writes to standard output which number is surely in the file.
int Acknowledge()
{
    for (int number = 0; number < mostLines; ++number)
    {
        LogLine(0, number, number % 7 == 0 ? NX_LOG_LEVEL_WARNING : NX_LOG_LEVEL_INFO);
        if (number % 50 != 49)
            continue;
        WaitForLog();
        nxLogManager::GetInstance().FlushDevices();
        std::string text = " ";
        text.append(std::to_string(number));
        static_cast<void>(!::write(STDOUT_FILENO, text.data(), text.size()));
    }
    return 4;
}

void LogUntilStopped(int thread)
{
    for (int number = 0; number < mostLines && !stop.load(std::memory_order_relaxed); ++number)
    {
        LogLine(thread, number);
        if (number == 0)
            ++logging;
        std::this_thread::sleep_for(std::chrono::microseconds(50));  // busy, but not more than a disk can take
    }
}

std::vector<std::thread> StartThreads(int count)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(LogUntilStopped, i);
    while (logging.load() != count)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return threads;
}

int ExitWhileThreadsLog()
{
    for (std::thread& thread : StartThreads(8))
        thread.detach();
    std::exit(0);
}

int ForkWhileThreadsLog(int threadCount)
{
    std::vector<std::thread> threads = StartThreads(threadCount);
    int failed = 0;
    for (int child = 0; child < 4; ++child)
    {
        LogLine(200, child);
        WaitForLog();
        const pid_t id = ::fork();
        if (id == 0)
        {
            ::alarm(60);
            const auto log = [child](int first, int last)
            {
                for (int number = first; number < last; ++number)
                    LogLine(100 + child, number);
            };
            std::thread(log, 0, 10).join();
            WaitForLog();  // no thread of the parent's is here to be waited for
            log(10, 20);
            std::exit(nxLogManager::GetInstance().GetStatistics().dropped == 0 ? 0 : 5);
        }
        int status = -1;
        if (::waitpid(id, &status, 0) != id || status != 0)
            ++failed;
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    return failed;
}

// Every line in many small files.
int Rotate(int count)
{
    nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>(4000));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [thread, count]
            {
                for (int number = 0; number < count; ++number)
                    LogLine(thread, number);
            });
    for (std::thread& thread : threads)
        thread.join();
    return 0;
}

void Register(std::function<void(const nxLog&)> onWrite)
{
    new nxFunctionLogDevice(std::move(onWrite));  // lives to the very end
}

// Writes every record to standard output at once, as "text source-file".
void WriteToOutput()
{
    Register(
        [](const nxLog& record)
        {
            const std::string line = record.GetText() + " " + record.GetSourceFile() + "\n";
            if (::write(STDOUT_FILENO, line.data(), line.size()) < 0)
                ::_exit(3);
        });
}

// Logs to standard output and ends in one of the orderly ways.
int LogAndEnd(const std::function<int()>& end)
{
    WriteToOutput();
    for (int number = 0; number < 20'000; ++number)
        NX_LOG(NX_LOG_LEVEL_INFO) << "row " << number;
    return end();
}

struct LogsBeforeAndAfterMain
{
    LogsBeforeAndAfterMain() { NX_LOG(NX_LOG_LEVEL_INFO) << "before main"; }
    ~LogsBeforeAndAfterMain() { NX_LOG(NX_LOG_LEVEL_INFO) << "after main"; }
};
const LogsBeforeAndAfterMain logsBeforeAndAfterMain;

int ExitWhileStalled()
{
    ::dup2(STDOUT_FILENO, STDERR_FILENO);
    Register(
        [](const nxLog&)
        {
            for (;;)
                pause();
        });
    NX_LOG(NX_LOG_LEVEL_WARNING) << "unheard";
    return 0;
}

int ExitInsideADevice()
{
    WriteToOutput();
    Register([](const nxLog&) { std::exit(0); });
    NX_LOG(NX_LOG_LEVEL_INFO) << "the last";
    for (;;)
        pause();
}

// While the end waits for the records, the whole process is stopped for longer than the log waits for a stalled device.
int ExitWhileStopped()
{
    const std::string resume = "sleep 2.6; kill -CONT " + std::to_string(::getpid());
    if (::fork() == 0)
    {
        ::execlp("sh", "sh", "-c", resume.c_str(), nullptr);
        ::_exit(127);
    }
    Register(
        [](const nxLog& record)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            if (record.GetText() == "row 5")
                std::raise(SIGSTOP);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        });
    WriteToOutput();
    for (int number = 0; number < 20; ++number)
        NX_LOG(NX_LOG_LEVEL_INFO) << "row " << number;
    return 0;
}

constexpr int tookTooLong = 6;

// The record is all that tells why the process is going to end.
int AbortAfterAFatalRecord()
{
    WriteToOutput();
    const auto start = std::chrono::steady_clock::now();
    NX_LOG(NX_LOG_LEVEL_FATAL) << "the last words";
    // The statement waits a tenth of a second at most, which a loaded machine may need for other things.
    if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(50))
        ::_exit(tookTooLong);
    std::abort();
}

// An exception that nothing catches, with a handler as the guide shows it.
int EndByAnException()
{
    std::set_terminate([] { static_cast<void>(AbortAfterAFatalRecord()); });
    throw std::runtime_error("not caught");
}

// The main thread ends first, and a worker later.
int EndByTheLastThread()
{
    WriteToOutput();
    std::thread(
        []
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            NX_LOG(NX_LOG_LEVEL_INFO) << "the worker's last";
        })
        .detach();
    ::pthread_exit(nullptr);
}

// The log's thread faults, and the process handles the signal.
int FaultInADevice()
{
    static char* const forbidden =
        static_cast<char*>(::mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    std::signal(SIGSEGV, [](int) { ::_exit(77); });
    Register([](const nxLog&) { *forbidden = 'x'; });
    NX_LOG(NX_LOG_LEVEL_WARNING) << "into the fault";
    for (;;)
        pause();
}

pid_t FindLogThread()
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
    {
        std::ifstream file(entry.path() / "comm");
        std::string name;
        std::getline(file, name);
        if (name == "nxlog")
            return static_cast<pid_t>(std::stoi(entry.path().filename()));
    }
    return 0;
}

// The first thread to report is pinned to one processor, where it leaves no time to others if the system lets it.
int ReportFirstFromAPinnedThread()
{
    cpu_set_t ofProcess;
    ::sched_getaffinity(0, sizeof ofProcess, &ofProcess);
    int one = 0;
    while (!CPU_ISSET(one, &ofProcess))
        ++one;
    cpu_set_t pinned;
    CPU_ZERO(&pinned);
    CPU_SET(one, &pinned);
    std::thread(
        [&pinned]
        {
            ::sched_setaffinity(0, sizeof pinned, &pinned);
            sched_param parameters{};
            ::sched_setscheduler(0, SCHED_BATCH, &parameters);
            parameters.sched_priority = 1;
            ::sched_setscheduler(0, SCHED_FIFO, &parameters);
            NX_LOG(NX_LOG_LEVEL_INFO) << "first";
        })
        .join();
    WaitForLog();
    const auto runs = [](const cpu_set_t& expected)
    {
        const pid_t thread = FindLogThread();
        cpu_set_t processors;
        return ::sched_getaffinity(thread, sizeof processors, &processors) == 0 && CPU_EQUAL(&processors, &expected) &&
               ::sched_getscheduler(thread) == SCHED_OTHER;
    };
    const bool isOfProcess = runs(ofProcess);
    nxLogManager& manager = nxLogManager::GetInstance();
    const unsigned wanted[]{static_cast<unsigned>(one)};
    manager.SetWriteThread(wanted);
    const bool isMoved = runs(pinned);
    manager.Destroy();  // the next one starts like that
    WriteToOutput();
    WaitForLog();
    return isOfProcess && isMoved && runs(pinned) ? 0 : 7;
}

// Other code has taken all keys by which the system tells of the end of a thread.
int UseUpAllKeys()
{
    for (pthread_key_t key; ::pthread_key_create(&key, nullptr) == 0;)
        continue;
    Register([](const nxLog&) {});
    for (int count = 0; count < 300; ++count)
        std::thread(
            []
            {
                NX_LOG(NX_LOG_LEVEL_INFO) << "one of many";
                if (nxLogManager::GetInstance().GetStatistics().bytes > (std::uint64_t{1} << 20))
                    WaitForLog();
            })
            .join();
    WaitForLog();
    WaitForLog();
    return nxLogManager::GetInstance().GetStatistics().bytes < (std::uint64_t{1} << 20) ? 0 : 9;
}

// The log gets this many kibibytes more than the process has.
int LogWithLittleMemory(int kibibytes)
{
    ::dup2(STDOUT_FILENO, STDERR_FILENO);
    std::ifstream status("/proc/self/statm");
    rlim_t pages = 0;
    status >> pages;
    const rlim_t limit = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + static_cast<rlim_t>(kibibytes) * 1024;
    const rlimit little{limit, limit};
    ::setrlimit(RLIMIT_AS, &little);
    if (!nxLogSetUp())
        return 3;
    for (int number = 0; number < 1'000; ++number)
        LogLine(0, number);
    return 0;
}

int UnloadAPlugin(const std::string& plugin, int rounds)
{
    WriteToOutput();
    std::vector<std::thread> threads = StartThreads(8);
    int failed = 0;
    for (int round = 0; round < rounds; ++round)
    {
        void* const handle = dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr)
        {
            ++failed;
            continue;
        }
        const auto report = reinterpret_cast<void (*)()>(dlsym(handle, "nxTestReport"));
        report();
        dlclose(handle);
        // Its names and literals are unmapped now, and the records perhaps not yet written.
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    return failed;
}

}  // namespace

int main(int argc, char** argv)
{
    ::alarm(600);  // whatever it waits for, and whatever became of its parent
    const std::string mode = argc > 1 ? argv[1] : "";
    const std::string argument = argc > 2 ? argv[2] : "";
    const int count = std::atoi(argument.c_str());
    const std::map<std::string, std::function<int()>> withItsOwnDevices{
        {"rotate", [&] { return Rotate(count); }},
        {"return-from-main", [] { return LogAndEnd([] { return 0; }); }},
        {"exit-in-a-thread",
         []
         {
             std::thread([] { LogAndEnd([]() -> int { std::exit(0); }); }).join();
             return 4;
         }},
        {"quick-exit", [] { return LogAndEnd([]() -> int { std::quick_exit(0); }); }},
        {"exit-while-stalled", ExitWhileStalled},
        {"exit-while-stopped", ExitWhileStopped},
        {"exit-inside-a-device", ExitInsideADevice},
        {"unload-a-plugin", [&] { return UnloadAPlugin(argument, std::atoi(argv[3])); }},
        {"abort-after-a-fatal-record", AbortAfterAFatalRecord},
        {"end-by-an-exception", EndByAnException},
        {"end-by-the-last-thread", EndByTheLastThread},
        {"fault-in-a-device", FaultInADevice},
        {"pinned", ReportFirstFromAPinnedThread},
        {"no-keys", UseUpAllKeys},
        {"little-memory", [&] { return LogWithLittleMemory(count); }},
    };
    const std::map<std::string, std::function<int()>> withTheLogsFile{
        {"acknowledge", Acknowledge},
        {"exit", ExitWhileThreadsLog},
        {"fork", [&] { return ForkWhileThreadsLog(count); }},
    };
    if (const auto found = withItsOwnDevices.find(mode); found != withItsOwnDevices.end())
        return found->second();
    const auto found = withTheLogsFile.find(mode);
    return found != withTheLogsFile.end() && nxLogSetUp() ? found->second() : 3;
}
