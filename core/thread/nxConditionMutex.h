#ifndef CORE_THREAD_NXCONDITIONMUTEX_H
#define CORE_THREAD_NXCONDITIONMUTEX_H

#include "core/thread/nxMutex.h"

/// A mutex with its own condition, for waiting until something that the mutex guards is true.
///
/// - A wake-up promises nothing: test what you wait for in a loop. A signal that nobody waits for is lost.
/// - Between processes: InitialiseAsShared() makes the mutex shared, not the condition. Never wait across processes.
/// - Nobody waits when it is destroyed; the destructor would hang.
/// @code
/// nxMutexGuard guard(_ready);          // nxConditionMutex _ready
/// while (_queue.empty() && _ready.Wait().IsOK())
/// {
/// }
/// @endcode
class NX_CORE_API NX_CAPABILITY("mutex") nxConditionMutex : public nxMutex
{
public:
    constexpr nxConditionMutex() noexcept = default;
    ~nxConditionMutex() { pthread_cond_destroy(&_condition); }

    /// Gives the mutex back, waits for a signal and takes the mutex again. The caller holds the mutex, once.
    /// @return NX_ERR_UNSPECIFIED when the wait fails: the mutex is then free. On a robust mutex whose owner died
    ///         meanwhile that happens too; the mutex has then been made consistent, which the log tells.
    nxErrorEnum Wait() NX_REQUIRES(this);

    /// Lock(), whatever it returns, then Wait(). On success the caller holds the mutex. A robust one whose owner had
    /// died is made consistent in between, which the log tells.
    nxErrorEnum LockAndWait() NX_ACQUIRE();

    /// Wakes one waiter, if there is one. The caller may hold the mutex or not.
    /// @return NX_ERR_UNSPECIFIED when the system refuses.
    nxErrorEnum Signal()
    {
        return pthread_cond_signal(&_condition) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

private:
    pthread_cond_t _condition = PTHREAD_COND_INITIALIZER;
};

static_assert(sizeof(nxConditionMutex) == sizeof(nxMutex) + sizeof(pthread_cond_t), "used in place in shared memory");

#endif
