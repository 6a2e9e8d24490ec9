// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_INLINE_NXCLOCKSCALE_H
#define CORE_PLATFORM_INLINE_NXCLOCKSCALE_H

#include <cstdint>

/// A moment of the wall clock: whole seconds since 1 January 1970 00:00 UTC (negative before) and a fraction.
struct nxClockTime
{
    long long seconds;
    unsigned nanoseconds;  ///< 0 to 999,999,999.
};

/// Turns readings of nxClock::Ticks() into wall-clock time: a straight line through one moment.
///
/// A plain value. Fetch one for a batch of readings with nxClock::GetScale(), convert the batch with it, and fetch a
/// new one for the next: it is exact to a microsecond for readings that are at most some seconds older or newer.
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
        const std::int64_t nanoseconds = ToNanoseconds(ticks);
        const std::int64_t seconds = nanoseconds / _nanosecondsPerSecond;
        const std::int64_t rest = nanoseconds % _nanosecondsPerSecond;
        if (rest < 0)
            return {seconds - 1, static_cast<unsigned>(rest + _nanosecondsPerSecond)};
        return {seconds, static_cast<unsigned>(rest)};
    }

    /// The same, cheaper when the moment lies in @p second. @param second of a moment that a scale has returned, or 0.
    nxClockTime ToTimeNear(std::uint64_t ticks, long long second) const
    {
        const auto rest = static_cast<std::uint64_t>(ToNanoseconds(ticks) - second * _nanosecondsPerSecond);
        if (rest < static_cast<std::uint64_t>(_nanosecondsPerSecond)) [[likely]]
            return {second, static_cast<unsigned>(rest)};
        return ToTime(ticks);
    }

    std::uint64_t GetTicks() const { return _ticks; }             ///< Where the line starts, in ticks,
    std::int64_t GetNanoseconds() const { return _nanoseconds; }  ///< on the wall clock,
    std::uint64_t GetRate() const { return _rate; }               ///< and how long a tick is, in ns / 2^32.

private:
    static constexpr std::int64_t _nanosecondsPerSecond = 1'000'000'000;

    std::uint64_t _ticks = 0;
    std::int64_t _nanoseconds = 0;
    std::uint64_t _rate = std::uint64_t{1} << 32;
};

#endif
