// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxMonotonicWait.h"

#include "core/platform/linux/nxMonotonicTime.h"

namespace
{
using TimedLock = int (*)(pthread_rwlock_t*, clockid_t, const timespec*);
using TriedLock = int (*)(pthread_rwlock_t*);

int LockForSharing(pthread_rwlock_t& lock, std::int64_t nanoseconds, TimedLock timed, TriedLock tried)
{
    const std::int64_t deadline = nxMonotonicTime::After(nanoseconds);
    if (nxMonotonicTime::IsWatched())
        return nxMonotonicTime::TryUntil(deadline, [&] { return tried(&lock); });
    const timespec end = nxMonotonicTime::ToTimespec(deadline);
    return timed(&lock, CLOCK_MONOTONIC, &end);
}

int TryToTake(sem_t& semaphore)
{
    if (sem_trywait(&semaphore) == 0)
        return 0;
    return errno == EAGAIN ? EBUSY : errno;
}
}  // namespace

int nxMonotonicWait::Lock(nxNative::Mutex& mutex, std::int64_t nanoseconds)
{
    const std::int64_t deadline = nxMonotonicTime::After(nanoseconds);
    return nxRobustMutex::IsRobust(mutex) ? nxRobustMutex::WaitUntil(mutex, deadline)
                                          : nxRobustMutex::LockUntil(mutex, deadline);
}

int nxMonotonicWait::ReadLock(nxNative::ReaderWriterLock& lock, std::int64_t nanoseconds)
{
    return LockForSharing(lock, nanoseconds, &pthread_rwlock_clockrdlock, &pthread_rwlock_tryrdlock);
}

int nxMonotonicWait::WriteLock(nxNative::ReaderWriterLock& lock, std::int64_t nanoseconds)
{
    return LockForSharing(lock, nanoseconds, &pthread_rwlock_clockwrlock, &pthread_rwlock_trywrlock);
}

int nxMonotonicWait::Take(nxNative::Semaphore& semaphore, std::int64_t nanoseconds)
{
    const std::int64_t deadline = nxMonotonicTime::After(nanoseconds);
    if (nxMonotonicTime::IsWatched())
        return nxMonotonicTime::TryUntil(deadline, [&] { return TryToTake(semaphore); });
    const timespec end = nxMonotonicTime::ToTimespec(deadline);
    return sem_clockwait(&semaphore, CLOCK_MONOTONIC, &end) == 0 ? 0 : errno;
}

int nxMonotonicWait::ForSignal(nxNative::Condition& condition, nxNative::Mutex& mutex, std::int64_t nanoseconds)
{
    const timespec end = nxMonotonicTime::ToTimespec(nxMonotonicTime::After(nanoseconds));
    return pthread_cond_clockwait(&condition, &mutex, CLOCK_MONOTONIC, &end);
}
