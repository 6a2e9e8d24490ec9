// What each lock makes of the errors of its primitive.

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include "core/thread/nxBarrier.h"
#include "core/thread/nxCondition.h"
#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxMutex.h"
#include "core/thread/nxReaderWriterLock.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxSpinLock.h"
#include "core/thread/nxThread.h"
#include "tests/support/nxSanitizer.h"
#include "tests/support/nxSystemCallFault.h"

namespace
{
constexpr nxEnumValue ok = NX_ENUM_UNDEFINED;

struct Answer
{
    int error;
    nxEnumValue expected;
};

struct Row
{
    const char* name;
    const char* function;
    std::function<nxErrorEnum()> operation;
    std::vector<Answer> answers;
};

// Every row with every error, each time on an operation that would have succeeded.
void Check(const std::vector<Row>& rows)
{
    for (const Row& row : rows)
    {
        for (const Answer& answer : row.answers)
        {
            SCOPED_TRACE(std::string(row.name) + ", errno " + std::to_string(answer.error));
            const nxSystemCallFault fault(row.function, answer.error);
            EXPECT_EQ(row.operation(), answer.expected);
            EXPECT_EQ(fault.GetHits(), 1U);
        }
    }
}

class IdleThread : public nxThread
{
    nxErrorEnum Run() override { return nxErrorEnum(); }
};
}  // namespace

TEST(lockFaults, Mutex)
{
    nxMutex mutex;
    nxMutex shared;
    ASSERT_TRUE(shared.InitialiseAsShared(true).IsOK());
    const std::vector<Answer> lockAnswers{
        {EINVAL, NX_ERR_UNSPECIFIED}, {EAGAIN, NX_ERR_UNSPECIFIED}, {ENOTRECOVERABLE, NX_ERR_UNSPECIFIED}};
    Check({
        {"Lock", "pthread_mutex_lock", [&] { return mutex.Lock(); }, lockAnswers},
        {"Lock, robust", "pthread_mutex_trylock", [&] { return shared.Lock(); }, lockAnswers},
        {"TryLock", "pthread_mutex_trylock", [&] { return mutex.TryLock(); }, lockAnswers},
        {"TryLock", "pthread_mutex_trylock", [&] { return mutex.TryLock(); }, {{EBUSY, NX_ERR_THR_LOCKED}}},
        {"Unlock",
         "pthread_mutex_unlock",
         [&] { return mutex.Unlock(); },
         {{EPERM, NX_ERR_THR_MISMATCH}, {EINVAL, NX_ERR_UNSPECIFIED}}},
    });
    for (const char* const function : {"pthread_mutex_lock", "pthread_mutex_trylock"})
    {
        const nxSystemCallFault fault(function, EOWNERDEAD, {.executed = true});
        const bool tries = std::string(function) == "pthread_mutex_trylock";
        EXPECT_EQ(tries ? mutex.TryLock() : mutex.Lock(), NX_ERR_THR_OWNER_DEAD);
        mutex.AssertHeld();
        EXPECT_TRUE(mutex.Unlock().IsOK()) << "held in spite of the error";
    }
}

TEST(lockFaults, ARobustMutexThatIsTakenIsWaitedForInSlices)
{
    nxMutex mutex;
    ASSERT_TRUE(mutex.InitialiseAsShared(true).IsOK());
    // More tries than it takes until the waiter sleeps. Under the thread sanitizer a slice is a try, too.
    const nxSystemCallFault taken("pthread_mutex_trylock", EBUSY, {.times = 20});
    const nxSystemCallFault timedOut("pthread_mutex_clocklock", ETIMEDOUT, {.times = 3});
    EXPECT_TRUE(mutex.Lock().IsOK());
    if (nxUnderThreadSanitizer)
        EXPECT_EQ(taken.GetHits(), 20U);
    else
        EXPECT_EQ(timedOut.GetHits(), 3U);
    EXPECT_TRUE(mutex.Unlock().IsOK());
}

TEST(lockFaults, ConditionMutex)
{
    nxConditionMutex condition;
    const auto lockAndWait = [&]
    {
        const nxErrorEnum error = condition.LockAndWait();
        EXPECT_TRUE(condition.TryLock().IsOK()) << "a wait that fails leaves the mutex free";
        condition.AssertHeld();
        condition.Unlock();
        return error;
    };
    const auto lockThenWait = [&]
    {
        EXPECT_TRUE(condition.Lock().IsOK());
        return condition.Wait();
    };
    Check({
        {"LockAndWait", "pthread_cond_wait", lockAndWait, {{EINVAL, NX_ERR_UNSPECIFIED}}},
        {"Wait", "pthread_cond_wait", lockThenWait, {{EINVAL, NX_ERR_UNSPECIFIED}}},
        {"Wait, owner dead", "pthread_cond_wait", lockThenWait, {{EOWNERDEAD, NX_ERR_UNSPECIFIED}}},
        {"Signal", "pthread_cond_signal", [&] { return condition.Signal(); }, {{EINVAL, NX_ERR_UNSPECIFIED}}},
    });
    EXPECT_TRUE(condition.TryLock().IsOK());
    condition.AssertHeld();
    condition.Unlock();
}

TEST(lockFaults, Condition)
{
    nxCondition condition;
    const std::vector<Answer> unspecified{
        {EINVAL, NX_ERR_UNSPECIFIED}, {EPERM, NX_ERR_UNSPECIFIED}, {ETIMEDOUT, NX_ERR_UNSPECIFIED}};
    const std::vector<Answer> timed{{EINVAL, NX_ERR_UNSPECIFIED}, {ETIMEDOUT, NX_ERR_THR_TIMEDOUT}};
    const std::string timedWait = "pthread_cond_timedwait";
    const std::vector<std::pair<const char*, std::function<nxErrorEnum()>>> operations{
        {"pthread_cond_wait", [&] { return condition.Wait(); }},
        {"pthread_cond_timedwait", [&] { return condition.TimedWait(60); }},
        {"pthread_cond_signal", [&] { return condition.Signal(); }},
        {"pthread_cond_broadcast", [&] { return condition.SignalAll(); }},
    };
    for (const auto& [primitive, operation] : operations)
    {
        Check({{primitive, "pthread_mutex_lock", operation, unspecified},
               {primitive, primitive, operation, primitive == timedWait ? timed : unspecified}});
        EXPECT_TRUE(condition.Signal().IsOK()) << "the inner mutex is free after a failure";
    }
    const nxSystemCallFault unlock("pthread_mutex_unlock", EPERM, {.executed = true});
    EXPECT_EQ(condition.Signal(), NX_ERR_UNSPECIFIED);
}

TEST(lockFaults, ConditionRaw)
{
    nxConditionRaw condition;
    nxMutex mutex;
    mutex.Lock();
    Check({
        {"Wait", "pthread_cond_wait", [&] { return condition.Wait(mutex); }, {{EPERM, NX_ERR_UNSPECIFIED}}},
        {"TimedWait",
         "pthread_cond_timedwait",
         [&] { return condition.TimedWait(mutex, 60); },
         {{ETIMEDOUT, NX_ERR_THR_TIMEDOUT}, {EINVAL, NX_ERR_UNSPECIFIED}, {EOWNERDEAD, NX_ERR_UNSPECIFIED}}},
        {"Signal", "pthread_cond_signal", [&] { return condition.Signal(); }, {{EINVAL, NX_ERR_UNSPECIFIED}}},
        {"SignalAll", "pthread_cond_broadcast", [&] { return condition.SignalAll(); }, {{EINVAL, NX_ERR_UNSPECIFIED}}},
    });
    EXPECT_TRUE(mutex.Unlock().IsOK());
}

TEST(lockFaults, SpinLock)
{
    nxSpinLock lock;
    Check({
        {"Lock", "pthread_spin_lock", [&] { return lock.Lock(); }, {{EDEADLK, NX_ERR_UNSPECIFIED}}},
        {"TryLock",
         "pthread_spin_trylock",
         [&] { return lock.TryLock(); },
         {{EDEADLK, NX_ERR_THR_DEADLOCK}, {EBUSY, NX_ERR_THR_LOCKED}, {EINVAL, NX_ERR_UNSPECIFIED}}},
        {"Unlock", "pthread_spin_unlock", [&] { return lock.Unlock(); }, {{EPERM, NX_ERR_THR_MISMATCH}, {EINVAL, ok}}},
    });
}

TEST(lockFaults, Semaphore)
{
    nxSemaphore semaphore(1);
    const std::vector<Answer> waitAnswers{{ENOSYS, NX_ERR_THR_UNSUPPORTED},
                                          {EDEADLK, NX_ERR_THR_DEADLOCK},
                                          {EINTR, NX_ERR_THR_INTERRUPTED},
                                          {EINVAL, ok}};
    const std::vector<Answer> timedAnswers{{EINVAL, NX_ERR_INVALID_PARAMETER},
                                           {ETIMEDOUT, NX_ERR_THR_TIMEDOUT},
                                           {EDEADLK, NX_ERR_THR_DEADLOCK},
                                           {EINTR, NX_ERR_THR_INTERRUPTED},
                                           {ENOSYS, NX_ERR_THR_TIMEDOUT}};
    Check({
        {"Wait", "sem_wait", [&] { return semaphore.Wait(); }, waitAnswers},
        {"TryWait", "sem_trywait", [&] { return semaphore.TryWait(); }, waitAnswers},
        {"TryWait", "sem_trywait", [&] { return semaphore.TryWait(); }, {{EAGAIN, NX_ERR_THR_LOCKED}}},
        {"TimedWait", "sem_timedwait", [&] { return semaphore.TimedWait(1); }, timedAnswers},
        {"TimedWait_Microseconds", "sem_timedwait", [&] { return semaphore.TimedWait_Microseconds(1); }, timedAnswers},
        {"Post", "sem_post", [&] { return semaphore.Post(); }, {{EOVERFLOW, NX_ERR_UNSPECIFIED}}},
    });
    ASSERT_TRUE(semaphore.InitialiseAsShared(3).IsOK());
    {
        const nxSystemCallFault fault("sem_getvalue", EINVAL);
        EXPECT_EQ(semaphore.GetValue(), 0);
    }
    errno = EINTR;  // left over from something else
    EXPECT_TRUE(semaphore.Wait().IsOK());
    EXPECT_TRUE(semaphore.TryWait().IsOK());
    EXPECT_EQ(semaphore.GetValue(), 1);
}

TEST(lockFaults, ReaderWriterLock)
{
    nxReaderWriterLock lock;
    const std::vector<Answer> tryAnswers{{EBUSY, NX_ERR_THR_LOCKED}, {EAGAIN, NX_ERR_UNSPECIFIED}};
    const std::vector<Answer> unlockAnswers{{EPERM, NX_ERR_THR_PERMISSION}, {EINVAL, NX_ERR_UNSPECIFIED}};
    Check({
        {"ReadLock",
         "pthread_rwlock_rdlock",
         [&] { return lock.ReadLock(); },
         {{EDEADLK, NX_ERR_THR_LOCKED}, {EAGAIN, NX_ERR_THR_RESOURCE}, {EINVAL, NX_ERR_UNSPECIFIED}}},
        {"WriteLock",
         "pthread_rwlock_wrlock",
         [&] { return lock.WriteLock(); },
         {{EDEADLK, NX_ERR_THR_LOCKED}, {EAGAIN, NX_ERR_UNSPECIFIED}}},
        {"TryReadLock", "pthread_rwlock_tryrdlock", [&] { return lock.TryReadLock(); }, tryAnswers},
        {"TryWriteLock", "pthread_rwlock_trywrlock", [&] { return lock.TryWriteLock(); }, tryAnswers},
        {"ReadUnlock", "pthread_rwlock_unlock", [&] { return lock.ReadUnlock(); }, unlockAnswers},
        {"WriteUnlock", "pthread_rwlock_unlock", [&] { return lock.WriteUnlock(); }, unlockAnswers},
    });
}

TEST(lockFaults, Thread)
{
    IdleThread thread;
    const std::vector<Answer> createAnswers{{EAGAIN, NX_ERR_THR_RESOURCE},
                                            {EPERM, NX_ERR_THR_PERMISSION},
                                            {EINVAL, NX_ERR_THR_MISMATCH},
                                            {ENOMEM, NX_ERR_THR_MISMATCH}};
    Check({{"Create", "pthread_create", [&] { return thread.Create(); }, createAnswers},
           {"Create", "pthread_attr_init", [&] { return thread.Create(); }, createAnswers}});
    EXPECT_EQ(thread.Wait(), NX_ERR_THR_NOT_RUNNING) << "a start that failed is undone";

    ASSERT_TRUE(thread.Create().IsOK());
    Check({{"Wait",
            "pthread_join",
            [&] { return thread.Wait(); },
            {{EDEADLK, NX_ERR_THR_DEADLOCK},
             {EINVAL, NX_ERR_THR_MISMATCH},
             {ESRCH, NX_ERR_THR_MISMATCH},
             {ENOSYS, NX_ERR_THR_MISMATCH}}}});
    EXPECT_TRUE(thread.Wait().IsOK()) << "still started after a join that failed";
}
