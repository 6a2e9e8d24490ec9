#include "core/thread/nxThread.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>
#include <thread>
#include <vector>

#include "core/thread/nxThreadIndex.h"

namespace
{
class Worker : public nxThread
{
public:
    nxErrorEnum Run() override
    {
        ++runs;
        id = GetThreadIDAsString();
        waitInside = Wait();
        return nxErrorEnum(NX_ERR_UNSPECIFIED);  // ignored
    }
    int runs = 0;
    std::string id;
    nxErrorEnum waitInside;
};

class Thrower : public nxThread
{
    nxErrorEnum Run() override { throw std::runtime_error("out of prices"); }
};

class Exiter : public nxThread
{
    nxErrorEnum Run() override { pthread_exit(nullptr); }
};
}  // namespace

TEST(nxThread, StartsRunsAndStartsAgain)
{
    Worker worker;
    EXPECT_EQ(worker.Wait(), NX_ERR_THR_NOT_RUNNING);
    for (int run = 1; run <= 2; ++run)
    {
        ASSERT_TRUE(worker.Create().IsOK());
        EXPECT_EQ(worker.Create(), NX_ERR_THR_ALREADY_STARTED);
        ASSERT_TRUE(worker.Wait().IsOK());
        EXPECT_EQ(worker.runs, run);
        EXPECT_EQ(worker.waitInside, NX_ERR_THR_DEADLOCK);
        EXPECT_NE(worker.id, nxThread::GetThreadIDAsString());
    }
    EXPECT_EQ(worker.Wait(), NX_ERR_THR_NOT_RUNNING);
    EXPECT_EQ(nxThread::GetThreadIDAsString(), std::to_string(getpid())) << "the main thread's number is the process's";
}

TEST(nxThread, SurvivesAnExceptionOrAnExitInRun)
{
    Thrower thrower;
    ASSERT_TRUE(thrower.Create().IsOK());
    EXPECT_TRUE(thrower.Wait().IsOK());
    Exiter exiter;
    ASSERT_TRUE(exiter.Create().IsOK());
    EXPECT_TRUE(exiter.Wait().IsOK());
}

TEST(nxThreadIndex, NumbersAreDenseInOrderOfAskingAndKept)
{
    const unsigned mine = nxThreadIndex::GetIndexOfCurrentThread();
    std::vector<unsigned> indices;
    for (int i = 0; i < 3; ++i)
    {
        std::thread(
            [&]
            {
                indices.push_back(nxThreadIndex::GetIndexOfCurrentThread());
                EXPECT_EQ(nxThreadIndex::GetIndexOfCurrentThread(), indices.back());
            })
            .join();
    }
    EXPECT_EQ(indices[1], indices[0] + 1);
    EXPECT_EQ(indices[2], indices[0] + 2);
    EXPECT_GT(indices[0], mine);
    EXPECT_EQ(nxThreadIndex::GetIndexOfCurrentThread(), mine);
}
