// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGAWAKETIME_H
#define CORE_LOG_INTERNAL_NXLOGAWAKETIME_H

#include <algorithm>
#include <cstdint>

#include "core/platform/inline/nxClock.h"

/// How long a thread has waited, not counting time in which the process itself did not run. A process that is stopped,
/// or kept from its processor for seconds, finds all that time gone at its next look. That says nothing about the
/// device that it waits for, which did not run either. So the time between two looks counts for at most LongestLook.
///
/// Invariant: the time never goes back, and one look adds LongestLook at most.
///
/// Threads: none.
class nxLogAwakeTime
{
public:
    /// Waiting threads look more often than this, in nanoseconds.
    static constexpr std::int64_t LongestLook = 20'000'000;

    /// Looks at the clock. @return nanoseconds since the construction.
    std::int64_t Look() noexcept
    {
        const std::int64_t now = nxClock::MonotonicNanoseconds();
        _waited += std::min(now - _looked, LongestLook);
        _looked = now;
        return _waited;
    }

private:
    std::int64_t _looked = nxClock::MonotonicNanoseconds();
    std::int64_t _waited = 0;
};

#endif
