// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXMUTEXGUARD_H
#define CORE_THREAD_NXMUTEXGUARD_H

#include "core/thread/nxMutex.h"

/// Holds an nxMutex for the length of a scope.
///
/// It unlocks only what it locked: when Lock() fails because the thread holds the mutex already, the destructor leaves
/// the outer lock alone. If the owner of a robust mutex died, the guard holds the lock, calls Consistent() and writes
/// an error to the log; code that must repair the data calls nxMutex::Lock() instead.
/// @code
/// {
///     nxMutexGuard guard(_lock);
///     _orders.push_back(order);
/// }
/// @endcode
class NX_CORE_API NX_SCOPED_CAPABILITY nxMutexGuard
{
public:
    /// Waits for @p mutex, which must outlive the guard. If locking fails, the destructor does not unlock.
    explicit nxMutexGuard(nxMutex& mutex) NX_ACQUIRE(mutex) : _mutex(_Lock(mutex) ? &mutex : nullptr) {}
    ~nxMutexGuard() NX_RELEASE() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        if (_mutex != nullptr) [[likely]]
            static_cast<void>(_mutex->Unlock());  // cannot fail: the guard holds it
    }

    nxMutexGuard(const nxMutexGuard&) = delete;
    nxMutexGuard& operator=(const nxMutexGuard&) = delete;

private:
    friend class nxConditionalMutexGuard;

    nxMutexGuard() : _mutex(nullptr) {}

    // Locks. Returns whether the guard holds the mutex and must unlock it.
    static bool _Lock(nxMutex& mutex) NX_NO_THREAD_SAFETY_ANALYSIS
    {
        const nxErrorEnum error = mutex.Lock();
        return error.IsOK() || _IsHeldDespite(error, mutex);
    }
    static bool _IsHeldDespite(const nxErrorEnum& error, nxMutex& mutex);

    nxMutex* _mutex;
};

#endif
