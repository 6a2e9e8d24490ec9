#ifndef CORE_THREAD_NXMUTEX_H
#define CORE_THREAD_NXMUTEX_H

#include <pthread.h>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/linux/inline/nxRobustMutex.h"
#include "core/thread/nxThreadAnnotations.h"

/// A mutex that reports misuse instead of hanging or corrupting: one POSIX mutex and nothing else.
///
/// Lock it with nxMutexGuard wherever a scope will do.
/// - States: free, or held by one thread. A thread that locks a mutex it holds gets an error, not a hang; a recursive
///   mutex counts instead and needs as many unlocks. An unlock by a thread that does not hold it is refused.
/// - Errors: returned, never thrown and never logged by Lock(), TryLock(), Unlock(), Consistent().
/// - Between processes: place the object in shared memory and let its creator call InitialiseAsShared() once; the other
///   processes use the memory as it is, without constructing. Such a mutex is never unmapped while it is held, and its
///   users live in one process-id namespace. Make it robust if processes may be killed: a holder's death is then told
///   to the next one, and no death of a waiter makes the others wait for ever, since Lock() looks again every 50 ms.
/// - Fork: a mutex held by the forking thread is held by nobody in the child and cannot be unlocked there; construct it
///   anew in place.
/// - A mutex constructed with the default constructor is a constant: it can be used before main, in any static
///   constructor.
/// @code
/// nxMutex mutex;
/// if (mutex.TryLock().IsOK())
/// {
///     mutex.AssertHeld();  // for the compiler's analysis only
///     mutex.Unlock();
/// }
/// @endcode
class NX_CORE_API NX_CAPABILITY("mutex") nxMutex
{
public:
    /// Process-private and not recursive.
    constexpr nxMutex() noexcept = default;
    /// Process-private; recursive when @p recursive.
    explicit nxMutex(bool recursive);
    /// Nobody holds or waits for the mutex.
    ~nxMutex() { pthread_mutex_destroy(&_mutex); }

    nxMutex(const nxMutex&) = delete;
    nxMutex& operator=(const nxMutex&) = delete;

    /// Waits until the mutex is free and takes it.
    /// @return NX_ERR_THR_OWNER_DEAD when the last holder of a robust mutex died: the mutex is now held, and the caller
    ///         repairs the data and calls Consistent() before Unlock();
    ///         NX_ERR_UNSPECIFIED for any other failure, the second lock by the holder among them: not taken.
    nxErrorEnum Lock() noexcept NX_ACQUIRE()
    {
        const int result = _IsRobust() ? nxRobustMutex::Try(_mutex) : pthread_mutex_lock(&_mutex);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _LockSlowly(result);
    }

    /// Takes the mutex if it is free.
    /// @return NX_ERR_THR_LOCKED when it is held; NX_ERR_THR_OWNER_DEAD as Lock(); NX_ERR_UNSPECIFIED for any other
    ///         failure, a robust mutex held by this thread among them.
    [[nodiscard]] nxErrorEnum TryLock() noexcept
    {
        const int result = nxRobustMutex::Try(_mutex);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _TryLockError(result);
    }

    /// Gives the mutex back.
    /// @return NX_ERR_THR_MISMATCH when the calling thread does not hold it (nothing happens); NX_ERR_UNSPECIFIED for
    ///         any other failure.
    nxErrorEnum Unlock() noexcept NX_RELEASE()
    {
        const int result = pthread_mutex_unlock(&_mutex);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _UnlockError(result);
    }

    /// Marks a robust mutex whose owner died as usable again; called by the thread that got NX_ERR_THR_OWNER_DEAD.
    /// Unlocking without it makes the mutex unusable for ever: every Lock() and TryLock() then fails.
    /// @return NX_ERR_UNSPECIFIED when the mutex is not in that state.
    nxErrorEnum Consistent() noexcept NX_REQUIRES(this);

    /// Initialises the mutex anew for use by several processes, in the shared memory where the object lies. Called
    /// once, by the process that creates the memory, before anybody uses the mutex. The mutex is not recursive
    /// afterwards, whatever it was before.
    /// @param robust whether the death of a holder is reported to the next one instead of blocking everybody.
    /// @return NX_ERR_UNSPECIFIED when the system refuses; also written to the log.
    [[nodiscard]] nxErrorEnum InitialiseAsShared(bool robust);

    /// Tells the compiler's analysis that the mutex is held. Does nothing.
    void AssertHeld() const NX_ASSERT_CAPABILITY(this) {}

private:
    friend class nxConditionMutex;
    friend class nxConditionRaw;

    // The C library has no question for this. The bit is part of its binary interface, which processes share.
    bool _IsRobust() const noexcept { return (_mutex.__data.__kind & 16) != 0; }
    nxErrorEnum _LockSlowly(int result) noexcept;

    static nxErrorEnum _LockError(int result) noexcept;
    static nxErrorEnum _TryLockError(int result) noexcept;
    static nxErrorEnum _UnlockError(int result) noexcept;

    pthread_mutex_t _mutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
};

static_assert(sizeof(nxMutex) == sizeof(pthread_mutex_t), "used in place in shared memory");

#endif
