#ifndef CORE_PLATFORM_INLINE_NXCLOCK_H
#define CORE_PLATFORM_INLINE_NXCLOCK_H

#include <atomic>
#include <cstdint>

#include "core/nxExport.h"

/// A moment of the wall clock: whole seconds since 1 January 1970 00:00 UTC (negative before) and a fraction.
struct nxClockTime
{
    long long seconds;
    unsigned nanoseconds;  ///< 0 to 999,999,999.
};

/// Turns readings of nxClock::Ticks() into wall-clock time: a straight line through one moment.
///
/// A plain value. Fetch one for a batch of readings with nxClock::GetScale(), convert the batch with it, and fetch a
/// new one for the next: it is exact to a microsecond for readings up to some seconds older or newer than itself.
class nxClockScale
{
public:
    nxClockScale() = default;

    /// The line on which @p nanoseconds of the wall clock belong to @p ticks and a tick lasts @p rate / 2^32 ns.
    nxClockScale(std::uint64_t ticks, std::int64_t nanoseconds, std::uint64_t rate)
        : _ticks(ticks), _nanoseconds(nanoseconds), _rate(rate)
    {
    }

    /// Nanoseconds from 1 January 1970 00:00 UTC to the moment at which nxClock::Ticks() returned @p ticks.
    std::int64_t ToNanoseconds(std::uint64_t ticks) const
    {
        __extension__ using Wide = __int128;
        const auto distance = static_cast<std::int64_t>(ticks - _ticks);
        const auto passed = static_cast<std::uint64_t>((static_cast<Wide>(distance) * static_cast<Wide>(_rate)) >> 32);
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(_nanoseconds) + passed);
    }

    /// The same moment in seconds and nanoseconds.
    nxClockTime ToTime(std::uint64_t ticks) const
    {
        constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
        const std::int64_t nanoseconds = ToNanoseconds(ticks);
        const std::int64_t seconds = nanoseconds / nanosecondsPerSecond;
        const std::int64_t rest = nanoseconds % nanosecondsPerSecond;
        if (rest < 0)
            return {seconds - 1, static_cast<unsigned>(rest + nanosecondsPerSecond)};
        return {seconds, static_cast<unsigned>(rest)};
    }

    /// The same, cheaper when the moment lies in @p second. @param second of a moment that a scale has returned, or 0.
    nxClockTime ToTimeNear(std::uint64_t ticks, long long second) const
    {
        constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
        const auto rest = static_cast<std::uint64_t>(ToNanoseconds(ticks) - second * nanosecondsPerSecond);
        if (rest < static_cast<std::uint64_t>(nanosecondsPerSecond)) [[likely]]
            return {second, static_cast<unsigned>(rest)};
        return ToTime(ticks);
    }

    std::uint64_t GetTicks() const { return _ticks; }             ///< Where the line starts, in ticks,
    std::int64_t GetNanoseconds() const { return _nanoseconds; }  ///< on the wall clock,
    std::uint64_t GetRate() const { return _rate; }               ///< and how long a tick is, in ns / 2^32.

private:
    std::uint64_t _ticks = 0;
    std::int64_t _nanoseconds = 0;
    std::uint64_t _rate = std::uint64_t{1} << 32;
};

struct nxClockReading;

/// The platform's clocks.
///
/// Where the processor's counter runs at a constant speed, on all processors alike, and the operating system itself
/// keeps time by it, the wall clock is read from that counter and compared with the system's clock every millisecond:
/// a step of the system's clock shows within that time. Elsewhere every call asks the system, and from the moment on at
/// which the system turns out to have given up the counter, which Recalibrate() looks for once a minute.
///
/// - Units: wall-clock time as nxClockTime, intervals in nanoseconds, raw readings in ticks of no fixed length.
/// - Errors: none; the clocks cannot fail. Where reading them takes long, because somebody intercepts it, times are as
///   inexact as that. A process that forbids its threads the counter (PR_SET_TSC) does so before the first reading.
/// - Threads: every call may come from any thread, also from static constructors and destructors and after a fork.
/// @code
/// const std::uint64_t ticks = nxClock::Ticks();                // on the hot path: one raw reading
/// const nxClockTime when = nxClock::GetScale().ToTime(ticks);  // later, where time does not matter
/// @endcode
class NX_CORE_API nxClock
{
public:
    nxClock() = delete;

    /// The wall clock now, in full resolution. Does not step back unless the system's clock does.
    static nxClockTime Now()
    {
        const std::uint32_t sequence = _lines.sequence.load(std::memory_order_acquire);
        const nxClockScale line(_lines.ticks.load(std::memory_order_acquire),
                                _lines.steadyNanoseconds.load(std::memory_order_acquire),
                                _lines.steadyRate.load(std::memory_order_acquire));
        const std::uint64_t validity = _lines.validity.load(std::memory_order_acquire);
        if (validity != 0 && sequence % 2 == 0 && sequence == _lines.sequence.load(std::memory_order_relaxed))
        {
            const std::uint64_t ticks = _ReadCounter();
            if (ticks - line.GetTicks() < validity)
                return line.ToTime(ticks);
        }
        return _NowFromSystem();
    }

    /// The cheapest reading that can be turned into wall-clock time later, with GetScale().
    static std::uint64_t Ticks()
    {
        return _source.load(std::memory_order_relaxed) == Source::Counter ? _ReadCounter() : _TicksFromSystem();
    }

    /// The scale for readings of Ticks() taken before the last Recalibrate() or shortly after.
    static nxClockScale GetScale();

    /// Compares Ticks() with the system's clock and refreshes the scale. A thread that converts readings calls it once
    /// in every round before GetScale(); then those who ask for the time rarely need to.
    static void Recalibrate();

    /// Whether readings come from the processor's counter, rather than from the system's clock.
    static bool UsesCounter();

    /// Nanoseconds since some fixed moment; never steps back and is not affected when the wall clock is set.
    static std::int64_t MonotonicNanoseconds();

    /// The same for what applications measure: a test may stop and step it, see nxSteppedClock.
    static std::int64_t MeasuredNanoseconds();

private:
    friend class nxSteppedClock;

    enum class Source
    {
        Undecided,
        Counter,
        System,
        LeftCounter  // the system's clock, in the ticks of the counter that was used before
    };

    // What is published for everybody, under a sequence number that is odd while it is being written.
    struct alignas(64) Lines
    {
        std::atomic<std::uint32_t> sequence;
        std::atomic<std::uint64_t> ticks;
        std::atomic<std::uint64_t> validity;  // ticks for which Now() may use the line; 0 while there is none
        std::atomic<std::int64_t> steadyNanoseconds;
        std::atomic<std::uint64_t> steadyRate;
        std::atomic<std::int64_t> exactNanoseconds;
        std::atomic<std::uint64_t> exactRate;
    };

    static std::uint64_t _ReadCounter()
    {
#if defined(__x86_64__)
        return __builtin_ia32_rdtsc();
#elif defined(__aarch64__)
        std::uint64_t ticks;
        __asm__ volatile("mrs %0, cntvct_el0" : "=r"(ticks));
        return ticks;
#else
        return 0;
#endif
    }
    static Source _Decide();
    static void _LookAtSource();
    static nxClockTime _NowFromSystem();
    static std::uint64_t _TicksFromSystem();
    static nxClockTime _Update(const nxClockReading& reading);

    // From now on Now() and MeasuredNanoseconds() return these nanoseconds; Ticks() and its scale go on as they are.
    static void _StopAt(std::int64_t wall, std::int64_t measured);
    // And from now on the true time again.
    static void _Run();

    static std::atomic<Source> _source;
    static Lines _lines;
};

#endif
