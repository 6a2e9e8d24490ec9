#ifndef CORE_THREAD_NXSEMAPHORE_H
#define CORE_THREAD_NXSEMAPHORE_H

#include <semaphore.h>

#include <cerrno>
#include <chrono>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

/// A counting semaphore: Post() adds one, a wait takes one or waits until there is one. One POSIX semaphore.
///
/// - Between processes: place the object in shared memory and let its creator call InitialiseAsShared() once. It
///   survives a kill of any process that waits; a count that a killed process has taken is gone.
/// - Errors: returned, never thrown. A signal handler that interrupts a wait ends it with NX_ERR_THR_INTERRUPTED.
/// - Nobody waits when it is destroyed.
/// @code
/// nxSemaphore filled(0);
/// filled.Post();                                  // in the producer
/// const nxErrorEnum error = filled.TimedWait(0.25);  // in the consumer
/// @endcode
class NX_CORE_API nxSemaphore
{
public:
    /// Process-private. A count above 2,147,483,647 is refused, which prints "sem_init err -1, " and the system's error
    /// number to the standard output; the object can then only be destroyed or be given to InitialiseAsShared().
    explicit nxSemaphore(unsigned initialCount);
    ~nxSemaphore()
    {
        errno = 0;
        sem_destroy(&_semaphore);
    }

    /// Initialises the semaphore anew for use by several processes, in the shared memory where the object lies. Called
    /// once, by the process that creates the memory, before anybody uses the semaphore.
    /// @return NX_ERR_THR_UNSUPPORTED when the system refuses, a count above 2,147,483,647 for example; also written to
    ///         the log.
    [[nodiscard]] nxErrorEnum InitialiseAsShared(unsigned initialCount);

    /// Waits until the count is above zero and takes one.
    /// @return NX_ERR_THR_INTERRUPTED, NX_ERR_THR_UNSUPPORTED or NX_ERR_THR_DEADLOCK when the system says so; success
    ///         for every other failure.
    nxErrorEnum Wait()
    {
        if (sem_wait(&_semaphore) == 0) [[likely]]
            return nxErrorEnum();
        return _WaitError(errno);
    }

    /// Takes one if the count is above zero.
    /// @return NX_ERR_THR_LOCKED when it is zero; else as Wait().
    [[nodiscard]] nxErrorEnum TryWait()
    {
        if (sem_trywait(&_semaphore) == 0) [[likely]]
            return nxErrorEnum();
        return _TryWaitError(errno);
    }

    /// Waits until the count is above zero, at most @p seconds, and takes one. Nothing, less than nothing and NaN do
    /// not wait; more than 136 years is 136 years.
    /// @return NX_ERR_THR_TIMEDOUT when the count stayed zero, up to a millisecond early, because the clock is cut to
    ///         milliseconds, and for any failure not named here; NX_ERR_THR_INTERRUPTED, NX_ERR_THR_DEADLOCK. When the
    ///         fraction of the deadline is exactly one second, NX_ERR_INVALID_PARAMETER at once, counts or not: for waits
    ///         of whole milliseconds but not of whole seconds that is so during one millisecond of every second.
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

    static nxErrorEnum _WaitError(int error);
    static nxErrorEnum _TryWaitError(int error);

    sem_t _semaphore;
};

static_assert(sizeof(nxSemaphore) == sizeof(sem_t), "used in place in shared memory");

#endif
