// SPDX-License-Identifier: Apache-2.0
// Devices that are unregistered while other threads use them: no thread is inside a device, or enters it, after its owner
// has it back.

#include <optional>

#include "core/log/nxLogLineSink.h"
#include "core/log/nxSeparateLogDevice.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
// Calls are counted while the device is its owner's, and while it is not.
class Device final : public nxLogDevice, public nxLogLineSink
{
public:
    explicit Device(bool takesLines = false) : nxLogDevice(takesLines ? this : nullptr) {}
    ~Device() override { Manager().UnregisterLogDevice(this); }

    void Write(const nxLog& record) override
    {
        _Come([&] { onWrite(record); });
    }
    nxLogLineStyle GetLineStyle() const override { return {}; }
    void WriteLines(const nxLogLineBatch&) override
    {
        _Come([&] { onWrite(nxLog(NX_LOG_LEVEL_INFO, "lines", 1, nxTimeStamp(0, 0))); });
    }
    void Flush() override { _Come(onFlush); }
    void Destroy() override
    {
        _Come([] {});
    }

    void Register() { Manager().RegisterLogDevice(this); }
    // From here on no thread may be inside, or enter.
    void Leave()
    {
        Manager().UnregisterLogDevice(this);
        faults += inside;
        hasLeft = true;
    }

    std::function<void(const nxLog&)> onWrite = [](const nxLog&) {};
    std::function<void()> onFlush = [] {};
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::atomic<int> writes{0};
    std::atomic<int> faults{0};
    std::atomic<bool> hasLeft{false};

private:
    template <class Action>
    void _Come(const Action& action)
    {
        faults += hasLeft;
        most = std::max(most.load(), ++inside);
        ++writes;
        action();
        --inside;
    }
};

const nxLog record(NX_LOG_LEVEL_INFO, "leaving", 1, nxTimeStamp(0, 0));
}  // namespace

// One thread is at all devices and is held up by the first; the owner of the second one takes that away meanwhile.
TEST(nxLogDevicesLeaving, AThreadAtAllDevicesLeavesThoseAloneThatTheirOwnersHaveTakenBack)
{
    for (const bool destroys : {true, false})
    {
        SCOPED_TRACE(destroys);
        nxGate gate;
        static thread_local bool isToBeHeld = false;
        Device slow, leaving;
        slow.onFlush = [&gate]
        {
            if (isToBeHeld)
                gate.Pass();
        };
        slow.Register();
        leaving.Register();
        nxJoinedThread at(
            [destroys]
            {
                isToBeHeld = true;
                destroys ? Manager().Destroy() : Manager().FlushDevices();
            });
        gate.WaitForAThread();
        nxJoinedThread unregisters([] { Manager().UnregisterAllLogDevices(); });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));  // it waits for the first one now
        leaving.Leave();
        gate.Open();
        at.join();
        unregisters.join();
        EXPECT_EQ(leaving.faults, 0);
    }
}

// Two owners, or one that asks twice: neither has the device back while a thread is inside it, though it has left by
// itself before.
TEST(nxLogDevicesLeaving, EveryThreadThatUnregistersADeviceWaitsForItAsLongAsItTakes)
{
    for (const bool leavesByItself : {false, true})
    {
        SCOPED_TRACE(leavesByItself);
        nxGate gate;
        Device device;
        device.onWrite = [&](const nxLog&)
        {
            if (leavesByItself)
                Manager().UnregisterLogDevice(&device);
            gate.Pass();
        };
        device.Register();
        NX_LOG(NX_LOG_LEVEL_INFO) << "by the log's thread, which both wait for first";
        gate.WaitForAThread();
        std::atomic<int> returned{0};
        const auto leave = [&]
        {
            device.Leave();
            ++returned;
        };
        nxJoinedThread first(leave), second(leave);
        // Once longer than any limit of a wait in the log; one that comes back earlier is seen at once.
        for (int count = 0; count < (leavesByItself ? 20 : 350) && returned == 0; ++count)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        gate.Open();
        first.join();
        second.join();
        EXPECT_EQ(device.faults, 0);
    }
}

TEST(nxLogDevicesLeaving, ADeviceThatIsRegisteredAgainIsEnteredOnlyWhenTheLastCallIsOver)
{
    nxGate gate;
    Device device;
    device.onWrite = [&](const nxLog& written)
    {
        if (written.GetText() != "again")
            return;
        Manager().UnregisterLogDevice(&device);
        Manager().RegisterLogDevice(&device);
        gate.Pass();
    };
    device.Register();
    NX_LOG(NX_LOG_LEVEL_INFO) << "again";
    gate.WaitForAThread();
    nxJoinedThread other([] { Manager().ImmediateWrite(record); });
    for (int count = 0; count < 20 && device.most < 2; ++count)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    gate.Open();
    other.join();
    EXPECT_EQ(device.most, 1);
}

TEST(nxLogDevicesLeaving, WhatNoDeviceWasGivenDoesNotCountAsWritten)
{
    nxGate gate;
    Device device;
    std::uint64_t given = 0;
    device.onWrite = [&](const nxLog& written)
    {
        ++given;
        if (written.GetText() == "hold")
            gate.Pass();
        if (written.GetText() == "leave")
            Manager().UnregisterLogDevice(&device);
    };
    device.Register();
    WaitUntilWritten();
    const nxLogStatistics before = Manager().GetStatistics();
    NX_LOG(NX_LOG_LEVEL_INFO) << "hold";
    gate.WaitForAThread();
    // All in one round, which begins with the device registered.
    for (int number = 0; number < 10; ++number)
        NX_LOG(NX_LOG_LEVEL_INFO) << (number == 3 ? "leave" : "one");
    gate.Open();
    WaitUntilWritten();
    EXPECT_EQ(Manager().GetStatistics().written - before.written, given);
    EXPECT_GE(Manager().GetStatistics().unheard - before.unheard, 6u);
}

// A device that forks against the rules. Where its call returns in the child, a thread of the program goes on, and one of the
// library ends, and the child with it.
TEST(nxLogDevicesLeaving, AChildThatADeviceHasForkedHasNothingOfItsParent)
{
    if (nxUnderThreadSanitizer || nxUnderAddressSanitizer)
        GTEST_SKIP()
            << "the one cannot end a thread in a forked child, the other misses the stacks of the other threads";
    if (!nxInNewProcess())
        return;
    enum class By
    {
        LogsThread,
        DevicesThread,
        Reporter
    };
    for (const By by : {By::LogsThread, By::DevicesThread, By::Reporter})
        for (const bool takesLines : {false, true})
        {
            SCOPED_TRACE(testing::Message() << static_cast<int>(by) << takesLines);
            const pid_t parent = getpid();
            std::atomic<int> status{-1};
            bool mayWrite = true;  // to the other device
            int written = 0;
            Device forking(takesLines), other(takesLines);
            forking.onWrite = [&](const nxLog&)
            {
                if (status != -1 || getpid() != parent)
                    return;
                const pid_t child = fork();
                mayWrite = child != 0;
                if (child == 0)
                {
                    sigset_t none;  // a thread of the library blocks the signal
                    sigemptyset(&none);
                    pthread_sigmask(SIG_SETMASK, &none, nullptr);
                    alarm(60);
                    return;
                }
                int ended = -1;
                waitpid(child, &ended, 0);
                status = ended;
            };
            other.onWrite = [&](const nxLog&)
            {
                if (!mayWrite)
                    _exit(2);
                ++written;
            };
            Manager().Destroy();
            {
                nxSeparateLogDevice separate(std::shared_ptr<nxLogDevice>(&forking, [](const nxLogDevice*) {}));
                std::optional<nxSystemCallFault> fault;
                if (by == By::Reporter)
                    fault.emplace("pthread_create", EAGAIN, nxSystemCallFault::Options{.times = 1'000});
                nxLogDevice* const devices[] = {
                    by == By::DevicesThread ? static_cast<nxLogDevice*>(&separate) : &forking, &other};
                Manager().RegisterLogDevices(devices);
                NX_LOG(NX_LOG_LEVEL_FATAL) << "parent";
                if (getpid() != parent)
                {
                    mayWrite = true;
                    NX_LOG(NX_LOG_LEVEL_WARNING) << "child";
                    _exit(written == 1 ? 0 : 3);
                }
                EXPECT_TRUE(nxEventually([&status] { return status != -1; }));
                EXPECT_EQ(status, 0);
                Manager().UnregisterLogDevice(&separate);
            }
        }
}
