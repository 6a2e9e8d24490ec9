// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGWRITERTHREAD_H
#define CORE_LOG_INTERNAL_NXLOGWRITERTHREAD_H

#include <atomic>
#include <cstdint>
#include <span>

#include "core/enum/nxEnumValue.h"
#include "core/platform/nxServiceThread.h"
#include "core/thread/nxMutex.h"

class nxLogDeferredWriteThread;

/// Starts and stops the deferred-write thread, and holds the loop that it runs. Never destroyed.
///
/// Invariant: at most one deferred-write thread exists, and nxLogBell has its state:
///
/// | state    | the thread                  | becomes                                                              |
/// |----------|-----------------------------|----------------------------------------------------------------------|
/// | Stopped  | does not exist, or returns  | Running, by Start()                                                  |
/// | Running  | runs its loop               | Stopping, by Stop(); Stopped, by Start() when the system refuses one |
/// | Stopping | runs, and is to end         | Stopped, by the thread; Running, by Start() that came before that    |
///
/// In a forked child the state is Stopped. Where the deferred-write thread ends the process, it sets Stopped itself. A child
/// that a device has forked on the deferred-write thread has that thread alone: it ends when the device returns, and
/// the child with it, unless the child has started others.
///
/// Errors: a thread that cannot be started is tried again after nxLogLimits::RestartInterval; the error stream is told,
/// once. Meanwhile, and while another thread is starting it, a warning or worse is written by the thread that reports it.
/// Threads: any.
class nxLogWriterThread
{
public:
    static nxLogWriterThread& GetInstance() noexcept;

    /// See nxLogBell.
    bool Start() noexcept;
    /// See nxLogBell.
    void Urge(nxEnumValue level) noexcept;

    /// Ends the deferred-write thread. @return whether it ended within @p limit nanoseconds.
    bool Stop(std::int64_t limit) noexcept;

    /// How the deferred-write thread runs, from now on.
    void SetThread(std::span<const unsigned> processors, unsigned priority) noexcept;

    /// What the deferred-write thread does.
    void Run() noexcept;

    /// The child has no deferred-write thread.
    void AfterForkInChild() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    nxLogWriterThread() noexcept = default;
    ~nxLogWriterThread() = delete;

    bool _StartNow(std::int64_t now) noexcept NX_REQUIRES(_startMutex);
    void _TellFailureOnce() const noexcept;
    void _EndProcessIfLast() noexcept;
    void _Leave() noexcept;

    // Held by a thread that starts or stops the deferred-write thread, and by no other. A thread that finds it locked
    // leaves the start to that one.
    nxMutex _startMutex;
    nxMutex _settingsMutex;                                  // taken after _startMutex, for a short time
    std::int64_t _nextStart NX_GUARDED_BY(_startMutex) = 0;  // on the monotonic clock
    nxLogDeferredWriteThread* _thread NX_GUARDED_BY(_settingsMutex) = nullptr;
    nxServiceThread _service NX_GUARDED_BY(_settingsMutex);
    std::atomic<bool> _couldNotStart{false};  // at the last attempt; relaxed: a thread that reads it late asks again
};

#endif
