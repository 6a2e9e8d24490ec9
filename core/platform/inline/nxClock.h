// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_INLINE_NXCLOCK_H
#define CORE_PLATFORM_INLINE_NXCLOCK_H

#include <atomic>
#include <cstdint>

#include "core/nxExport.h"
#include "core/platform/inline/nxClockScale.h"

struct nxClockReading;

/// The platform's clocks.
///
/// Where the processor's counter runs at a constant speed, on all processors alike, and the operating system itself
/// keeps time by it, the wall clock is read from that counter and compared with the system's clock every millisecond, so
/// a step of the system's clock shows within that time. Elsewhere every call asks the system. The same holds after the
/// system has stopped using the counter, which Recalibrate() checks once a minute.
///
/// - Units: wall-clock time as nxClockTime, intervals in nanoseconds, raw readings in ticks of no fixed length.
/// - Errors: none; the clocks cannot fail. If reading them takes long, for example in an emulator, times are inexact by
///   that much. A process that forbids its threads the counter must do so before the first reading.
/// - Threads: any thread may make any call, also in static constructors and destructors and after a fork.
/// @code
/// const std::uint64_t ticks = nxClock::Ticks();                // on the hot path: one raw reading
/// const nxClockTime when = nxClock::GetScale().ToTime(ticks);  // later, off the hot path
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
    /// in every round before GetScale(); then calls of Now() rarely need to do it.
    static void Recalibrate();

    /// Whether readings come from the processor's counter, rather than from the system's clock.
    static bool UsesCounter();

    /// Nanoseconds since some fixed moment; never steps back and is not affected when the wall clock is set.
    static std::int64_t MonotonicNanoseconds();

    /// The same for measurements of applications: a test may stop and step it, see nxSteppedClock.
    static std::int64_t MeasuredNanoseconds();

private:
    friend class nxSteppedClock;
    friend struct nxClockAtForks;

    enum class Source
    {
        Undecided,
        Counter,
        System,
        LeftCounter  // the system's clock, in the ticks of the counter that was used before
    };

    // The published lines. The rule: a writer makes the sequence number odd, stores with release, and makes it even again.
    // A reader loads everything with acquire between two looks at the number, and uses the values only if both looks
    // gave the same even number. If any value came from a write in progress, that load also makes the odd number visible
    // to the second look, which may be relaxed for that reason. A writer's exchange is an acquire, because the next writer
    // goes on with what the last one published by the even number. Relaxed in a child, which has one thread.
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

    // From now on Now() and MeasuredNanoseconds() return these nanoseconds; Ticks() and its scale are not affected.
    static void _StopAt(std::int64_t wall, std::int64_t measured);
    // From now on both return the true time again.
    static void _Run();

    // _Decide() and _LookAtSource() store it after what belongs to it (release), and _Decide() loads it before that (acquire).
    // Relaxed in Ticks(), which needs nothing else while the counter is the source.
    static std::atomic<Source> _source;
    static Lines _lines;
};

#endif
