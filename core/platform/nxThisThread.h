// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXTHISTHREAD_H
#define CORE_PLATFORM_NXTHISTHREAD_H

#include <cstddef>

/// The calling thread, as the system knows it.
class nxThisThread
{
public:
    nxThisThread() = delete;

    /// @return the system's number of the thread.
    static unsigned GetID();

    /// The bytes of a thread's name that the system keeps.
    static constexpr std::size_t LongestName = 15;
    /// Gives the thread a name for process monitors and debuggers. @pre It is not longer than LongestName.
    static void SetName(const char* name) noexcept;

    /// Sleeps for the whole time, whatever signals arrive. 0 yields the processor.
    static void SleepMilliseconds(unsigned milliseconds);

    /// Has @p function called with @p argument when the thread ends, after its thread-local objects were destroyed; not
    /// for the thread that ends the process. There is one function in the process, and one argument for each thread.
    /// Where the process has used up the system's keys for this, the function is called among the destructors of the
    /// thread-local objects, and may be set again by those that come later.
    /// @return whether the system accepted.
    static bool CallAtEnd(void (*function)(void*), void* argument) noexcept;

    /// @return a word that holds the number of the processor on which the thread runs, kept up to date by the system; a
    ///         constant 0 where the system has no such word. Valid while the thread lives.
    static const volatile unsigned* GetProcessorWord() noexcept;
};

#endif
