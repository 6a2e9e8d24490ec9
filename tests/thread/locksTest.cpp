// SPDX-License-Identifier: Apache-2.0
// Mutexes, conditions, semaphores, spin lock, reader-writer lock and barrier between threads.

#include "core/thread/nxBarrier.h"
#include "core/thread/nxCondition.h"
#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxConditionalMutexGuard.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxReaderWriterLockGuard_Read.h"
#include "core/thread/nxReaderWriterLockGuard_Write.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxSpinLockGuard.h"
#include "tests/support/nxSystemTest.h"
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

// What another thread gets from `TryLock`; it gives the lock back.
template <class Lock>
nxErrorEnum TryFromAnotherThread(Lock& lock)
{
    return InAnotherThread(
        [&]
        {
            const nxErrorEnum error = lock.TryLock();
            return error.IsOK() ? lock.Unlock() : error;
        });
}

// The system refuses one deadline in a thousand, exactly a second of nanoseconds; such a wait is made again.
template <class Wait>
nxErrorEnum UntilAccepted(Wait wait)
{
    nxErrorEnum error = wait();
    while (error == NX_ERR_UNSPECIFIED || error == NX_ERR_INVALID_PARAMETER)
        error = wait();
    return error;
}

constexpr double infinity = std::numeric_limits<double>::infinity();
constinit nxMutex usableBeforeMain;
}  // namespace

TEST(nxMutex, ReportsMisuseInsteadOfHangingOrFreeing)
{
    nxMutexGuard early(usableBeforeMain);
    EXPECT_EQ(usableBeforeMain.Consistent(), NX_ERR_UNSPECIFIED) << "needs no repair";
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << "the sanitizer reports the misuse itself";
    nxMutex plain, shared, robust;
    ASSERT_TRUE(shared.InitialiseAsShared(false).IsOK() && robust.InitialiseAsShared(true).IsOK());
    for (nxMutex* const each : {&plain, &shared, &robust})
    {
        SCOPED_TRACE(each == &plain ? "plain" : each == &shared ? "shared" : "robust");
        nxMutex& mutex = *each;
        EXPECT_EQ(mutex.Unlock(), NX_ERR_THR_MISMATCH) << "never locked";
        ASSERT_TRUE(mutex.Lock().IsOK());
        EXPECT_EQ(mutex.Lock(), NX_ERR_UNSPECIFIED) << "held by this thread";
        EXPECT_EQ(mutex.TryLock(), each == &robust ? NX_ERR_UNSPECIFIED : NX_ERR_THR_LOCKED);
        EXPECT_EQ(InAnotherThread([&] { return mutex.Unlock(); }), NX_ERR_THR_MISMATCH);
        EXPECT_EQ(TryFromAnotherThread(mutex), NX_ERR_THR_LOCKED) << "still held after a stranger's unlock";
        EXPECT_TRUE(mutex.Unlock().IsOK());
        EXPECT_TRUE(TryFromAnotherThread(mutex).IsOK());
    }
}

TEST(nxMutex, RecursiveMutexNeedsAsManyUnlocks)
{
    nxMutex mutex(true);
    ASSERT_TRUE(mutex.Lock().IsOK() && mutex.TryLock().IsOK());
    for (const bool isLast : {false, true})
    {
        EXPECT_EQ(TryFromAnotherThread(mutex), NX_ERR_THR_LOCKED) << isLast;
        EXPECT_TRUE(mutex.Unlock().IsOK());
    }
    EXPECT_TRUE(TryFromAnotherThread(mutex).IsOK());
}

TEST(nxMutexGuard, UnlocksOnlyWhatItLocked)
{
    nxMutex mutex;
    {
        nxMutexGuard outer(mutex);
        {
            nxMutexGuard inner(mutex);
            nxConditionalMutexGuard conditional(mutex, true);
        }
        EXPECT_EQ(TryFromAnotherThread(mutex), NX_ERR_THR_LOCKED);
    }
    for (const bool lock : {false, true, false})
    {
        nxConditionalMutexGuard guard(mutex, lock);
        EXPECT_EQ(TryFromAnotherThread(mutex).IsOK(), !lock);
    }
}

TEST(nxConditionMutex, LockAndWaitHoldsTheMutexAfterwardsAndTakesOverFromAHolderThatDied)
{
    for (const bool holderDied : {false, true})
    {
        nxConditionMutex condition;
        if (holderDied)
        {
            ASSERT_TRUE(condition.InitialiseAsShared(true).IsOK());
            EXPECT_TRUE(InAnotherThread([&] { return condition.Lock(); }).IsOK());
        }
        std::atomic<bool> woken{false};
        const nxJoinedThread waiter(
            [&]
            {
                EXPECT_TRUE(condition.LockAndWait().IsOK());
                woken = true;
                EXPECT_TRUE(condition.Unlock().IsOK());
            });
        while (!woken)
        {
            nxConditionalMutexGuard whileItWaits(condition, !holderDied);
            EXPECT_TRUE(condition.Signal().IsOK());
        }
    }
}

TEST(nxCondition, WakesOneOrAllAndForgetsSignalsWithoutAWaiter)
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
    const nxJoinedThread signaller(
        [&]
        {
            while (waiting != 0)
                EXPECT_TRUE((waiting == 3 ? condition.Signal() : condition.SignalAll()).IsOK());
        });
    nxInThreads(3, wait);
}

TEST(locks, ADeadlineOfExactlyOneSecondOfNanosecondsIsRefused)
{
    nxCondition condition;
    nxConditionRaw raw;
    nxMutex mutex;
    nxMutexGuard guard(mutex);
    nxSemaphore semaphore(0);
    for (const long nanoseconds : {749'000'000L, 750'999'999L, 751'000'000L})  // only their milliseconds count
    {
        SCOPED_TRACE(nanoseconds);
        const nxFixedWallClock clock(1'700'000'000, nanoseconds);
        const bool isRefused = nanoseconds == 750'999'999;
        const nxEnumValue ofConditions = isRefused ? NX_ERR_UNSPECIFIED : NX_ERR_THR_TIMEDOUT;
        EXPECT_EQ(condition.TimedWait(0.25), ofConditions);
        EXPECT_EQ(raw.TimedWait(mutex, 0.25), ofConditions);
        EXPECT_EQ(raw.TimedWait(mutex, std::chrono::milliseconds(250)), ofConditions);
        EXPECT_EQ(TryFromAnotherThread(mutex), NX_ERR_THR_LOCKED) << "held after the time-out";
        const nxEnumValue ofSemaphores = isRefused ? NX_ERR_INVALID_PARAMETER : NX_ERR_THR_TIMEDOUT;
        EXPECT_EQ(semaphore.TimedWait(0.25), ofSemaphores);
        EXPECT_EQ(semaphore.TimedWait_Microseconds(250'000), ofSemaphores);
        EXPECT_TRUE(semaphore.Post().IsOK());
        EXPECT_EQ(semaphore.TimedWait(0.25).IsOK(), !isRefused) << "although there is a count";
        EXPECT_EQ(semaphore.TryWait().IsOK(), isRefused);
    }
}

TEST(nxSemaphore, CountsAndTimesOut)
{
    nxSemaphore semaphore(1);
    EXPECT_EQ(semaphore.GetValue(), 1);
    EXPECT_TRUE(semaphore.Wait().IsOK());
    EXPECT_EQ(semaphore.TryWait(), NX_ERR_THR_LOCKED);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(UntilAccepted([&] { return semaphore.TimedWait(0.05); }), NX_ERR_THR_TIMEDOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(48)) << "at most a clock tick early";
    EXPECT_EQ(UntilAccepted([&] { return semaphore.TimedWait(std::chrono::milliseconds(2)); }), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(UntilAccepted([&] { return semaphore.TimedWait_Microseconds(1500); }), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(semaphore.GetValue(), 0);
}

TEST(nxSemaphore, EveryTimeOutHasADefinedAnswer)
{
    nxSemaphore semaphore(0);
    for (const double past : {0.0, -0.0, -1e-17, -0.25, -5.0, -1e18, -9.3e18, -1e300, -infinity,
                              std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::denorm_min()})
    {
        SCOPED_TRACE(past);
        EXPECT_EQ(semaphore.TimedWait(past), NX_ERR_THR_TIMEDOUT);
        EXPECT_TRUE(semaphore.Post().IsOK());
        EXPECT_TRUE(semaphore.TimedWait(past).IsOK()) << "a count that is free is taken all the same";
    }
    for (const double seconds : {4294967294.5, 4294967295.0, 9.2e18, 9223372036854775807.0, 1e300, infinity})
    {
        SCOPED_TRACE(seconds);
        const nxJoinedThread poster(
            [&]
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                EXPECT_TRUE(semaphore.Post().IsOK());
            });
        EXPECT_TRUE(UntilAccepted([&] { return semaphore.TimedWait(seconds); }).IsOK()) << "waits for the count";
    }
    EXPECT_TRUE(semaphore.Post().IsOK());
    EXPECT_TRUE(semaphore.TimedWait_Microseconds(std::numeric_limits<unsigned long long>::max()).IsOK());
}

TEST(nxSemaphore, ACountThatIsTooLargeIsReportedOnTheStandardOutput)
{
    testing::internal::CaptureStdout();
    {
        nxSemaphore refused(2147483648U);
        EXPECT_EQ(refused.TryWait(), NX_ERR_THR_LOCKED) << "no count, no crash";
        EXPECT_TRUE(refused.InitialiseAsShared(2147483647U).IsOK());
        EXPECT_EQ(refused.Post(), NX_ERR_UNSPECIFIED) << "full";
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              testing::PrintToString(EINVAL).insert(0, "sem_init err -1, ").append("\n"));
}

TEST(nxSpinLock, TryLockOfALockThatIsHeld)
{
    nxSpinLock lock;
    ASSERT_TRUE(lock.TryLock().IsOK());
    EXPECT_EQ(TryFromAnotherThread(lock), NX_ERR_THR_LOCKED);
    EXPECT_TRUE(lock.Unlock().IsOK());
}

TEST(nxReaderWriterLock, ManyReadersOrOneWriterThatIsToldWhenItAsksAgain)
{
    nxReaderWriterLock lock;
    const auto tryRead = [&]
    {
        const nxErrorEnum error = lock.TryReadLock();
        return error.IsOK() ? lock.ReadUnlock() : error;
    };
    const auto tryWrite = [&]
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
        EXPECT_EQ(lock.WriteLock(), NX_ERR_THR_LOCKED);
        EXPECT_EQ(lock.ReadLock(), NX_ERR_THR_LOCKED);
        {
            const nxReaderWriterLockGuard_Read fails(lock);
        }
        EXPECT_EQ(InAnotherThread(tryRead), NX_ERR_THR_LOCKED) << "still held after a guard that failed";
        EXPECT_EQ(InAnotherThread(tryWrite), NX_ERR_THR_LOCKED);
    }
    EXPECT_TRUE(InAnotherThread(tryWrite).IsOK());
}

TEST(nxBarrier, NoThreadPassesBeforeAllHaveCome)
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
    // A barrier of no threads, and one of too many, holds no thread.
    for (const unsigned count : {0U, 1U, 4294967295U})
        EXPECT_TRUE(nxBarrier(count).Wait().IsOK());
}
