#include "core/time/nxElapsedTimeCounter.h"

#include <gtest/gtest.h>

#include <chrono>

#include "tests/support/nxTestThreads.h"

namespace
{
double Passed(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}
}  // namespace

TEST(nxElapsedTimeCounter, MeasuresFromConstructionAndReset)
{
    const auto outerBegin = std::chrono::steady_clock::now();
    nxElapsedTimeCounter counter;
    const auto innerBegin = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const double innerEnd = Passed(innerBegin);
    const double elapsed = counter.GetElapsedTimeInSeconds();
    EXPECT_GE(elapsed, innerEnd);
    EXPECT_LE(elapsed, Passed(outerBegin));

    const nxElapsedTimeCounter copy = counter;
    const auto beforeReset = std::chrono::steady_clock::now();
    counter.Reset();
    EXPECT_LE(counter.GetElapsedTimeInSeconds(), Passed(beforeReset));
    EXPECT_GE(copy.GetElapsedTimeInSeconds(), elapsed);
}

TEST(nxElapsedTimeCounter, HasOneStartForTheProcess)
{
    EXPECT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), 0.0);
    const auto beforeReset = std::chrono::steady_clock::now();
    nxElapsedTimeCounter::ResetGlobalTime();
    const auto afterReset = std::chrono::steady_clock::now();
    double seen = 0;
    nxInThreads(1, [&seen] { seen = nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(); });
    EXPECT_LE(seen, Passed(beforeReset));
    EXPECT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), seen);
    const double atLeast = Passed(afterReset);
    EXPECT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), atLeast);
}

TEST(nxElapsedTimeCounter, NeverRunsBackwardsNorIsNegativeWhileThreadsResetIt)
{
    const nxBusyThread resetting(nxElapsedTimeCounter::ResetGlobalTime);
    const nxBusyThread another(nxElapsedTimeCounter::ResetGlobalTime);
    const nxElapsedTimeCounter counter;
    double last = 0;
    for (int i = 0; i < 20'000; ++i)
    {
        ASSERT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), 0.0);
        const double now = counter.GetElapsedTimeInSeconds();
        ASSERT_GE(now, last);
        last = now;
    }
}
