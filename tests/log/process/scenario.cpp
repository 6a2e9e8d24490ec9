// What takes a process of its own: the ends of processes, forks, plug-ins. nxLogProcessTest.cpp runs it with the name
// of a scenario and that of a file that the log is written to, and looks at what is in the file afterwards.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "core/log/nxLogMacros.h"
#include "tests/support/nxFunctionLogDevice.h"

namespace
{
constexpr int recordsInARow = 20'000;

// What main was called with.
const char* output;
const char* plugin;

void Register(std::function<void(const nxLog&)> onWrite)
{
    new nxFunctionLogDevice(std::move(onWrite));  // lives to the very end
}

/// Appends every record to the file at once, as "text file", and " child" when a forked process does.
void AppendToOutput()
{
    const int file = open(output, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    Register(
        [file, creator = getpid()](const nxLog& record)
        {
            const std::string line =
                record.GetText() + " " + record.GetSourceFile() + (getpid() == creator ? "" : " child") + "\n";
            if (write(file, line.data(), line.size()) < 0)
                _exit(3);
        });
}

void WaitUntilWritten() { nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(60.0); }

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

int ReturnFromMain()
{
    AppendToOutput();
    LogInARow();
    return 0;
}

int ExitInAThread()
{
    AppendToOutput();
    std::thread(
        []
        {
            LogInARow();
            std::exit(0);
        })
        .join();
    return 4;
}

int ExitAtOnce()
{
    AppendToOutput();
    NX_LOG(NX_LOG_LEVEL_INFO) << "waited for";
    WaitUntilWritten();
    NX_LOG(NX_LOG_LEVEL_INFO) << "perhaps lost";
    _exit(0);
}

int ExitWhileStalled()
{
    Register(
        [](const nxLog&)
        {
            for (;;)
                pause();
        });
    NX_LOG(NX_LOG_LEVEL_WARNING) << "nobody hears";
    return 0;
}

int ExitInsideADevice()
{
    AppendToOutput();
    Register([](const nxLog&) { std::exit(0); });
    NX_LOG(NX_LOG_LEVEL_INFO) << "the last";
    for (;;)
        pause();
}

int LogNothing() { return 0; }

// The parent's queue holds records that no device has had yet.
int ForkWithAFullQueue()
{
    LogInARow();
    const pid_t child = fork();
    if (child == 0)
    {
        AppendToOutput();
        NX_LOG(NX_LOG_LEVEL_INFO) << "only this";
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

// What is kept for the first device counts as waiting.
int WaitForADevice()
{
    nxLogManager& manager = nxLogManager::GetInstance();
    NX_LOG(NX_LOG_LEVEL_INFO) << "kept";
    WaitUntilWritten();
    const std::vector<nxLog> waiting = manager.GetLogEntriesQueue();
    AppendToOutput();
    WaitUntilWritten();
    const bool isRight = waiting.size() == 2 && waiting[0].GetText() == "before main" && waiting[1].GetText() == "kept";
    return isRight && manager.GetLogEntriesQueue().empty() ? 0 : 8;
}

int UnloadAPlugin()
{
    AppendToOutput();
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

int Levels()
{
    AppendToOutput();
    NX_LOG(NX_LOG_LEVEL_INFO) << "info";
    NX_LOG(NX_LOG_LEVEL_WARNING) << "warning";
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, int (*)()> scenarios = {
        {"ReturnFromMain", ReturnFromMain},
        {"ExitInAThread", ExitInAThread},
        {"ExitAtOnce", ExitAtOnce},
        {"ExitWhileStalled", ExitWhileStalled},
        {"ExitInsideADevice", ExitInsideADevice},
        {"LogNothing", LogNothing},
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
    output = argv[2];
    plugin = argv[3];
    return found == scenarios.end() ? 2 : found->second();
}
