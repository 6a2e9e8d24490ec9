// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXTHREAD_H
#define CORE_THREAD_NXTHREAD_H

#include <atomic>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"

class nxServiceThread;
struct nxThreadOptions;

/// The base of every worker thread: a subclass supplies Run(), its owner starts it with Create() and joins with Wait().
///
/// | state                       | Create()                   | Wait()                            | destructor |
/// |-----------------------------|----------------------------|-----------------------------------|------------|
/// | not started                 | starts a thread            | NX_ERR_THR_NOT_RUNNING            | valid      |
/// | started, in Run()           | NX_ERR_THR_ALREADY_STARTED | waits for Run(); not started then | invalid    |
/// | started, Run() has returned | NX_ERR_THR_ALREADY_STARTED | not started then                  | invalid    |
///
/// - The object may be started again after Wait().
/// - Run() decides itself when to end: give the subclass a stop flag and a way to wake it. An exception that leaves
///   Run() ends the thread and is written to the log at the fatal level; the process goes on.
/// - Ownership: the destructor neither stops nor joins. If the object is destroyed before Wait(), the thread uses an
///   object that no longer exists, and the system never frees the thread's stack. nxThreadGuard waits in all cases.
/// - Threads: the owning thread calls Create(), Wait() and the destructor. The started thread itself may call Wait(),
///   which returns NX_ERR_THR_DEADLOCK. If several threads call Wait() at once, one of them waits for Run().
/// @code
/// class Poller : public nxThread
/// {
///     nxErrorEnum Run() override;
/// };
/// Poller poller;
/// nxErrorEnum error = poller.Create();
/// if (error.IsOK())
///     error = poller.Wait();
/// @endcode
class NX_CORE_API nxThread
{
public:
    nxThread();
    virtual ~nxThread();

    nxThread(const nxThread&) = delete;
    nxThread& operator=(const nxThread&) = delete;

    /// Starts a thread that executes Run(), with the system's default attributes.
    /// @return NX_ERR_THR_ALREADY_STARTED when it is started; NX_ERR_THR_RESOURCE when the system has no room for a
    ///         thread; NX_ERR_THR_PERMISSION when it forbids one; NX_ERR_THR_MISMATCH for any other failure. A failure
    ///         changes nothing.
    [[nodiscard]] nxErrorEnum Create();

    /// Starts a thread that executes Run(), with a name, processors, scheduling and a stack of the caller's choice. Run()
    /// begins with all of them in force.
    /// @return NX_ERR_INVALID_PARAMETER for a processor above nxThreadOptions::LargestProcessor or a set of which the
    ///         thread may use none, for a priority that does not fit the scheduling, and for a stack that is too small
    ///         for the system; NX_ERR_THR_PERMISSION when the process may not have the scheduling; otherwise as Create().
    ///         A failure changes nothing.
    [[nodiscard]] nxErrorEnum Create(const nxThreadOptions& options);

    /// Waits until Run() has returned.
    /// @return NX_ERR_THR_NOT_RUNNING when it is not started; NX_ERR_THR_DEADLOCK when the thread waits for itself;
    ///         NX_ERR_THR_MISMATCH when another thread waits already, and for any other failure. After a failure it is
    ///         still started.
    virtual nxErrorEnum Wait();

    /// The body of the thread. The result is ignored.
    virtual nxErrorEnum Run() = 0;

    /// Sleeps for microseconds / 1000 whole milliseconds, and a signal does not shorten it. Less than 1000 only yields
    /// the processor.
    static void Sleep(unsigned microseconds);

    /// @return the system's number of the calling thread, in decimal: the one that top and gdb show.
    static std::string GetThreadIDAsString();

private:
    friend class nxLogDeferredWriteThread;
    friend class nxLogDeviceThread;

    enum class State : unsigned char
    {
        NotStarted,
        Started,
        Joining  // in a call of Wait()
    };

    nxErrorEnum _Create(const nxServiceThread* attributes);
    bool _Claim();
    int _RenewAttributes();
    int _Launch(int result, void* (*body)(void*), void* argument);
    static nxErrorEnum _StartError(int result);
    static void* _ThreadProc(void* self);
    static void* _NamedThreadProc(void* start);

    nxNative::ThreadAttributes _attributes;
    nxNative::Thread _handle;
    // The default order, because threads are started and joined seldom.
    std::atomic<State> _state;
};

#endif
