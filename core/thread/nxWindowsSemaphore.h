// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXWINDOWSSEMAPHORE_H
#define CORE_THREAD_NXWINDOWSSEMAPHORE_H

#include <chrono>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/inline/nxWaitTime.h"

/// A counting semaphore with a maximum that processes of one user share by its name.
///
/// - Name, life, user and place: as nxWindowsMutex. A count that a killed process has taken stays taken as long as the
///   name lives.
/// - Errors: only the time-out is returned, and nothing is thrown; records as nxWindowsMutex. IsNull() is true when the
///   name is too long, when it is the name of a mutex, when it is new and the maximum is 0, above 2,147,483,647 or
///   below the initial count, and when the system refuses. All calls then return success at once; errno has the reason
///   after the constructor.
/// - Fork: the child has the object open too.
/// @code
/// nxWindowsSemaphore slots("my firm's licences", 3, 3);
/// nxErrorEnum error = slots.WaitFor(std::chrono::milliseconds(500));
/// if (error.IsOK())
///     error = slots.Post();  // after use
/// @endcode
class NX_CORE_API nxWindowsSemaphore
{
public:
    /// Opens the semaphore of that name, whatever its counts, or makes it with these. When neither is possible,
    /// IsNull() is true.
    nxWindowsSemaphore(const std::string& name, unsigned initialCount, unsigned maximumCount);
    virtual ~nxWindowsSemaphore();

    nxWindowsSemaphore(const nxWindowsSemaphore&) = delete;
    nxWindowsSemaphore& operator=(const nxWindowsSemaphore&) = delete;

    /// Waits until the count is above zero and takes one. Always success.
    nxErrorEnum Wait()
    {
        if (_semaphore != nullptr && !_semaphore->TryWait())
            _semaphore->Wait(-1);
        return nxErrorEnum();
    }

    /// The same, for at most @p time. Never gives up early; the wall clock does not matter.
    /// @param time a std::chrono::duration. Zero, negative values and NaN try once.
    /// @return NX_ERR_THR_TIMEDOUT when the count stayed zero.
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

    /// Waits at most (seconds * 1000) whole milliseconds. Zero, negative values and NaN do not wait; more than
    /// 49 days is 49 days.
    /// @return NX_ERR_THR_TIMEDOUT when the count stayed zero.
    nxErrorEnum TimedWait(double seconds);

    /// @copydoc TimedWait(double)
    template <class Rep, class Period>
    nxErrorEnum TimedWait(const std::chrono::duration<Rep, Period>& time)
    {
        return TimedWait(std::chrono::duration<double>(time).count());
    }

    /// Adds one; nothing changes when the maximum is reached. Always success.
    nxErrorEnum Post()
    {
        if (_semaphore != nullptr)
            _semaphore->Post();
        return nxErrorEnum();
    }

    /// Whether there is no semaphore, so that no call waits.
    bool IsNull() const { return _semaphore == nullptr; }

private:
    nxErrorEnum _WaitFor(std::int64_t nanoseconds);

    nxNamedSemaphore* _semaphore;  // in shared memory, for the life of the process
};

static_assert(sizeof(nxWindowsSemaphore) == 2 * sizeof(void*), "the virtual table and the handle");

#endif
