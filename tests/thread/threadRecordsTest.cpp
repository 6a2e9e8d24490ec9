// What the locks and threads write to the log, to the byte.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxMutex.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxSpinLock.h"
#include "core/thread/nxThread.h"
#include "core/thread/nxThreadIndex.h"
#include "core/thread/nxThreadSpecificMemoryBuffer.h"
#include "tests/support/nxRecordedLog.h"
#include "tests/support/nxSystemCallFault.h"

namespace
{
using Records = std::vector<std::string>;

template <class Thrown>
class Thrower : public nxThread
{
public:
    explicit Thrower(Thrown thrown) : _thrown(thrown) {}
    nxErrorEnum Run() override { throw _thrown; }

private:
    Thrown _thrown;
};

// The part of a record after its line number, which is the library's own business where no position is promised.
std::string WithoutLine(const std::string& record)
{
    const std::size_t line = record.find(' ');
    return record.substr(0, line) + record.substr(record.find(' ', line + 1));
}
}  // namespace

TEST(threadRecords, CreationInSharedMemory)
{
    struct Row
    {
        const char* source;
        const char* failing;  // function that fails, or null
        int error;
        std::function<bool()> create;
        Records expected;
    };
    const auto robust = [] { return nxMutex().InitialiseAsShared(true).IsOK(); };
    const auto plain = [] { return nxMutex().InitialiseAsShared(false).IsOK(); };
    const auto condition = [] { return nxConditionRaw().InitialiseAsShared().IsOK(); };
    nxSpinLock spinLock;
    const auto spin = [&] { return spinLock.InitialiseAsShared().IsOK(); };
    nxSemaphore countingSemaphore(0);
    const auto semaphore = [&] { return countingSemaphore.InitialiseAsShared(1).IsOK(); };
    const char* const mutexFailed = "ERR 127 Mutex could not be created in shared memory. Result : ";
    const std::string conditionFailed = "ERR 62 Condition could not be created in shared memory. Result : ";
    const std::vector<Row> rows{
        {"core/trunk/nxMutex", nullptr, 0, plain, {}},
        {"core/trunk/nxMutex", nullptr, 0, robust, {"INF 107 Set Robust attribute. result: 0"}},
        {"core/trunk/nxMutex", "pthread_mutexattr_init", ENOMEM, robust, {mutexFailed + std::to_string(ENOMEM)}},
        {"core/trunk/nxMutex",
         "pthread_mutexattr_setrobust",
         EINVAL,
         robust,
         {"INF 107 Set Robust attribute. result: " + std::to_string(EINVAL), mutexFailed + std::to_string(EINVAL)}},
        {"core/trunk/nxMutex", "pthread_mutex_init", EAGAIN, plain, {mutexFailed + std::to_string(EAGAIN)}},
        {"core/trunk/nxMutex", "pthread_mutexattr_destroy", EINVAL, plain, {mutexFailed + std::to_string(EINVAL)}},
        {"core/trunk/nxConditionRaw", nullptr, 0, condition, {}},
        {"core/trunk/nxConditionRaw", "pthread_cond_init", EBUSY, condition, {conditionFailed + std::to_string(EBUSY)}},
        {"core/trunk/nxSpinLock", nullptr, 0, spin, {}},
        {"core/trunk/nxSpinLock", "pthread_spin_init", EAGAIN, spin, {"INF 43 Semaphore error"}},
        {"core/trunk/nxSemaphore",
         "sem_init",
         ENOSYS,
         semaphore,
         {"ERR 87 Semaphore could not be created in shared memory. Result : -1"}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(std::string(row.source) + ' ' + (row.failing == nullptr ? "succeeds" : row.failing));
        nxRecordedLog log(row.source);
        if (row.failing == nullptr)
        {
            EXPECT_TRUE(row.create());
        }
        else
        {
            const nxSystemCallFault fault(row.failing, row.error);
            EXPECT_FALSE(row.create());
        }
        EXPECT_EQ(log.WaitFor(row.expected.size()), row.expected);
    }
}

TEST(threadRecords, GuardOfAMutexWhoseOwnerDied)
{
    nxRecordedLog log("core/trunk/nxMutexGuard");
    nxMutex mutex;
    {
        const nxSystemCallFault fault("pthread_mutex_lock", EOWNERDEAD, {.executed = true});
        const nxSystemCallFault consistent("pthread_mutex_consistent", 0, {.times = 0});
        nxMutexGuard guard(mutex);
        EXPECT_EQ(mutex.TryLock(), NX_ERR_THR_LOCKED);
    }
    EXPECT_TRUE(mutex.TryLock().IsOK()) << "the guard has unlocked";
    mutex.AssertHeld();
    mutex.Unlock();
    const Records records = log.WaitFor(1);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].substr(0, 4), "ERR ");
}

TEST(threadRecords, ExceptionThatLeavesRun)
{
    nxRecordedLog log("core/trunk/nxThread");
    Thrower<std::runtime_error> thrower(std::runtime_error("out of prices"));
    Thrower<int> other(7);
    for (nxThread* const thread : {static_cast<nxThread*>(&thrower), static_cast<nxThread*>(&other)})
    {
        ASSERT_TRUE(thread->Create().IsOK());
        EXPECT_TRUE(thread->Wait().IsOK());
    }
    const Records records = log.WaitFor(2);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(WithoutLine(records[0]), "FTL A thread ended with an exception: out of prices");
    EXPECT_EQ(WithoutLine(records[1]), "FTL A thread ended with an exception: of unknown type");
}

TEST(threadRecords, PerThreadBuffer)
{
    nxRecordedLog log("core/trunk/nxThreadSpecificMemoryBuffer");
    nxThreadSpecificMemoryBuffer buffer(256);
    std::ostringstream address;
    address << "0x" << std::hex << reinterpret_cast<std::uintptr_t>(buffer.GetData());
    for (int i = 0; i < 3; ++i)
        buffer.GrowBuffer();
    buffer.GrowBufferToSize(100);

    const std::string growing = "Growing thread-specific memory buffer. Size: ";
    const Records expected{"INF 95 Allocated thread-specific memory buffer. Thread index: " +
                               std::to_string(nxThreadIndex::GetIndexOfCurrentThread()) +
                               ", Size: 256, Address: " + address.str(),
                           "INF 44 " + growing + "256 -> 512", "INF 44 " + growing + "512 -> 768",
                           "INF 44 " + growing + "768 -> 1024", "INF 60 " + growing + "1024 -> 100"};
    EXPECT_EQ(log.WaitFor(expected.size()), expected);
}
