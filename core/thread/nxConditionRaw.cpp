// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxConditionRaw.h"

#include <cerrno>

#include "core/platform/nxDeadline.h"
#include "core/platform/nxMonotonicWait.h"
#include "core/thread/internal/nxThreadReport.h"

nxErrorEnum nxConditionRaw::TimedWait(nxMutex& mutex, double seconds)
{
    const timespec deadline = nxDeadline::After(nxDeadline::Split(seconds));
    const int result = pthread_cond_timedwait(&_condition, &mutex._mutex, &deadline);
    if (result == 0)
        return nxErrorEnum();
    return result == ETIMEDOUT ? nxErrorEnum(NX_ERR_THR_TIMEDOUT) : nxErrorEnum(NX_ERR_UNSPECIFIED);
}

nxErrorEnum nxConditionRaw::_WaitFor(nxMutex& mutex, std::int64_t nanoseconds)
{
    return mutex._WaitForSignal(_condition, nanoseconds);
}

nxErrorEnum nxConditionRaw::InitialiseAsShared()
{
    pthread_condattr_t attributes;
    int result = pthread_condattr_init(&attributes);
    if (result == 0)
    {
        result = pthread_condattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        if (result == 0)
            result = pthread_cond_init(&_condition, &attributes);
        const int destroyed = pthread_condattr_destroy(&attributes);
        result = result == 0 ? destroyed : result;
    }
    if (result == 0)
        return nxErrorEnum();
    nxThreadReport::ConditionNotShared(result);
    return nxErrorEnum(NX_ERR_UNSPECIFIED);
}
