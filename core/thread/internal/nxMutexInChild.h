#ifndef CORE_THREAD_INTERNAL_NXMUTEXINCHILD_H
#define CORE_THREAD_INTERNAL_NXMUTEXINCHILD_H

#include <new>

#include "core/thread/nxMutex.h"

/// A mutex that the forking thread took before the fork, in the child.
class nxMutexInChild
{
public:
    nxMutexInChild() = delete;

    /// Makes it anew, free. The unlocking before is refused, because the thread has another number in the child; but
    /// the thread sanitizer, which follows locks through forks, would else believe the mutex held for ever.
    static void Renew(nxMutex& mutex) noexcept NX_NO_THREAD_SAFETY_ANALYSIS
    {
        mutex.Unlock();
        ::new (&mutex) nxMutex;
    }
};

#endif
