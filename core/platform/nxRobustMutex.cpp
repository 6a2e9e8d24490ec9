#include "core/platform/nxRobustMutex.h"

#include <cerrno>
#include <ctime>

namespace
{
constexpr long SliceNanoseconds = 100'000'000;

#if defined(__SANITIZE_THREAD__)
    #define NX_THREAD_SANITIZER 1
#elif defined(__has_feature)
    #if __has_feature(thread_sanitizer)
        #define NX_THREAD_SANITIZER 1
    #endif
#endif

timespec SliceFromNow(clockid_t clock)
{
    timespec end{};
    clock_gettime(clock, &end);
    end.tv_nsec += SliceNanoseconds;
    if (end.tv_nsec >= 1'000'000'000)
    {
        end.tv_nsec -= 1'000'000'000;
        ++end.tv_sec;
    }
    return end;
}

int LockForASlice(pthread_mutex_t& mutex)
{
#ifdef NX_THREAD_SANITIZER
    // The sanitizer knows only this call.
    const timespec end = SliceFromNow(CLOCK_REALTIME);
    return pthread_mutex_timedlock(&mutex, &end);
#else
    // A wall clock that is set back would stretch the slice.
    const timespec end = SliceFromNow(CLOCK_MONOTONIC);
    return pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, &end);
#endif
}
}  // namespace

int nxRobustMutex::Lock(pthread_mutex_t& mutex)
{
    int result = pthread_mutex_trylock(&mutex);
    if (result != EBUSY)
        return result;
    do
    {
        result = LockForASlice(mutex);
    } while (result == ETIMEDOUT);
    return result;
}
