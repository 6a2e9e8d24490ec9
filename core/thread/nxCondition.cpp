// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxCondition.h"

#include <cerrno>

#include "core/platform/nxDeadline.h"
#include "core/platform/nxMonotonicWait.h"

namespace
{
nxErrorEnum FromResult(int result) { return result == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED); }

nxErrorEnum FromTimedWait(int result)
{
    return result == ETIMEDOUT ? nxErrorEnum(NX_ERR_THR_TIMEDOUT) : FromResult(result);
}

// Executes `step` under `mutex`, which is free again whatever `step` returns. The first failure is the result.
template <class Step>
nxErrorEnum WithLock(nxNative::Mutex& mutex, Step step)
{
    if (pthread_mutex_lock(&mutex) != 0)
        return nxErrorEnum(NX_ERR_UNSPECIFIED);
    const nxErrorEnum result = step();
    const bool unlocked = pthread_mutex_unlock(&mutex) == 0;
    return result.IsOK() && !unlocked ? nxErrorEnum(NX_ERR_UNSPECIFIED) : result;
}
}  // namespace

nxCondition::~nxCondition()
{
    pthread_cond_destroy(&_condition);
    pthread_mutex_destroy(&_mutex);
}

nxErrorEnum nxCondition::Wait()
{
    return WithLock(_mutex, [this] { return FromResult(pthread_cond_wait(&_condition, &_mutex)); });
}

nxErrorEnum nxCondition::TimedWait(double seconds)
{
    const timespec deadline = nxDeadline::After(nxDeadline::Split(seconds));
    return WithLock(_mutex, [&] { return FromTimedWait(pthread_cond_timedwait(&_condition, &_mutex, &deadline)); });
}

nxErrorEnum nxCondition::_WaitFor(std::int64_t nanoseconds)
{
    return WithLock(_mutex, [&] { return FromTimedWait(nxMonotonicWait::ForSignal(_condition, _mutex, nanoseconds)); });
}

nxErrorEnum nxCondition::Signal()
{
    return WithLock(_mutex, [this] { return FromResult(pthread_cond_signal(&_condition)); });
}

nxErrorEnum nxCondition::SignalAll()
{
    return WithLock(_mutex, [this] { return FromResult(pthread_cond_broadcast(&_condition)); });
}
