#ifndef CORE_PLATFORM_NXSERVICETHREAD_H
#define CORE_PLATFORM_NXSERVICETHREAD_H

#include <span>

#include "core/platform/inline/nxNative.h"

/// How a thread of the library's own runs: not as whichever thread happens to start it, which may be pinned to a
/// processor, of real-time priority, and never leave that processor again.
///
/// - By default with ordinary scheduling, on the processors that the process had when the library was loaded.
/// - Threads: like an int.
class nxServiceThread
{
public:
    /// Remembers the processors of the calling thread as those of the process. Only the first call counts.
    static void RememberProcessors() noexcept;

    /// @param processors their numbers; what no machine has is left out, and nothing left means those of the process.
    void SetProcessors(std::span<const unsigned> processors) noexcept;
    /// @param priority 1 to 99 for SCHED_FIFO, where the system allows that; anything else for ordinary scheduling.
    void SetPriority(unsigned priority) noexcept { _priority = 1 <= priority && priority <= 99 ? priority : 0; }

    /// Makes attributes with which a thread starts like that, and with a stack of 256 KiB. @return 0 or errno.
    int Prepare(nxNative::ThreadAttributes& attributes) const noexcept;
    /// Makes a thread go on like that, as far as the system allows.
    void Apply(nxNative::Thread thread) const noexcept;

    /// Keeps all signals but those of faults and profilers from the calling thread, and gives it a name, up to 15
    /// characters, for top and debuggers. A fault is raised in the thread that makes it: blocked, it would end the
    /// process without its handler being asked.
    static void Become(const char* name) noexcept;
    /// Lets every signal through to the calling thread again.
    static void AcceptSignals() noexcept;

private:
    nxNative::ProcessorSet _processors{};  // none for those of the process
    unsigned _priority = 0;                // 0 for ordinary scheduling
};

#endif
