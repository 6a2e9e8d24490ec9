#include "core/thread/nxThread.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "core/thread/nxThreadIndex.h"
#include "tests/support/nxTestThreads.h"

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
    EXPECT_EQ(indices[1], indices[0] + 1);
    EXPECT_EQ(indices[2], indices[0] + 2);
    EXPECT_GT(indices[0], mine);
    EXPECT_EQ(nxThreadIndex::GetIndexOfCurrentThread(), mine);
}
