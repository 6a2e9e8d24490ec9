#include "core/time/nxElapsedTimeCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

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

TEST(nxElapsedTimeCounter, NeverRunsBackwards)
{
    const nxElapsedTimeCounter counter;
    double last = 0;
    for (int i = 0; i < 10'000; ++i)
    {
        const double now = counter.GetElapsedTimeInSeconds();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST(nxElapsedTimeCounter, HasOneStartForTheProcess)
{
    EXPECT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), 0.0);
    const auto beforeReset = std::chrono::steady_clock::now();
    nxElapsedTimeCounter::ResetGlobalTime();
    const auto afterReset = std::chrono::steady_clock::now();
    double seen = 0;
    std::thread([&seen] { seen = nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(); }).join();
    EXPECT_LE(seen, Passed(beforeReset));
    EXPECT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), seen);
    const double atLeast = Passed(afterReset);
    EXPECT_GE(nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds(), atLeast);
}

TEST(nxElapsedTimeCounter, IsNeverNegativeWhileThreadsResetIt)
{
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t)
        threads.emplace_back(
            [&stop]
            {
                while (!stop)
                    nxElapsedTimeCounter::ResetGlobalTime();
            });
    double smallest = 1;
    for (int i = 0; i < 20'000; ++i)
        smallest = std::min(smallest, nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds());
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GE(smallest, 0.0);
}
