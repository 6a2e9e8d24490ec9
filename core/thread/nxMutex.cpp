// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxMutex.h"

#include <cerrno>

#include "core/platform/nxMonotonicWait.h"
#include "core/thread/internal/nxThreadReport.h"

namespace
{
// Initialises `mutex` in place as an error-checking mutex that processes share.
// Returns the code of the first step that failed.
int InitialiseShared(nxNative::Mutex& mutex, pthread_mutexattr_t& attributes, bool robust)
{
    int result = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    if (result == 0)
        result = pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    if (result == 0 && robust)
    {
        result = pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        nxThreadReport::RobustAttributeSet(result);
    }
    if (result == 0)
        result = pthread_mutex_init(&mutex, &attributes);
    return result;
}
}  // namespace

nxMutex::nxMutex(bool recursive)
{
    if (!recursive)
        return;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

nxErrorEnum nxMutex::Consistent() noexcept
{
    return pthread_mutex_consistent(&_mutex) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxMutex::InitialiseAsShared(bool robust)
{
    pthread_mutexattr_t attributes;
    int result = pthread_mutexattr_init(&attributes);
    if (result == 0)
    {
        result = InitialiseShared(_mutex, attributes, robust);
        const int destroyed = pthread_mutexattr_destroy(&attributes);
        result = result == 0 ? destroyed : result;
    }
    if (result == 0)
        return nxErrorEnum();
    nxThreadReport::MutexNotShared(result);
    return nxErrorEnum(NX_ERR_UNSPECIFIED);
}

// The first attempt failed. For a robust mutex that was only a try-lock, so the waiting happens here.
nxErrorEnum nxMutex::_LockSlowly(int result) noexcept
{
    if (result == EBUSY && nxRobustMutex::IsRobust(_mutex))
        result = nxRobustMutex::Wait(_mutex);
    return result == 0 ? nxErrorEnum() : _LockError(result);
}

nxErrorEnum nxMutex::_LockFor(std::int64_t nanoseconds)
{
    const int result = nxMonotonicWait::Lock(_mutex, nanoseconds);
    if (result == ETIMEDOUT)
        return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
    return result == 0 ? nxErrorEnum() : _LockError(result);
}

nxErrorEnum nxMutex::_WaitForSignal(nxNative::Condition& condition, std::int64_t nanoseconds)
{
    const int result = nxMonotonicWait::ForSignal(condition, _mutex, nanoseconds);
    if (result == ETIMEDOUT)
        return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
    return result == 0 ? nxErrorEnum() : _LockError(result);
}

nxErrorEnum nxMutex::_LockError(int result) noexcept
{
    return result == EOWNERDEAD ? nxErrorEnum(NX_ERR_THR_OWNER_DEAD) : nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxMutex::_TryLockError(int result) noexcept
{
    return result == EBUSY ? nxErrorEnum(NX_ERR_THR_LOCKED) : _LockError(result);
}

nxErrorEnum nxMutex::_UnlockError(int result) noexcept
{
    return result == EPERM ? nxErrorEnum(NX_ERR_THR_MISMATCH) : nxErrorEnum(NX_ERR_UNSPECIFIED);
}
