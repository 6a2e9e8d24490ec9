// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXCONDITION_H
#define CORE_THREAD_NXCONDITION_H

#include <chrono>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/inline/nxWaitTime.h"

/// An event without memory: threads wait, others wake them. It has a mutex of its own, which callers never see.
///
/// A signal is lost when no thread waits, and a waiter may wake without one. Use it where a wake-up only saves time:
/// wait with a limit, then check whether there is work. nxConditionMutex and nxConditionRaw wait for a condition
/// without a gap.
/// - Errors: NX_ERR_UNSPECIFIED when the system refuses a step. The call ends there, and the inner mutex is free.
/// - Threads: any number may wait and signal. The destructor hangs while a thread waits.
/// @code
/// while (!_stop)
/// {
///     const nxErrorEnum error = _wake.WaitFor(std::chrono::milliseconds(100));  // nxCondition _wake
///     DoWhatHasArrived();
///     if (!error.IsOK() && error != NX_ERR_THR_TIMEDOUT)
///         return error;
/// }
/// @endcode
class NX_CORE_API nxCondition
{
public:
    constexpr nxCondition() noexcept = default;
    ~nxCondition();

    /// Waits for a signal.
    nxErrorEnum Wait();

    /// Waits for a signal, at most @p time. Never times out early; the wall clock does not matter.
    /// @param time a std::chrono::duration. Zero, negative values and NaN time out at once.
    /// @return NX_ERR_THR_TIMEDOUT when no signal came in time; NX_ERR_UNSPECIFIED for any other failure.
    template <nxWaitDuration Duration>
    [[nodiscard]] nxErrorEnum WaitFor(const Duration& time)
    {
        return _WaitFor(nxWaitTime::Nanoseconds(time));
    }

    /// The same until @p moment, a time point of std::chrono::steady_clock.
    template <nxWaitMoment Moment>
    [[nodiscard]] nxErrorEnum WaitUntil(const Moment& moment)
    {
        return _WaitFor(nxWaitTime::NanosecondsUntil(moment));
    }

    /// Prefer WaitFor(): this one depends on the wall clock and may refuse to wait.
    ///
    /// Waits for a signal, at most @p seconds. Zero, negative values and NaN time out at once; more than 136 years is
    /// 136 years.
    /// @return NX_ERR_THR_TIMEDOUT when no signal came in time; it may come up to a millisecond early, because the
    ///         clock is cut to milliseconds. NX_ERR_UNSPECIFIED at once when the fraction of the deadline is exactly
    ///         one second, which happens in one millisecond of every second for waits of whole milliseconds that are
    ///         not whole seconds.
    nxErrorEnum TimedWait(double seconds);

    /// @copydoc TimedWait(double)
    template <class Rep, class Period>
    nxErrorEnum TimedWait(const std::chrono::duration<Rep, Period>& time)
    {
        return TimedWait(std::chrono::duration<double>(time).count());
    }

    /// Wakes one waiter.
    nxErrorEnum Signal();
    /// Wakes all waiters.
    nxErrorEnum SignalAll();

private:
    nxCondition(const nxCondition&) = delete;
    nxCondition& operator=(const nxCondition&) = delete;

    nxErrorEnum _WaitFor(std::int64_t nanoseconds);

    nxNative::Condition _condition = nxNative::FreeCondition;
    nxNative::Mutex _mutex = nxNative::FreeMutex;
};

static_assert(sizeof(nxCondition) == sizeof(nxNative::Condition) + sizeof(nxNative::Mutex),
              "nothing but its primitives");

#endif
