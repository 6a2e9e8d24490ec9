// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXSYSTEMCLOCK_H
#define CORE_PLATFORM_NXSYSTEMCLOCK_H

#include <cstdint>

/// What nxClock asks of the operating system: its clocks, and its word on the processor's counter.
///
/// Threads: any, also before the initialisers of the library and after a fork. Errors: none.
class nxSystemClock
{
public:
    nxSystemClock() = delete;

    /// Nanoseconds since 1 January 1970 00:00 UTC, modulo 2^64.
    static std::int64_t WallNanoseconds();

    /// Nanoseconds since some fixed moment. They never step back and do not change when the wall clock is set.
    static std::int64_t MonotonicNanoseconds();

    /// Whether the processor's counter can serve as a clock: threads may read it, it runs at one speed, and the system
    /// keeps time by it. Called before the first reading, because it also settles how the clocks above are read where
    /// the counter is forbidden. Keeps errno.
    static bool CanUseCounter();

    /// Whether the system says that it no longer keeps time by the counter. Keeps errno.
    static bool HasLeftCounter();

    /// Lets another thread run.
    static void Yield();
};

#endif
