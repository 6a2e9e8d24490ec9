// SPDX-License-Identifier: Apache-2.0
// Locks in memory that processes share, with processes that are killed.

#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxSpinLockGuard.h"
#include "tests/support/nxSystemTest.h"

namespace
{
struct Shared
{
    nxMutex mutex;
    nxSpinLock spinLock;
    nxSemaphore semaphore{0};
    nxConditionRaw condition;
    bool go = false;
    int count = 0;
};

// Leaves the mutex locked by a process that has been killed.
void LockAndDie(Shared& shared)
{
    nxStage stage;
    nxChildProcess owner(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            EXPECT_TRUE(shared.mutex.Lock().IsOK());
            stage.Reach(1);
            pause();
        });
    stage.WaitFor(1);
    EXPECT_EQ(shared.mutex.TryLock(), NX_ERR_THR_LOCKED);
    owner.Kill();
}
}  // namespace

TEST(sharedLocks, ARobustMutexOutlivesOwnersThatAreKilled)
{
    nxSharedMemory<Shared> shared;
    nxMutex& mutex = shared->mutex;
    ASSERT_TRUE(mutex.InitialiseAsShared(true).IsOK());
    for (const bool tries : {false, true})
    {
        LockAndDie(*shared);
        EXPECT_EQ(tries ? mutex.TryLock() : mutex.Lock(), NX_ERR_THR_OWNER_DEAD);
        mutex.AssertHeld();
        EXPECT_TRUE(
            nxInChild([&] { EXPECT_EQ(mutex.TryLock(), NX_ERR_THR_LOCKED) << "held by the process that was told"; }));
        EXPECT_TRUE(mutex.Consistent().IsOK());
        EXPECT_TRUE(mutex.Unlock().IsOK());
    }
    LockAndDie(*shared);
    {
        using Log = nxCapturingLogDevice;
        const Log log;
        const nxMutexGuard guard(mutex);
        EXPECT_TRUE(log.WaitFor(Log::From("core/trunk/nxMutexGuard") && Log::HasLevel(NX_LOG_LEVEL_ERROR))) << log;
    }
    EXPECT_TRUE(mutex.TryLock().IsOK()) << "the guard has made it consistent";
    mutex.AssertHeld();
    EXPECT_TRUE(mutex.Unlock().IsOK());

    LockAndDie(*shared);
    EXPECT_EQ(mutex.Lock(), NX_ERR_THR_OWNER_DEAD);
    EXPECT_TRUE(mutex.Unlock().IsOK()) << "without making it consistent";
    // No process can have it any more, and none hangs or crashes because of it.
    const auto isLost = [&]() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        for (int round = 0; round < 2; ++round)
        {
            EXPECT_EQ(round == 0 ? mutex.TryLock() : mutex.Lock(), NX_ERR_UNSPECIFIED);
            if (!nxUnderThreadSanitizer)  // which tells of the unlock by itself
            {
                EXPECT_EQ(mutex.Unlock(), NX_ERR_THR_MISMATCH);
            }
        }
    };
    isLost();
    EXPECT_TRUE(nxInChild(isLost));
    isLost();
}

TEST(sharedLocks, ProcessesExcludeAndWakeEachOther)
{
    constexpr int rounds = 2'000;
    nxSharedMemory<Shared> shared;
    ASSERT_TRUE(shared->mutex.InitialiseAsShared(false).IsOK());
    ASSERT_TRUE(shared->spinLock.InitialiseAsShared().IsOK());
    ASSERT_TRUE(shared->condition.InitialiseAsShared().IsOK());
    ASSERT_TRUE(shared->semaphore.InitialiseAsShared(0).IsOK());
    nxChildProcess waiter(
        [&]
        {
            nxMutexGuard guard(shared->mutex);
            while (!shared->go && shared->condition.Wait(shared->mutex).IsOK())
            {
            }
            EXPECT_TRUE(shared->semaphore.Post().IsOK());
        });
    const auto add = [&]
    {
        for (int i = 0; i < rounds; ++i)
        {
            nxSpinLockGuard guard(shared->spinLock);
            ++shared->count;
        }
    };
    {
        nxChildProcess adder(add);
        add();
        EXPECT_TRUE(adder.Succeeds());
    }
    EXPECT_EQ(shared->count, 2 * rounds);
    EXPECT_EQ(shared->semaphore.TryWait(), NX_ERR_THR_LOCKED) << "the waiter waits";
    {
        nxMutexGuard guard(shared->mutex);
        shared->go = true;
        EXPECT_TRUE(shared->condition.SignalAll().IsOK());
    }
    EXPECT_TRUE(shared->semaphore.Wait().IsOK());
    EXPECT_TRUE(waiter.Succeeds());
}
