// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXSPINLOCKGUARD_H
#define CORE_THREAD_NXSPINLOCKGUARD_H

#include "core/thread/nxSpinLock.h"

/// Holds an nxSpinLock for the length of a scope. It unlocks only what it locked.
/// @code
/// nxSpinLockGuard guard(_lock);
/// ++_count;
/// @endcode
class NX_SCOPED_CAPABILITY nxSpinLockGuard
{
public:
    /// Spins for @p lock, which must outlive the guard. If locking fails, the destructor does not unlock.
    explicit nxSpinLockGuard(nxSpinLock& lock) NX_ACQUIRE(lock) : _lock(lock.Lock().IsOK() ? &lock : nullptr) {}
    ~nxSpinLockGuard() NX_RELEASE() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        if (_lock != nullptr) [[likely]]
            static_cast<void>(_lock->Unlock());  // cannot fail: the guard holds it
    }

    nxSpinLockGuard(const nxSpinLockGuard&) = delete;
    nxSpinLockGuard& operator=(const nxSpinLockGuard&) = delete;

private:
    nxSpinLock* _lock;
};

#endif
