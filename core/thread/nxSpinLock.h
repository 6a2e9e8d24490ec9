// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXSPINLOCK_H
#define CORE_THREAD_NXSPINLOCK_H

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/nxThreadAnnotations.h"

/// A lock whose waiters keep their processor busy instead of sleeping: one POSIX spin lock.
///
/// It is for sections of a few instructions between threads that have a processor each. Lock it with nxSpinLockGuard.
/// - All waiters spin while the system suspends the holder. They spin for ever when the holder dies or locks again.
/// - An unlock by a thread that does not hold the lock is not detected.
/// - Between processes: InitialiseAsShared(), provided that no process is killed while it holds the lock.
/// @code
/// nxSpinLockGuard guard(_lock);
/// ++_count;
/// @endcode
class NX_CORE_API NX_CAPABILITY("spin lock") nxSpinLock
{
public:
    nxSpinLock() { pthread_spin_init(&_lock, PTHREAD_PROCESS_PRIVATE); }
    ~nxSpinLock() { pthread_spin_destroy(&_lock); }

    nxSpinLock(const nxSpinLock&) = delete;
    nxSpinLock& operator=(const nxSpinLock&) = delete;

    /// Spins until the lock is free and takes it.
    /// @return NX_ERR_UNSPECIFIED when the system refuses.
    nxErrorEnum Lock() noexcept NX_ACQUIRE()
    {
        return pthread_spin_lock(&_lock) == 0 ? nxErrorEnum() : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

    /// Takes the lock if it is free.
    /// @return NX_ERR_THR_LOCKED when it is held; NX_ERR_THR_DEADLOCK when the system finds that this thread holds it
    ///         (not on Linux); NX_ERR_UNSPECIFIED for any other failure.
    [[nodiscard]] nxErrorEnum TryLock() noexcept
    {
        const int result = pthread_spin_trylock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _TryLockError(result);
    }

    /// Gives the lock back.
    /// @return NX_ERR_THR_MISMATCH when the system finds that another thread holds it (not on Linux); success for every
    ///         other failure.
    nxErrorEnum Unlock() noexcept NX_RELEASE()
    {
        const int result = pthread_spin_unlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _UnlockError(result);
    }

    /// Initialises the lock again, in the shared memory that holds the object, for use by several processes. The
    /// process that creates the memory calls it once, before any use of the lock.
    /// @return NX_ERR_INTERNAL when the system refuses; also written to the log.
    [[nodiscard]] nxErrorEnum InitialiseAsShared();

    /// Tells the compiler's analysis that the lock is held. Does nothing.
    void AssertHeld() const NX_ASSERT_CAPABILITY(this) {}

private:
    static nxErrorEnum _TryLockError(int result) noexcept;
    static nxErrorEnum _UnlockError(int result) noexcept;

    nxNative::SpinLock _lock;
};

static_assert(sizeof(nxSpinLock) == sizeof(nxNative::SpinLock), "used in place in shared memory");

#endif
