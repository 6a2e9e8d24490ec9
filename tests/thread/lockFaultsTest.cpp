// SPDX-License-Identifier: Apache-2.0
// What locks and threads make of the errors of their primitives: the code that they return and the record that they write.

#include <algorithm>

#include "core/thread/nxCondition.h"
#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxReaderWriterLock.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxSpinLock.h"
#include "core/thread/nxThread.h"
#include "tests/support/nxSystemTest.h"

namespace
{
using Answers = std::vector<std::pair<int, nxEnumValue>>;
using Operation = std::function<nxErrorEnum()>;

// An operation that would succeed, the function that fails in it, and what the operation returns then: for the errors
// that have a code of their own, and for every other one.
struct Row
{
    const char* function;
    Operation operation;
    Answers answers = {};
    nxEnumValue otherwise = NX_ERR_UNSPECIFIED;
};

constexpr int commonErrors[] = {EINVAL, EAGAIN, EPERM, ENOMEM, ENOTRECOVERABLE, ETIMEDOUT};

void Check(const Row& row)
{
    Answers answers = row.answers;
    for (const int error : commonErrors)
        if (std::none_of(answers.begin(), answers.end(), [error](const auto& answer) { return answer.first == error; }))
            answers.emplace_back(error, row.otherwise);
    for (const auto& [error, expected] : answers)
    {
        SCOPED_TRACE(error);
        const nxSystemCallFault fault(row.function, error);
        EXPECT_EQ(row.operation(), expected);
        EXPECT_EQ(fault.GetHits(), 1U);
    }
}

class IdleThread : public nxThread
{
    nxErrorEnum Run() override { return nxErrorEnum(); }
};
}  // namespace

TEST(lockFaults, EveryErrorHasItsCode)
{
    nxMutex mutex, shared, held;
    nxConditionMutex both;
    nxCondition condition;
    nxConditionRaw raw;
    nxSpinLock spinLock;
    nxSemaphore semaphore(1);
    nxReaderWriterLock lock;
    IdleThread thread, running;
    ASSERT_TRUE(shared.InitialiseAsShared(true).IsOK() && held.Lock().IsOK() && running.Create().IsOK());
    const auto lockAndWait = [&]
    {
        const nxErrorEnum error = both.LockAndWait();
        EXPECT_TRUE(both.TryLock().IsOK()) << "a wait that fails leaves the mutex free";
        EXPECT_TRUE(both.Unlock().IsOK());
        return error;
    };
    const auto lockThenWait = [&]
    {
        EXPECT_TRUE(both.Lock().IsOK());
        return both.Wait();
    };
    const Operation wait = [&] { return condition.Wait(); }, timedWait = [&] { return condition.TimedWait(60); },
                    signal = [&] { return condition.Signal(); }, signalAll = [&] { return condition.SignalAll(); };
    const Answers busy{{EBUSY, NX_ERR_THR_LOCKED}}, notOwner{{EPERM, NX_ERR_THR_MISMATCH}},
        timedOut{{ETIMEDOUT, NX_ERR_THR_TIMEDOUT}, {EOWNERDEAD, NX_ERR_UNSPECIFIED}},
        deadOwner{{EOWNERDEAD, NX_ERR_UNSPECIFIED}}, notPermitted{{EPERM, NX_ERR_THR_PERMISSION}},
        semaphoreWait{
            {ENOSYS, NX_ERR_THR_UNSUPPORTED}, {EDEADLK, NX_ERR_THR_DEADLOCK}, {EINTR, NX_ERR_THR_INTERRUPTED}},
        semaphoreTimed{{EINVAL, NX_ERR_INVALID_PARAMETER},
                       {EDEADLK, NX_ERR_THR_DEADLOCK},
                       {EINTR, NX_ERR_THR_INTERRUPTED},
                       {ENOSYS, NX_ERR_THR_TIMEDOUT}},
        start{{EAGAIN, NX_ERR_THR_RESOURCE}, {EPERM, NX_ERR_THR_PERMISSION}};
    Answers semaphoreTry = semaphoreWait;
    semaphoreTry.emplace_back(EAGAIN, NX_ERR_THR_LOCKED);
    const Row rows[] = {
        {"pthread_mutex_lock", [&] { return mutex.Lock(); }},
        {"pthread_mutex_trylock", [&] { return shared.Lock(); }},
        {"pthread_mutex_trylock", [&] { return mutex.TryLock(); }, busy},
        {"pthread_mutex_unlock", [&] { return mutex.Unlock(); }, notOwner},
        {"pthread_cond_wait", lockAndWait, deadOwner},
        {"pthread_cond_wait", lockThenWait, deadOwner},
        {"pthread_cond_signal", [&] { return both.Signal(); }},
        {"pthread_cond_wait", wait},
        {"pthread_mutex_lock", wait},
        {"pthread_cond_timedwait", timedWait, timedOut},
        {"pthread_mutex_lock", timedWait},
        {"pthread_cond_signal", signal},
        {"pthread_mutex_lock", signal},
        {"pthread_cond_broadcast", signalAll},
        {"pthread_mutex_lock", signalAll},
        {"pthread_cond_wait", [&] { return raw.Wait(held); }},
        {"pthread_cond_timedwait", [&] { return raw.TimedWait(held, 60); }, timedOut},
        {"pthread_cond_signal", [&] { return raw.Signal(); }},
        {"pthread_cond_broadcast", [&] { return raw.SignalAll(); }},
        {"pthread_spin_lock", [&] { return spinLock.Lock(); }, {{EDEADLK, NX_ERR_UNSPECIFIED}}},
        {"pthread_spin_trylock",
         [&] { return spinLock.TryLock(); },
         {{EDEADLK, NX_ERR_THR_DEADLOCK}, {EBUSY, NX_ERR_THR_LOCKED}}},
        {"pthread_spin_unlock", [&] { return spinLock.Unlock(); }, notOwner, NX_ENUM_UNDEFINED},
        {"sem_wait", [&] { return semaphore.Wait(); }, semaphoreWait, NX_ENUM_UNDEFINED},
        {"sem_trywait", [&] { return semaphore.TryWait(); }, semaphoreTry, NX_ENUM_UNDEFINED},
        {"sem_timedwait", [&] { return semaphore.TimedWait(1); }, semaphoreTimed, NX_ERR_THR_TIMEDOUT},
        {"sem_timedwait", [&] { return semaphore.TimedWait_Microseconds(1); }, semaphoreTimed, NX_ERR_THR_TIMEDOUT},
        {"sem_post", [&] { return semaphore.Post(); }, {{EOVERFLOW, NX_ERR_UNSPECIFIED}}},
        {"pthread_rwlock_rdlock",
         [&] { return lock.ReadLock(); },
         {{EDEADLK, NX_ERR_THR_LOCKED}, {EAGAIN, NX_ERR_THR_RESOURCE}}},
        {"pthread_rwlock_wrlock", [&] { return lock.WriteLock(); }, {{EDEADLK, NX_ERR_THR_LOCKED}}},
        {"pthread_rwlock_tryrdlock", [&] { return lock.TryReadLock(); }, busy},
        {"pthread_rwlock_trywrlock", [&] { return lock.TryWriteLock(); }, busy},
        {"pthread_rwlock_unlock", [&] { return lock.ReadUnlock(); }, notPermitted},
        {"pthread_rwlock_unlock", [&] { return lock.WriteUnlock(); }, notPermitted},
        {"pthread_create", [&] { return thread.Create(); }, start, NX_ERR_THR_MISMATCH},
        {"pthread_attr_init", [&] { return thread.Create(); }, start, NX_ERR_THR_MISMATCH},
        {"pthread_join", [&] { return running.Wait(); }, {{EDEADLK, NX_ERR_THR_DEADLOCK}}, NX_ERR_THR_MISMATCH},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows << ", " << row.function);
        Check(row);
    }
    EXPECT_TRUE(both.TryLock().IsOK() && both.Unlock().IsOK() && held.Unlock().IsOK());
    EXPECT_EQ(thread.Wait(), NX_ERR_THR_NOT_RUNNING) << "a start that failed is undone";
    EXPECT_TRUE(running.Wait().IsOK()) << "still started after a join that failed";
}

TEST(lockFaults, WhatIsDoneInSpiteOfAnErrorAndErrorsLeftOver)
{
    nxCondition condition;
    {
        const nxSystemCallFault unlock("pthread_mutex_unlock", EPERM, {.executed = true});
        EXPECT_EQ(condition.Signal(), NX_ERR_UNSPECIFIED);
    }
    nxSemaphore semaphore(3);
    {
        const nxSystemCallFault fault("sem_getvalue", EINVAL);
        EXPECT_EQ(semaphore.GetValue(), 0);
    }
    errno = EINTR;  // left over from something else
    EXPECT_TRUE(semaphore.Wait().IsOK() && semaphore.TryWait().IsOK());
    EXPECT_EQ(semaphore.GetValue(), 1);
}

TEST(lockFaults, ARobustMutexThatIsTakenIsWaitedForInSlices)
{
    nxMutex mutex;
    ASSERT_TRUE(mutex.InitialiseAsShared(true).IsOK());
    // More tries than it takes until the waiter sleeps. Under the thread sanitizer a slice is a try, too.
    const nxSystemCallFault taken("pthread_mutex_trylock", EBUSY, {.times = 20});
    const nxSystemCallFault timedOut("pthread_mutex_clocklock", ETIMEDOUT, {.times = 3});
    EXPECT_TRUE(mutex.Lock().IsOK());
    EXPECT_EQ(nxUnderThreadSanitizer ? taken.GetHits() : timedOut.GetHits(), nxUnderThreadSanitizer ? 20U : 3U);
    EXPECT_TRUE(mutex.Unlock().IsOK());
}

TEST(lockFaults, CreationInSharedMemoryReportsItsFailure)
{
    nxMutex mutex;
    nxConditionRaw condition;
    nxSpinLock spinLock;
    nxSemaphore semaphore(0);
    const std::string code = std::to_string(ENOMEM), robust = "INF 107 Set Robust attribute. result: ",
                      mutexFailed = "ERR 127 Mutex could not be created in shared memory. Result : " + code;
    using Records = std::vector<std::string>;
    struct Creation
    {
        const char* source;
        Operation create;
        nxEnumValue failure;
        std::vector<const char*> functions;  // each of which fails in turn
        Records onFailure, onSuccess = {};
    };
    const Creation rows[] = {
        {"core/trunk/nxMutex",
         [&] { return mutex.InitialiseAsShared(false); },
         NX_ERR_UNSPECIFIED,
         {"pthread_mutexattr_init", "pthread_mutexattr_settype", "pthread_mutexattr_setpshared", "pthread_mutex_init",
          "pthread_mutexattr_destroy"},
         {mutexFailed}},
        {"core/trunk/nxMutex",
         [&] { return mutex.InitialiseAsShared(true); },
         NX_ERR_UNSPECIFIED,
         {"pthread_mutexattr_setrobust"},
         {robust + code, mutexFailed},
         {robust + "0"}},
        {"core/trunk/nxConditionRaw",
         [&] { return condition.InitialiseAsShared(); },
         NX_ERR_UNSPECIFIED,
         {"pthread_condattr_init", "pthread_condattr_setpshared", "pthread_cond_init", "pthread_condattr_destroy"},
         {"ERR 62 Condition could not be created in shared memory. Result : " + code}},
        {"core/trunk/nxSpinLock",
         [&] { return spinLock.InitialiseAsShared(); },
         NX_ERR_INTERNAL,
         {"pthread_spin_init"},
         {"INF 43 Semaphore error"}},
        {"core/trunk/nxSemaphore",
         [&] { return semaphore.InitialiseAsShared(1); },
         NX_ERR_THR_UNSUPPORTED,
         {"sem_init"},
         {"ERR 87 Semaphore could not be created in shared memory. Result : -1"}},
    };
    nxCapturingLogDevice log;
    for (const Creation& row : rows)
    {
        EXPECT_TRUE(row.create().IsOK());
        EXPECT_EQ(TakeReports(log, row.source), row.onSuccess);
        for (const char* const function : row.functions)
        {
            SCOPED_TRACE(function);
            const nxSystemCallFault fault(function, ENOMEM);
            EXPECT_EQ(row.create(), row.failure);
            EXPECT_EQ(TakeReports(log, row.source), row.onFailure);
        }
    }
}
