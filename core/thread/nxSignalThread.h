// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXSIGNALTHREAD_H
#define CORE_THREAD_NXSIGNALTHREAD_H

#include <functional>
#include <memory>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/thread/nxBlockedSignals.h"
#include "core/thread/nxThreadOptions.h"

class nxSignalWorker;

/// Turns signals into calls of functions on a thread of its own. The functions may log, lock, wait and allocate, which the
/// handlers of signals must not: no handler is installed.
///
/// | call                   | effect                                                                          |
/// |------------------------|---------------------------------------------------------------------------------|
/// | SetHandler()           | says which function is called for a signal                                      |
/// | Start()                | starts the thread, which first takes the signals that have come already         |
/// | Stop(), the destructor | handles what has come before it, waits for the function that runs, ends the thread |
///
/// - Order: one function runs at a time. If several signals have come, the one with the smallest number is first. A signal
///   that comes again before its function was called counts once; one that comes while its function runs is handled
///   after it.
/// - Signals of the nxBlockedSignals without a function are kept by the system, and the destructor of that object gives them
///   their former effect.
/// - A signal that is sent to one thread, as by std::raise() and pthread_kill(), stays with that thread. A program sends
///   one to itself by `kill(getpid(), SIGTERM)`.
/// - Exceptions: one that leaves a function is written to the log at the fatal level. The thread goes on, because the
///   process could not be ended by a signal otherwise.
/// - Errors: those of SetHandler() are kept for Start(), so that there is one place to look.
/// - Threads: one thread makes, starts, stops and destroys the object; the functions do none of that. exit() may be called
///   by a function, but then the objects of main are not destroyed; it is better to tell main to return.
/// - Ownership: the nxBlockedSignals must outlive the object. Declare the object after everything that its functions use:
///   it is then destroyed first.
/// - Fork: a child has no such thread. There the destructor waits for nothing. The child may make an object of its own.
/// @code
/// int main()
/// {
///     const nxBlockedSignals blocked;  // first: threads inherit it
///     Server server;
///     nxSignalThread signals(blocked);
///     signals.SetHandler(SIGTERM, [&server] { server.Stop(); });
///     signals.SetHandler(SIGINT, [&server] { server.Stop(); });
///     signals.SetHandler(SIGHUP, [] { nxFileLogDevice::GetInstance().CloseAndReopenLogFile(); });
///     if (!signals.Start().IsOK())
///         return 1;
///     server.Run();  // until Stop()
/// }
/// @endcode
class NX_CORE_API nxSignalThread
{
public:
    /// @param signals what the thread may wait for.
    explicit nxSignalThread(const nxBlockedSignals& signals);
    ~nxSignalThread();
    nxSignalThread(const nxSignalThread&) = delete;
    nxSignalThread& operator=(const nxSignalThread&) = delete;

    /// Has @p handler called on the object's thread whenever @p signal comes. A second call for a signal replaces the
    /// function. A signal that the process ignores has no calls (see nxBlockedSignals), which is no error.
    /// After Start() it changes nothing.
    void SetHandler(int signal, std::function<void()> handler);

    /// Lets the second SIGTERM or SIGINT end the process at once, for people who do not want to wait for an orderly end.
    /// The thread unblocks both for itself when it has taken the first of them, before it calls the function; the next
    /// one then has its former effect. What the log has not written by then is lost, as after any kill. It does not end the
    /// first process of a container, which the system shields. After Start() the call changes nothing.
    void EndAtSecondSignal();

    /// Starts the thread. Writes a warning to the log for each thread that still accepts one of the signals.
    /// @param options how it is started; its name unless given is "signals".
    /// @return NX_ERR_INVALID_PARAMETER when the nxBlockedSignals has an error, when SetHandler() was given a signal that the
    ///         nxBlockedSignals was not given or an empty function, and when there is no function at all;
    ///         NX_ERR_THR_ALREADY_STARTED when the thread was started already; otherwise as nxThread::Create(). A failure
    ///         starts nothing.
    [[nodiscard]] nxErrorEnum Start(const nxThreadOptions& options = {});

    /// Ends the thread, after the functions of the signals that have come. Later signals are kept by the system. The thread
    /// may be started again. Does nothing when it is not started.
    void Stop();

private:
    std::unique_ptr<nxSignalWorker> _worker;
};

#endif
