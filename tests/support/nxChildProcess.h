// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXCHILDPROCESS_H
#define TESTS_SUPPORT_NXCHILDPROCESS_H

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

/// A forked process that executes a function and ends. Expectations that fail in it make Succeeds() false.
/// Killed if it is still there when the object goes. One that hangs is ended by the system after a minute.
class nxChildProcess
{
public:
    template <class Body>
    explicit nxChildProcess(Body body) : _process(_Fork())
    {
        if (_process != 0)
            return;
        alarm(60);
        body();
        std::fflush(stdout);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    ~nxChildProcess() { Kill(); }

    nxChildProcess(const nxChildProcess&) = delete;
    nxChildProcess& operator=(const nxChildProcess&) = delete;

    /// Ends the process at once, wherever it is, and waits until it has gone.
    void Kill()
    {
        if (_process > 0)
            kill(_process, SIGKILL);
        _Wait();
    }

    /// Waits until the process has ended by itself.
    bool Succeeds()
    {
        const int status = _Wait();
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    static pid_t _Fork()
    {
        std::fflush(nullptr);  // or both would write what is buffered
        return fork();
    }

    int _Wait()
    {
        int status = -1;
        if (_process > 0)
            waitpid(_process, &status, 0);
        _process = 0;
        return status;
    }

    pid_t _process;
};

/// Executes a function in a child. @return whether it came to the end and all its expectations held.
template <class Body>
bool nxInChild(Body body)
{
    return nxChildProcess(body).Succeeds();
}

/// Whether this process may become another user: one with root's rights may, in a name space that has that user.
inline bool nxMayBecome(uid_t user)
{
    return nxInChild(
        [user]
        {
            if (setuid(user) != 0)
                _exit(1);
        });
}

/// For a test that needs a process in which nothing has happened yet: runs the current test once more, in a new process
/// of the same program, or of a copy of it, and expects it to pass.
/// @return true in the new process, which executes the body of the test; false in the old one, which returns.
inline bool nxInNewProcess(const char* program = "/proc/self/exe")
{
    if (std::getenv("NX_TEST_IN_NEW_PROCESS") != nullptr)
        return true;
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string filter = std::string("--gtest_filter=") + test.test_suite_name() + '.' + test.name();
    const pid_t process = fork();
    if (process == 0)
    {
        setenv("NX_TEST_IN_NEW_PROCESS", "1", 1);
        execl(program, "test", filter.c_str(), nullptr);
        _exit(1);
    }
    int status = -1;
    waitpid(process, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    return false;
}

/// Memory that the test and its children share, holding one T.
template <class T>
class nxSharedMemory
{
public:
    nxSharedMemory()
        : _object(new (mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) T())
    {
    }
    ~nxSharedMemory() { munmap(_object, sizeof(T)); }

    nxSharedMemory(const nxSharedMemory&) = delete;
    nxSharedMemory& operator=(const nxSharedMemory&) = delete;

    T& operator*() const { return *_object; }
    T* operator->() const { return _object; }

private:
    T* _object;
};

/// A number by which processes tell each other how far they are.
class nxStage
{
public:
    void Reach(int stage) { *_stage = stage; }
    void WaitFor(int stage) const
    {
        while (*_stage < stage)
            usleep(1'000);
    }
    int Get() const { return *_stage; }

private:
    nxSharedMemory<std::atomic<int>> _stage;
};

#endif
