// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXTHREADGUARD_H
#define CORE_THREAD_NXTHREADGUARD_H

#include "core/thread/nxThread.h"

/// Waits for a thread at the end of a scope, however the scope is left, so that no thread outlives its object.
///
/// Declare it after the thread's object and after everything that the thread uses: it is then destroyed first. The thread
/// has to be told to end. A subclass of nxThread overrides Wait() for that, which the guard calls.
/// - Several threads: a `std::deque` of threads and, declared after it, a `std::deque` of guards. Neither moves its
///   elements, and the guards are destroyed first.
/// - A thread that is not started, or that was waited for already, is left alone.
/// - Ownership: the thread's object must outlive the guard.
/// @code
/// class Poller : public nxThread
/// {
/// public:
///     nxErrorEnum Wait() override
///     {
///         _stop = true;
///         return nxThread::Wait();
///     }
/// };
/// Poller poller;
/// const nxThreadGuard guard(poller);
/// if (const nxErrorEnum error = poller.Create(); !error.IsOK())
///     return error;
/// @endcode
class nxThreadGuard
{
public:
    /// Keeps @p thread, started or not, for the end of the scope.
    explicit nxThreadGuard(nxThread& thread) : _thread(thread) {}
    ~nxThreadGuard() { static_cast<void>(_thread.Wait()); }

    nxThreadGuard(const nxThreadGuard&) = delete;
    nxThreadGuard& operator=(const nxThreadGuard&) = delete;

private:
    nxThread& _thread;
};

#endif
