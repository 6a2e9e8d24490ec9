#include "core/thread/nxSemaphore.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <limits>
#include <string>
#include <thread>

#include "tests/support/nxSystemCallFault.h"

namespace
{
// A wait that meets the one millisecond in a thousand in which the system refuses the deadline is made again.
template <class Wait>
nxErrorEnum UntilAccepted(Wait wait)
{
    nxErrorEnum error = wait();
    while (error == NX_ERR_INVALID_PARAMETER)
        error = wait();
    return error;
}
}  // namespace

TEST(nxSemaphore, CountsAndTimesOut)
{
    nxSemaphore semaphore(1);
    EXPECT_EQ(semaphore.GetValue(), 1);
    EXPECT_TRUE(semaphore.Wait().IsOK());
    EXPECT_EQ(semaphore.TryWait(), NX_ERR_THR_LOCKED);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(UntilAccepted([&] { return semaphore.TimedWait(0.05); }), NX_ERR_THR_TIMEDOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(48)) << "at most a clock tick early";
    EXPECT_EQ(UntilAccepted([&] { return semaphore.TimedWait(std::chrono::milliseconds(2)); }), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(UntilAccepted([&] { return semaphore.TimedWait_Microseconds(1500); }), NX_ERR_THR_TIMEDOUT);
    EXPECT_TRUE(semaphore.Post().IsOK());
    EXPECT_TRUE(UntilAccepted([&] { return semaphore.TimedWait(60); }).IsOK());
    EXPECT_EQ(semaphore.GetValue(), 0);
}

TEST(nxSemaphore, EveryTimeOutHasADefinedAnswer)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    nxSemaphore semaphore(0);
    for (const double past : {0.0, -0.0, -1e-17, -0.25, -5.0, -1e18, -9.3e18, -1e300, -infinity,
                              std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::denorm_min()})
    {
        SCOPED_TRACE(past);
        EXPECT_EQ(semaphore.TimedWait(past), NX_ERR_THR_TIMEDOUT);
        semaphore.Post();
        EXPECT_TRUE(semaphore.TimedWait(past).IsOK()) << "a count that is free is taken all the same";
    }
    const double far[] = {4294967294.5, 4294967295.0, 9.2e18, 9223372036854775807.0, 1e300, infinity};
    for (const double seconds : far)
    {
        SCOPED_TRACE(seconds);
        const std::jthread poster(
            [&]
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                semaphore.Post();
            });
        EXPECT_TRUE(UntilAccepted([&] { return semaphore.TimedWait(seconds); }).IsOK()) << "waits for the count";
    }
    semaphore.Post();
    EXPECT_TRUE(semaphore.TimedWait_Microseconds(std::numeric_limits<unsigned long long>::max()).IsOK());
}

TEST(nxSemaphore, RefusesADeadlineOfExactlyOneSecondOfNanoseconds)
{
    const long long longAgo = 1'700'000'000;
    nxSemaphore semaphore(1);
    {
        const nxFixedWallClock clock(longAgo, 750'999'999);  // only its milliseconds count
        EXPECT_EQ(semaphore.TimedWait(0.25), NX_ERR_INVALID_PARAMETER);
        EXPECT_EQ(semaphore.TimedWait_Microseconds(250'000), NX_ERR_INVALID_PARAMETER);
        EXPECT_EQ(semaphore.GetValue(), 1) << "although there is a count";
    }
    for (const long nanoseconds : {749'000'000L, 751'000'000L})
    {
        const nxFixedWallClock clock(longAgo, nanoseconds);
        EXPECT_TRUE(semaphore.TimedWait(0.25).IsOK());
        EXPECT_EQ(semaphore.TimedWait(0.25), NX_ERR_THR_TIMEDOUT);
        semaphore.Post();
    }
}

TEST(nxSemaphore, ASignalInterruptsWaits)
{
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {};
    action.sa_flags = 0;
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    nxSemaphore semaphore(0);
    for (const bool timed : {false, true})
    {
        std::atomic<bool> done{false};
        nxErrorEnum error;
        std::thread waiter(
            [&]
            {
                error = timed ? UntilAccepted([&] { return semaphore.TimedWait(60); }) : semaphore.Wait();
                done = true;
            });
        while (!done)
        {
            pthread_kill(waiter.native_handle(), SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        waiter.join();
        EXPECT_EQ(error, NX_ERR_THR_INTERRUPTED);
    }
    sigaction(SIGUSR1, &before, nullptr);
}

TEST(nxSemaphore, ACountThatIsTooLargeIsReportedOnTheStandardOutput)
{
    testing::internal::CaptureStdout();
    {
        nxSemaphore refused(2147483648U);
        EXPECT_EQ(refused.TryWait(), NX_ERR_THR_LOCKED) << "no count, no crash";
        EXPECT_TRUE(refused.InitialiseAsShared(2147483647U).IsOK());
        EXPECT_EQ(refused.Post(), NX_ERR_UNSPECIFIED) << "full";
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "sem_init err -1, " + std::to_string(EINVAL) + "\n");
}
