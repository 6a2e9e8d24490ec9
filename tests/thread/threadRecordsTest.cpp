// What the locks and threads write to the log, to the byte.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/testing/nxCapturingLogDevice.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxMutex.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxSpinLock.h"
#include "core/thread/nxThread.h"
#include "core/thread/nxThreadIndex.h"
#include "core/thread/nxThreadSpecificMemoryBuffer.h"
#include "tests/support/nxSystemCallFault.h"

namespace
{
using Records = std::vector<std::string>;

// What a source file has reported so far, as "<level> <line> <text>".
Records ReportsOf(const nxCapturingLogDevice& log, const std::string& source)
{
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(20.0);
    Records reports;
    for (const nxCapturedRecord& record : log.GetRecords())
        if (record.sourceFile == source)
            reports.push_back(record.level.GetShortDescription() + ' ' + std::to_string(record.line) + ' ' +
                              record.text);
    return reports;
}

class FunctionThread : public nxThread
{
public:
    explicit FunctionThread(std::function<void()> body) : _body(std::move(body)) {}

private:
    nxErrorEnum Run() override
    {
        _body();
        return nxErrorEnum();
    }
    std::function<void()> _body;
};
}  // namespace

TEST(threadRecords, CreationInSharedMemory)
{
    nxMutex mutex;
    nxConditionRaw condition;
    nxSpinLock spinLock;
    nxSemaphore semaphore(0);
    const auto plain = [&] { return mutex.InitialiseAsShared(false); };
    const auto robust = [&] { return mutex.InitialiseAsShared(true); };
    const std::string twelve = std::to_string(ENOMEM);
    const std::string mutexFailed = "ERR 127 Mutex could not be created in shared memory. Result : " + twelve;
    struct Row
    {
        const char* source;
        std::function<nxErrorEnum()> create;
        Records onSuccess;
        nxEnumValue failure;
        Records onFailure;
        std::vector<const char*> functions;  // of which each in turn fails
    };
    const Row rows[] = {
        {"core/trunk/nxMutex",
         plain,
         {},
         NX_ERR_UNSPECIFIED,
         {mutexFailed},
         {"pthread_mutexattr_init", "pthread_mutexattr_settype", "pthread_mutexattr_setpshared", "pthread_mutex_init",
          "pthread_mutexattr_destroy"}},
        {"core/trunk/nxMutex",
         robust,
         {"INF 107 Set Robust attribute. result: 0"},
         NX_ERR_UNSPECIFIED,
         {"INF 107 Set Robust attribute. result: " + twelve, mutexFailed},
         {"pthread_mutexattr_setrobust"}},
        {"core/trunk/nxConditionRaw",
         [&] { return condition.InitialiseAsShared(); },
         {},
         NX_ERR_UNSPECIFIED,
         {"ERR 62 Condition could not be created in shared memory. Result : " + twelve},
         {"pthread_condattr_init", "pthread_condattr_setpshared", "pthread_cond_init", "pthread_condattr_destroy"}},
        {"core/trunk/nxSpinLock",
         [&] { return spinLock.InitialiseAsShared(); },
         {},
         NX_ERR_INTERNAL,
         {"INF 43 Semaphore error"},
         {"pthread_spin_init"}},
        {"core/trunk/nxSemaphore",
         [&] { return semaphore.InitialiseAsShared(1); },
         {},
         NX_ERR_THR_UNSUPPORTED,
         {"ERR 87 Semaphore could not be created in shared memory. Result : -1"},
         {"sem_init"}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.source);
        const nxCapturingLogDevice success;
        EXPECT_TRUE(row.create().IsOK());
        EXPECT_EQ(ReportsOf(success, row.source), row.onSuccess);
        for (const char* const function : row.functions)
        {
            SCOPED_TRACE(function);
            const nxCapturingLogDevice log;
            const nxSystemCallFault fault(function, ENOMEM);
            EXPECT_EQ(row.create(), row.failure);
            EXPECT_EQ(ReportsOf(log, row.source), row.onFailure);
        }
    }
}

TEST(threadRecords, ExceptionThatLeavesRun)
{
    const nxCapturingLogDevice log;
    FunctionThread thrower([] { throw std::runtime_error("out of prices"); });
    FunctionThread other([] { throw 7; });
    FunctionThread exits([] { pthread_exit(nullptr); });
    for (nxThread* const thread : {&thrower, &other, &exits})
    {
        ASSERT_TRUE(thread->Create().IsOK());
        EXPECT_TRUE(thread->Wait().IsOK());
    }
    // Without its line number, which is the library's own business where no position is promised.
    Records reports = ReportsOf(log, "core/trunk/nxThread");
    for (std::string& report : reports)
        report.erase(3, report.find(' ', 4) - 3);
    EXPECT_EQ(reports, (Records{"FTL A thread ended with an exception: out of prices",
                                "FTL A thread ended with an exception: of unknown type"}));
}

TEST(threadRecords, PerThreadBuffer)
{
    const nxCapturingLogDevice log;
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
    EXPECT_EQ(ReportsOf(log, "core/trunk/nxThreadSpecificMemoryBuffer"), expected);
}
