// SPDX-License-Identifier: Apache-2.0
#include "core/testing/nxSteppedClock.h"

#include <atomic>

#include "core/log/nxLogMacros.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "core/time/nxElapsedTimeCounter.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"

using namespace std::chrono_literals;

namespace
{
// Far from today, so that no true time looks like a stepped one.
const nxTimeStamp start(1'000'000'000, 999'999'999);

bool IsTrueTime(const nxTimeStamp& stamp) { return stamp.GetSeconds() > start.GetSeconds() + 100'000'000; }
}  // namespace

TEST(nxSteppedClock, TimeStampsMoveByStepsAlone)
{
    {
        nxSteppedClock clock(start);
        EXPECT_EQ(nxTimeStamp::Now(), start);
        EXPECT_EQ(nxTimeStamp(), nxTimeStamp(1'000'000'000, 999'000'000));  // whole milliseconds
        clock.Step(1ns);
        EXPECT_EQ(nxTimeStamp::Now(), nxTimeStamp(1'000'000'001, 0));
        clock.Step(-2s);
        nxInThreads(1, [] { EXPECT_EQ(nxTimeStamp::Now(), nxTimeStamp(999'999'999, 0)); });
        clock.Set(start);
        clock.Step(std::chrono::duration<double>(-0.25));
        clock.Step(std::chrono::duration<long long, std::pico>(1'700));
        clock.Step(std::chrono::duration<double>(std::numeric_limits<double>::quiet_NaN()));
        EXPECT_EQ(nxTimeStamp::Now(), nxTimeStamp(1'000'000'000, 750'000'001));
        constexpr long long last = 9'223'372'036;  // the end of what is counted in nanoseconds
        clock.Step(std::chrono::hours(24 * 366 * 300));
        EXPECT_EQ(nxTimeStamp::Now().GetSeconds(), last);
        clock.Set(nxTimeStamp(-1, 5));
        EXPECT_EQ(nxTimeStamp::Now(), nxTimeStamp(-1, 5));
        clock.Set(nxTimeStamp(99'999'999'999, 0));
        EXPECT_EQ(nxTimeStamp::Now().GetSeconds(), last);
        clock.Step(24h);
        EXPECT_EQ(nxTimeStamp::Now().GetSeconds(), last);
    }
    const nxTimeStamp before = nxTimeStamp::Now();
    EXPECT_TRUE(IsTrueTime(before));
    const nxSteppedClock stopped;
    EXPECT_GE(nxTimeStamp::Now(), before);
}

TEST(nxSteppedClock, ElapsedTimeIsWhatWasSteppedForward)
{
    nxSteppedClock clock(start);
    nxElapsedTimeCounter counter;
    clock.Step(1500ms);
    EXPECT_EQ(counter.GetElapsedTimeInSeconds(), 1.5);
    clock.Set(nxTimeStamp(0, 0));
    clock.Step(-1h);
    const nxElapsedTimeCounter copy = counter;
    counter.Reset();
    EXPECT_EQ(copy.GetElapsedTimeInSeconds(), 1.5);
    EXPECT_EQ(counter.GetElapsedTimeInSeconds(), 0.0);
}

TEST(nxSteppedClock, TheLogWorksOnAndStampsItsRecordsWithTheTrueTime)
{
    const nxSteppedClock clock(start);
    nxCapturingLogDevice log;
    NX_LOG(NX_LOG_LEVEL_INFO) << "while the clock stands";
    ASSERT_TRUE(log.WaitFor(nxCapturingLogDevice::Contains("while the clock stands"))) << log;
    EXPECT_TRUE(IsTrueTime(log.GetRecords().back().timeStamp));
}

TEST(nxSteppedClock, NoThreadMakesTheTrueTimeSeenWhileItIsStopped)
{
    std::atomic<unsigned> calibrations{0};
    const nxBusyThread calibrating(
        [&calibrations]
        {
            nxClock::Recalibrate();  // publishes the true time whenever it may
            ++calibrations;
        });
    unsigned wrong = 0;
    for (int round = 0; round < 100; ++round)
    {
        {
            const nxSteppedClock clock(start);
            for (const unsigned before = calibrations; calibrations - before < 3;)
                wrong += nxTimeStamp::Now() != start;
        }
        wrong += !IsTrueTime(nxTimeStamp::Now());
    }
    EXPECT_EQ(wrong, 0u);
}
