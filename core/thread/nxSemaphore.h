// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXSEMAPHORE_H
#define CORE_THREAD_NXSEMAPHORE_H

#include <cerrno>
#include <chrono>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/inline/nxWaitTime.h"

/// A counting semaphore: Post() adds one, a wait takes one or waits until there is one. One POSIX semaphore.
///
/// | count              | Wait()    | TryWait()         | WaitFor(), WaitUntil()          | Post()                   |
/// |--------------------|-----------|-------------------|---------------------------------|--------------------------|
/// | 0                  | waits     | NX_ERR_THR_LOCKED | waits, then NX_ERR_THR_TIMEDOUT | adds one, wakes a waiter |
/// | 1 to 2,147,483,646 | takes one | takes one         | takes one                       | adds one                 |
/// | 2,147,483,647      | takes one | takes one         | takes one                       | NX_ERR_UNSPECIFIED       |
///
/// - Between processes: place the object in shared memory and let its creator call InitialiseAsShared() once. The
///   semaphore survives a kill of a process that waits. A count that a killed process had taken is lost.
/// - TimedWait() is the older form of WaitFor(). It depends on the wall clock and is less exact.
/// - Errors: returned, never thrown. A signal handler that interrupts a wait ends it with NX_ERR_THR_INTERRUPTED.
/// - No thread may wait when it is destroyed.
/// @code
/// nxSemaphore filled(0);
/// const nxErrorEnum posted = filled.Post();                                   // in the producer
/// const nxErrorEnum taken = filled.WaitFor(std::chrono::milliseconds(250));  // in the consumer
/// @endcode
class NX_CORE_API nxSemaphore
{
public:
    /// Process-private. A count above 2,147,483,647 is refused: "sem_init err -1, " and the system's error number are
    /// printed to the standard output, and the only valid operations are then InitialiseAsShared() and the destructor.
    explicit nxSemaphore(unsigned initialCount);
    ~nxSemaphore()
    {
        errno = 0;
        sem_destroy(&_semaphore);
    }

    /// Initialises the semaphore again, in the shared memory that holds the object, for use by several processes. The
    /// process that creates the memory calls it once, before any use of the semaphore.
    /// @return NX_ERR_THR_UNSUPPORTED when the system refuses, for example a count above 2,147,483,647; the failure is
    ///         also written to the log.
    [[nodiscard]] nxErrorEnum InitialiseAsShared(unsigned initialCount);

    /// Waits until the count is above zero and takes one.
    /// @return NX_ERR_THR_INTERRUPTED, NX_ERR_THR_UNSUPPORTED or NX_ERR_THR_DEADLOCK when the system reports one of
    ///         these; success for every other failure.
    nxErrorEnum Wait()
    {
        if (sem_wait(&_semaphore) == 0) [[likely]]
            return nxErrorEnum();
        return _WaitError(errno);
    }

    /// Takes one if the count is above zero.
    /// @return NX_ERR_THR_LOCKED when it is zero; otherwise as Wait().
    [[nodiscard]] nxErrorEnum TryWait()
    {
        if (sem_trywait(&_semaphore) == 0) [[likely]]
            return nxErrorEnum();
        return _TryWaitError(errno);
    }

    /// Waits until the count is above zero, at most @p time, and takes one. Never gives up early; the wall clock does not
    /// matter.
    /// @param time a std::chrono::duration. Zero, negative values and NaN try once.
    /// @return NX_ERR_THR_TIMEDOUT when the count stayed zero; NX_ERR_THR_INTERRUPTED and NX_ERR_THR_DEADLOCK as Wait();
    ///         NX_ERR_UNSPECIFIED for any other failure.
    template <nxWaitDuration Duration>
    [[nodiscard]] nxErrorEnum WaitFor(const Duration& time)
    {
        const nxErrorEnum error = TryWait();
        return error == NX_ERR_THR_LOCKED ? _WaitFor(nxWaitTime::Nanoseconds(time)) : error;
    }

    /// The same until @p moment, a time point of std::chrono::steady_clock.
    template <nxWaitMoment Moment>
    [[nodiscard]] nxErrorEnum WaitUntil(const Moment& moment)
    {
        const nxErrorEnum error = TryWait();
        return error == NX_ERR_THR_LOCKED ? _WaitFor(nxWaitTime::NanosecondsUntil(moment)) : error;
    }

    /// Prefer WaitFor(): this one depends on the wall clock and may refuse to wait.
    ///
    /// Waits until the count is above zero, at most @p seconds, and takes one. Zero, negative values and NaN do not
    /// wait; more than 136 years is 136 years.
    /// @return NX_ERR_THR_TIMEDOUT when the count stayed zero; it may come up to a millisecond early, because the clock
    ///         is cut to milliseconds. The same for any failure that is not listed here. NX_ERR_THR_INTERRUPTED and
    ///         NX_ERR_THR_DEADLOCK as Wait(). NX_ERR_INVALID_PARAMETER at once, whatever the count, when the fraction
    ///         of the deadline is exactly one second, which happens in one millisecond of every second for waits of
    ///         whole milliseconds that are not whole seconds.
    nxErrorEnum TimedWait(double seconds);

    /// @copydoc TimedWait(double)
    template <class Rep, class Period>
    nxErrorEnum TimedWait(const std::chrono::duration<Rep, Period>& time)
    {
        return TimedWait(std::chrono::duration<double>(time).count());
    }

    /// The same for a count of microseconds.
    nxErrorEnum TimedWait_Microseconds(const unsigned long long& microseconds);

    /// Adds one and wakes a waiter.
    /// @return NX_ERR_UNSPECIFIED when the count is at its largest, 2,147,483,647.
    nxErrorEnum Post() { return sem_post(&_semaphore) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED); }

    /// @return the count at this moment; 0 when it cannot be read.
    int GetValue()
    {
        int value = 0;
        return sem_getvalue(&_semaphore, &value) == 0 ? value : 0;
    }

private:
    nxSemaphore(const nxSemaphore&) = delete;
    nxSemaphore& operator=(const nxSemaphore&) = delete;

    nxErrorEnum _TimedWait(timespec& relative);
    nxErrorEnum _WaitFor(std::int64_t nanoseconds);

    static nxErrorEnum _WaitError(int error);
    static nxErrorEnum _TryWaitError(int error);

    nxNative::Semaphore _semaphore;
};

static_assert(sizeof(nxSemaphore) == sizeof(nxNative::Semaphore), "used in place in shared memory");

#endif
