// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxWindowsSemaphore.h"

#include "core/platform/nxNanoseconds.h"
#include "core/thread/internal/nxNamedHandle.h"

namespace
{
// 49 days: one less than the 32-bit number of milliseconds that means no limit.
constexpr double longestMilliseconds = 4'294'967'294.0;

std::int64_t WholeMilliseconds(double seconds)
{
    const double milliseconds = seconds * 1000.0;
    if (!(milliseconds > 0))
        return 0;
    return static_cast<std::int64_t>(milliseconds < longestMilliseconds ? milliseconds : longestMilliseconds);
}
}  // namespace

nxWindowsSemaphore::nxWindowsSemaphore(const std::string& name, unsigned initialCount, unsigned maximumCount)
    : _semaphore(nxNamedHandle::OpenSemaphore(name, initialCount, maximumCount))
{
}

nxWindowsSemaphore::~nxWindowsSemaphore() = default;

nxErrorEnum nxWindowsSemaphore::TimedWait(double seconds)
{
    return _WaitFor(WholeMilliseconds(seconds) * nxNanoseconds::PerMillisecond);
}

nxErrorEnum nxWindowsSemaphore::_WaitFor(std::int64_t nanoseconds)
{
    if (_semaphore == nullptr || _semaphore->Wait(nanoseconds))
        return nxErrorEnum();
    return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
}
