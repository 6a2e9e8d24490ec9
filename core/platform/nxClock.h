#ifndef CORE_PLATFORM_NXCLOCK_H
#define CORE_PLATFORM_NXCLOCK_H

#include <cstdint>

#include "core/nxExport.h"

/// A moment of the wall clock: whole seconds since 1 January 1970 00:00 UTC (negative before) and a fraction.
struct nxClockTime
{
    long long seconds;
    unsigned nanoseconds;  ///< 0 to 999,999,999.
};

/// Turns readings of nxClock::Ticks() into wall-clock time. A plain value: fetch one for a batch of readings with
/// nxClock::GetScale(), convert the batch with it, and fetch a new one for the next.
class nxClockScale
{
public:
    nxClockScale() = default;

    /// The wall-clock time at which nxClock::Ticks() returned @p ticks. Exact for readings that are at most a few
    /// seconds older or newer than the scale.
    nxClockTime ToTime(std::uint64_t ticks) const
    {
        const auto nanoseconds = static_cast<long long>(ticks);
        return {nanoseconds / 1'000'000'000, static_cast<unsigned>(nanoseconds % 1'000'000'000)};
    }
};

/// The platform's clocks.
///
/// - Units: wall-clock time as nxClockTime, intervals in nanoseconds, raw readings in ticks of no fixed length.
/// - Errors: none; the clocks cannot fail.
/// - Threads: every call may come from any thread, also from static constructors and destructors.
/// @code
/// const std::uint64_t ticks = nxClock::Ticks();                      // on the hot path: one raw reading
/// ...
/// const nxClockTime when = nxClock::GetScale().ToTime(ticks);        // later, where time does not matter
/// @endcode
class NX_CORE_API nxClock
{
public:
    nxClock() = delete;

    /// The wall clock now, in full resolution.
    static nxClockTime Now();

    /// The cheapest reading that can be turned into wall-clock time later.
    static std::uint64_t Ticks();

    /// The scale that belongs to readings of Ticks() taken about now.
    static nxClockScale GetScale();

    /// Compares Ticks() with the system's clock and refreshes the scale. A thread that wakes up regularly anyway calls
    /// it once in every round, so that nobody else has to.
    static void Recalibrate();

    /// Nanoseconds since some fixed moment; never steps back and is not affected when the wall clock is set.
    static std::int64_t MonotonicNanoseconds();
};

#endif
