// SPDX-License-Identifier: Apache-2.0
// The waits with a limit by the monotonic clock: their times, their results, and that the wall clock does not matter.

#include "core/thread/nxCondition.h"
#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxReaderWriterLockGuard_Write.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxWindowsSemaphore.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
using Clock = std::chrono::steady_clock;
using std::chrono::duration;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

static_assert(nxWaitTime::Nanoseconds(duration<long, std::pico>(1)) == 1, "rounded up");
static_assert(nxWaitTime::Nanoseconds(duration<int, std::ratio<1, 3>>(1)) == 333'333'334);
static_assert(nxWaitTime::Nanoseconds(duration<unsigned long, std::pico>(~0UL)) == 18'446'744'073'709'552);
static_assert(nxWaitTime::Nanoseconds(hours(2'562'047)) == 9'223'369'200'000'000'000);
static_assert(nxWaitTime::Nanoseconds(hours(2'562'048)) == nanoseconds::max().count());
static_assert(!nxWaitMoment<std::chrono::system_clock::time_point> && !nxWaitDuration<double>);

// Everything that can be waited for, none of which comes.
struct Locks
{
    Locks() { EXPECT_TRUE(robust.InitialiseAsShared(true).IsOK()); }

    std::vector<std::pair<const char*, std::function<nxErrorEnum(nanoseconds)>>> Waits()
    {
        return {{"mutex", [this](nanoseconds time) { return mutex.LockFor(time); }},
                {"mutex, until", [this](nanoseconds time) { return mutex.LockUntil(Clock::now() + time); }},
                {"robust mutex", [this](nanoseconds time) { return robust.LockFor(time); }},
                {"reader", [this](nanoseconds time) { return lock.ReadLockFor(time); }},
                {"reader, until", [this](nanoseconds time) { return lock.ReadLockUntil(Clock::now() + time); }},
                {"writer", [this](nanoseconds time) { return lock.WriteLockFor(time); }},
                {"writer, until", [this](nanoseconds time) { return lock.WriteLockUntil(Clock::now() + time); }},
                {"semaphore", [this](nanoseconds time) { return semaphore.WaitFor(time); }},
                {"semaphore, until", [this](nanoseconds time) { return semaphore.WaitUntil(Clock::now() + time); }},
                {"named", [this](nanoseconds time) { return named.WaitFor(time); }},
                {"named, until", [this](nanoseconds time) { return named.WaitUntil(Clock::now() + time); }},
                {"condition", [this](nanoseconds time) { return condition.WaitFor(time); }},
                {"condition, until", [this](nanoseconds time) { return condition.WaitUntil(Clock::now() + time); }},
                {"raw", [this](nanoseconds time) { return With(own, [&] { return raw.WaitFor(own, time); }); }},
                {"raw, until", [this](nanoseconds time)
                 { return With(own, [&] { return raw.WaitUntil(own, Clock::now() + time); }); }},
                {"both", [this](nanoseconds time) { return With(both, [&] { return both.WaitFor(time); }); }},
                {"both, until",
                 [this](nanoseconds time) { return With(both, [&] { return both.WaitUntil(Clock::now() + time); }); }}};
    }

    template <class Wait>
    static nxErrorEnum With(nxMutex& mutex, const Wait& wait)
    {
        const nxMutexGuard guard(mutex);
        return wait();
    }

    nxMutex mutex, robust, own;
    nxReaderWriterLock lock;
    nxSemaphore semaphore{0};
    nxWindowsSemaphore named{"timed waits " + std::to_string(getpid()), 0, 1};
    nxCondition condition;
    nxConditionRaw raw;
    nxConditionMutex both;
};
}  // namespace

TEST(timedWaits, TimeOutNeverEarlyAndInEveryMillisecondOfTheWallClock)
{
    Locks locks;
    const nxMutexGuard held(locks.mutex), heldToo(locks.robust);
    const nxReaderWriterLockGuard_Write writer(locks.lock);
    const auto waitInAll = [&]
    {
        for (const long fraction : {0L, 998'500'000L, 999'500'000L})  // TimedWait(0.001) is refused in the last one
        {
            const nxFixedWallClock clock(1'700'000'000, fraction);
            for (const auto& [name, wait] : locks.Waits())
                for (const nanoseconds time : {nanoseconds::min(), nanoseconds(0), nanoseconds(milliseconds(1))})
                {
                    const auto start = Clock::now();
                    EXPECT_EQ(wait(time), NX_ERR_THR_TIMEDOUT) << name << ", " << time.count() << " ns";
                    EXPECT_GE(Clock::now() - start, time) << name;
                }
        }
    };
    nxInThreads(1, waitInAll);
}

TEST(timedWaits, EveryTimeHasADefinedAnswer)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    nxSemaphore semaphore(0);
    const auto takes = [&](const auto& time) { return semaphore.WaitFor(time); };
    for (const double past : {0.0, -1e-17, -1e300, -infinity, std::numeric_limits<double>::quiet_NaN()})
    {
        EXPECT_EQ(takes(duration<double>(past)), NX_ERR_THR_TIMEDOUT) << past;
        ASSERT_TRUE(semaphore.Post().IsOK());
        EXPECT_TRUE(takes(duration<double>(past)).IsOK()) << "a count that is free is taken all the same: " << past;
    }
    EXPECT_EQ(takes(hours::min()), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(semaphore.WaitUntil(Clock::time_point::min()), NX_ERR_THR_TIMEDOUT);
    const std::function<nxErrorEnum()> longWaits[] = {
        [&] { return takes(hours::max()); }, [&] { return takes(duration<double>(infinity)); },
        [&] { return takes(duration<float>(1e30F)); }, [&] { return semaphore.WaitUntil(Clock::time_point::max()); }};
    for (const auto& wait : longWaits)
    {
        const nxJoinedThread poster(
            [&]
            {
                std::this_thread::sleep_for(milliseconds(5));
                EXPECT_TRUE(semaphore.Post().IsOK());
            });
        EXPECT_TRUE(wait().IsOK());
    }
}

TEST(timedWaits, TakeTheLockThatIsFreedMeanwhileAndTellOfADeadOwner)
{
    for (const bool isRobust : {false, true})
    {
        nxMutex mutex;
        ASSERT_TRUE((isRobust ? mutex.InitialiseAsShared(true) : nxErrorEnum()).IsOK() && mutex.Lock().IsOK());
        nxJoinedThread waiter(
            [&]
            {
                EXPECT_TRUE(mutex.LockFor(hours(1)).IsOK());
                EXPECT_TRUE(isRobust || mutex.Unlock().IsOK());  // the owner of the robust mutex ends
            });
        std::this_thread::sleep_for(milliseconds(2));
        EXPECT_TRUE(mutex.Unlock().IsOK());
        waiter.join();
        EXPECT_EQ(mutex.LockFor(hours(1)), isRobust ? NX_ERR_THR_OWNER_DEAD : NX_ENUM_UNDEFINED);
        EXPECT_TRUE((!isRobust || mutex.Consistent().IsOK()) && mutex.Unlock().IsOK());
    }
}

TEST(timedWaits, AConditionWithItsMutexWakesAllAndHoldsTheMutexWhateverHappens)
{
    nxConditionMutex ready;
    bool isOpen = false;
    std::atomic<int> waiting{0};
    {
        const nxJoinedThread opener(
            [&]
            {
                EXPECT_TRUE(nxEventually([&] { return waiting == 3; }));
                const nxMutexGuard guard(ready);
                isOpen = true;
                EXPECT_TRUE(ready.SignalAll().IsOK());
            });
        nxInThreads(3,
                    [&]
                    {
                        const nxMutexGuard guard(ready);
                        ++waiting;
                        while (!isOpen)
                            EXPECT_TRUE(ready.WaitFor(hours(1)).IsOK());
                    });
    }
    for (const int error : {ETIMEDOUT, EINVAL})
    {
        const nxSystemCallFault fault("pthread_cond_clockwait", error);
        ASSERT_TRUE(ready.Lock().IsOK());
        EXPECT_EQ(ready.WaitFor(hours(1)), error == ETIMEDOUT ? NX_ERR_THR_TIMEDOUT : NX_ERR_UNSPECIFIED);
        EXPECT_TRUE(ready.Unlock().IsOK()) << "still held";
    }
}

TEST(timedWaits, EveryErrorOfTheSystemHasItsCode)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << "timed locks are tried there";
    nxMutex mutex;
    nxReaderWriterLock lock;
    nxSemaphore semaphore(0);
    const std::function<nxErrorEnum()> lockFor = [&] { return mutex.LockFor(hours(1)); },
                                       readFor = [&] { return lock.ReadLockFor(hours(1)); },
                                       writeFor = [&] { return lock.WriteLockFor(hours(1)); },
                                       waitFor = [&] { return semaphore.WaitFor(hours(1)); };
    const std::tuple<const char*, const char*, const std::function<nxErrorEnum()>&, int, nxEnumValue> rows[] = {
        {"pthread_mutex_trylock", "pthread_mutex_clocklock", lockFor, EOWNERDEAD, NX_ERR_THR_OWNER_DEAD},
        {"pthread_mutex_trylock", "pthread_mutex_clocklock", lockFor, EDEADLK, NX_ERR_UNSPECIFIED},
        {"pthread_rwlock_tryrdlock", "pthread_rwlock_clockrdlock", readFor, EDEADLK, NX_ERR_THR_LOCKED},
        {"pthread_rwlock_tryrdlock", "pthread_rwlock_clockrdlock", readFor, EAGAIN, NX_ERR_THR_RESOURCE},
        {"pthread_rwlock_trywrlock", "pthread_rwlock_clockwrlock", writeFor, EDEADLK, NX_ERR_THR_LOCKED},
        {"pthread_rwlock_trywrlock", "pthread_rwlock_clockwrlock", writeFor, EINVAL, NX_ERR_UNSPECIFIED},
        {"sem_trywait", "sem_clockwait", waitFor, EINTR, NX_ERR_THR_INTERRUPTED},
        {"sem_trywait", "sem_clockwait", waitFor, EINVAL, NX_ERR_UNSPECIFIED},
    };
    for (const auto& [tried, timed, wait, error, expected] : rows)
    {
        const std::string_view lastTry = tried;
        const nxSystemCallFault isTaken(tried, lastTry == "sem_trywait" ? EAGAIN : EBUSY), fault(timed, error);
        EXPECT_EQ(wait(), expected) << timed;
    }
}
