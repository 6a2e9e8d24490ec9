// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/inline/nxRobustMutex.h"

#include <algorithm>

#include "core/platform/linux/nxMonotonicTime.h"
#include "core/platform/nxSpin.h"

namespace
{
constexpr std::int64_t waitSlice = 50 * nxNanoseconds::PerMillisecond;
}  // namespace

int nxRobustMutex::Wait(pthread_mutex_t& mutex) { return WaitUntil(mutex, nxMonotonicTime::Never); }

int nxRobustMutex::WaitUntil(pthread_mutex_t& mutex, std::int64_t deadline)
{
    int result = EBUSY;
    if (nxSpin::Until([&] { return (result = Try(mutex)) != EBUSY; }))
        return result;
    std::int64_t end = 0;
    do
    {
        end = std::min(deadline, nxMonotonicTime::After(waitSlice));
        result = LockUntil(mutex, end);
    } while (result == ETIMEDOUT && end < deadline);
    return result;
}

int nxRobustMutex::LockUntil(pthread_mutex_t& mutex, std::int64_t deadline)
{
    if (nxMonotonicTime::IsWatched())
        return nxMonotonicTime::TryUntil(deadline, [&] { return Try(mutex); });
    const timespec end = nxMonotonicTime::ToTimespec(deadline);
    return pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, &end);
}
