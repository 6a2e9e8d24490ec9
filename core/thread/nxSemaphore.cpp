// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxSemaphore.h"

#include <cstdio>

#include "core/platform/nxDeadline.h"
#include "core/platform/nxMonotonicWait.h"
#include "core/thread/internal/nxThreadReport.h"

// Zeroed first, so that the other operations find a defined object when the initialisation fails.
nxSemaphore::nxSemaphore(unsigned initialCount) : _semaphore()
{
    if (sem_init(&_semaphore, 0, initialCount) != 0)
        std::printf("sem_init err %d, %d\n", -1, errno);
}

nxErrorEnum nxSemaphore::InitialiseAsShared(unsigned initialCount)
{
    _semaphore = nxNative::Semaphore();
    const int result = sem_init(&_semaphore, 1, initialCount);
    if (result == 0)
        return nxErrorEnum();
    nxThreadReport::SemaphoreNotShared(result);
    return nxErrorEnum(NX_ERR_THR_UNSUPPORTED);
}

nxErrorEnum nxSemaphore::TimedWait(double seconds)
{
    timespec relative = nxDeadline::Split(seconds);
    return _TimedWait(relative);
}

nxErrorEnum nxSemaphore::TimedWait_Microseconds(const unsigned long long& microseconds)
{
    timespec relative = nxDeadline::SplitMicroseconds(microseconds);
    return _TimedWait(relative);
}

nxErrorEnum nxSemaphore::_TimedWait(timespec& relative)
{
    const timespec deadline = nxDeadline::After(relative);
    errno = 0;
    if (sem_timedwait(&_semaphore, &deadline) == 0)
        return nxErrorEnum();
    switch (errno)
    {
        case EINVAL:
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        case EDEADLK:
            return nxErrorEnum(NX_ERR_THR_DEADLOCK);
        case EINTR:
            return nxErrorEnum(NX_ERR_THR_INTERRUPTED);
        default:
            return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
    }
}

nxErrorEnum nxSemaphore::_WaitFor(std::int64_t nanoseconds)
{
    const int error = nxMonotonicWait::Take(_semaphore, nanoseconds);
    if (error == 0)
        return nxErrorEnum();
    if (error == ETIMEDOUT)
        return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
    const nxErrorEnum known = _WaitError(error);
    return known.IsOK() ? nxErrorEnum(NX_ERR_UNSPECIFIED) : known;
}

// Lenient by contract: an error that is not listed is success.
nxErrorEnum nxSemaphore::_WaitError(int error)
{
    switch (error)
    {
        case ENOSYS:
            return nxErrorEnum(NX_ERR_THR_UNSUPPORTED);
        case EDEADLK:
            return nxErrorEnum(NX_ERR_THR_DEADLOCK);
        case EINTR:
            return nxErrorEnum(NX_ERR_THR_INTERRUPTED);
        default:
            return nxErrorEnum();
    }
}

nxErrorEnum nxSemaphore::_TryWaitError(int error)
{
    return error == EAGAIN ? nxErrorEnum(NX_ERR_THR_LOCKED) : _WaitError(error);
}
