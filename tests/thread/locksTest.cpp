// Conditions, spin lock, reader-writer lock and barrier between threads.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "core/thread/nxBarrier.h"
#include "core/thread/nxCondition.h"
#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxReaderWriterLockGuard_Read.h"
#include "core/thread/nxReaderWriterLockGuard_Write.h"
#include "core/thread/nxSpinLockGuard.h"
#include "tests/support/nxSystemCallFault.h"
#include "tests/support/nxTestThreads.h"

namespace
{
// What `operation` returns in another thread.
template <class Operation>
nxErrorEnum InAnotherThread(Operation operation)
{
    nxErrorEnum error;
    nxInThreads(1, [&] { error = operation(); });
    return error;
}

template <class Wait>
nxErrorEnum UntilAccepted(Wait wait)
{
    nxErrorEnum error = wait();
    while (error == NX_ERR_UNSPECIFIED)
        error = wait();
    return error;
}

// Four threads, each of which adds to a plain number 20,000 times under `Guard`.
template <class Guard, class Lock>
void ExpectMutualExclusion()
{
    Lock lock;
    long count = 0;
    nxInThreads(4,
                [&]
                {
                    for (int n = 0; n < 20'000; ++n)
                    {
                        const Guard guard(lock);
                        ++count;
                    }
                });
    EXPECT_EQ(count, 80'000);
}
}  // namespace

TEST(locks, GuardsExcludeEachOther)
{
    ExpectMutualExclusion<nxMutexGuard, nxMutex>();
    ExpectMutualExclusion<nxSpinLockGuard, nxSpinLock>();
    ExpectMutualExclusion<nxReaderWriterLockGuard_Write, nxReaderWriterLock>();
}

TEST(nxConditionMutex, PassesEveryItemFromProducerToConsumers)
{
    constexpr int items = 2'000;
    nxConditionMutex ready;
    int queued = 0;
    int taken = 0;
    const auto produce = [&]
    {
        for (int i = 0; i < items; ++i)
        {
            const nxMutexGuard guard(ready);
            ++queued;
            EXPECT_TRUE(ready.Signal().IsOK());
        }
    };
    const auto consume = [&]
    {
        const nxMutexGuard guard(ready);
        while (taken != items)
        {
            while (queued == 0 && taken != items)
                EXPECT_TRUE(ready.Wait().IsOK());
            taken += queued;
            queued = 0;
        }
        ready.Signal();
    };
    nxInThreads(3, [&](int thread) { thread == 0 ? produce() : consume(); });
    EXPECT_EQ(taken, items);
}

TEST(nxConditionMutex, LockAndWaitHoldsTheMutexAfterwards)
{
    nxConditionMutex condition;
    std::atomic<bool> woken{false};
    const std::jthread waiter(
        [&]
        {
            EXPECT_TRUE(condition.LockAndWait().IsOK());
            woken = true;
            EXPECT_TRUE(condition.Unlock().IsOK());
        });
    while (!woken)
        condition.Signal();
}

TEST(nxConditionMutex, LockAndWaitTakesOverFromAHolderThatDied)
{
    nxConditionMutex condition;
    ASSERT_TRUE(condition.InitialiseAsShared(true).IsOK());
    std::thread([&]() NX_NO_THREAD_SAFETY_ANALYSIS { EXPECT_TRUE(condition.Lock().IsOK()); }).join();
    std::atomic<bool> woken{false};
    const std::jthread waiter(
        [&]
        {
            EXPECT_TRUE(condition.LockAndWait().IsOK());
            woken = true;
            EXPECT_TRUE(condition.Unlock().IsOK());
        });
    while (!woken)
        condition.Signal();
}

TEST(nxCondition, WakesOneOrAllAndForgetsSignalsThatNobodyWaitsFor)
{
    nxCondition condition;
    EXPECT_TRUE(condition.Signal().IsOK());
    EXPECT_EQ(UntilAccepted([&] { return condition.TimedWait(0.02); }), NX_ERR_THR_TIMEDOUT) << "the signal is lost";
    EXPECT_EQ(UntilAccepted([&] { return condition.TimedWait(std::chrono::milliseconds(2)); }), NX_ERR_THR_TIMEDOUT);
    for (const double past : {0.0, -3.0})
        EXPECT_EQ(condition.TimedWait(past), NX_ERR_THR_TIMEDOUT);

    std::atomic<int> waiting{3};
    const auto wait = [&](int thread)
    {
        const double seconds = thread == 0 ? 60.0 : 1e300;
        const nxErrorEnum error =
            thread == 2 ? condition.Wait() : UntilAccepted([&] { return condition.TimedWait(seconds); });
        EXPECT_TRUE(error.IsOK());
        --waiting;
    };
    const std::jthread signaller(
        [&]
        {
            while (waiting != 0)
                EXPECT_TRUE((waiting == 3 ? condition.Signal() : condition.SignalAll()).IsOK());
        });
    nxInThreads(3, wait);
}

TEST(nxConditionRaw, WaitsOnTheCallersMutex)
{
    nxConditionRaw condition;
    nxMutex mutex;
    bool ready = false;
    const std::jthread signaller(
        [&]
        {
            nxMutexGuard guard(mutex);
            ready = true;
            EXPECT_TRUE(condition.SignalAll().IsOK());
        });
    nxMutexGuard guard(mutex);
    while (!ready && condition.Wait(mutex).IsOK())
    {
    }
    EXPECT_EQ(UntilAccepted([&]() NX_NO_THREAD_SAFETY_ANALYSIS { return condition.TimedWait(mutex, 0.002); }),
              NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(InAnotherThread([&] { return mutex.TryLock(); }), NX_ERR_THR_LOCKED) << "held after the time-out";
}

TEST(locks, ConditionsRefuseADeadlineOfExactlyOneSecondOfNanoseconds)
{
    const nxFixedWallClock clock(1'700'000'000, 750'000'000);
    nxCondition condition;
    EXPECT_EQ(condition.TimedWait(0.25), NX_ERR_UNSPECIFIED);
    EXPECT_EQ(condition.TimedWait(0.249), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(condition.TimedWait(0.251), NX_ERR_THR_TIMEDOUT);
    nxConditionRaw raw;
    nxMutex mutex;
    nxMutexGuard guard(mutex);
    EXPECT_EQ(raw.TimedWait(mutex, 0.25), NX_ERR_UNSPECIFIED);
    EXPECT_EQ(raw.TimedWait(mutex, std::chrono::milliseconds(251)), NX_ERR_THR_TIMEDOUT);
}

TEST(nxSpinLock, TryLockOfALockThatIsHeld)
{
    nxSpinLock lock;
    ASSERT_TRUE(lock.InitialiseAsShared().IsOK());
    ASSERT_TRUE(lock.TryLock().IsOK());
    EXPECT_EQ(InAnotherThread([&] { return lock.TryLock(); }), NX_ERR_THR_LOCKED);
    lock.AssertHeld();
    EXPECT_TRUE(lock.Unlock().IsOK());
}

TEST(nxReaderWriterLock, ManyReadersOrOneWriter)
{
    nxReaderWriterLock lock;
    const auto tryRead = [&]() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        const nxErrorEnum error = lock.TryReadLock();
        return error.IsOK() ? lock.ReadUnlock() : error;
    };
    const auto tryWrite = [&]() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        const nxErrorEnum error = lock.TryWriteLock();
        return error.IsOK() ? lock.WriteUnlock() : error;
    };
    {
        nxReaderWriterLockGuard_Read reader(lock);
        EXPECT_TRUE(InAnotherThread(tryRead).IsOK());
        EXPECT_EQ(InAnotherThread(tryWrite), NX_ERR_THR_LOCKED);
    }
    {
        nxReaderWriterLockGuard_Write writer(lock);
        EXPECT_EQ(InAnotherThread(tryRead), NX_ERR_THR_LOCKED);
        EXPECT_EQ(InAnotherThread(tryWrite), NX_ERR_THR_LOCKED);
    }
    EXPECT_TRUE(InAnotherThread(tryWrite).IsOK());
}

TEST(nxReaderWriterLock, AWriterThatAsksAgainIsToldThatItIsLocked)
{
    nxReaderWriterLock lock;
    [&]() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        ASSERT_TRUE(lock.WriteLock().IsOK());
        EXPECT_EQ(lock.WriteLock(), NX_ERR_THR_LOCKED);
        EXPECT_EQ(lock.ReadLock(), NX_ERR_THR_LOCKED);
        {
            const nxReaderWriterLockGuard_Read inner(lock);
        }
        EXPECT_EQ(InAnotherThread([&] { return lock.TryReadLock(); }), NX_ERR_THR_LOCKED) << "a guard that failed";
        EXPECT_TRUE(lock.WriteUnlock().IsOK());
    }();
}

TEST(nxBarrier, NobodyPassesBeforeAllHaveCome)
{
    constexpr int rounds = 200;
    nxBarrier barrier(3);
    std::atomic<int> arrived{0};
    const auto walk = [&]
    {
        for (int round = 1; round <= rounds; ++round)
        {
            ++arrived;
            EXPECT_TRUE(barrier.Wait().IsOK());
            EXPECT_GE(arrived, 3 * round);
            EXPECT_TRUE(barrier.Wait().IsOK());
        }
    };
    nxInThreads(3, walk);
    // One of no threads or too many holds nobody.
    for (const unsigned count : {0U, 1U, 4294967295U})
        EXPECT_TRUE(nxBarrier(count).Wait().IsOK());
}
