// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXSERVICETHREAD_H
#define CORE_PLATFORM_NXSERVICETHREAD_H

#include <span>

#include "core/platform/inline/nxNative.h"

/// The scheduling of the library's own threads. They do not inherit that of the thread that starts them, which may have
/// real-time priority and occupy the one processor that it is pinned to.
///
/// - Default: ordinary scheduling on the processors that the process had when the library was loaded.
/// - Threads: like an int.
class nxServiceThread
{
public:
    /// Remembers the processors of the calling thread as those of the process. Only the first call counts.
    static void RememberProcessors() noexcept;

    /// @param processors their numbers. Numbers that no machine has are left out; an empty rest means those of the process.
    void SetProcessors(std::span<const unsigned> processors) noexcept;
    /// @param priority 1 to 99 for the system's real-time queue (SCHED_FIFO) where that is allowed; any other number for
    ///        ordinary scheduling.
    void SetPriority(unsigned priority) noexcept { _priority = 1 <= priority && priority <= 99 ? priority : 0; }

    /// Sets the attributes of a new thread to this scheduling and a stack of 256 KiB. @return 0 or the error number.
    int Prepare(nxNative::ThreadAttributes& attributes) const noexcept;
    /// Gives this scheduling to a running thread, as far as the system allows.
    void Apply(nxNative::Thread thread) const noexcept;

    /// Blocks all signals for the calling thread except those of faults and profilers, and gives it a name of up to 15
    /// characters for process monitors and debuggers. A fault's signal goes to the thread that made the fault; if it were
    /// blocked, the process would end without a call of its handler.
    static void Become(const char* name) noexcept;
    /// Unblocks every signal for the calling thread.
    static void AcceptSignals() noexcept;

private:
    nxNative::ProcessorSet _processors{};  // empty for those of the process
    unsigned _priority = 0;                // 0 for ordinary scheduling
};

#endif
