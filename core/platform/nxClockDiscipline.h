// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXCLOCKDISCIPLINE_H
#define CORE_PLATFORM_NXCLOCKDISCIPLINE_H

#include <algorithm>
#include <cstdint>

#include "core/platform/inline/nxClockScale.h"
#include "core/platform/nxNanoseconds.h"

/// One reading of the processor's counter and, at the same moment, of the system's two clocks in nanoseconds.
struct nxClockReading
{
    std::uint64_t ticks;
    std::int64_t wall;
    std::int64_t monotonic;
    std::int64_t doubt = 0;  ///< The possible distance between them in nanoseconds, if it is unusual.
};

/// Keeps a counter in step with the wall clock: from readings of both it derives the lines that turn counter values
/// into wall-clock time. It does not know the sources of the readings.
///
/// The length of a tick is measured against the monotonic clock, which follows the corrections of the wall clock's
/// speed but not its steps: first over a tenth of a millisecond, then over longer and longer stretches up to a second.
/// When a tick suddenly lasts longer or shorter (the machine slept, or the virtual machine moved to another host), the
/// measurement starts again.
class nxClockDiscipline
{
public:
    /// Readers of the time compare ticks with the system's clock at least this often.
    static constexpr std::int64_t ValidNanoseconds = nxNanoseconds::PerMillisecond;

    /// Takes one more reading; one that is older than the last is ignored.
    /// @return whether the length of a tick is known; without it there are no lines.
    bool Update(const nxClockReading& reading)
    {
        if (_followed && static_cast<std::int64_t>(reading.ticks - _last.ticks) < 0 &&
            reading.monotonic <= _last.monotonic)
            return true;
        if (!_Measure(reading))
            return false;
        _Follow(reading);
        return true;
    }

    /// The number of ticks after a reading for which the steady line may be used.
    std::uint64_t GetValidity() const { return _validity; }

    /// The line through the last reading.
    nxClockScale GetExact() const { return {_last.ticks, _last.wall, _rate}; }

    /// The line for readers of the present time. It continues the previous line: if that one was ahead of the system's
    /// clock by less than a step, this one runs slower instead of going back.
    nxClockScale GetSteady() const { return {_last.ticks, _steadyNanoseconds, _steadyRate}; }

private:
    static constexpr std::int64_t _shortestStretch = 100'000;
    static constexpr std::int64_t _longestStretch = nxNanoseconds::PerSecond;
    static constexpr std::int64_t _doubtsInAStretch = 100;
    static constexpr std::int64_t _smallestStep = 100'000;
    static constexpr std::int64_t _readingTolerance = 10'000;
    static constexpr int _rateTolerance = 8;  // ticks that differ from their length by more than 1/2^8 are a break
    static constexpr int _slowerBy = 9;       // by 1/2^9: two microseconds in a millisecond

    __extension__ using Wide = unsigned __int128;

    bool _Measure(const nxClockReading& reading)
    {
        const auto ticks = static_cast<std::int64_t>(reading.ticks - _start.ticks);
        const std::int64_t stretch = reading.monotonic - _start.monotonic;
        if (!_started || ticks < 0 || (_followed && _Breaks(reading)))
            return _Restart(reading);
        const std::int64_t doubt = reading.doubt + _start.doubt;
        const std::int64_t needed = std::max(_nextStretch, std::min(_doubtsInAStretch * doubt, _longestStretch));
        if (stretch < needed || ticks == 0)
            return _rate != 0;
        const auto rate = static_cast<std::uint64_t>((static_cast<Wide>(stretch) << 32) / static_cast<Wide>(ticks));
        if (rate == 0)
            return _Restart(reading);
        _rate = rate;
        _validity = static_cast<std::uint64_t>((static_cast<Wide>(ValidNanoseconds) << 32) / rate);
        if (stretch >= _longestStretch)
            _start = reading;
        else
            _nextStretch = 2 * stretch < _longestStretch ? 2 * stretch : _longestStretch;
        return true;
    }

    // Whether ticks and nanoseconds since the last reading do not belong together.
    bool _Breaks(const nxClockReading& reading) const
    {
        const std::int64_t passed = reading.monotonic - _last.monotonic;
        const std::int64_t expected = nxClockScale(_last.ticks, 0, _rate).ToNanoseconds(reading.ticks);
        const std::int64_t tolerance = _readingTolerance + (passed >> _rateTolerance) + reading.doubt + _last.doubt;
        return passed < 0 || expected < passed - tolerance || expected > passed + tolerance;
    }

    bool _Restart(const nxClockReading& reading)
    {
        *this = nxClockDiscipline();
        _started = true;
        _start = reading;
        return false;
    }

    void _Follow(const nxClockReading& reading)
    {
        const std::int64_t ahead = _followed ? _Difference(_LargestGiven(reading.ticks), reading.wall) : 0;
        const bool wait = 0 < ahead && ahead < _smallestStep;
        _steadyNanoseconds = wait ? reading.wall + ahead : reading.wall;
        _steadyRate = wait ? _rate - (_rate >> _slowerBy) : _rate;
        _last = reading;
        _followed = true;
    }

    // The latest time that a reader can have got from the steady line.
    std::int64_t _LargestGiven(std::uint64_t ticks) const
    {
        const bool stillValid = ticks - _last.ticks < _validity;
        return GetSteady().ToNanoseconds(stillValid ? ticks : _last.ticks + _validity);
    }

    static std::int64_t _Difference(std::int64_t left, std::int64_t right)
    {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) - static_cast<std::uint64_t>(right));
    }

    bool _started = false;
    bool _followed = false;
    nxClockReading _start{};
    nxClockReading _last{};
    std::int64_t _nextStretch = _shortestStretch;
    std::uint64_t _rate = 0;
    std::uint64_t _validity = 0;
    std::int64_t _steadyNanoseconds = 0;
    std::uint64_t _steadyRate = 0;
};

#endif
