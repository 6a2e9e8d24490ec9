#ifndef CORE_LOG_INTERNAL_NXLOGPATIENCE_H
#define CORE_LOG_INTERNAL_NXLOGPATIENCE_H

#include <algorithm>
#include <cstdint>

#include "core/platform/inline/nxClock.h"

/// How long somebody has waited, as far as he was there to look. A process that is stopped, or kept from its processor
/// for seconds, finds all that time gone at its next look: that says nothing about the device that it waits for, which
/// stood still as well. So what lies between two looks counts for little more than looks are apart.
///
/// Threads: none.
class nxLogPatience
{
public:
    /// Waiters look more often than this, in nanoseconds.
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
