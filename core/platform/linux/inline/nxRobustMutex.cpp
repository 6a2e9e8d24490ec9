#include "core/platform/linux/inline/nxRobustMutex.h"

#include <cerrno>
#include <ctime>

#include "core/platform/nxNanoseconds.h"
#include "core/platform/nxSpin.h"

namespace
{
#if defined(__SANITIZE_THREAD__)
    #define NX_THREAD_SANITIZER 1
#elif defined(__has_feature)
    #if __has_feature(thread_sanitizer)
        #define NX_THREAD_SANITIZER 1
    #endif
#endif

#ifdef NX_THREAD_SANITIZER
// The sanitizer does not follow a timed lock that takes the mutex of a dead owner, so the mutex is tried instead.
int LockForASlice(pthread_mutex_t& mutex)
{
    const timespec pause{0, nxNanoseconds::PerMillisecond};
    clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr);
    const int result = nxRobustMutex::Try(mutex);
    return result == EBUSY ? ETIMEDOUT : result;
}
#else
constexpr long waitSlice = 50 * nxNanoseconds::PerMillisecond;

int LockForASlice(pthread_mutex_t& mutex)
{
    // Not the wall clock: the slice would last longer if that were set back.
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_nsec += waitSlice;
    if (end.tv_nsec >= nxNanoseconds::PerSecond)
    {
        end.tv_nsec -= nxNanoseconds::PerSecond;
        ++end.tv_sec;
    }
    return pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, &end);
}
#endif
}  // namespace

int nxRobustMutex::Wait(pthread_mutex_t& mutex)
{
    int result = EBUSY;
    if (nxSpin::Until([&] { return (result = Try(mutex)) != EBUSY; }))
        return result;
    result = LockForASlice(mutex);
    while (result == ETIMEDOUT)
        result = LockForASlice(mutex);
    return result;
}
