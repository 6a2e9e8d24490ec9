// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogWriterThread.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogDeviceQueues.h"
#include "core/log/internal/nxLogExit.h"
#include "core/log/internal/nxLogIdleSleep.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogRingMemory.h"
#include "core/log/internal/nxLogUpkeep.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLogDeferredWriteThread.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxLocalZone.h"
#include "core/platform/nxProcess.h"
#include "core/platform/nxStandardStream.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
using ThreadState = nxLogBell::State;

// After this many looks that found no record the sleeps become long.
constexpr unsigned emptyLooksUntilIdle = 64;
}  // namespace

bool nxLogBell::Start() noexcept { return nxLogWriterThread::GetInstance().Start(); }

void nxLogBell::Urge(nxEnumValue level) noexcept { nxLogWriterThread::GetInstance().Urge(level); }

nxErrorEnum nxLogDeferredWriteThread::Run()
{
    nxLogWriterThread::GetInstance().Run();
    return nxErrorEnum();
}

nxLogWriterThread& nxLogWriterThread::GetInstance() noexcept
{
    alignas(nxLogWriterThread) static unsigned char storage[sizeof(nxLogWriterThread)];
    static nxLogWriterThread& thread = *::new (storage) nxLogWriterThread;
    return thread;
}

bool nxLogWriterThread::Start() noexcept
{
    // Another thread is already starting the deferred-write thread, or stopping it: leave it to that one.
    if (!_startMutex.TryLock().IsOK())
        return false;
    _startMutex.AssertHeld();
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    // A thread that Stop() no longer waits for runs on, if it has not ended meanwhile.
    bool running = nxLogBell::ChangeState(ThreadState::Stopping, ThreadState::Running) != ThreadState::Stopped;
    if (!running && now >= _nextStart)
        running = _StartNow(now);
    static_cast<void>(_startMutex.Unlock());
    if (_couldNotStart.load(std::memory_order_relaxed))
        _TellFailureOnce();
    return running;
}

bool nxLogWriterThread::_StartNow(std::int64_t now) noexcept
{
    nxLogExit::Register();
    nxLocalZone::PrepareForOwnThread(nxClock::Now().seconds);
    const nxMutexGuard guard(_settingsMutex);
    if (_thread != nullptr)
        static_cast<void>(_thread->Wait());  // returns soon, because the state is Stopped
    else
        _thread = new (std::nothrow) nxLogDeferredWriteThread;
    const bool running = _thread != nullptr && _thread->_Start(_service).IsOK();
    // Not before: a thread that finds the state Running leaves its records to the deferred-write thread.
    if (running)
        nxLogBell::SetState(ThreadState::Running);
    else
        _nextStart = now + nxLogLimits::RestartInterval;
    _couldNotStart.store(!running, std::memory_order_relaxed);
    return running;
}

void nxLogWriterThread::_TellFailureOnce() const noexcept
{
    // Relaxed: the exchange lets one thread pass, and orders no other memory.
    static constinit std::atomic<bool> isTold{false};
    if (!isTold.exchange(true, std::memory_order_relaxed))
        static_cast<void>(nxStandardStream::GetErrors().Write(
            "Failed to start the log's thread: warnings and worse are written by the threads that report them, other "
            "records wait.\n"));
}

bool nxLogWriterThread::Stop(std::int64_t limit) noexcept
{
    if (!nxLogBell::CallerMayWait())
        return false;
    const nxMutexGuard guard(_startMutex);
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + limit;
    nxLogBell::ChangeState(ThreadState::Running, ThreadState::Stopping);
    while (nxLogBell::GetState() != ThreadState::Stopped)
    {
        nxLogBell::Ring();
        if (nxClock::MonotonicNanoseconds() >= deadline)
            return false;  // it ends when the device returns, if Start() does not need it before
        nxThisThread::SleepMilliseconds(1);
    }
    const nxMutexGuard settingsGuard(_settingsMutex);
    if (_thread != nullptr)
        static_cast<void>(_thread->Wait());  // an error: it was not started
    return true;
}

void nxLogWriterThread::Urge(nxEnumValue level) noexcept
{
    const bool running = nxLogBell::EnsureRunning();
    nxLogBell::Ring();
    if (level >= NX_LOG_LEVEL_FATAL)
        nxLogWriter::GetInstance().WaitUntilAllHave(nxLogLimits::Urgent);
    else if (!running)  // it cannot be started, or is being started at the moment, which may fail
        nxLogBell::RunRoundHere(nxLogLimits::Urgent.inAll);
}

void nxLogWriterThread::SetThread(std::span<const unsigned> processors, unsigned priority) noexcept
{
    // Not the mutex of starting: a thread that reports meanwhile would leave the start to this one.
    const nxMutexGuard guard(_settingsMutex);
    _service.SetProcessors(processors);
    _service.SetPriority(priority);
    if (_thread != nullptr)
        _thread->_Apply(_service);
}

void nxLogWriterThread::Run() noexcept
{
    nxServiceThread::Become("nxlog");
    nxLocalZone::LeaveEnvironmentAlone();
    nxLogBell::SetCallerWriter(true);
    nxLogIdleSleep idleSleep(nxLogChannelList::GetInstance());
    unsigned emptyLooks = 0;
    std::int64_t nextLookAround = nxClock::MonotonicNanoseconds() + nxLogLimits::LastThreadInterval;
    while (nxLogBell::ChangeState(ThreadState::Stopping, ThreadState::Stopped) != ThreadState::Stopping)
    {
        const nxLogWriter::Look look = nxLogWriter::GetInstance().RunRound();
        if (!nxLogBell::IsCallerWriter())
            return;  // in a child, where a thread of its own may run by now
        emptyLooks = look.hasFound ? 0 : std::min(emptyLooks + 1, emptyLooksUntilIdle);
        if (emptyLooks < emptyLooksUntilIdle)
        {
            idleSleep.End();
            nxLogBell::Sleep(nxLogLimits::BusySleep);
            continue;
        }
        if (const std::int64_t now = nxClock::MonotonicNanoseconds(); now + nxLogLimits::UpkeepSlack >= nextLookAround)
        {
            nextLookAround = now + nxLogLimits::LastThreadInterval;
            nxLogRingMemory::GetInstance().Trim();
            _EndProcessIfLast();
        }
        idleSleep.Sleep(look.untilUpkeep);
    }
    idleSleep.End();
    nxLogBell::SetCallerWriter(false);
}

// Ends the process if the calling thread, the deferred-write thread, is the only one left but for those of devices: main and all others have ended
// by pthread_exit(). Without this thread the system would end the process now, with status 0.
void nxLogWriterThread::_EndProcessIfLast() noexcept
{
    // No thread is left that could start another one meanwhile.
    if (!nxProcess::IsOnlyThreadLeft(nxLogDeviceQueues::CountThreads()))
        return;
    _Leave();
    // Signals that no thread could take meanwhile have their effect now, as have those that come while the process ends.
    nxServiceThread::AcceptSignals();
    std::exit(0);
}

// Writes out, as a thread like any other.
void nxLogWriterThread::_Leave() noexcept
{
    nxLogBell::SetCallerWriter(false);
    {
        // Threads that report from now on start another one.
        const nxMutexGuard guard(_startMutex);
        const nxMutexGuard settingsGuard(_settingsMutex);
        _thread = nullptr;
        nxLogBell::SetState(ThreadState::Stopped);
    }
    nxLogBell::RunRoundHere();
    nxLogUpkeep::FlushDevices(nxLogUpkeep::Devices::All);
}

void nxLogWriterThread::AfterForkInChild() noexcept
{
    // The fork does not take these mutexes; a thread that does not exist in the child may hold them.
    ::new (&_startMutex) nxMutex;
    ::new (&_settingsMutex) nxMutex;
    _thread = nullptr;
    _nextStart = 0;
    _couldNotStart.store(false, std::memory_order_relaxed);
}
