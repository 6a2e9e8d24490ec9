#include "core/thread/nxMutex.h"

#include <gtest/gtest.h>

#include "core/thread/nxConditionalMutexGuard.h"
#include "core/thread/nxMutexGuard.h"
#include "tests/support/nxSanitizer.h"
#include "tests/support/nxTestThreads.h"

namespace
{
// What another thread gets from `TryLock`; it gives the mutex back.
nxErrorEnum TryFromAnotherThread(nxMutex& mutex)
{
    nxErrorEnum error;
    nxInThreads(1,
                [&]
                {
                    error = mutex.TryLock();
                    if (error.IsOK())
                        mutex.Unlock();
                });
    return error;
}

constinit nxMutex usableBeforeMain;
}  // namespace

TEST(nxMutex, ReportsMisuseInsteadOfHangingOrFreeing)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << "the sanitizer reports the misuse itself";
    nxMutex mutex;
    EXPECT_EQ(mutex.Unlock(), NX_ERR_THR_MISMATCH) << "never locked";
    ASSERT_TRUE(mutex.Lock().IsOK());
    EXPECT_EQ(mutex.Lock(), NX_ERR_UNSPECIFIED) << "held by this thread";
    EXPECT_EQ(mutex.TryLock(), NX_ERR_THR_LOCKED);
    nxInThreads(1, [&] { EXPECT_EQ(mutex.Unlock(), NX_ERR_THR_MISMATCH); });
    EXPECT_EQ(TryFromAnotherThread(mutex), NX_ERR_THR_LOCKED) << "still held after a stranger's unlock";
    EXPECT_TRUE(mutex.Unlock().IsOK());
    EXPECT_TRUE(TryFromAnotherThread(mutex).IsOK());
}

TEST(nxMutex, RecursiveMutexNeedsAsManyUnlocks)
{
    nxMutex mutex(true);
    ASSERT_TRUE(mutex.Lock().IsOK());
    ASSERT_TRUE(mutex.TryLock().IsOK());
    EXPECT_TRUE(mutex.Unlock().IsOK());
    EXPECT_EQ(TryFromAnotherThread(mutex), NX_ERR_THR_LOCKED);
    EXPECT_TRUE(mutex.Unlock().IsOK());
    EXPECT_TRUE(TryFromAnotherThread(mutex).IsOK());
}

TEST(nxMutex, ConsistentIsRefusedOnAMutexThatNeedsNoRepair)
{
    nxMutexGuard guard(usableBeforeMain);
    EXPECT_EQ(usableBeforeMain.Consistent(), NX_ERR_UNSPECIFIED);
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
    for (const bool lock : {false, true})
    {
        EXPECT_TRUE(TryFromAnotherThread(mutex).IsOK());
        nxConditionalMutexGuard guard(mutex, lock);
        EXPECT_EQ(TryFromAnotherThread(mutex).IsOK(), !lock);
    }
    EXPECT_TRUE(TryFromAnotherThread(mutex).IsOK());
}
