// SPDX-License-Identifier: Apache-2.0
// Threads, their numbers and their buffers, with what they write to the log.

#include "core/thread/nxThread.h"

#include "core/thread/nxThreadGuard.h"
#include "core/thread/nxThreadIndex.h"
#include "core/thread/nxThreadOptions.h"
#include "core/thread/nxThreadSpecificMemoryBuffer.h"
#include "tests/support/nxSystemTest.h"

namespace
{
class FunctionThread : public nxThread
{
public:
    explicit FunctionThread(std::function<void()> body) : _body(std::move(body)) {}

private:
    nxErrorEnum Run() override
    {
        _body();
        return nxErrorEnum(NX_ERR_UNSPECIFIED);  // ignored
    }
    std::function<void()> _body;
};

}  // namespace

TEST(nxThread, StartsRunsAndStartsAgain)
{
    int runs = 0;
    std::string id;
    nxErrorEnum waitInside;
    FunctionThread* self = nullptr;
    FunctionThread worker(
        [&]
        {
            ++runs;
            id = nxThread::GetThreadIDAsString();
            waitInside = self->Wait();
        });
    self = &worker;
    EXPECT_EQ(worker.Wait(), NX_ERR_THR_NOT_RUNNING);
    for (int run = 1; run <= 2; ++run)
    {
        ASSERT_TRUE(worker.Create().IsOK());
        EXPECT_EQ(worker.Create(), NX_ERR_THR_ALREADY_STARTED);
        ASSERT_TRUE(worker.Wait().IsOK());
        EXPECT_EQ(runs, run);
        EXPECT_EQ(waitInside, NX_ERR_THR_DEADLOCK);
        EXPECT_NE(id, nxThread::GetThreadIDAsString());
    }
    EXPECT_EQ(worker.Wait(), NX_ERR_THR_NOT_RUNNING);
    EXPECT_EQ(nxThread::GetThreadIDAsString(), std::to_string(getpid())) << "the main thread's number is the process's";
}

TEST(nxThread, ReportsAnExceptionThatLeavesRun)
{
    nxCapturingLogDevice log;
    FunctionThread thrower([] { throw std::runtime_error("out of prices"); });
    FunctionThread other([] { throw 7; });
    FunctionThread exits([] { pthread_exit(nullptr); });
    for (nxThread* const thread : {&thrower, &other, &exits})
        EXPECT_TRUE(thread->Create().IsOK() && thread->Wait().IsOK());
    EXPECT_EQ(TakeReports(log, "core/trunk/nxThread", false),
              (std::vector<std::string>{"FTL A thread ended with an exception: out of prices",
                                        "FTL A thread ended with an exception: of unknown type"}));
}

TEST(nxThread, OneOfSeveralWaitsJoins)
{
    for (int round = 0; round < 50; ++round)
    {
        std::atomic<int> waiting{0}, joined{0};
        FunctionThread worker([&] { EXPECT_TRUE(nxEventually([&] { return waiting == 3; })); });
        const nxThreadGuard guard(worker);
        ASSERT_TRUE(worker.Create().IsOK());
        nxInThreads(3,
                    [&]
                    {
                        ++waiting;
                        const nxErrorEnum error = worker.Wait();
                        joined += error.IsOK();
                        EXPECT_TRUE(error.IsOK() || error == NX_ERR_THR_MISMATCH || error == NX_ERR_THR_NOT_RUNNING);
                    });
        EXPECT_EQ(joined, 1);
    }
}

TEST(nxThread, RunBeginsWithTheOptionsInForce)
{
    cpu_set_t mine;
    ASSERT_EQ(sched_getaffinity(0, sizeof mine, &mine), 0);
    unsigned processor = 0;
    while (CPU_ISSET(processor, &mine) == 0)
        ++processor;
    FunctionThread worker(
        [processor]
        {
            char name[16];
            cpu_set_t processors;
            pthread_attr_t attributes;
            std::size_t stack = 0;
            pthread_getname_np(pthread_self(), name, sizeof name);
            sched_getaffinity(0, sizeof processors, &processors);
            pthread_getattr_np(pthread_self(), &attributes);
            pthread_attr_getstacksize(&attributes, &stack);
            pthread_attr_destroy(&attributes);
            EXPECT_STREQ(name, "market data fee");
            EXPECT_TRUE(CPU_COUNT(&processors) == 1 && CPU_ISSET(processor, &processors));
            EXPECT_TRUE(stack >= 1U << 20 && stack < 2U << 20) << stack;
        });
    nxThreadOptions options{.name = "market data feed", .processors = {processor}, .stackBytes = 1 << 20};
    for (const auto scheduling : {nxThreadOptions::Scheduling::Inherited, nxThreadOptions::Scheduling::Ordinary})
    {
        options.scheduling = scheduling;
        ASSERT_TRUE(worker.Create(options).IsOK());
        EXPECT_EQ(worker.Create(options), NX_ERR_THR_ALREADY_STARTED);
        EXPECT_TRUE(worker.Wait().IsOK());
    }
}

TEST(nxThread, OptionsThatTheSystemRefusesAreErrors)
{
    using enum nxThreadOptions::Scheduling;
    const std::pair<nxThreadOptions, nxEnumValue> rows[] = {
        {{.processors = {nxThreadOptions::LargestProcessor + 1}}, NX_ERR_INVALID_PARAMETER},
        {{.processors = {nxThreadOptions::LargestProcessor}}, NX_ERR_INVALID_PARAMETER},  // no machine of a test has it
        {{.priority = 1}, NX_ERR_INVALID_PARAMETER},
        {{.scheduling = Ordinary, .priority = 1}, NX_ERR_INVALID_PARAMETER},
        {{.scheduling = RealTimeFirstIn}, NX_ERR_INVALID_PARAMETER},
        {{.scheduling = RealTimeRoundRobin, .priority = nxThreadOptions::LargestPriority + 1},
         NX_ERR_INVALID_PARAMETER},
        {{.stackBytes = 1}, NX_ERR_INVALID_PARAMETER},
        {{.stackBytes = std::size_t{1} << 60}, NX_ERR_THR_RESOURCE}};
    FunctionThread worker([] {});
    for (const auto& [options, expected] : rows)
    {
        EXPECT_EQ(worker.Create(options), expected) << &options - &rows[0].first;
        EXPECT_EQ(worker.Wait(), NX_ERR_THR_NOT_RUNNING);
    }
    const nxSystemCallFault forbidden("pthread_create", EPERM);
    EXPECT_EQ(worker.Create({.scheduling = RealTimeFirstIn, .priority = 1}), NX_ERR_THR_PERMISSION);
    EXPECT_TRUE(worker.Create().IsOK() && worker.Wait().IsOK());
}

TEST(nxThreadIndex, NumbersAreDenseInOrderOfAskingAndKept)
{
    const unsigned mine = nxThreadIndex::GetIndexOfCurrentThread();
    std::vector<unsigned> indices;
    for (int i = 0; i < 3; ++i)
        nxInThreads(1,
                    [&]
                    {
                        indices.push_back(nxThreadIndex::GetIndexOfCurrentThread());
                        EXPECT_EQ(nxThreadIndex::GetIndexOfCurrentThread(), indices.back());
                    });
    EXPECT_GT(indices[0], mine);
    EXPECT_EQ(indices, (std::vector{indices[0], indices[0] + 1, indices[0] + 2}));
    EXPECT_EQ(nxThreadIndex::GetIndexOfCurrentThread(), mine);
}

TEST(nxThreadSpecificMemoryBuffer, KeepsContentsAndFillLevelThroughGrowthAndReportsIt)
{
    nxCapturingLogDevice log;
    nxThreadSpecificMemoryBuffer buffer(16);
    EXPECT_EQ(buffer.GetUsed(), 0U);
    std::ostringstream address;
    address << static_cast<const void*>(buffer.GetData());
    const std::string text = "bid 99.5 x 1000";
    text.copy(buffer.GetData(), text.size());
    buffer.SetUsed(static_cast<unsigned>(text.size()));
    buffer.GrowBuffer();
    buffer.GrowBuffer();
    EXPECT_EQ(buffer.GetCapacity(), 48U);
    buffer.GrowBufferToSize(1 << 20);
    EXPECT_EQ(std::string(buffer.GetData(), buffer.GetUsed()), text);
    buffer.GrowBufferToSize(3);
    EXPECT_EQ(buffer.GetUsed(), text.size()) << "the fill level is the user's";
    EXPECT_EQ(std::string(buffer.GetData(), 3), "bid");
    buffer.GrowBuffer();
    EXPECT_EQ(buffer.GetCapacity(), 19U) << "grows by the size at construction";

    const std::string growing = "Growing thread-specific memory buffer. Size: ";
    const std::vector<std::string> expected{"INF 95 Allocated thread-specific memory buffer. Thread index: " +
                                                std::to_string(nxThreadIndex::GetIndexOfCurrentThread()) +
                                                ", Size: 16, Address: " + address.str(),
                                            "INF 44 " + growing + "16 -> 32",
                                            "INF 44 " + growing + "32 -> 48",
                                            "INF 60 " + growing + "48 -> 1048576",
                                            "INF 60 " + growing + "1048576 -> 3",
                                            "INF 44 " + growing + "3 -> 19"};
    EXPECT_EQ(TakeReports(log, "core/trunk/nxThreadSpecificMemoryBuffer"), expected);
}

TEST(nxThreadSpecificMemoryBuffer, ASizeOfZeroNeverGrowsAndMemoryThatRunsOutLeavesNull)
{
    nxThreadSpecificMemoryBuffer none(0), buffer(8);
    none.GrowBuffer();
    EXPECT_EQ(none.GetCapacity(), 0U);
    none.GrowBufferToSize(8);
    ASSERT_NE(none.GetData(), nullptr);
    none.GetData()[7] = 'x';
    none.GrowBufferToSize(0);
    EXPECT_EQ(none.GetData(), nullptr);
    {
        const nxSystemCallFault fault("realloc", ENOMEM);
        buffer.GrowBuffer();
        EXPECT_EQ(fault.GetHits(), 1U);
    }
    EXPECT_EQ(buffer.GetData(), nullptr);
    EXPECT_EQ(buffer.GetCapacity(), 16U) << "what was asked for";
    buffer.GrowBuffer();
    EXPECT_NE(buffer.GetData(), nullptr);

    const nxSystemCallFault fault("malloc", ENOMEM);
    EXPECT_EQ(nxThreadSpecificMemoryBuffer(8).GetData(), nullptr);
}
