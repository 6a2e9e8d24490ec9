// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_INLINE_NXNAMEDMUTEX_H
#define CORE_PLATFORM_LINUX_INLINE_NXNAMEDMUTEX_H

#include <pthread.h>

/// A recursive mutex in memory shared by processes, any of which may be killed at any moment. The death of its owner
/// frees it.
///
/// - Life: Initialise() makes it in place; it is never destroyed. - Threads: any.
class nxNamedMutex
{
public:
    /// @return whether the system has made it; if not, errno has the reason.
    bool Initialise();

    /// Takes the mutex if it is free or held by this thread. @return 0, or what FinishLock() has to know.
    int TryLock() { return pthread_mutex_trylock(&_mutex); }

    /// Takes the mutex after a TryLock() that did not return 0, waiting for it where it is held.
    void FinishLock(int result);

    /// Undoes one lock of this thread; has no effect in any other thread.
    void Unlock() { pthread_mutex_unlock(&_mutex); }

private:
    pthread_mutex_t _mutex;
};

#endif
