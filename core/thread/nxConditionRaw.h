#ifndef CORE_THREAD_NXCONDITIONRAW_H
#define CORE_THREAD_NXCONDITIONRAW_H

#include <pthread.h>

#include <chrono>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/thread/nxMutex.h"

/// A bare condition: threads wait on it with an nxMutex of the caller's, the same for all of them.
///
/// - A wake-up promises nothing: test what you wait for in a loop, under the mutex. A signal that nobody waits for is
///   lost.
/// - Errors: NX_ERR_UNSPECIFIED when the system refuses. On a robust mutex whose owner died, a wait ends with
///   NX_ERR_UNSPECIFIED too and the caller holds the mutex: nxMutex::Consistent() then succeeds, and else it does not.
/// - Between processes: InitialiseAsShared(). Not where a process may be killed while it waits: those that signal later
///   hang, and nothing frees them. Use an nxSemaphore there.
/// - Nobody waits when it is destroyed; the destructor would hang.
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

    /// Gives @p mutex back, waits for a signal and takes @p mutex again. The caller holds it, once.
    nxErrorEnum Wait(nxMutex& mutex) NX_REQUIRES(mutex)
    {
        return pthread_cond_wait(&_condition, &mutex._mutex) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

    /// The same, at most for @p seconds. Nothing, less than nothing and NaN time out at once; more than 136 years is
    /// 136 years.
    /// @return NX_ERR_THR_TIMEDOUT when no signal came in time, or up to a millisecond earlier, because the clock is cut
    ///         to milliseconds. When the fraction of the deadline is exactly one second, NX_ERR_UNSPECIFIED at once: for
    ///         waits of whole milliseconds but not of whole seconds that is so during one millisecond of every second.
    ///         The mutex is held in any case.
    nxErrorEnum TimedWait(nxMutex& mutex, double seconds) NX_REQUIRES(mutex);

    /// @copydoc TimedWait(nxMutex&, double)
    template <class Rep, class Period>
    nxErrorEnum TimedWait(nxMutex& mutex, const std::chrono::duration<Rep, Period>& time) NX_REQUIRES(mutex)
    {
        return TimedWait(mutex, std::chrono::duration<double>(time).count());
    }

    /// Wakes one waiter. The caller may hold the mutex or not.
    nxErrorEnum Signal()
    {
        return pthread_cond_signal(&_condition) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }
    /// Wakes all waiters.
    nxErrorEnum SignalAll()
    {
        return pthread_cond_broadcast(&_condition) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

    /// Initialises the condition anew for use by several processes, in the shared memory where the object lies. Called
    /// once, by the process that creates the memory, before anybody uses the condition.
    /// @return NX_ERR_UNSPECIFIED when the system refuses; also written to the log.
    [[nodiscard]] nxErrorEnum InitialiseAsShared();

private:
    nxConditionRaw& operator=(const nxConditionRaw&) = delete;

    pthread_cond_t _condition = PTHREAD_COND_INITIALIZER;
};

static_assert(sizeof(nxConditionRaw) == sizeof(pthread_cond_t), "used in place in shared memory");

#endif
