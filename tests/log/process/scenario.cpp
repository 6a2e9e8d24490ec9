// What takes a process of its own: the ends of processes, forks, plug-ins. nxLogProcessTest.cpp runs it with the name
// of a scenario and that of a file that the log is written to, and looks at what is in the file afterwards.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogMacros.h"

namespace
{
constexpr int recordsInARow = 20'000;

/// Appends every record to the file at once, as "level text [file:line]" and the number of the process.
class AppendingDevice : public nxLogDevice
{
public:
    explicit AppendingDevice(const char* path)
        : _file(open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)), _creator(getpid())
    {
    }
    void Write(const nxLog& record) override
    {
        const std::string line =
            record.GetText() + " " + record.GetSourceFile() + (getpid() == _creator ? "" : " child") + "\n";
        if (write(_file, line.data(), line.size()) < 0)
            _exit(3);
    }
    void Flush() override {}
    void Destroy() override {}

private:
    const int _file;
    const pid_t _creator;
};

/// Never comes back.
class StallingDevice : public nxLogDevice
{
public:
    void Write(const nxLog&) override
    {
        for (;;)
            pause();
    }
    void Flush() override {}
    void Destroy() override {}
};

/// Ends the process from where it is written to.
class ExitingDevice : public nxLogDevice
{
public:
    void Write(const nxLog&) override { std::exit(0); }
    void Flush() override {}
    void Destroy() override {}
};

template <class Device, class... Arguments>
void Register(Arguments... arguments)
{
    // Lives to the very end.
    nxLogManager::GetInstance().RegisterLogDevice(new Device(arguments...));
}

void LogInARow()
{
    for (int number = 0; number < recordsInARow; ++number)
        NX_LOG(NX_LOG_LEVEL_INFO) << "row " << number;
}

struct LogsBeforeAndAfterMain
{
    LogsBeforeAndAfterMain() { NX_LOG(NX_LOG_LEVEL_INFO) << "before main"; }
    ~LogsBeforeAndAfterMain() { NX_LOG(NX_LOG_LEVEL_INFO) << "after main"; }
};
const LogsBeforeAndAfterMain logsBeforeAndAfterMain;

int ReturnFromMain(const char* output, const char*)
{
    Register<AppendingDevice>(output);
    LogInARow();
    return 0;
}

int ExitInAThread(const char* output, const char*)
{
    Register<AppendingDevice>(output);
    std::thread(
        []
        {
            LogInARow();
            std::exit(0);
        })
        .join();
    return 4;
}

int ExitAtOnce(const char* output, const char*)
{
    Register<AppendingDevice>(output);
    NX_LOG(NX_LOG_LEVEL_INFO) << "waited for";
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(60.0);
    NX_LOG(NX_LOG_LEVEL_INFO) << "perhaps lost";
    _exit(0);
}

int ExitWhileStalled(const char*, const char*)
{
    Register<StallingDevice>();
    NX_LOG(NX_LOG_LEVEL_WARNING) << "nobody hears";
    return 0;
}

int ExitInsideADevice(const char* output, const char*)
{
    Register<AppendingDevice>(output);
    Register<ExitingDevice>();
    NX_LOG(NX_LOG_LEVEL_INFO) << "the last";
    for (;;)
        pause();
}

int LogNothing(const char*, const char*) { return 0; }

// Forks again and again while threads report. Every child reports and ends in an orderly way.
int Fork(const char* output, const char*)
{
    Register<AppendingDevice>(output);
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int index = 0; index < 3; ++index)
        threads.emplace_back(
            [&stop, index]
            {
                for (int number = 0; !stop; ++number)
                {
                    NX_LOG(NX_LOG_LEVEL_INFO) << "thread " << index << " " << number;
                    // Not faster than the device, which takes them one by one.
                    std::this_thread::sleep_for(std::chrono::microseconds(200));
                }
            });
    int faults = 0;
    for (int number = 0; number < 20; ++number)
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << "parent " << number;
        const pid_t child = fork();
        if (child == 0)
        {
            alarm(60);
            NX_LOG(NX_LOG_LEVEL_INFO) << "born " << number;
            std::thread([number] { NX_LOG(NX_LOG_LEVEL_WARNING) << "lived " << number; }).join();
            // No other thread of the parent's is here to be waited for.
            nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(60.0);
            NX_LOG(NX_LOG_LEVEL_INFO) << "died " << number;
            std::exit(nxLogManager::GetInstance().GetStatistics().dropped == 0 ? 0 : 5);
        }
        int status = 0;
        faults += waitpid(child, &status, 0) != child || status != 0;
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    return faults == 0 ? 0 : 6;
}

// The parent's queue holds records that no device has had yet.
int ForkWithAFullQueue(const char* output, const char*)
{
    LogInARow();
    const pid_t child = fork();
    if (child == 0)
    {
        Register<AppendingDevice>(output);
        NX_LOG(NX_LOG_LEVEL_INFO) << "only this";
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

// What is kept for the first device counts as waiting.
int WaitForADevice(const char* output, const char*)
{
    nxLogManager& manager = nxLogManager::GetInstance();
    NX_LOG(NX_LOG_LEVEL_INFO) << "kept";
    manager.WaitForWriteThreadToWriteQueueToDisk(60.0);
    const std::vector<nxLog> waiting = manager.GetLogEntriesQueue();
    Register<AppendingDevice>(output);
    manager.WaitForWriteThreadToWriteQueueToDisk(60.0);
    const bool isRight = waiting.size() == 2 && waiting[0].GetText() == "before main" && waiting[1].GetText() == "kept";
    return isRight && manager.GetLogEntriesQueue().empty() ? 0 : 8;
}

int UnloadAPlugin(const char* output, const char* plugin)
{
    Register<AppendingDevice>(output);
    for (int round = 0; round < 3; ++round)
    {
        void* const handle = dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr)
            return 7;
        const auto report = reinterpret_cast<void (*)()>(dlsym(handle, "nxTestReport"));
        report();
        dlclose(handle);
        // Its names and literals are unmapped now, and the records not yet written.
    }
    return 0;
}

int Levels(const char* output, const char*)
{
    Register<AppendingDevice>(output);
    NX_LOG(NX_LOG_LEVEL_INFO) << "info";
    NX_LOG(NX_LOG_LEVEL_WARNING) << "warning";
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, int (*)(const char*, const char*)> scenarios = {
        {"ReturnFromMain", ReturnFromMain},
        {"ExitInAThread", ExitInAThread},
        {"ExitAtOnce", ExitAtOnce},
        {"ExitWhileStalled", ExitWhileStalled},
        {"ExitInsideADevice", ExitInsideADevice},
        {"LogNothing", LogNothing},
        {"Fork", Fork},
        {"ForkWithAFullQueue", ForkWithAFullQueue},
        {"WaitForADevice", WaitForADevice},
        {"UnloadAPlugin", UnloadAPlugin},
        {"Levels", Levels},
    };
    if (argc < 4)
        return 1;
    const auto found = scenarios.find(argv[1]);
    // A hang is a failure, not a wait.
    alarm(90);
    return found == scenarios.end() ? 2 : found->second(argv[2], argv[3]);
}
