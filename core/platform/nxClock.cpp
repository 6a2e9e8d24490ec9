#include "core/platform/inline/nxClock.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>

#if defined(__x86_64__)
    #include <cpuid.h>
#endif

#include "core/platform/nxClockDiscipline.h"
#include "core/platform/nxForkHandlers.h"

namespace
{
// Set when the source is decided, before any record: a sandbox has made reading the processor's counter a fault.
constinit std::atomic<bool> isForbidden{false};

bool IsForbidden()
{
    int mode = PR_TSC_ENABLE;
    return prctl(PR_GET_TSC, &mode, 0, 0, 0) == 0 && mode != PR_TSC_ENABLE;
}

std::int64_t Read(clockid_t clock)
{
    timespec now{};
    // The C library reads the counter too, where the system need not be asked.
    if (isForbidden.load(std::memory_order_relaxed)) [[unlikely]]
        syscall(SYS_clock_gettime, clock, &now);
    else
        clock_gettime(clock, &now);
    // Unsigned, because a machine's clock may be set to a year that 64 bits of nanoseconds do not reach.
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U +
                                     static_cast<std::uint64_t>(now.tv_nsec));
}

// The processor's word that its counter runs at one speed, whatever its clock frequency and however deep it sleeps.
bool CounterIsConstant()
{
#if defined(__x86_64__)
    unsigned a = 0, b = 0, c = 0, d = 0;
    constexpr unsigned powerManagement = 0x80000007U, invariantCounter = 1U << 8;
    return __get_cpuid(powerManagement, &a, &b, &c, &d) != 0 && (d & invariantCounter) != 0;
#elif defined(__aarch64__)
    return true;
#else
    return false;
#endif
}

// The kernel's word that all processors' counters agree: it keeps time by them itself. Nothing where it does not say.
std::optional<bool> KernelTrustsCounter()
{
#if defined(__x86_64__)
    constexpr std::string_view trusted = "tsc\n";
#else
    constexpr std::string_view trusted = "arch_sys_counter\n";
#endif
    const int file = open("/sys/devices/system/clocksource/clocksource0/current_clocksource", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return std::nullopt;
    char text[32];
    const ssize_t size = read(file, text, sizeof text);
    close(file);
    if (size <= 0)
        return std::nullopt;
    return std::string_view(text, static_cast<std::size_t>(size)) == trusted;
}

constexpr int readingAttempts = 4;
constexpr std::int64_t longestReading = 5'000;  // nanoseconds; more means that the thread was interrupted in between
constexpr int longestUnrest = 16;               // or that reading takes so long, when that happens so often in a row

constinit std::atomic<int> unrest{0};

// Reads counter and clocks together. False when the thread was interrupted each time.
template <class ReadCounter>
bool TakeReading(ReadCounter readCounter, nxClockReading& reading)
{
    std::int64_t shortest = std::numeric_limits<std::int64_t>::max();
    for (int attempt = 0; attempt < readingAttempts && shortest > longestReading; ++attempt)
    {
        const std::int64_t before = Read(CLOCK_MONOTONIC);
        const std::uint64_t first = readCounter();
        const std::int64_t wall = Read(CLOCK_REALTIME);
        const std::uint64_t second = readCounter();
        const std::int64_t after = Read(CLOCK_MONOTONIC);
        if (after - before >= shortest)
            continue;
        shortest = after - before;
        reading = {first + (second - first) / 2, wall, before + shortest / 2, 0};
    }
    if (shortest <= longestReading) [[likely]]
    {
        if (unrest.load(std::memory_order_relaxed) != 0)
            unrest.store(0, std::memory_order_relaxed);
        return true;
    }
    reading.doubt = shortest / 2;
    return unrest.fetch_add(1, std::memory_order_relaxed) >= longestUnrest;
}

// Only the thread that made the sequence number odd touches it.
constinit nxClockDiscipline discipline;

// What a test shows instead of the time. While the clock is stopped no line is valid, so that everybody comes to ask;
// a clock that runs pays nothing for it.
constinit std::atomic<bool> isStopped{false};
constinit std::atomic<std::int64_t> stoppedWall{0};
constinit std::atomic<std::int64_t> stoppedMeasured{0};

// When to look again whether the kernel still trusts the counter, and the scale of the ticks once it does not.
constexpr std::int64_t lookInterval = 60'000'000'000;
constinit std::atomic<std::int64_t> nextLook{0};
constinit std::atomic<std::uint64_t> lastTicks{0};
constinit std::atomic<std::int64_t> lastNanoseconds{0};
constinit std::atomic<std::uint64_t> lastRate{0};

nxClockScale LastScale()
{
    return {lastTicks.load(std::memory_order_relaxed), lastNanoseconds.load(std::memory_order_relaxed),
            lastRate.load(std::memory_order_relaxed)};
}

nxClockTime ToTime(std::int64_t nanoseconds) { return nxClockScale(0, nanoseconds, 0).ToTime(0); }
}  // namespace

constinit std::atomic<nxClock::Source> nxClock::_source{nxClock::Source::Undecided};
constinit nxClock::Lines nxClock::_lines{};

nxClock::Source nxClock::_Decide()
{
    const Source known = _source.load(std::memory_order_acquire);
    if (known != Source::Undecided)
        return known;
    // The first reading may be taken for a record that quotes errno.
    const int error = errno;
    isForbidden.store(IsForbidden(), std::memory_order_relaxed);
    const bool isTrusted = CounterIsConstant() && !isForbidden && KernelTrustsCounter() == true;
    const Source found = isTrusted ? Source::Counter : Source::System;
    errno = error;
    nextLook.store(Read(CLOCK_MONOTONIC) + lookInterval, std::memory_order_relaxed);
    Source expected = Source::Undecided;
    // Whoever comes first decides, so that no two readings ever have different units.
    if (!_source.compare_exchange_strong(expected, found, std::memory_order_relaxed))
        return expected;
    // A child forked in the middle of an update would find the lines closed for ever.
    if (found == Source::Counter)
    {
        static constexpr nxForkHandlers::Functions functions{nullptr, nullptr,
                                                             []
                                                             {
                                                                 discipline = nxClockDiscipline();
                                                                 _lines.validity.store(0, std::memory_order_relaxed);
                                                                 _lines.exactRate.store(0, std::memory_order_relaxed);
                                                                 _lines.sequence.store(0, std::memory_order_release);
                                                             }};
        nxForkHandlers::Register(nxForkHandlers::Rank::Clock, functions);
    }
    return found;
}

nxClockTime nxClock::_Update(const nxClockReading& reading)
{
    std::uint32_t sequence = _lines.sequence.load(std::memory_order_relaxed);
    // Somebody else's update is as good as ours.
    if (sequence % 2 != 0 ||
        !_lines.sequence.compare_exchange_strong(sequence, sequence + 1, std::memory_order_acquire))
        return ToTime(reading.wall);
    const bool known = discipline.Update(reading);
    const nxClockScale steady = discipline.GetSteady();
    const nxClockScale exact = discipline.GetExact();
    // Each store releases the odd number, so that whoever sees a new value sees that too.
    const bool isShown = known && !isStopped.load(std::memory_order_acquire);
    _lines.validity.store(isShown ? discipline.GetValidity() : 0, std::memory_order_release);
    _lines.ticks.store(exact.GetTicks(), std::memory_order_release);
    _lines.steadyNanoseconds.store(steady.GetNanoseconds(), std::memory_order_release);
    _lines.steadyRate.store(steady.GetRate(), std::memory_order_release);
    _lines.exactNanoseconds.store(exact.GetNanoseconds(), std::memory_order_release);
    _lines.exactRate.store(exact.GetRate(), std::memory_order_release);
    _lines.sequence.store(sequence + 2, std::memory_order_release);
    return known ? steady.ToTime(reading.ticks) : ToTime(reading.wall);
}

nxClockTime nxClock::_NowFromSystem()
{
    if (isStopped.load(std::memory_order_acquire))
        return ToTime(stoppedWall.load(std::memory_order_relaxed));
    nxClockReading reading{};
    if (UsesCounter() && TakeReading(_ReadCounter, reading))
        return _Update(reading);
    return ToTime(Read(CLOCK_REALTIME));
}

std::uint64_t nxClock::_TicksFromSystem()
{
    const Source source = _Decide();
    if (source == Source::Counter)
        return _ReadCounter();
    const std::int64_t now = Read(CLOCK_REALTIME);
    if (source == Source::System)
        return static_cast<std::uint64_t>(now);
    __extension__ using Wide = __int128;
    const nxClockScale scale = LastScale();
    const Wide passed = static_cast<Wide>(now) - scale.GetNanoseconds();
    return scale.GetTicks() + static_cast<std::uint64_t>(passed * (Wide{1} << 32) / static_cast<Wide>(scale.GetRate()));
}

nxClockScale nxClock::GetScale()
{
    constexpr std::int64_t patience = 2'000'000'000;
    std::int64_t deadline = 0;
    for (;;)
    {
        const Source source = _Decide();
        // Without the counter, ticks are the nanoseconds themselves.
        if (source != Source::Counter)
            return source == Source::System ? nxClockScale() : LastScale();
        const std::uint32_t sequence = _lines.sequence.load(std::memory_order_acquire);
        const nxClockScale scale(_lines.ticks.load(std::memory_order_acquire),
                                 _lines.exactNanoseconds.load(std::memory_order_acquire),
                                 _lines.exactRate.load(std::memory_order_acquire));
        const bool settled = sequence % 2 == 0 && sequence == _lines.sequence.load(std::memory_order_relaxed);
        if (settled && scale.GetRate() != 0)
            return scale;
        // A counter that stands still, or a thread that is stopped in the middle of an update, holds up nobody: whoever
        // asks gets about the present.
        const std::int64_t now = Read(CLOCK_MONOTONIC);
        deadline = deadline == 0 ? now + patience : deadline;
        if (now > deadline)
            return nxClockScale(_ReadCounter(), Read(CLOCK_REALTIME), 1);
        // Within a tenth of a millisecond of the very first reading the length of a tick is not known yet.
        if (settled)
            Recalibrate();
        else
            sched_yield();
    }
}

void nxClock::Recalibrate()
{
    if (Read(CLOCK_MONOTONIC) >= nextLook.load(std::memory_order_relaxed)) [[unlikely]]
        _LookAtSource();
    nxClockReading reading{};
    if (UsesCounter() && TakeReading(_ReadCounter, reading))
        _Update(reading);
}

// Leaves the counter when the kernel has: processors' counters may differ by then, or run at another speed. Ticks keep
// their unit and go on where they are, so that those taken before are still converted.
void nxClock::_LookAtSource()
{
    // Whoever looks puts off the others; before the first reading there is nothing to leave.
    nextLook.store(Read(CLOCK_MONOTONIC) + lookInterval, std::memory_order_relaxed);
    const int error = errno;
    const bool isLost = UsesCounter() && KernelTrustsCounter() == false;
    errno = error;
    const nxClockScale last = isLost ? GetScale() : nxClockScale();
    if (!isLost || last.GetRate() <= 1)
        return;
    static constinit std::atomic<bool> isLeft{false};
    if (isLeft.exchange(true))
        return;
    lastTicks.store(last.GetTicks(), std::memory_order_relaxed);
    lastNanoseconds.store(last.GetNanoseconds(), std::memory_order_relaxed);
    lastRate.store(last.GetRate(), std::memory_order_relaxed);
    _source.store(Source::LeftCounter, std::memory_order_release);
    _lines.validity.store(0, std::memory_order_release);
}

bool nxClock::UsesCounter() { return _Decide() == Source::Counter; }

std::int64_t nxClock::MonotonicNanoseconds() { return Read(CLOCK_MONOTONIC); }

std::int64_t nxClock::MeasuredNanoseconds()
{
    if (isStopped.load(std::memory_order_acquire)) [[unlikely]]
        return stoppedMeasured.load(std::memory_order_relaxed);
    return MonotonicNanoseconds();
}

void nxClock::_StopAt(std::int64_t wall, std::int64_t measured)
{
    stoppedWall.store(wall, std::memory_order_relaxed);
    stoppedMeasured.store(measured, std::memory_order_relaxed);
    if (isStopped.exchange(true, std::memory_order_acq_rel))
        return;
    // Whoever is updating the lines may not have seen it yet: waits for that update and takes its line back.
    std::uint32_t sequence = _lines.sequence.load(std::memory_order_relaxed);
    while (sequence % 2 != 0 ||
           !_lines.sequence.compare_exchange_weak(sequence, sequence + 1, std::memory_order_acquire))
    {
        sched_yield();
        sequence = _lines.sequence.load(std::memory_order_relaxed);
    }
    _lines.validity.store(0, std::memory_order_release);
    _lines.sequence.store(sequence + 2, std::memory_order_release);
}

void nxClock::_Run() { isStopped.store(false, std::memory_order_release); }
