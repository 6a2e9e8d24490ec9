// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxBackgroundProgram.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "core/platform/linux/nxSystemCall.h"
#include "core/platform/nxDescriptor.h"
#include "core/platform/nxDirectory.h"

// The C library's clone(). The thread sanitizer replaces the other name and takes every new process for a fork with memory
// of its own, after which it would see no lock of the calling thread any more.
extern "C" int __clone(int (*function)(void*), void* stack, int flags, void* argument, ...) noexcept;

namespace
{
// What the middle process is given, and what it returns. It shares the memory of this one.
struct StartOrder
{
    const char* path;
    char* const* arguments;
    char* const* environment;
    const posix_spawn_file_actions_t* actions;
    const posix_spawnattr_t* attributes;
    pid_t process = 0;
    int error = EAGAIN;  // until the middle process has run
};

// The middle process: it starts the program and ends at once, so that the program has no parent. The calling thread does
// not run meanwhile and has blocked all signals.
int StartAndEnd(void* given)
{
    StartOrder& order = *static_cast<StartOrder*>(given);
    order.error =
        posix_spawn(&order.process, order.path, order.actions, order.attributes, order.arguments, order.environment);
    if (order.error == 0)
        setpriority(PRIO_PROCESS, static_cast<id_t>(order.process), 19);
    return 0;
}

// Executes an order in a process that shares the memory and has no signal at its end, so that no wait() of other code
// finds it.
void ExecuteInBetween(StartOrder& order)
{
    constexpr std::size_t stackSize = std::size_t{64} << 10;
    void* const stack =
        mmap(nullptr, stackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (stack == MAP_FAILED)
    {
        order.error = errno;
        return;
    }
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t middle = __clone(StartAndEnd, static_cast<char*>(stack) + stackSize, CLONE_VM | CLONE_VFORK, &order);
    if (middle < 0)
        order.error = errno;
    else
        nxSystemCall::RetryInterrupted([&] { return waitpid(middle, nullptr, static_cast<int>(__WCLONE)); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    munmap(stack, stackSize);
}

class FileActions
{
public:
    FileActions(int directory, int inherited) : _error(posix_spawn_file_actions_init(&_actions))
    {
        constexpr int kept = STDERR_FILENO + 1;
        _Add(posix_spawn_file_actions_addfchdir_np(&_actions, directory));
        _Add(posix_spawn_file_actions_addopen(&_actions, STDIN_FILENO, "/dev/null", O_RDWR, 0));
        _Add(posix_spawn_file_actions_adddup2(&_actions, STDIN_FILENO, STDOUT_FILENO));
        _Add(posix_spawn_file_actions_adddup2(&_actions, STDIN_FILENO, STDERR_FILENO));
        _Add(posix_spawn_file_actions_adddup2(&_actions, inherited, kept));
        _Add(posix_spawn_file_actions_addclosefrom_np(&_actions, kept + 1));
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    int GetError() const { return _error; }
    const posix_spawn_file_actions_t* Get() const { return &_actions; }

private:
    void _Add(int error) { _error = _error != 0 ? _error : error; }

    posix_spawn_file_actions_t _actions;
    int _error;
};

class Attributes
{
public:
    Attributes()
    {
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        const sched_param ordinary{};
        posix_spawnattr_init(&_attributes);
        posix_spawnattr_setsigmask(&_attributes, &none);
        posix_spawnattr_setsigdefault(&_attributes, &all);
        posix_spawnattr_setschedpolicy(&_attributes, SCHED_OTHER);
        posix_spawnattr_setschedparam(&_attributes, &ordinary);
        posix_spawnattr_setflags(&_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                   POSIX_SPAWN_SETSCHEDULER | POSIX_SPAWN_SETSID);
    }
    ~Attributes() { posix_spawnattr_destroy(&_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* Get() const { return &_attributes; }

private:
    posix_spawnattr_t _attributes;
};

bool IsExecutableFile(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}
}  // namespace

std::string nxBackgroundProgram::Find(const std::string& program)
{
    if (program.starts_with('/'))
        return IsExecutableFile(program) ? program : std::string();
    if (program.empty() || program.find('/') != std::string::npos)
        return "";
    for (const char* const folder : {"/usr/bin/", "/bin/"})
        if (const std::string path = folder + program; IsExecutableFile(path))
            return path;
    return "";
}

int nxBackgroundProgram::Start(const std::string& path, std::span<const std::string> arguments,
                               const nxDirectory& directory, const nxDescriptor& inherited, int& process)
{
    const FileActions actions(directory.GetDescriptor(), inherited.Get());
    if (actions.GetError() != 0)
        return actions.GetError();
    std::vector<char*> words{const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    char searchPath[] = "PATH=/usr/bin:/bin";
    char language[] = "LC_ALL=C";
    char* const environment[] = {searchPath, language, nullptr};
    const Attributes attributes;
    StartOrder order{path.c_str(), words.data(), environment, actions.Get(), attributes.Get()};
    ExecuteInBetween(order);
    process = order.process;
    return order.error;
}

bool nxBackgroundProgram::Reap(int process)
{
    int adopts = 0;
    const bool isAdopted = getpid() == 1 || (prctl(PR_GET_CHILD_SUBREAPER, &adopts) == 0 && adopts != 0);
    return !isAdopted || waitpid(process, nullptr, WNOHANG) != 0;
}
