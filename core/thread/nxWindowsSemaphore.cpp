#include "core/thread/nxWindowsSemaphore.h"

#include <cerrno>

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
    : _semaphore(nullptr)
{
    const auto initialise = [&](nxNamedObject& made)
    {
        errno = EINVAL;
        if (maximumCount == 0 || maximumCount > nxNamedSemaphore::LargestCount || initialCount > maximumCount)
            return false;
        made.semaphore.Initialise(initialCount, maximumCount);
        return true;
    };
    nxNamedObject* const object = nxNamedHandle::Open(name, nxNamedObjectKind::Semaphore, initialise);
    if (object != nullptr)
        _semaphore = &object->semaphore;
}

nxWindowsSemaphore::~nxWindowsSemaphore() = default;

nxErrorEnum nxWindowsSemaphore::TimedWait(double seconds)
{
    if (_semaphore == nullptr || _semaphore->Wait(WholeMilliseconds(seconds) * 1'000'000))
        return nxErrorEnum();
    return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
}
