// SPDX-License-Identifier: Apache-2.0
// A process that makes, takes and waits for shared locks is killed between any two of its system calls and at any
// instruction after them. No living process may get stuck, two may never be inside at once, and the first one that comes
// after all have died finds everything as new, at once.
//
// NX_TEST_KILLS sets how many processes are killed in all (250, and no longer than some seconds, where it is not set).

#include <sys/ptrace.h>
#include <sys/syscall.h>

#include "core/thread/nxMutex.h"
#include "tests/support/nxPrivateMemory.h"
#include "tests/support/nxSystemTest.h"
#include "tests/thread/nxNamedObjects.h"

namespace
{
using Clock = std::chrono::steady_clock;

constexpr unsigned Licences = 2;

// A place where at most one process may be. Each leaves its number; a killed one leaves it for good, which is why only a
// number that changes meanwhile tells of a second one inside.
class Room
{
public:
    // Whether no other process came in meanwhile.
    bool Visit(int visitor)
    {
        _inside = visitor;
        bool alone = true;
        for (int i = 0; i < 50; ++i)
            alone = alone && _inside == visitor;
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
    std::atomic<unsigned> rounds{0};  // of the neighbour
    std::atomic<unsigned> faults{0};
};

void VisitUnderMutex(Shared& shared, int visitor) NX_NO_THREAD_SAFETY_ANALYSIS
{
    const nxErrorEnum error = shared.mutex.Lock();
    shared.faults += error == NX_ERR_THR_OWNER_DEAD ? !shared.mutex.Consistent().IsOK() : !error.IsOK();
    shared.faults += !shared.mutexRoom.Visit(visitor);
    shared.faults += !shared.mutex.Unlock().IsOK();
}

// Uses everything beside the process that is killed.
[[noreturn]] void BeNeighbour(Shared& shared) NX_NO_THREAD_SAFETY_ANALYSIS
{
    nxWindowsMutex mutex("mutex");
    nxWindowsSemaphore semaphore("semaphore", Licences, Licences);
    shared.faults += mutex.IsNull() + semaphore.IsNull();
    for (;; ++shared.rounds)
    {
        shared.faults += !mutex.Lock().IsOK();
        shared.faults += !mutex.Lock().IsOK();
        shared.faults += !shared.namedRoom.Visit(1);
        shared.faults += !mutex.Unlock().IsOK();
        shared.faults += !mutex.Unlock().IsOK();
        // A killed process may have taken the licences along, so this does not wait for long.
        if (semaphore.TimedWait(0.001).IsOK())
            shared.faults += !semaphore.Post().IsOK();
        VisitUnderMutex(shared, 1);
    }
}

// A system call that does nothing: a place for the parent to stop at.
void Pause() { syscall(SYS_getppid); }

// Makes everything, holds everything, gives everything back.
void UseEverything(Shared& shared) NX_NO_THREAD_SAFETY_ANALYSIS
{
    nxWindowsMutex mutex("mutex");
    Pause();
    shared.faults += !mutex.Lock().IsOK();
    shared.faults += !mutex.Lock().IsOK();
    shared.faults += !shared.namedRoom.Visit(2);
    Pause();
    nxWindowsSemaphore semaphore("semaphore", Licences, Licences);
    const bool hasLicence = semaphore.TimedWait(0.001).IsOK();
    Pause();
    if (hasLicence)
        shared.faults += !semaphore.Post().IsOK();
    Pause();
    shared.faults += !mutex.Unlock().IsOK();
    VisitUnderMutex(shared, 2);
    shared.faults += !mutex.Unlock().IsOK();
    Pause();
}

// Whether the neighbour has been through everything once more.
bool GoesOn(const Shared& shared)
{
    const unsigned before = shared.rounds;
    return nxEventually([&] { return shared.rounds - before >= 2; });
}

// What the first process finds that comes when all others have died.
void ExpectAsNew(Shared& shared)
{
    EXPECT_TRUE(nxInChild(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            nxWindowsMutex mutex("mutex");
            EXPECT_FALSE(mutex.IsNull());
            EXPECT_TRUE(mutex.Lock().IsOK());
            EXPECT_TRUE(mutex.Unlock().IsOK());
            EXPECT_EQ(CountIn("semaphore", Licences), Licences);
            VisitUnderMutex(shared, 3);
        }));
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
            if (!traced)
                _exit(2);  // nobody would let it go on after a stop
            raise(SIGSTOP);
            body();
            _exit(0);
        }
        _runs = waitpid(_process, &_status, 0) == _process && WIFSTOPPED(_status);
    }
    ~SteppedProcess()
    {
        if (_runs && kill(_process, SIGKILL) == 0)
            waitpid(_process, &_status, 0);
    }

    SteppedProcess(const SteppedProcess&) = delete;
    SteppedProcess& operator=(const SteppedProcess&) = delete;

    /// Lets it run to the next beginning or end of a system call, or for one instruction. False when it has ended.
    bool ToNextCall() { return _Advance(PTRACE_SYSCALL); }
    bool ToNextInstruction() { return _Advance(PTRACE_SINGLESTEP); }

    /// Whether it came to its end; not so when a signal ended it, a bus error for example.
    bool HasEndedWell() const { return WIFEXITED(_status) && WEXITSTATUS(_status) == 0; }

    /// Whether processes may be traced here.
    static bool IsPossible()
    {
        SteppedProcess process([] {});
        return process.ToNextCall() && WSTOPSIG(process._status) == SIGTRAP;
    }

private:
    bool _Advance(__ptrace_request request)
    {
        // What is not a stop for us is a signal of its own, to be given to it.
        const bool isOwn = _runs && WSTOPSIG(_status) != SIGTRAP && WSTOPSIG(_status) != SIGSTOP;
        _runs = _runs && ptrace(request, _process, nullptr, isOwn ? long{WSTOPSIG(_status)} : 0L) == 0 &&
                waitpid(_process, &_status, 0) == _process && WIFSTOPPED(_status);
        return _runs;
    }

    pid_t _process;
    int _status = 0;
    bool _runs = false;
};

// Kills a process at its stop number `stop` and some instructions later. False when it has fewer stops.
bool KillAt(unsigned stop, unsigned instructions, Shared& shared)
{
    SteppedProcess process([&] { UseEverything(shared); });
    bool runs = true;
    for (unsigned i = 0; i <= stop && runs; ++i)
        runs = process.ToNextCall();
    for (unsigned i = 0; i < instructions && runs; ++i)
        runs = process.ToNextInstruction();
    EXPECT_TRUE(runs || process.HasEndedWell());
    return runs;
}
}  // namespace

TEST(killedProcesses, NoProcessIsStuckAfterAKillBetweenAnyTwoSystemCalls)
{
    if (!nxPrivateMemory::InNewProcess())
        return;
    if (!SteppedProcess::IsPossible())
        GTEST_SKIP() << "no tracing of processes here";
    const char* const wanted = std::getenv("NX_TEST_KILLS");
    const unsigned long kills = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 250;
    const Clock::time_point end = wanted != nullptr ? Clock::time_point::max() : Clock::now() + std::chrono::seconds(6);
    const unsigned seed = std::random_device()();
    std::minstd_rand random(seed);
    nxSharedMemory<Shared> shared;
    ASSERT_TRUE(shared->mutex.InitialiseAsShared(true).IsOK());

    unsigned long killed = 0;
    // At every stop, first exactly there, later anywhere in the instructions after it; alone, on a table that is not
    // there yet, and beside a process that uses the same objects all the time.
    for (unsigned round = 0; killed < kills && Clock::now() < end; ++round)
    {
        bool reached = true;
        for (unsigned stop = 0; reached && killed < kills && Clock::now() < end; ++stop)
        {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round << ", stop " << stop);
            for (const auto& entry : std::filesystem::directory_iterator("/dev/shm"))
                std::filesystem::remove_all(entry.path());
            std::unique_ptr<nxChildProcess> neighbour;
            if (round % 2 != 0)
            {
                neighbour = std::make_unique<nxChildProcess>([&] { BeNeighbour(*shared); });
                ASSERT_TRUE(GoesOn(*shared));
            }
            reached = KillAt(stop, round < 2 ? 0 : static_cast<unsigned>(random() % 300), *shared);
            killed += reached;
            EXPECT_TRUE(!neighbour || GoesOn(*shared)) << "the neighbour is stuck";
            neighbour.reset();
            ExpectAsNew(*shared);
            ASSERT_EQ(shared->faults, 0U);
            ASSERT_FALSE(HasFailure());
        }
    }
    std::printf("   %lu kills between two system calls\n", killed);
}
