// SPDX-License-Identifier: Apache-2.0
#include "core/platform/inline/nxClock.h"

#include <limits>

#include "core/platform/nxClockDiscipline.h"
#include "core/platform/nxForkHandlers.h"
#include "core/platform/nxNanoseconds.h"
#include "core/platform/nxSystemClock.h"

namespace
{
constexpr int readingAttempts = 4;
constexpr std::int64_t longestReading = 5'000;  // nanoseconds; more means that the thread was interrupted in between,
constexpr int longestUnrest = 16;               // or, when it happens this often in a row, that readings take that long

constinit std::atomic<int> unrest{0};  // relaxed: a count, which orders no other memory

// Reads counter and clocks together. False when the thread was interrupted each time.
template <class ReadCounter>
bool TakeReading(ReadCounter readCounter, nxClockReading& reading)
{
    std::int64_t shortest = std::numeric_limits<std::int64_t>::max();
    for (int attempt = 0; attempt < readingAttempts && shortest > longestReading; ++attempt)
    {
        const std::int64_t before = nxSystemClock::MonotonicNanoseconds();
        const std::uint64_t first = readCounter();
        const std::int64_t wall = nxSystemClock::WallNanoseconds();
        const std::uint64_t second = readCounter();
        const std::int64_t after = nxSystemClock::MonotonicNanoseconds();
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

// What a test shows instead of the time. While the clock is stopped no line is valid, so every reader comes to ask here;
// a running clock pays nothing for this. _StopAt() exchanges isStopped after the two times and _Run() clears it (release);
// readers load it before the times (acquire), which are relaxed.
constinit std::atomic<bool> isStopped{false};
constinit std::atomic<std::int64_t> stoppedWall{0};
constinit std::atomic<std::int64_t> stoppedMeasured{0};

constexpr std::int64_t lookInterval = 60 * nxNanoseconds::PerSecond;
// When to ask again whether the system still keeps time by the counter, and the scale of the ticks once it does not. Relaxed:
// published with nxClock::_source, which is stored after them.
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

struct nxClockAtForks
{
    // A child forked in the middle of an update would find the lines closed for ever.
    static void RepairChild()
    {
        discipline = nxClockDiscipline();
        nxClock::_lines.validity.store(0, std::memory_order_relaxed);
        nxClock::_lines.exactRate.store(0, std::memory_order_relaxed);
        nxClock::_lines.sequence.store(0, std::memory_order_release);
    }
};

namespace
{
constexpr nxForkHandlers::Functions aroundForksOfClock{nullptr, nullptr, &nxClockAtForks::RepairChild};
// Registered while the library is loaded: the first update may meet a fork.
[[maybe_unused]] const bool isClockRegistered =
    nxForkHandlers::Register(nxForkHandlers::Rank::Clock, aroundForksOfClock);
}  // namespace

nxClock::Source nxClock::_Decide()
{
    const Source known = _source.load(std::memory_order_acquire);
    if (known != Source::Undecided)
        return known;
    const Source found = nxSystemClock::CanUseCounter() ? Source::Counter : Source::System;
    nextLook.store(nxSystemClock::MonotonicNanoseconds() + lookInterval, std::memory_order_relaxed);
    Source expected = Source::Undecided;
    // The first thread decides, so no two readings ever have different units.
    return _source.compare_exchange_strong(expected, found, std::memory_order_acq_rel) ? found : expected;
}

nxClockTime nxClock::_Update(const nxClockReading& reading)
{
    std::uint32_t sequence = _lines.sequence.load(std::memory_order_relaxed);
    // Another thread is updating the lines; its update is as good as this one.
    if (sequence % 2 != 0 ||
        !_lines.sequence.compare_exchange_strong(sequence, sequence + 1, std::memory_order_acquire))
        return ToTime(reading.wall);
    const bool known = discipline.Update(reading);
    const nxClockScale steady = discipline.GetSteady();
    const nxClockScale exact = discipline.GetExact();
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
    return ToTime(nxSystemClock::WallNanoseconds());
}

std::uint64_t nxClock::_TicksFromSystem()
{
    const Source source = _Decide();
    if (source == Source::Counter)
        return _ReadCounter();
    const std::int64_t now = nxSystemClock::WallNanoseconds();
    if (source == Source::System)
        return static_cast<std::uint64_t>(now);
    __extension__ using Wide = __int128;
    const nxClockScale scale = LastScale();
    const Wide passed = static_cast<Wide>(now) - scale.GetNanoseconds();
    return scale.GetTicks() + static_cast<std::uint64_t>(passed * (Wide{1} << 32) / static_cast<Wide>(scale.GetRate()));
}

nxClockScale nxClock::GetScale()
{
    constexpr std::int64_t limit = 2 * nxNanoseconds::PerSecond;
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
        // A counter that stands still, or a thread stopped in the middle of an update, must not hold up the caller: it
        // gets a scale that shows the present.
        const std::int64_t now = nxSystemClock::MonotonicNanoseconds();
        deadline = deadline == 0 ? now + limit : deadline;
        if (now > deadline)
            return nxClockScale(_ReadCounter(), nxSystemClock::WallNanoseconds(), 1);
        // The length of a tick becomes known a tenth of a millisecond after the very first reading.
        if (settled)
            Recalibrate();
        else
            nxSystemClock::Yield();
    }
}

void nxClock::Recalibrate()
{
    if (nxSystemClock::MonotonicNanoseconds() >= nextLook.load(std::memory_order_relaxed)) [[unlikely]]
        _LookAtSource();
    nxClockReading reading{};
    if (UsesCounter() && TakeReading(_ReadCounter, reading))
        _Update(reading);
}

// Leaves the counter when the system has, because the processors' counters may differ by then or run at another speed.
// Ticks keep their unit and continue from the last value, so those taken before are still converted.
void nxClock::_LookAtSource()
{
    // This look counts for the other threads too. Before the first reading there is nothing to leave.
    nextLook.store(nxSystemClock::MonotonicNanoseconds() + lookInterval, std::memory_order_relaxed);
    const bool isLost = UsesCounter() && nxSystemClock::HasLeftCounter();
    const nxClockScale last = isLost ? GetScale() : nxClockScale();
    if (!isLost || last.GetRate() <= 1)
        return;
    // The default order, because it happens once.
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

std::int64_t nxClock::MonotonicNanoseconds() { return nxSystemClock::MonotonicNanoseconds(); }

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
    // A thread that is updating the lines may not have seen the stop: wait for its update and take its line back.
    std::uint32_t sequence = _lines.sequence.load(std::memory_order_relaxed);
    while (sequence % 2 != 0 ||
           !_lines.sequence.compare_exchange_weak(sequence, sequence + 1, std::memory_order_acquire))
    {
        nxSystemClock::Yield();
        sequence = _lines.sequence.load(std::memory_order_relaxed);
    }
    _lines.validity.store(0, std::memory_order_release);
    _lines.sequence.store(sequence + 2, std::memory_order_release);
}

void nxClock::_Run() { isStopped.store(false, std::memory_order_release); }
