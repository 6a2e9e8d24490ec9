// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGRECORDTIMES_H
#define CORE_LOG_INTERNAL_NXLOGRECORDTIMES_H

#include <cstdint>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxNanoseconds.h"

/// Turns the ticks of records into times, one after the other. Most records are of the second of the one before and later than
/// it: for them a multiplication and a shift are enough.
///
/// Invariant: every time is the one that the scale has for these ticks.
///
/// Errors: none. Threads: none.
class nxLogRecordTimes
{
public:
    nxLogRecordTimes() = default;
    explicit nxLogRecordTimes(const nxClockScale& scale) : _scale(scale) {}

    const nxClockScale& GetScale() const { return _scale; }

    /// The moment at which nxClock::Ticks() returned @p ticks.
    [[gnu::always_inline]] nxClockTime Get(std::uint64_t ticks) noexcept
    {
        const std::uint64_t passed = ticks - _begin;
        if (passed >= _ticks) [[unlikely]]
            return _Begin(ticks);
        return {_second, static_cast<unsigned>((_atBegin + passed * _scale.GetRate()) >> 32)};
    }

private:
    // From these ticks on times are of the second that they are in, up to its end.
    [[gnu::noinline]] nxClockTime _Begin(std::uint64_t ticks) noexcept
    {
        const nxClockTime time = _scale.ToTime(ticks);
        const std::uint64_t rate = _scale.GetRate();
        // The part of the nanosecond that has passed. It is in the lower half of the product, whatever the upper one is.
        const std::uint64_t fraction = ((ticks - _scale.GetTicks()) * rate) & 0xFFFFFFFF;
        _begin = ticks;
        _second = time.seconds;
        _atBegin = std::uint64_t{time.nanoseconds} << 32 | fraction;
        // No product exceeds the second, which fits in 64 bits.
        _ticks = rate == 0 ? 0 : ((std::uint64_t{nxNanoseconds::PerSecond} << 32) - _atBegin) / rate;
        return time;
    }

    nxClockScale _scale;
    std::uint64_t _begin = 0;
    std::uint64_t _ticks = 0;  // from _begin on for which _second and _atBegin hold
    long long _second = 0;
    std::uint64_t _atBegin = 0;  // of the second, in nanoseconds / 2^32
};

#endif
