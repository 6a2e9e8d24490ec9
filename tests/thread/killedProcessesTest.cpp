// Processes that make, take and wait for shared locks and are killed, at random moments and between any two of their
// system calls. Nobody who lives may get stuck, two may never be inside at once, and whoever comes after all have died
// finds everything as new, at once.
//
// NX_TEST_KILLS sets how many processes are killed in all (500, and no longer than some seconds, unless it is set).

#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/thread/nxMutex.h"
#include "core/thread/nxWindowsMutex.h"
#include "core/thread/nxWindowsSemaphore.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxPrivateMemory.h"

namespace
{
using Clock = std::chrono::steady_clock;

constexpr int Workers = 4;
constexpr unsigned Licences = 2;

// A place where at most one worker may be. A worker leaves its number; a killed one leaves it for good, which is why
// only a number that changes while somebody is inside tells of a second one.
class Room
{
public:
    // Whether nobody else came in meanwhile.
    bool Visit(int worker)
    {
        _inside = worker;
        bool alone = true;
        for (int i = 0; i < 50; ++i)
            alone = alone && _inside == worker;
        return alone;
    }

private:
    std::atomic<int> _inside{0};
};

struct Shared
{
    nxMutex mutex;
    Room mutexRoom;
    Room namedRoom;
    std::atomic<unsigned> rounds[Workers]{};
    std::atomic<int> hasLicence[Workers]{};
    std::atomic<bool> countsLicences{true};
    std::atomic<unsigned> faults{0};
    std::atomic<long> longestWait{0};  // of whoever came after a kill, in microseconds
};

struct Names
{
    std::string mutex;
    std::string semaphore;
};

void VisitUnderMutex(Shared& shared, int worker) NX_NO_THREAD_SAFETY_ANALYSIS
{
    const nxErrorEnum error = shared.mutex.Lock();
    if (error == NX_ERR_THR_OWNER_DEAD)
        shared.faults += !shared.mutex.Consistent().IsOK();
    else
        shared.faults += !error.IsOK();
    shared.faults += !shared.mutexRoom.Visit(worker);
    shared.mutex.Unlock();
}

void VisitUnderNamedMutex(Shared& shared, nxWindowsMutex& mutex, int worker) NX_NO_THREAD_SAFETY_ANALYSIS
{
    mutex.Lock();
    mutex.Lock();
    shared.faults += !shared.namedRoom.Visit(worker);
    mutex.Unlock();
    mutex.Unlock();
}

// Licences that killed workers have taken are gone while the others live, so this does not wait for long.
void UseLicence(Shared& shared, nxWindowsSemaphore& semaphore, int worker)
{
    if (!semaphore.TimedWait(0.001).IsOK())
        return;
    shared.hasLicence[worker] = 1;
    unsigned taken = 0;
    for (const std::atomic<int>& has : shared.hasLicence)
        taken += has != 0 ? 1U : 0U;
    shared.faults += shared.countsLicences && taken > Licences;
    shared.hasLicence[worker] = 0;
    semaphore.Post();
}

[[noreturn]] void Work(Shared& shared, const Names& names, int worker)
{
    nxWindowsMutex mutex(names.mutex);
    nxWindowsSemaphore semaphore(names.semaphore, Licences, Licences);
    shared.faults += mutex.IsNull() + semaphore.IsNull();
    while (true)
    {
        VisitUnderNamedMutex(shared, mutex, worker + 1);
        UseLicence(shared, semaphore, worker);
        VisitUnderMutex(shared, worker + 1);
        ++shared.rounds[worker];
    }
}

void PauseUpTo(std::minstd_rand& random, unsigned microseconds)
{
    std::this_thread::sleep_for(std::chrono::microseconds(random() % microseconds));
}

void RecordWait(Shared& shared, Clock::time_point since)
{
    const long waited = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - since).count();
    shared.longestWait = std::max(shared.longestWait.load(), waited);
}

// Whether the worker has been through everything once more, which must not take long after a kill.
bool GoesOn(Shared& shared, int worker)
{
    const std::atomic<unsigned>& rounds = shared.rounds[worker];
    const unsigned before = rounds;
    const Clock::time_point start = Clock::now();
    while (rounds - before < 2 && Clock::now() < start + std::chrono::seconds(30))
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    RecordWait(shared, start);
    return rounds - before >= 2;
}

// Starts workers, kills some while others go on, then all.
void KillRound(std::minstd_rand& random, Shared& shared, const Names& names)
{
    // One that has the names open alone and is killed takes its licence along, and the next one starts afresh: then the
    // dead one's licence does not count. So either all have the names open before the first is killed, or none counts.
    shared.countsLicences = random() % 2 == 0;
    for (std::atomic<unsigned>& rounds : shared.rounds)
        rounds = 0;
    std::vector<std::unique_ptr<nxChildProcess>> workers;
    for (int worker = 0; worker < Workers; ++worker)
        workers.push_back(std::make_unique<nxChildProcess>([&, worker] { Work(shared, names, worker); }));
    for (int worker = 0; shared.countsLicences && worker < Workers; ++worker)
        EXPECT_TRUE(GoesOn(shared, worker)) << "worker " << worker << " does not start";
    const unsigned killedFirst = random() % Workers;
    for (unsigned worker = 0; worker < killedFirst; ++worker)
    {
        PauseUpTo(random, 3000);
        workers[worker]->Kill();
    }
    for (unsigned worker = killedFirst; worker < Workers; ++worker)
        EXPECT_TRUE(GoesOn(shared, static_cast<int>(worker))) << "worker " << worker << " is stuck";
    for (std::unique_ptr<nxChildProcess>& worker : workers)
        worker->Kill();
    for (std::atomic<int>& has : shared.hasLicence)
        has = 0;
}

// What the first process to come after a round finds.
void ExpectAsNew(Shared& shared, const Names& names)
{
    EXPECT_TRUE(nxInChild(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            const Clock::time_point start = Clock::now();
            nxWindowsMutex mutex(names.mutex);
            EXPECT_FALSE(mutex.IsNull());
            mutex.Lock();
            mutex.Unlock();
            nxWindowsSemaphore semaphore(names.semaphore, Licences, Licences);
            for (unsigned i = 0; i < Licences; ++i)
                EXPECT_TRUE(semaphore.TimedWait(0).IsOK()) << "count " << i << " is gone";
            EXPECT_EQ(semaphore.TimedWait(0), NX_ERR_THR_TIMEDOUT);
            VisitUnderMutex(shared, Workers + 1);
            RecordWait(shared, start);
        }));
}

// How many of the kills a test of two makes, and until when.
struct Share
{
    unsigned long kills;
    Clock::time_point end;
};

Share HalfOfTheKills()
{
    const char* const wanted = std::getenv("NX_TEST_KILLS");
    if (wanted != nullptr)
        return {std::strtoul(wanted, nullptr, 10) / 2, Clock::time_point::max()};
    return {250, Clock::now() + std::chrono::seconds(3)};
}

void Report(const char* what, unsigned long kills, const Shared& shared)
{
    const double milliseconds = static_cast<double>(shared.longestWait) / 1000;
    std::printf("   %lu kills %s: the next user was in after at most %.1f ms\n", kills, what, milliseconds);
}

// A process that its parent stops at the beginning and at the end of each of its system calls.
class SteppedProcess
{
public:
    template <class Body>
    explicit SteppedProcess(Body body) : _process(fork())
    {
        if (_process == 0)
        {
            alarm(60);
            const bool traced = ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0;
            raise(SIGSTOP);
            if (traced)
                body();
            _exit(traced ? 0 : NotTraced);
        }
        _runs = waitpid(_process, &_status, 0) == _process && WIFSTOPPED(_status);
    }
    ~SteppedProcess() { Kill(); }

    SteppedProcess(const SteppedProcess&) = delete;
    SteppedProcess& operator=(const SteppedProcess&) = delete;

    /// Lets it run to the next beginning or end of a system call. False when it has ended.
    bool ToNextCall() { return _Advance(PTRACE_SYSCALL); }
    /// Lets it execute one instruction.
    bool ToNextInstruction() { return _Advance(PTRACE_SINGLESTEP); }

    void Kill()
    {
        if (_runs && kill(_process, SIGKILL) == 0)
            waitpid(_process, &_status, 0);
        _runs = false;
    }

    /// Whether it came to its end; not so when a signal ended it, a bus error for example.
    bool HasEndedWell() const { return WIFEXITED(_status) && WEXITSTATUS(_status) == 0; }

    /// Whether processes may be traced here.
    static bool IsPossible()
    {
        SteppedProcess process([] {});
        const bool possible = process.ToNextCall();
        return possible && WSTOPSIG(process._status) == SIGTRAP;
    }

private:
    static constexpr int NotTraced = 2;

    bool _Advance(__ptrace_request request)
    {
        // What is not a stop for us is a signal of its own, to be given to it.
        const long signal =
            _runs && WSTOPSIG(_status) != SIGTRAP && WSTOPSIG(_status) != SIGSTOP ? WSTOPSIG(_status) : 0;
        _runs = _runs && ptrace(request, _process, nullptr, signal) == 0 &&
                waitpid(_process, &_status, 0) == _process && WIFSTOPPED(_status);
        return _runs;
    }

    pid_t _process;
    int _status = 0;
    bool _runs = false;
};

// A system call that does nothing: a place for the parent to stop at.
void Pause() { syscall(SYS_getppid); }

// Makes everything, holds everything, gives everything back.
void UseEverything(Shared& shared, const Names& names) NX_NO_THREAD_SAFETY_ANALYSIS
{
    nxWindowsMutex mutex(names.mutex);
    Pause();
    mutex.Lock();
    mutex.Lock();
    Pause();
    nxWindowsSemaphore semaphore(names.semaphore, Licences, Licences);
    semaphore.TimedWait(0.001);
    Pause();
    semaphore.Post();
    Pause();
    mutex.Unlock();
    VisitUnderMutex(shared, 1);
    mutex.Unlock();
    Pause();
}

// Kills a process at its stop number `stop` and some instructions behind it. False when it has fewer stops.
bool KillAt(unsigned stop, unsigned instructions, Shared& shared, const Names& names)
{
    SteppedProcess process([&] { UseEverything(shared, names); });
    bool runs = true;
    for (unsigned i = 0; i <= stop && runs; ++i)
        runs = process.ToNextCall();
    for (unsigned i = 0; i < instructions && runs; ++i)
        runs = process.ToNextInstruction();
    EXPECT_TRUE(runs || process.HasEndedWell());
    process.Kill();
    return runs;
}

void RemoveTable()
{
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm"))
        std::filesystem::remove_all(entry.path());
}
}  // namespace

TEST(killedProcesses, NobodyIsStuckAndNothingStaysTaken)
{
    const Share share = HalfOfTheKills();
    const unsigned seed = std::random_device()();
    std::minstd_rand random(seed);
    nxSharedMemory<Shared> shared;
    ASSERT_TRUE(shared->mutex.InitialiseAsShared(true).IsOK());
    const Names names{"mutex/" + std::to_string(getpid()), "semaphore/" + std::to_string(getpid())};

    unsigned long killed = 0;
    for (; killed < share.kills && Clock::now() < share.end; killed += Workers)
    {
        KillRound(random, *shared, names);
        ExpectAsNew(*shared, names);
        ASSERT_EQ(shared->faults, 0U) << "seed " << seed << " after " << killed;
        ASSERT_FALSE(HasFailure()) << "seed " << seed << " after " << killed;
    }
    Report("at random moments", killed, *shared);
}

TEST(killedProcesses, NobodyIsStuckAfterAKillBetweenAnyTwoSystemCalls)
{
    if (!nxPrivateMemory::InNewProcess())
        return;
    if (!SteppedProcess::IsPossible())
        GTEST_SKIP() << "no tracing of processes here";
    const Share share = HalfOfTheKills();
    const unsigned seed = std::random_device()();
    std::minstd_rand random(seed);
    nxSharedMemory<Shared> shared;
    ASSERT_TRUE(shared->mutex.InitialiseAsShared(true).IsOK());
    const Names names{"mutex", "semaphore"};

    unsigned long killed = 0;
    // At every stop, first exactly there, later anywhere in the instructions behind it; alone, on a table that is not
    // there yet, and beside a process that uses the same objects all the time.
    for (unsigned round = 0; killed < share.kills && Clock::now() < share.end; ++round)
    {
        const bool alone = round % 2 == 0;
        bool reached = true;
        for (unsigned stop = 0; reached && killed < share.kills && Clock::now() < share.end; ++stop)
        {
            RemoveTable();
            std::unique_ptr<nxChildProcess> neighbour;
            shared->rounds[0] = 0;
            shared->countsLicences = false;
            if (!alone)
            {
                neighbour = std::make_unique<nxChildProcess>([&] { Work(*shared, names, 0); });
                ASSERT_TRUE(GoesOn(*shared, 0));
            }
            reached = KillAt(stop, round < 2 ? 0 : static_cast<unsigned>(random() % 300), *shared, names);
            killed += reached;
            if (neighbour)
            {
                EXPECT_TRUE(GoesOn(*shared, 0)) << "the neighbour is stuck";
                neighbour->Kill();
            }
            ExpectAsNew(*shared, names);
            ASSERT_EQ(shared->faults, 0U) << "seed " << seed << ", round " << round << ", stop " << stop;
            ASSERT_FALSE(HasFailure()) << "seed " << seed << ", round " << round << ", stop " << stop;
        }
    }
    Report("between two system calls", killed, *shared);
}
