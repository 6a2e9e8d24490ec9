// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXMUTEX_H
#define CORE_THREAD_NXMUTEX_H

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/inline/nxWaitTime.h"
#include "core/thread/nxThreadAnnotations.h"

/// A mutex that reports misuse instead of hanging or corrupting: one POSIX mutex and nothing else.
///
/// Lock it with nxMutexGuard wherever a scope will do.
///
/// | state                          | Lock()            | TryLock()         | Unlock()               | Consistent() |
/// |--------------------------------|-------------------|-------------------|------------------------|--------------|
/// | free                           | locks             | locks             | MISMATCH               | UNSPECIFIED  |
/// | held by this thread            | UNSPECIFIED       | LOCKED            | unlocks                | UNSPECIFIED  |
/// | held by this thread, recursive | counts up         | counts up         | counts down, 0 unlocks | UNSPECIFIED  |
/// | held by this thread, robust    | UNSPECIFIED       | UNSPECIFIED       | unlocks                | UNSPECIFIED  |
/// | held by another thread         | waits             | LOCKED            | MISMATCH               | UNSPECIFIED  |
/// | robust, its owner died         | locks, OWNER_DEAD | locks, OWNER_DEAD | MISMATCH               | UNSPECIFIED  |
/// | locked with OWNER_DEAD         | UNSPECIFIED       | UNSPECIFIED       | makes it unusable      | repairs      |
/// | unusable                       | UNSPECIFIED       | UNSPECIFIED       | MISMATCH               | UNSPECIFIED  |
///
/// The cells name errors without their prefix: NX_ERR_THR_ for MISMATCH, LOCKED and OWNER_DEAD, NX_ERR_ for
/// UNSPECIFIED.
/// LockFor() and LockUntil() do what Lock() does, but where they would wait longer than they may, they return
/// NX_ERR_THR_TIMEDOUT.
/// - Errors: returned, never thrown, and never logged by these operations.
/// - Between processes: place the object in shared memory and let its creator call InitialiseAsShared() once; the other
///   processes use the memory as it is, without a constructor. Do not unmap such a mutex while it is held. Its users
///   are in one process-id namespace. Make it robust if processes may be killed: the next thread that locks is then
///   told of a holder's death. The death of a waiter does not block the others either, because Lock() looks again every
///   50 ms.
/// - Fork: a mutex held by the forking thread is locked in the child, where no thread can unlock it. Construct it again
///   in place.
/// - A mutex constructed with the default constructor is a constant: it can be used before main, in any static
///   constructor.
/// @code
/// nxMutex mutex;
/// if (mutex.TryLock().IsOK())
/// {
///     mutex.AssertHeld();  // for the compiler's analysis only
///     static_cast<void>(mutex.Unlock());
/// }
/// @endcode
class NX_CORE_API NX_CAPABILITY("mutex") nxMutex
{
public:
    /// Process-private and not recursive.
    constexpr nxMutex() noexcept = default;
    /// Process-private; recursive when @p recursive.
    explicit nxMutex(bool recursive);
    /// @pre No thread holds the mutex or waits for it.
    ~nxMutex() { pthread_mutex_destroy(&_mutex); }

    nxMutex(const nxMutex&) = delete;
    nxMutex& operator=(const nxMutex&) = delete;

    /// Waits until the mutex is free and takes it.
    /// @return NX_ERR_THR_OWNER_DEAD when the last holder of a robust mutex died: the caller now holds the mutex,
    ///         repairs the data and calls Consistent() before Unlock(); NX_ERR_UNSPECIFIED for any other failure,
    ///         including a second lock by the holder: the call did not lock.
    nxErrorEnum Lock() noexcept NX_ACQUIRE()
    {
        const int result = nxRobustMutex::IsRobust(_mutex) ? nxRobustMutex::Try(_mutex) : pthread_mutex_lock(&_mutex);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _LockSlowly(result);
    }

    /// Takes the mutex if it is free.
    /// @return NX_ERR_THR_LOCKED when it is held; NX_ERR_THR_OWNER_DEAD as Lock(); NX_ERR_UNSPECIFIED for any other
    ///         failure, including a robust mutex held by this thread.
    [[nodiscard]] nxErrorEnum TryLock() noexcept
    {
        const int result = nxRobustMutex::Try(_mutex);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _TryLockError(result);
    }

    /// Waits until the mutex is free, at most @p time, and takes it. Never gives up early; the wall clock does not matter.
    /// @param time a std::chrono::duration. Zero, negative values and NaN try once.
    /// @return NX_ERR_THR_TIMEDOUT when the mutex was not free in time; otherwise as Lock().
    template <nxWaitDuration Duration>
    [[nodiscard]] nxErrorEnum LockFor(const Duration& time)
    {
        const nxErrorEnum error = TryLock();
        return error == NX_ERR_THR_LOCKED ? _LockFor(nxWaitTime::Nanoseconds(time)) : error;
    }

    /// The same until @p moment, a time point of std::chrono::steady_clock.
    template <nxWaitMoment Moment>
    [[nodiscard]] nxErrorEnum LockUntil(const Moment& moment)
    {
        const nxErrorEnum error = TryLock();
        return error == NX_ERR_THR_LOCKED ? _LockFor(nxWaitTime::NanosecondsUntil(moment)) : error;
    }

    /// Unlocks the mutex.
    /// @return NX_ERR_THR_MISMATCH when the calling thread does not hold it (nothing changes); NX_ERR_UNSPECIFIED for
    ///         any other failure.
    nxErrorEnum Unlock() noexcept NX_RELEASE()
    {
        const int result = pthread_mutex_unlock(&_mutex);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _UnlockError(result);
    }

    /// Marks a robust mutex whose owner died as usable again. The thread that got NX_ERR_THR_OWNER_DEAD calls it.
    /// Unlocking without it makes the mutex unusable for ever: every Lock() and TryLock() then fails.
    /// @return NX_ERR_UNSPECIFIED when the mutex is not in that state.
    nxErrorEnum Consistent() noexcept NX_REQUIRES(this);

    /// Initialises the mutex again, in the shared memory that holds the object, for use by several processes. The
    /// process that creates the memory calls it once, before any use of the mutex. The mutex is not recursive
    /// afterwards, whatever it was before.
    /// @param robust whether the next thread that locks is told of a holder's death, which otherwise blocks all others.
    /// @return NX_ERR_UNSPECIFIED when the system refuses; also written to the log.
    [[nodiscard]] nxErrorEnum InitialiseAsShared(bool robust);

    /// Tells the compiler's analysis that the mutex is held. Does nothing.
    void AssertHeld() const NX_ASSERT_CAPABILITY(this) {}

private:
    friend class nxConditionMutex;
    friend class nxConditionRaw;

    nxErrorEnum _LockSlowly(int result) noexcept;
    nxErrorEnum _LockFor(std::int64_t nanoseconds);
    nxErrorEnum _WaitForSignal(nxNative::Condition& condition, std::int64_t nanoseconds) NX_REQUIRES(this);

    static nxErrorEnum _LockError(int result) noexcept;
    static nxErrorEnum _TryLockError(int result) noexcept;
    static nxErrorEnum _UnlockError(int result) noexcept;

    nxNative::Mutex _mutex = nxNative::FreeCheckedMutex;
};

static_assert(sizeof(nxMutex) == sizeof(nxNative::Mutex), "used in place in shared memory");

#endif
