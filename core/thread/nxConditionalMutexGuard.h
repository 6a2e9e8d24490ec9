// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXCONDITIONALMUTEXGUARD_H
#define CORE_THREAD_NXCONDITIONALMUTEXGUARD_H

#include "core/thread/nxMutexGuard.h"

/// Holds an nxMutex for the length of a scope, or does nothing, depending on a flag.
///
/// It serves code that is called both with and without the lock. Like nxMutexGuard it unlocks only what it locked. The
/// compiler's analysis treats the mutex as held in both cases.
/// @code
/// void Book::Add(const Order& order, bool alreadyLocked)
/// {
///     nxConditionalMutexGuard guard(_lock, !alreadyLocked);
///     _orders.push_back(order);
/// }
/// @endcode
class NX_CORE_API NX_SCOPED_CAPABILITY nxConditionalMutexGuard
{
public:
    /// Locks @p mutex when @p lock is true. The mutex must outlive the guard.
    nxConditionalMutexGuard(nxMutex& mutex, bool lock) NX_ACQUIRE(mutex)
        : _mutex(&mutex), _locked(lock && nxMutexGuard::_Lock(mutex))
    {
    }
    ~nxConditionalMutexGuard() NX_RELEASE() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        if (_locked)
            static_cast<void>(_mutex->Unlock());  // cannot fail: the guard holds it
    }

    nxConditionalMutexGuard(const nxConditionalMutexGuard&) = delete;
    nxConditionalMutexGuard& operator=(const nxConditionalMutexGuard&) = delete;

private:
    nxConditionalMutexGuard() : _mutex(nullptr), _locked(false) {}

    nxMutex* _mutex;
    bool _locked;
};

#endif
