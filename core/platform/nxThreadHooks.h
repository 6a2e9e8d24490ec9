#ifndef CORE_PLATFORM_NXTHREADHOOKS_H
#define CORE_PLATFORM_NXTHREADHOOKS_H

/// What the log asks of the system's threads and processes beyond nxThread.
class nxThreadHooks
{
public:
    nxThreadHooks() = delete;

    /// Has the three functions called around every fork of this process; they cannot be taken back.
    /// @return whether the system accepted.
    static bool AtFork(void (*before)(), void (*afterInParent)(), void (*afterInChild)()) noexcept;

    /// Has @p function called with @p argument when the calling thread ends, after its thread-local objects were
    /// destroyed; not for the thread that ends the process. Only one function in the process, and one argument for each
    /// thread.
    /// @return whether the system accepted.
    static bool AtThreadExit(void (*function)(void*), void* argument) noexcept;

    /// Has @p function called when the process ends by exit or by returning from main.
    static bool AtExit(void (*function)()) noexcept;

    /// Keeps all signals from the calling thread and gives it a name, up to 15 characters, for top and debuggers.
    static void BecomeServiceThread(const char* name) noexcept;

    /// @return a word that holds the number of the processor on which the calling thread runs, kept up to date by the
    ///         system; a constant 0 where the system has no such word. Valid while the thread lives.
    static const volatile unsigned* GetProcessorWord() noexcept;
};

#endif
