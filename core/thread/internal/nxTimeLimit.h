// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXTIMELIMIT_H
#define CORE_THREAD_INTERNAL_NXTIMELIMIT_H

#include <chrono>
#include <cstdint>
#include <limits>

#include "core/platform/nxDeadline.h"
#include "core/platform/nxSystemClock.h"
#include "core/thread/inline/nxWaitTime.h"

/// How long a wait may last that consists of several sleeps.
///
/// 0, negative values and NaN leave no time. Longer times than nxDeadline::MaximumSeconds have no end.
class nxTimeLimit
{
public:
    explicit nxTimeLimit(double seconds) : _end(_GetEnd(seconds)) {}

    /// @return the nanoseconds that are left; 0 when the time is over.
    std::int64_t GetLeft() const
    {
        if (_end == _never || _end == 0)
            return _end;
        const std::int64_t now = nxSystemClock::MonotonicNanoseconds();
        return now < _end ? _end - now : 0;
    }

private:
    static constexpr std::int64_t _never = std::numeric_limits<std::int64_t>::max();

    static std::int64_t _GetEnd(double seconds)
    {
        if (seconds >= static_cast<double>(nxDeadline::MaximumSeconds))
            return _never;
        const std::int64_t time = nxWaitTime::Nanoseconds(std::chrono::duration<double>(seconds));
        return time == 0 ? 0 : nxSystemClock::MonotonicNanoseconds() + time;
    }

    std::int64_t _end;  // of the monotonic clock; 0 when it is over from the beginning
};

#endif
