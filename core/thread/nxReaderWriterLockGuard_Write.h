// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXREADERWRITERLOCKGUARD_WRITE_H
#define CORE_THREAD_NXREADERWRITERLOCKGUARD_WRITE_H

#include "core/thread/nxReaderWriterLock.h"

/// Holds an nxReaderWriterLock for writing for the length of a scope. It unlocks only what it locked.
/// @code
/// nxReaderWriterLockGuard_Write guard(_lock);
/// _prices[product] = price;
/// @endcode
class NX_SCOPED_CAPABILITY nxReaderWriterLockGuard_Write
{
public:
    /// Waits for @p lock, which must outlive the guard. If locking fails, the destructor does not unlock.
    explicit nxReaderWriterLockGuard_Write(nxReaderWriterLock& lock) NX_ACQUIRE(lock)
        : _lock(lock.WriteLock().IsOK() ? &lock : nullptr)
    {
    }
    ~nxReaderWriterLockGuard_Write() NX_RELEASE_GENERIC() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        if (_lock != nullptr) [[likely]]
            static_cast<void>(_lock->WriteUnlock());  // cannot fail: the guard holds it
    }

private:
    nxReaderWriterLockGuard_Write() : _lock(nullptr) {}
    nxReaderWriterLockGuard_Write(const nxReaderWriterLockGuard_Write&) = delete;
    nxReaderWriterLockGuard_Write& operator=(const nxReaderWriterLockGuard_Write&) = delete;

    nxReaderWriterLock* _lock;
};

#endif
