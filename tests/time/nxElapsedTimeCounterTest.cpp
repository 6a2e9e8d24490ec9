// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxElapsedTimeCounter.h"

#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"

TEST(nxElapsedTimeCounter, MeasuresSeconds)
{
    using Clock = std::chrono::steady_clock;
    const auto passed = [](Clock::time_point since)
    { return std::chrono::duration<double>(Clock::now() - since).count(); };
    const auto before = Clock::now();
    const nxElapsedTimeCounter counter;
    nxElapsedTimeCounter::ResetGlobalTime();
    const auto after = Clock::now();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const double least = passed(after);
    double elapsed = 0, global = 0;
    nxInThreads(1,
                [&]
                {
                    elapsed = counter.GetElapsedTimeInSeconds();
                    global = nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds();
                });
    const double most = passed(before);
    EXPECT_TRUE(least <= elapsed && elapsed <= most) << elapsed << ", not from " << least << " to " << most;
    EXPECT_TRUE(least <= global && global <= most) << global << ", not from " << least << " to " << most;
}

TEST(nxElapsedTimeCounter, NeverRunsBackwardsNorIsNegativeWhileThreadsResetIt)
{
    EXPECT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), 0.0);
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
