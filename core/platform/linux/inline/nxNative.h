// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_INLINE_NXNATIVE_H
#define CORE_PLATFORM_LINUX_INLINE_NXNATIVE_H

#include <pthread.h>
#include <sched.h>
#include <semaphore.h>

#include "core/platform/linux/inline/nxNamedMutex.h"
#include "core/platform/linux/inline/nxNamedSemaphore.h"
#include "core/platform/linux/inline/nxRobustMutex.h"

/// The primitives of Linux: the types of POSIX under common names, with the values that unused ones start from. The
/// functions that work on them are those of POSIX.
struct nxNative
{
    using Mutex = pthread_mutex_t;
    using Condition = pthread_cond_t;
    using ReaderWriterLock = pthread_rwlock_t;
    using SpinLock = pthread_spinlock_t;
    using Barrier = pthread_barrier_t;
    using Semaphore = sem_t;
    using Thread = pthread_t;
    using ThreadAttributes = pthread_attr_t;
    using ProcessorSet = cpu_set_t;

    static constexpr Mutex FreeMutex = PTHREAD_MUTEX_INITIALIZER;                       ///< Misuse is undefined.
    static constexpr Mutex FreeCheckedMutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;  ///< Misuse is an error.
    static constexpr Condition FreeCondition = PTHREAD_COND_INITIALIZER;
    static constexpr ReaderWriterLock FreeReaderWriterLock = PTHREAD_RWLOCK_INITIALIZER;
};

#endif
