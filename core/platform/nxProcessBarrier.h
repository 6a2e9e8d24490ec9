// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXPROCESSBARRIER_H
#define CORE_PLATFORM_NXPROCESSBARRIER_H

/// A full memory barrier in all threads of the process at the request of one of them. So a thread that rarely waits can
/// pay for the order of its own accesses and of those of threads that must not pay for a fence each time.
///
/// A processor that runs a thread of the process at that moment is interrupted for about a microsecond; others are not.
/// Errors: false where the system has no such barrier. Threads: any.
class nxProcessBarrier
{
public:
    nxProcessBarrier() = delete;

    /// Makes the process ready for Pass(). The first call in a process may take some ten milliseconds; a forked child
    /// needs one of its own. @return whether Pass() works.
    static bool Prepare() noexcept;
    /// Returns after every other thread has passed a full barrier since the call. The calling thread passes one as well.
    /// @return whether that has happened; false without Prepare().
    static bool Pass() noexcept;
};

#endif
