// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXMONOTONICWAIT_H
#define CORE_PLATFORM_NXMONOTONICWAIT_H

#include <cstdint>

#include "core/platform/inline/nxNative.h"

/// Waits for the primitives by the monotonic clock, which runs on evenly when the wall clock is set.
///
/// - Times: nanoseconds from the call on. 0 tries once; a wait never ends early.
/// - Results: 0, ETIMEDOUT, or another error number of the primitive.
/// - Under the thread sanitizer, which does not follow all of the system's timed calls, waits for locks and semaphores
///   repeat their try each millisecond. A lock that the thread itself holds then times out instead of being refused.
class nxMonotonicWait
{
public:
    nxMonotonicWait() = delete;

    /// Takes a mutex of any kind. EOWNERDEAD means that it is taken as well.
    static int Lock(nxNative::Mutex& mutex, std::int64_t nanoseconds);

    static int ReadLock(nxNative::ReaderWriterLock& lock, std::int64_t nanoseconds);
    static int WriteLock(nxNative::ReaderWriterLock& lock, std::int64_t nanoseconds);

    /// Takes one from the count of @p semaphore. EINTR means that a signal handler interrupted the wait.
    static int Take(nxNative::Semaphore& semaphore, std::int64_t nanoseconds);

    /// Waits for a signal with @p mutex, which the caller holds.
    static int ForSignal(nxNative::Condition& condition, nxNative::Mutex& mutex, std::int64_t nanoseconds);
};

#endif
