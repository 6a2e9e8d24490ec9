// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXREADERWRITERLOCKGUARD_READ_H
#define CORE_THREAD_NXREADERWRITERLOCKGUARD_READ_H

#include "core/thread/nxReaderWriterLock.h"

/// Holds an nxReaderWriterLock for reading for the length of a scope. It unlocks only what it locked.
/// @code
/// nxReaderWriterLockGuard_Read guard(_lock);
/// return _prices.at(product);
/// @endcode
class NX_SCOPED_CAPABILITY nxReaderWriterLockGuard_Read
{
public:
    /// Waits for @p lock, which must outlive the guard. If locking fails, the destructor does not unlock.
    explicit nxReaderWriterLockGuard_Read(nxReaderWriterLock& lock) NX_ACQUIRE_SHARED(lock)
        : _lock(lock.ReadLock().IsOK() ? &lock : nullptr)
    {
    }
    ~nxReaderWriterLockGuard_Read() NX_RELEASE_GENERIC() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        if (_lock != nullptr) [[likely]]
            static_cast<void>(_lock->ReadUnlock());  // cannot fail: the guard holds it
    }

private:
    nxReaderWriterLockGuard_Read() : _lock(nullptr) {}
    nxReaderWriterLockGuard_Read(const nxReaderWriterLockGuard_Read&) = delete;
    nxReaderWriterLockGuard_Read& operator=(const nxReaderWriterLockGuard_Read&) = delete;

    nxReaderWriterLock* _lock;
};

#endif
