#ifndef CORE_PLATFORM_NXTHREADHOOKS_H
#define CORE_PLATFORM_NXTHREADHOOKS_H

/// What the log asks of the system's threads and processes beyond nxThread.
class nxThreadHooks
{
public:
    nxThreadHooks() = delete;

    /// Has the three functions called around every fork of this process; they cannot be taken back.
    ///
    /// The functions for before run in the reverse of the order in which they come here, so a fork takes the library's
    /// locks like this: that of the named objects; those of the log's devices, each with its file's; the list of
    /// devices; the queue; the table of sources; that of the command line and the environment; that of the
    /// application's data. Whoever holds two of them takes them in this order too. So a device may ask for a setting,
    /// and nobody enters a device, or waits for the log, while he holds the lock of the environment.
    /// @return whether the system accepted.
    static bool AtFork(void (*before)(), void (*afterInParent)(), void (*afterInChild)()) noexcept;

    /// Has @p function called with @p argument when the calling thread ends, after its thread-local objects were
    /// destroyed; not for the thread that ends the process. Only one function in the process, and one argument for each
    /// thread. Where the process has used up the system's keys for this, the function is called among the destructors
    /// of the thread-local objects, and may be set again by those that come later.
    /// @return whether the system accepted.
    static bool AtThreadExit(void (*function)(void*), void* argument) noexcept;

    /// Has @p function called when the process ends by exit or by returning from main, and by quick_exit.
    static bool AtExit(void (*function)()) noexcept;

    /// @return a word that holds the number of the processor on which the calling thread runs, kept up to date by the
    ///         system; a constant 0 where the system has no such word. Valid while the thread lives.
    static const volatile unsigned* GetProcessorWord() noexcept;
};

#endif
