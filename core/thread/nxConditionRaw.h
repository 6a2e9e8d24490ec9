// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXCONDITIONRAW_H
#define CORE_THREAD_NXCONDITIONRAW_H

#include <chrono>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/nxMutex.h"

/// A bare condition. Threads wait on it with an nxMutex of the caller, which is the same for all of them.
///
/// - A wake-up promises nothing: test the condition in a loop, under the mutex. A signal is lost when no thread waits.
/// - Errors: NX_ERR_UNSPECIFIED when the system refuses. A wait also ends with NX_ERR_UNSPECIFIED when the owner of a
///   robust mutex died. The caller then holds the mutex, and only in this case nxMutex::Consistent() succeeds.
/// - Between processes: InitialiseAsShared(). If a process may be killed while it waits, use an nxSemaphore instead:
///   after such a kill, processes that signal the condition hang for ever.
/// - The destructor hangs while a thread waits.
/// @code
/// nxMutexGuard guard(_lock);
/// while (_queue.empty() && _filled.Wait(_lock).IsOK())
/// {
/// }
/// @endcode
class NX_CORE_API nxConditionRaw
{
public:
    constexpr nxConditionRaw() noexcept = default;
    ~nxConditionRaw() { pthread_cond_destroy(&_condition); }

    nxConditionRaw(const nxConditionRaw&) = delete;

    /// Unlocks @p mutex, waits for a signal and locks @p mutex again.
    /// @pre The caller holds @p mutex, once.
    nxErrorEnum Wait(nxMutex& mutex) NX_REQUIRES(mutex)
    {
        return pthread_cond_wait(&_condition, &mutex._mutex) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

    /// The same, for at most @p time. Never times out early; the wall clock does not matter. The caller holds the mutex
    /// afterwards.
    /// @param mutex the mutex, which the caller holds, once.
    /// @param time a std::chrono::duration. Zero, negative values and NaN time out at once.
    /// @return NX_ERR_THR_TIMEDOUT when no signal came in time; NX_ERR_THR_OWNER_DEAD when the owner of a robust mutex
    ///         died: as after nxMutex::Lock(), the caller repairs the data and calls Consistent(); NX_ERR_UNSPECIFIED
    ///         for any other failure.
    template <nxWaitDuration Duration>
    [[nodiscard]] nxErrorEnum WaitFor(nxMutex& mutex, const Duration& time) NX_REQUIRES(mutex)
    {
        return _WaitFor(mutex, nxWaitTime::Nanoseconds(time));
    }

    /// The same until @p moment, a time point of std::chrono::steady_clock.
    template <nxWaitMoment Moment>
    [[nodiscard]] nxErrorEnum WaitUntil(nxMutex& mutex, const Moment& moment) NX_REQUIRES(mutex)
    {
        return _WaitFor(mutex, nxWaitTime::NanosecondsUntil(moment));
    }

    /// Prefer WaitFor(): this one depends on the wall clock and may refuse to wait.
    ///
    /// Waits for at most @p seconds. Zero, negative values and NaN time out at once; more than 136 years is 136
    /// years.
    /// @return NX_ERR_THR_TIMEDOUT when no signal came in time; it may come up to a millisecond early, because the
    ///         clock is cut to milliseconds. NX_ERR_UNSPECIFIED at once when the fraction of the deadline is exactly
    ///         one second, which happens in one millisecond of every second for waits of whole milliseconds that are
    ///         not whole seconds. The caller holds the mutex in all cases.
    nxErrorEnum TimedWait(nxMutex& mutex, double seconds) NX_REQUIRES(mutex);

    /// @copydoc TimedWait(nxMutex&, double)
    template <class Rep, class Period>
    nxErrorEnum TimedWait(nxMutex& mutex, const std::chrono::duration<Rep, Period>& time) NX_REQUIRES(mutex)
    {
        return TimedWait(mutex, std::chrono::duration<double>(time).count());
    }

    /// Wakes one waiter. The caller need not hold the mutex.
    nxErrorEnum Signal()
    {
        return pthread_cond_signal(&_condition) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }
    /// Wakes all waiters.
    nxErrorEnum SignalAll()
    {
        return pthread_cond_broadcast(&_condition) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

    /// Initialises the condition again, in the shared memory that holds the object, for use by several processes. The
    /// process that creates the memory calls it once, before any use of the condition.
    /// @return NX_ERR_UNSPECIFIED when the system refuses; also written to the log.
    [[nodiscard]] nxErrorEnum InitialiseAsShared();

private:
    nxConditionRaw& operator=(const nxConditionRaw&) = delete;

    nxErrorEnum _WaitFor(nxMutex& mutex, std::int64_t nanoseconds) NX_REQUIRES(mutex);

    nxNative::Condition _condition = nxNative::FreeCondition;
};

static_assert(sizeof(nxConditionRaw) == sizeof(nxNative::Condition), "used in place in shared memory");

#endif
