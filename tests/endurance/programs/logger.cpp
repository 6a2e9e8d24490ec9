// A process that logs to a file in one of several ways and ends, or is ended: logger MODE [COUNT]. The directory and
// the other settings come from the environment. Every line of ours holds "t<thread> n<number>;".

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSetUp.h"
#include "core/text/nxDoubleValueWrapper.h"

namespace
{
constexpr int ThreadCount = 8;

std::atomic<bool> stop{false};

void LogLine(int thread, int number, nxEnumValue level = NX_LOG_LEVEL_INFO)
{
    NX_LOG(level) << "t" << thread << " n" << number << "; some text to fill the line with";
}

void WaitForLog() { nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(30.0)); }

// Logs until the process ends; says on standard output which number is surely in the file.
[[noreturn]] void Acknowledge()
{
    for (int number = 0;; ++number)
    {
        LogLine(0, number, number % 7 == 0 ? NX_LOG_LEVEL_WARNING : NX_LOG_LEVEL_INFO);
        if (number % 50 != 49)
            continue;
        WaitForLog();
        nxLogManager::GetInstance().FlushDevices();
        static_cast<void>(!::write(STDOUT_FILENO, &number, sizeof number));
    }
}

void LogUntilStopped(int thread)
{
    for (int number = 0; !stop.load(std::memory_order_relaxed); ++number)
    {
        LogLine(thread, number);
        std::this_thread::sleep_for(std::chrono::microseconds(50));  // busy, but not more than a disk can take
    }
}

std::vector<std::thread> StartThreads()
{
    std::vector<std::thread> threads;
    for (int i = 0; i < ThreadCount; ++i)
        threads.emplace_back(LogUntilStopped, i);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return threads;
}

int ExitWhileThreadsLog()
{
    for (std::thread& thread : StartThreads())
        thread.detach();
    std::exit(0);
}

int ForkWhileThreadsLog(int count)
{
    std::vector<std::thread> threads = StartThreads();
    int failed = 0;
    for (int child = 0; child < count; ++child)
    {
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
void Rotate(int count)
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
}

void ChangeDates(int count)
{
    for (int number = 0; number < count; ++number)
    {
        ::setenv("TZ", number / 10 % 2 == 0 ? "AAA12" : "BBB-14", 1);  // never the same day in both
        ::tzset();
        LogLine(0, number);
        if (number % 10 == 9)
        {
            WaitForLog();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
}

std::size_t CountOurLines(const std::filesystem::path& directory)
{
    std::size_t lines = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
    {
        if (!entry.is_regular_file() || entry.path().extension() != ".log")
            continue;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);)
            lines += line.find("; some text to fill the line with") != std::string::npos && line.back() == '\r';
    }
    return lines;
}

// Fills the disk and frees it again; the lines that are missing must be those that the device counts.
int FillDisk(int cycles)
{
    const std::filesystem::path directory = std::getenv("QRX_LOG_DIRECTORY"), ballast = directory / "ballast";
    int number = 0;
    for (int cycle = 0; cycle < cycles; ++cycle)
    {
        {
            std::ofstream file(ballast, std::ios::binary);
            const std::string block(4096, 'x');
            while (file.write(block.data(), static_cast<std::streamsize>(block.size())).flush())
            {
            }
        }
        for (int i = 0; i < 20000; ++i)
            LogLine(0, number++);
        WaitForLog();
        nxLogManager::GetInstance().FlushDevices();
        std::filesystem::remove(ballast);
        std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // it tries again each second
        for (int i = 0; i < 100; ++i)
            LogLine(0, number++);
        WaitForLog();
        nxLogManager::GetInstance().FlushDevices();
    }
    nxFileLogDevice::GetInstance().Destroy();
    const std::size_t present = CountOurLines(directory), lost = nxFileLogDevice::GetInstance().GetLostLines() +
                                                                 nxLogManager::GetInstance().GetStatistics().dropped;
    std::printf("logged %d, present %zu, lost %zu\n", number, present, lost);
    return static_cast<std::size_t>(number) == present + lost && lost > 0 ? 0 : 1;
}
}  // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    const int count = argc > 2 ? std::atoi(argv[2]) : 0;
    if (mode == "rotate")
    {
        Rotate(count);
        return 0;
    }
    if (!nxLogSetUp())
        return 3;
    if (mode == "acknowledge")
        Acknowledge();
    if (mode == "signal")
    {
        for (int number = 0; number < 100; ++number)
            LogLine(0, number);
        WaitForLog();
        nxLogManager::GetInstance().FlushDevices();
        std::raise(count);
        return 4;
    }
    if (mode == "exit")
        return ExitWhileThreadsLog();
    if (mode == "fork")
        return ForkWhileThreadsLog(count);
    if (mode == "dates")
        return ChangeDates(count), 0;
    if (mode == "disk")
        return FillDisk(count);
    return 2;
}
