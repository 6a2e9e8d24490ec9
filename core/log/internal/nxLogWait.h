// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGWAIT_H
#define CORE_LOG_INTERNAL_NXLOGWAIT_H

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/log/internal/nxLogAwakeTime.h"
#include "core/log/internal/nxLogCounters.h"

/// One wait for the devices: bounded as a whole, and by the time without a sign of life from them.
///
/// Invariant: the wait is over when its limit is reached, or when the progress has not changed for its stall limit.
///
/// Threads: the one that waits.
/// @code
/// nxLogAwakeTime time;
/// nxLogWait wait(limit, stallLimit, time);
/// while (!IsDone())
/// {
///     const std::int64_t left = wait.Step();
///     if (left <= 0)
///         return false;
///     SleepAtMost(left);
/// }
/// @endcode
class nxLogWait
{
public:
    static constexpr std::int64_t NoLimit = std::numeric_limits<std::int64_t>::max();

    /// @param limit, stallLimit nanoseconds: in all, and without a sign of life.
    /// @param time what has been waited before; all of it counts towards @p limit, none of it towards @p stallLimit.
    nxLogWait(std::int64_t limit, std::int64_t stallLimit, nxLogAwakeTime& time) noexcept
        : _limit(limit), _stallLimit(stallLimit), _time(time), _lastSign(time.Look())
    {
    }

    /// Looks at clock and progress. @return how many nanoseconds the wait may go on; 0 or less when it is over.
    std::int64_t Step() noexcept
    {
        const std::int64_t waited = _time.Look();
        if (const std::uint32_t progress = nxLogCounters::GetProgress(); progress != _progress)
        {
            _progress = progress;
            _lastSign = waited;
        }
        return std::min(_limit - waited, _stallLimit - (waited - _lastSign));
    }

    /// @return the progress that the last Step() saw, or the constructor.
    std::uint32_t GetProgress() const noexcept { return _progress; }

private:
    const std::int64_t _limit;
    const std::int64_t _stallLimit;
    nxLogAwakeTime& _time;
    std::int64_t _lastSign;  // the time waited when the progress changed last
    std::uint32_t _progress = nxLogCounters::GetProgress();
};

#endif
