// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXCONDITIONMUTEX_H
#define CORE_THREAD_NXCONDITIONMUTEX_H

#include "core/thread/nxMutex.h"

/// A mutex with its own condition, for waiting until something that the mutex guards is true.
///
/// - A wake-up promises nothing: test the condition in a loop. A signal is lost when no thread waits.
/// - Between processes: InitialiseAsShared() makes the mutex shared, not the condition. Never wait across processes.
/// - The destructor hangs while a thread waits.
/// - The caller holds the mutex after WaitFor() and WaitUntil(), whatever they return, so that a guard serves. Wait() and
///   LockAndWait() unlock it when they fail.
/// @code
/// nxMutexGuard guard(_ready);  // nxConditionMutex _ready
/// const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
/// while (_queue.empty())
///     if (const nxErrorEnum error = _ready.WaitUntil(end); !error.IsOK())
///         return error;
/// return Take(_queue.front());
/// @endcode
class NX_CORE_API NX_CAPABILITY("mutex") nxConditionMutex : public nxMutex
{
public:
    constexpr nxConditionMutex() noexcept = default;
    ~nxConditionMutex() { pthread_cond_destroy(&_condition); }

    /// Unlocks the mutex, waits for a signal and locks the mutex again.
    /// @pre The caller holds the mutex, once.
    /// @return NX_ERR_UNSPECIFIED when the wait fails; the mutex is then free. The wait also fails when the owner of a
    ///         robust mutex died meanwhile; the mutex has then been made consistent, which is written to the log.
    nxErrorEnum Wait() NX_REQUIRES(this);

    /// Unlocks the mutex, waits for a signal, at most @p time, and locks the mutex again. Never times out early; the wall
    /// clock does not matter. The caller holds the mutex afterwards.
    /// @pre The caller holds the mutex, once.
    /// @param time a std::chrono::duration. Zero, negative values and NaN time out at once.
    /// @return NX_ERR_THR_TIMEDOUT when no signal came in time; NX_ERR_THR_OWNER_DEAD when the owner of a robust mutex
    ///         died: as after Lock(), the caller repairs the data and calls Consistent(); NX_ERR_UNSPECIFIED for any
    ///         other failure.
    template <nxWaitDuration Duration>
    [[nodiscard]] nxErrorEnum WaitFor(const Duration& time) NX_REQUIRES(this)
    {
        return _WaitForSignal(_condition, nxWaitTime::Nanoseconds(time));
    }

    /// The same until @p moment, a time point of std::chrono::steady_clock.
    template <nxWaitMoment Moment>
    [[nodiscard]] nxErrorEnum WaitUntil(const Moment& moment) NX_REQUIRES(this)
    {
        return _WaitForSignal(_condition, nxWaitTime::NanosecondsUntil(moment));
    }

    /// Lock(), whatever it returns, then Wait(). On success the caller holds the mutex. If the owner of a robust mutex
    /// had died, the mutex is made consistent in between, which is written to the log.
    nxErrorEnum LockAndWait() NX_ACQUIRE();

    /// Wakes one waiter, if there is one. The caller need not hold the mutex.
    /// @return NX_ERR_UNSPECIFIED when the system refuses.
    nxErrorEnum Signal()
    {
        return pthread_cond_signal(&_condition) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

    /// Wakes all waiters. The caller need not hold the mutex.
    /// @return NX_ERR_UNSPECIFIED when the system refuses.
    nxErrorEnum SignalAll()
    {
        return pthread_cond_broadcast(&_condition) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

private:
    pthread_cond_t _condition = PTHREAD_COND_INITIALIZER;
};

static_assert(sizeof(nxConditionMutex) == sizeof(nxMutex) + sizeof(pthread_cond_t), "used in place in shared memory");

#endif
