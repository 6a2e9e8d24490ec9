// SPDX-License-Identifier: Apache-2.0
#include "core/platform/inline/nxClock.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>

#include "core/platform/nxClockDiscipline.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxScratchDirectory.h"
#include "tests/support/nxSystemCallFault.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
constexpr const char* clockSource = "/sys/devices/system/clocksource/clocksource0/current_clocksource";
// What the kernel calls the counter of this processor.
#ifdef __aarch64__
constexpr const char* counter = "arch_sys_counter\n";
#else
constexpr const char* counter = "tsc\n";
#endif
constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t millisecond = 1'000'000;

std::int64_t SystemNow()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec * second + now.tv_nsec;
}

// Whether the clock's time, and its conversion of a counter reading, agree with the system's time.
bool AgreesWithTheSystem(bool recalibrates = false)
{
    const std::int64_t before = SystemNow();
    const nxClockTime now = nxClock::Now();
    const std::uint64_t ticks = nxClock::Ticks();
    const std::int64_t after = SystemNow();
    if (recalibrates)
        nxClock::Recalibrate();
    const auto isBetween = [&](std::int64_t time)
    { return before - millisecond <= time && time <= after + millisecond; };
    return isBetween(now.seconds * second + now.nanoseconds) && isBetween(nxClock::GetScale().ToNanoseconds(ticks));
}

// Puts another file in the place of the one in which the kernel names its clock source, for this process alone.
// @return false where that is not allowed.
bool ReplaceClockSource(const char* name)
{
    const nxScratchDirectory scratch;
    const std::filesystem::path file = scratch.GetPath() / "source";
    nxWriteFile(file, name);
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount(file.c_str(), clockSource, nullptr, MS_BIND, nullptr) == 0;
}

// A machine whose counter and clocks the test moves by hand.
class Machine
{
public:
    explicit Machine(double ticksPerNanosecond) : _speed(ticksPerNanosecond) {}

    void Pass(std::int64_t nanoseconds)
    {
        _ticks += static_cast<double>(nanoseconds) * _speed;
        const auto corrected = nanoseconds + static_cast<std::int64_t>(static_cast<double>(nanoseconds) * _slewedBy);
        _wall += corrected;
        _monotonic += corrected;
    }
    void Step(std::int64_t nanoseconds) { _wall += nanoseconds; }
    void Slew(double partsPerMillion) { _slewedBy = partsPerMillion / 1e6; }
    void Sleep(std::int64_t nanoseconds) { _wall += nanoseconds, _ticks += static_cast<double>(nanoseconds) * _speed; }
    void MoveTo(double ticksPerNanosecond) { _speed = ticksPerNanosecond; }
    void ResetCounter() { _ticks = 1; }

    nxClockReading Read() const { return {static_cast<std::uint64_t>(_ticks), _wall, _monotonic}; }

private:
    double _speed;
    double _slewedBy = 0;
    double _ticks = 1e12;
    std::int64_t _wall = 1'709'629'623 * second;
    std::int64_t _monotonic = 5'000 * second;
};

// Does what a caller of the clock does: uses the steady line while it is valid, and otherwise takes a reading.
class Caller
{
public:
    std::int64_t Ask(const nxClockReading& now)
    {
        if (_known && now.ticks - _discipline.GetExact().GetTicks() < _discipline.GetValidity())
            return _discipline.GetSteady().ToNanoseconds(now.ticks);
        _known = _discipline.Update(now);
        return _known ? _discipline.GetSteady().ToNanoseconds(now.ticks) : now.wall;
    }

    const nxClockDiscipline& Get() const { return _discipline; }

private:
    nxClockDiscipline _discipline;
    bool _known = false;
};

// Lets time pass in uneven steps; every answer is checked against the machine's own wall clock.
void RunFor(Machine& machine, Caller& caller, std::int64_t duration, std::int64_t tolerance, bool mayStepBack = false)
{
    std::int64_t last = caller.Ask(machine.Read());
    unsigned random = 12'345;
    for (std::int64_t passed = 0; passed < duration;)
    {
        random = random * 1'664'525U + 1'013'904'223U;
        const std::int64_t pause = random >> 28 == 0 ? 3 * millisecond + random % 1'000'000 : 200 + random % 40'000;
        machine.Pass(pause);
        passed += pause;
        const std::int64_t now = caller.Ask(machine.Read());
        ASSERT_NEAR(static_cast<double>(now - machine.Read().wall), 0.0, static_cast<double>(tolerance));
        ASSERT_TRUE(mayStepBack || now >= last) << last << ' ' << now;
        last = now;
    }
}
}  // namespace

TEST(nxClockDiscipline, FollowsAnUnevenClockWithinMicrosecondsAndNeverStepsBack)
{
    for (const double speed : {0.024, 0.999, 3.4})
    {
        SCOPED_TRACE(speed);
        Machine machine(speed);
        Caller caller;
        for (const double slew : {0.0, 500.0, -500.0, 3.0})
        {
            machine.Slew(slew);
            RunFor(machine, caller, 3 * second, 2'000);
        }
    }
}

TEST(nxClockDiscipline, IsRightAgainAMillisecondAfterAStep)
{
    Machine machine(2.5);
    Caller caller;
    RunFor(machine, caller, second, 2'000);
    for (const std::int64_t step : {3'600 * second, -3'600 * second, 40 * millisecond, -150'000L, 90'000L})
    {
        SCOPED_TRACE(step);
        machine.Step(step);
        machine.Pass(millisecond + 1'000);
        EXPECT_NEAR(static_cast<double>(caller.Ask(machine.Read()) - machine.Read().wall), 0.0, 2'000.0);
        RunFor(machine, caller, second / 10, 2'000);
    }
    // After a small step back the clock waits, so that no reader sees time run backwards.
    machine.Step(-50'000);
    RunFor(machine, caller, second / 10, 52'000);
    EXPECT_NEAR(static_cast<double>(caller.Ask(machine.Read()) - machine.Read().wall), 0.0, 2'000.0);
}

TEST(nxClockDiscipline, MeasuresAgainAfterTheMachineSleptOrMovedOrItsCounterRestarted)
{
    Machine machine(2.5);
    Caller caller;
    const auto isRightAfter = [&](std::int64_t pause)
    {
        machine.Pass(pause);
        RunFor(machine, caller, 2 * second, millisecond, true);
        const nxClockScale& exact = caller.Get().GetExact();
        EXPECT_NEAR(static_cast<double>(exact.ToNanoseconds(machine.Read().ticks) - machine.Read().wall), 0.0, 2'000.0);
    };
    isRightAfter(0);
    machine.Sleep(7'200 * second);
    isRightAfter(millisecond);
    machine.MoveTo(3.1);
    isRightAfter(2 * millisecond);
    machine.ResetCounter();
    isRightAfter(2 * millisecond);
}

TEST(nxClockScale, ConvertsOnBothSidesOfItsMomentAndBefore1970)
{
    const nxClockScale scale(1'000, 5, std::uint64_t{1} << 31);  // half a nanosecond a tick
    const std::pair<std::int64_t, std::int64_t> rows[] = {{1'000, 5},
                                                          {1'020, 15},
                                                          {980, -5},
                                                          {1'000 + 20'000 * second, 10'000 * second + 5},
                                                          {1'000 - 20'000 * second, -10'000 * second + 5}};
    for (const auto& [ticks, nanoseconds] : rows)
        EXPECT_EQ(scale.ToNanoseconds(static_cast<std::uint64_t>(ticks)), nanoseconds);
    const nxClockTime before = scale.ToTime(980);
    EXPECT_EQ(before.seconds, -1);
    EXPECT_EQ(before.nanoseconds, 999'999'995U);
}

TEST(nxClock, TrustsTheCounterOnlyWhereTheKernelDoes)
{
    const std::string trusted = nxReadFile(clockSource);
    EXPECT_TRUE(!nxClock::UsesCounter() || trusted == counter) << trusted;
    const std::uint64_t first = nxClock::Ticks();
    EXPECT_LE(first, nxClock::Ticks());
    EXPECT_TRUE(nxClock::UsesCounter() || nxClock::GetScale().ToNanoseconds(first) == static_cast<std::int64_t>(first));
}

// Runs the tests of nxClock again, on a machine whose kernel uses another clock source.
TEST(nxClock, DoesWithoutACounter)
{
    if (std::getenv("NX_TEST_WITHOUT_COUNTER") != nullptr)
    {
        EXPECT_FALSE(nxClock::UsesCounter());
        return;
    }
    if (!nxInNewProcess())
        return;
    if (!ReplaceClockSource("hpet\n"))
        GTEST_SKIP() << "may not put another file in the place of the kernel's";
    setenv("NX_TEST_WITHOUT_COUNTER", "1", 1);
    unsetenv("NX_TEST_IN_NEW_PROCESS");
    // Leaves out the test that needs a counter: CTest would take its skip for a skip of this test, and hide a failure.
    const char* const others = "--gtest_filter=nxClock.*-nxClock.LeavesTheCounter*";
    execl("/proc/self/exe", "test_platform", others, static_cast<char*>(nullptr));
    FAIL();
}

TEST(nxClock, LeavesTheCounterWhenTheKernelDoesAndKeepsItsTicks)
{
    if (!nxInNewProcess())
        return;
    if (!ReplaceClockSource(counter))
        GTEST_SKIP() << "may not put another file in the place of the kernel's";
    if (!nxClock::UsesCounter())
        GTEST_SKIP() << "no counter to leave";
    EXPECT_TRUE(AgreesWithTheSystem());
    const std::int64_t before = SystemNow();
    const std::uint64_t ticks = nxClock::Ticks();
    nxWriteFile(clockSource, "hpet\n");
    nxClock::Recalibrate();
    EXPECT_TRUE(nxClock::UsesCounter()) << "the file is read once a minute";
    {
        const nxHurriedClock aMinuteLater(61 * second);
        nxClock::Recalibrate();
    }
    EXPECT_FALSE(nxClock::UsesCounter());
    EXPECT_TRUE(AgreesWithTheSystem(true));
    EXPECT_NEAR(static_cast<double>(nxClock::GetScale().ToNanoseconds(ticks) - before), 0.0, millisecond);
    EXPECT_LE(ticks, nxClock::Ticks());
    EXPECT_TRUE(nxInChild([] { EXPECT_TRUE(AgreesWithTheSystem()); }));
}

TEST(nxClock, MakesDoWithReadingsThatTakeLong)
{
    if (!nxInNewProcess())
        return;
    const nxHurriedClock slow(8'000, true);
    EXPECT_TRUE(nxInChild(
        []
        {
            alarm(10);
            EXPECT_TRUE(AgreesWithTheSystem());
            EXPECT_TRUE(AgreesWithTheSystem(true));
        }));
}

TEST(nxClock, DoesWithoutACounterThatIsForbidden)
{
#ifdef PR_TSC_SIGSEGV
    if (!nxInNewProcess())
        return;
    EXPECT_TRUE(nxInChild(
        []
        {
            prctl(PR_SET_TSC, PR_TSC_SIGSEGV, 0, 0, 0);
            const bool usesCounter = nxClock::UsesCounter();
            const std::uint64_t ticks = nxClock::Ticks();
            const std::int64_t scaled = nxClock::GetScale().ToNanoseconds(ticks);
            const bool isFirst = scaled <= nxClock::Now().seconds * second + second;
            const bool isAllowed = prctl(PR_SET_TSC, PR_TSC_ENABLE, 0, 0, 0) == 0;
            EXPECT_TRUE(!isAllowed || (!usesCounter && isFirst));
        }));
#endif
}

TEST(nxClock, AgreesWithTheSystemsClockInManyThreads)
{
    nxInThreads(4,
                [](int thread)
                {
                    for (int i = 0; i < 20'000 && !testing::Test::HasFailure(); ++i)
                        EXPECT_TRUE(AgreesWithTheSystem(thread == 0 || (thread == 1 && i % 100 == 0))) << i;
                });
}

// The forks meet the first update of a process as well as later ones.
TEST(nxClock, GoesOnInAForkedChild)
{
    const auto fork = []
    {
        const nxBusyThread recalibrating(nxClock::Recalibrate);
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(nxInChild([] { EXPECT_TRUE(nxEventually([] { return AgreesWithTheSystem(); })); }));
    };
    if (!nxInNewProcess())
        return;
    for (int process = 0; process < 20; ++process)
        EXPECT_TRUE(nxInChild(fork));
}
