// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXREADERWRITERLOCK_H
#define CORE_THREAD_NXREADERWRITERLOCK_H

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/inline/nxWaitTime.h"
#include "core/thread/nxThreadAnnotations.h"

/// A lock that many threads hold for reading or one for writing: one POSIX reader-writer lock, process-private.
///
/// Lock it only with nxReaderWriterLockGuard_Read and nxReaderWriterLockGuard_Write.
///
/// | state                   | ReadLock()  | WriteLock()    | TryReadLock() | TryWriteLock() | either unlock    |
/// |-------------------------|-------------|----------------|---------------|----------------|------------------|
/// | free                    | locks       | locks          | locks         | locks          | damages the lock |
/// | this thread reads       | locks again | waits for ever | locks again   | refused        | gives back one   |
/// | only other threads read | locks       | waits          | locks         | refused        | damages the lock |
/// | this thread writes      | refused     | refused        | refused       | refused        | unlocks          |
/// | another thread writes   | waits       | waits          | refused       | refused        | damages the lock |
///
/// Refused means NX_ERR_THR_LOCKED. An unlock that damages the lock is not detected: it returns success, and the lock
/// fails afterwards. A thread that locks again for reading unlocks as often.
/// The forms with For and Until wait at most that long and then return NX_ERR_THR_TIMEDOUT; where the others return
/// NX_ERR_THR_LOCKED because this thread writes, they do too.
/// - Readers come first: a writer may wait long while new readers arrive.
/// - Errors: returned, never thrown and never logged.
/// @code
/// nxReaderWriterLockGuard_Read guard(_lock);
/// return _prices.at(product);
/// @endcode
class NX_CORE_API NX_CAPABILITY("reader-writer lock") nxReaderWriterLock
{
public:
    constexpr nxReaderWriterLock() noexcept = default;
    ~nxReaderWriterLock() { pthread_rwlock_destroy(&_lock); }

    /// Waits until no thread holds the lock for writing, and takes it for reading.
    /// @return NX_ERR_THR_LOCKED when this thread holds it for writing; NX_ERR_THR_RESOURCE when there are too many
    ///         readers; NX_ERR_UNSPECIFIED for any other failure.
    nxErrorEnum ReadLock() noexcept NX_ACQUIRE_SHARED()
    {
        const int result = pthread_rwlock_rdlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _ReadLockError(result);
    }

    /// Waits until no thread holds the lock, and takes it for writing.
    /// @return NX_ERR_THR_LOCKED when this thread holds it for writing; NX_ERR_UNSPECIFIED for any other failure.
    nxErrorEnum WriteLock() noexcept NX_ACQUIRE()
    {
        const int result = pthread_rwlock_wrlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _WriteLockError(result);
    }

    /// Takes the lock for reading if that is possible without waiting.
    /// @return NX_ERR_THR_LOCKED when it is not; NX_ERR_UNSPECIFIED for any other failure.
    [[nodiscard]] nxErrorEnum TryReadLock() noexcept
    {
        const int result = pthread_rwlock_tryrdlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _TryLockError(result);
    }

    /// Takes the lock for writing if that is possible without waiting.
    /// @copydetails TryReadLock()
    [[nodiscard]] nxErrorEnum TryWriteLock() noexcept
    {
        const int result = pthread_rwlock_trywrlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _TryLockError(result);
    }

    /// Waits until the lock can be taken for reading, at most @p time. Never gives up early; the wall clock does not matter.
    /// @param time a std::chrono::duration. Zero, negative values and NaN try once.
    /// @return NX_ERR_THR_TIMEDOUT when that was not possible in time; otherwise as ReadLock().
    template <nxWaitDuration Duration>
    [[nodiscard]] nxErrorEnum ReadLockFor(const Duration& time)
    {
        const nxErrorEnum error = TryReadLock();
        return error.IsOK() ? error : _ReadLockFor(nxWaitTime::Nanoseconds(time));
    }

    /// The same until @p moment, a time point of std::chrono::steady_clock.
    template <nxWaitMoment Moment>
    [[nodiscard]] nxErrorEnum ReadLockUntil(const Moment& moment)
    {
        const nxErrorEnum error = TryReadLock();
        return error.IsOK() ? error : _ReadLockFor(nxWaitTime::NanosecondsUntil(moment));
    }

    /// Waits until the lock can be taken for writing, at most @p time. Never gives up early; the wall clock does not matter.
    /// @param time a std::chrono::duration. Zero, negative values and NaN try once.
    /// @return NX_ERR_THR_TIMEDOUT when that was not possible in time; otherwise as WriteLock().
    template <nxWaitDuration Duration>
    [[nodiscard]] nxErrorEnum WriteLockFor(const Duration& time)
    {
        const nxErrorEnum error = TryWriteLock();
        return error.IsOK() ? error : _WriteLockFor(nxWaitTime::Nanoseconds(time));
    }

    /// The same until @p moment, a time point of std::chrono::steady_clock.
    template <nxWaitMoment Moment>
    [[nodiscard]] nxErrorEnum WriteLockUntil(const Moment& moment)
    {
        const nxErrorEnum error = TryWriteLock();
        return error.IsOK() ? error : _WriteLockFor(nxWaitTime::NanosecondsUntil(moment));
    }

    /// Gives back what ReadLock() took.
    /// @return NX_ERR_THR_PERMISSION when the system finds that this thread does not hold it (not on Linux);
    ///         NX_ERR_UNSPECIFIED for any other failure.
    nxErrorEnum ReadUnlock() noexcept NX_RELEASE_SHARED() { return _Unlock(); }

    /// Gives back what WriteLock() took.
    /// @copydetails ReadUnlock()
    nxErrorEnum WriteUnlock() noexcept NX_RELEASE() { return _Unlock(); }

    /// Tells the compiler's analysis that the lock is held, for writing or for reading. Does nothing.
    void AssertHeld() const NX_ASSERT_CAPABILITY(this) {}
    /// Tells the compiler's analysis that the lock is held at least for reading. Does nothing.
    void AssertHeldForReading() const NX_ASSERT_SHARED_CAPABILITY(this) {}

private:
    nxReaderWriterLock(const nxReaderWriterLock&) = delete;
    nxReaderWriterLock& operator=(const nxReaderWriterLock&) = delete;

    nxErrorEnum _Unlock() noexcept
    {
        const int result = pthread_rwlock_unlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _UnlockError(result);
    }

    nxErrorEnum _ReadLockFor(std::int64_t nanoseconds);
    nxErrorEnum _WriteLockFor(std::int64_t nanoseconds);

    static nxErrorEnum _ReadLockError(int result) noexcept;
    static nxErrorEnum _WriteLockError(int result) noexcept;
    static nxErrorEnum _TryLockError(int result) noexcept;
    static nxErrorEnum _UnlockError(int result) noexcept;

    nxNative::ReaderWriterLock _lock = nxNative::FreeReaderWriterLock;
};

static_assert(sizeof(nxReaderWriterLock) == sizeof(nxNative::ReaderWriterLock), "nothing but its primitive");

#endif
