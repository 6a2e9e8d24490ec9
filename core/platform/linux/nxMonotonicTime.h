// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXMONOTONICTIME_H
#define CORE_PLATFORM_LINUX_NXMONOTONICTIME_H

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <limits>

#include "core/platform/nxNanoseconds.h"
#include "core/platform/nxThreadSanitizer.h"

/// Moments of the system's monotonic clock, in nanoseconds.
struct nxMonotonicTime
{
    static constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

    static std::int64_t Now()
    {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        return now.tv_sec * nxNanoseconds::PerSecond + now.tv_nsec;
    }

    /// @return the moment @p nanoseconds from now; Never where that is too far away. @pre The number is not negative.
    static std::int64_t After(std::int64_t nanoseconds)
    {
        const std::int64_t now = Now();
        return nanoseconds < Never - now ? now + nanoseconds : Never;
    }

    static timespec ToTimespec(std::int64_t nanoseconds)
    {
        return {nanoseconds / nxNanoseconds::PerSecond, nanoseconds % nxNanoseconds::PerSecond};
    }

    /// Whether the program runs under the thread sanitizer. Its versions up to now do not follow pthread_mutex_clocklock,
    /// pthread_rwlock_clockrdlock, pthread_rwlock_clockwrlock and sem_clockwait, and would report what their callers do next.
    static bool IsWatched() { return nxThreadSanitizer::IsActive(); }

    /// Calls @p attempt each millisecond while it returns EBUSY. @return its result; ETIMEDOUT after @p deadline.
    template <class Attempt>
    static int TryUntil(std::int64_t deadline, const Attempt& attempt)
    {
        while (true)
        {
            const std::int64_t left = deadline - Now();
            const int result = attempt();
            if (result != EBUSY || left <= 0)
                return result == EBUSY ? ETIMEDOUT : result;
            const timespec pause = ToTimespec(std::min(left, nxNanoseconds::PerMillisecond));
            clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr);
        }
    }
};

#endif
