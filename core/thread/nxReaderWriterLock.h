#ifndef CORE_THREAD_NXREADERWRITERLOCK_H
#define CORE_THREAD_NXREADERWRITERLOCK_H

#include <pthread.h>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/thread/nxThreadAnnotations.h"

/// A lock that many threads hold for reading or one for writing: one POSIX reader-writer lock, process-private.
///
/// Lock it with nxReaderWriterLockGuard_Read and nxReaderWriterLockGuard_Write and nothing else: the system does not
/// notice an unlock by a thread that holds nothing, and the lock is damaged afterwards.
/// - A thread that holds it for reading must not ask for writing: it waits for itself for ever. The reverse is refused.
/// - Readers come first: writers may wait long while readers keep coming.
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

    /// Waits until nobody holds the lock for writing and takes it for reading.
    /// @return NX_ERR_THR_LOCKED when this thread holds it for writing; NX_ERR_THR_RESOURCE when there are too many
    ///         readers; NX_ERR_UNSPECIFIED for any other failure.
    nxErrorEnum ReadLock() noexcept NX_ACQUIRE_SHARED()
    {
        const int result = pthread_rwlock_rdlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _ReadLockError(result);
    }

    /// Waits until nobody holds the lock and takes it for writing.
    /// @return NX_ERR_THR_LOCKED when this thread holds it for writing; NX_ERR_UNSPECIFIED for any other failure.
    nxErrorEnum WriteLock() noexcept NX_ACQUIRE()
    {
        const int result = pthread_rwlock_wrlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _WriteLockError(result);
    }

    /// Takes the lock for reading unless that would mean waiting.
    /// @return NX_ERR_THR_LOCKED when it would; NX_ERR_UNSPECIFIED for any other failure.
    [[nodiscard]] nxErrorEnum TryReadLock() noexcept
    {
        const int result = pthread_rwlock_tryrdlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _TryLockError(result);
    }

    /// Takes the lock for writing unless that would mean waiting.
    /// @copydetails TryReadLock()
    [[nodiscard]] nxErrorEnum TryWriteLock() noexcept
    {
        const int result = pthread_rwlock_trywrlock(&_lock);
        if (result == 0) [[likely]]
            return nxErrorEnum();
        return _TryLockError(result);
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

    static nxErrorEnum _ReadLockError(int result) noexcept;
    static nxErrorEnum _WriteLockError(int result) noexcept;
    static nxErrorEnum _TryLockError(int result) noexcept;
    static nxErrorEnum _UnlockError(int result) noexcept;

    pthread_rwlock_t _lock = PTHREAD_RWLOCK_INITIALIZER;
};

static_assert(sizeof(nxReaderWriterLock) == sizeof(pthread_rwlock_t), "nothing but its primitive");

#endif
