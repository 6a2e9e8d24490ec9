// Processes that make, take and wait for shared locks and are killed at random moments. Nobody who lives may get stuck,
// two may never be inside at once, and whoever comes after all have died finds everything as new, at once.
//
// NX_TEST_KILLS sets how many processes are killed (500, and no longer than 3 seconds, unless it is set).

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/thread/nxMutex.h"
#include "core/thread/nxWindowsMutex.h"
#include "core/thread/nxWindowsSemaphore.h"
#include "tests/support/nxChildProcess.h"

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
    std::atomic<unsigned> faults{0};
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
    shared.faults += taken > Licences;
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

bool GoesOn(const std::atomic<unsigned>& rounds)
{
    const unsigned before = rounds;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(30);
    while (rounds == before && Clock::now() < end)
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    return rounds != before;
}

// Starts workers, kills some while others go on, then all.
void KillRound(std::minstd_rand& random, Shared& shared, const Names& names)
{
    std::vector<std::unique_ptr<nxChildProcess>> workers;
    for (int worker = 0; worker < Workers; ++worker)
        workers.push_back(std::make_unique<nxChildProcess>([&, worker] { Work(shared, names, worker); }));
    const unsigned killedFirst = random() % Workers;
    for (unsigned worker = 0; worker < killedFirst; ++worker)
    {
        PauseUpTo(random, 3000);
        workers[worker]->Kill();
    }
    for (unsigned worker = killedFirst; worker < Workers; ++worker)
        EXPECT_TRUE(GoesOn(shared.rounds[worker])) << "worker " << worker << " is stuck";
    for (std::unique_ptr<nxChildProcess>& worker : workers)
        worker->Kill();
    for (std::atomic<int>& has : shared.hasLicence)
        has = 0;
}

// What the first process to come after a round finds.
void ExpectAsNew(const Names& names)
{
    nxChildProcess next(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            nxWindowsMutex mutex(names.mutex);
            mutex.Lock();
            mutex.Unlock();
            nxWindowsSemaphore semaphore(names.semaphore, Licences, Licences);
            for (unsigned i = 0; i < Licences; ++i)
                EXPECT_TRUE(semaphore.TimedWait(0).IsOK()) << "count " << i << " is gone";
            EXPECT_EQ(semaphore.TimedWait(0), NX_ERR_THR_TIMEDOUT);
        });
    EXPECT_TRUE(next.Succeeds());
}
}  // namespace

TEST(killedProcesses, NobodyIsStuckAndNothingStaysTaken)
{
    const char* const wanted = std::getenv("NX_TEST_KILLS");
    const unsigned long kills = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 500;
    const Clock::time_point end = wanted != nullptr ? Clock::time_point::max() : Clock::now() + std::chrono::seconds(3);
    const unsigned seed = std::random_device()();
    std::minstd_rand random(seed);
    nxSharedMemory<Shared> shared;
    ASSERT_TRUE(shared->mutex.InitialiseAsShared(true).IsOK());
    const Names names{"mutex/" + std::to_string(getpid()), "semaphore/" + std::to_string(getpid())};

    for (unsigned long killed = 0; killed < kills && Clock::now() < end; killed += Workers)
    {
        KillRound(random, *shared, names);
        ExpectAsNew(names);
        ASSERT_EQ(shared->faults, 0U) << "seed " << seed << " after " << killed;
        ASSERT_FALSE(HasFailure()) << "seed " << seed << " after " << killed;
    }
}
