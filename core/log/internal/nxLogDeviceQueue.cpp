// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceQueue.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogDeviceThread.h"
#include "core/log/internal/nxLogForkLock.h"
#include "core/log/internal/nxLogTimedLock.h"
#include "core/platform/nxLocalZone.h"
#include "core/platform/nxServiceThread.h"
#include "core/platform/nxThisThread.h"
#include "core/platform/nxThreadSanitizer.h"
#include "core/platform/nxWaitWord.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
using Outcome = nxLogTarget::Outcome;

constexpr std::int64_t untilCalled = std::numeric_limits<std::int64_t>::max() / 2;
constexpr std::int64_t longestWaitForDevice = 10 * nxNanoseconds::PerMillisecond;

bool IsTicketReached(std::uint32_t reached, std::uint32_t ticket)
{
    return static_cast<std::int32_t>(reached - ticket) >= 0;
}
}  // namespace

constinit thread_local const nxLogDeviceQueue* nxLogDeviceQueue::_ofThisThread = nullptr;

nxLogDeviceQueue::nxLogDeviceQueue(std::unique_ptr<nxLogTarget> target) : _target(std::move(target)) { Join(); }

nxLogDeviceQueue::~nxLogDeviceQueue()
{
    Leave();
    nxLogDeviceThread::Abandon(_thread);
}

void nxLogDeviceQueue::Add(const nxLogRecord& record) noexcept { _Add(record, 1, record.time, record.time); }

// A batch has the time of its first line alone.
void nxLogDeviceQueue::Add(const nxLogLineBatch& lines) noexcept
{
    _Add(lines, lines.lines, {lines.seconds, 0}, nxClock::Now());
}

template <class Item>
void nxLogDeviceQueue::_Add(const Item& item, std::uint64_t records, const nxClockTime& first,
                            const nxClockTime& last) noexcept
{
    const nxMutexGuard guard(_mutex);
    _isEnding = _isEnding && HasThread();
    const bool wasEmpty = _backlog.IsEmpty();
    if (_isEnding || !_backlog.Add(item, _inHandBytes.load(std::memory_order_relaxed), GetMaximumBytes()))
        return _CountLost(records, first, last);
    _waiting.fetch_add(records, std::memory_order_relaxed);
    // Otherwise the thread has something to look for already.
    if (wasEmpty)
        _bell.Ring();
    _EnsureThread();
}

void nxLogDeviceQueue::_CountLost(std::uint64_t records, const nxClockTime& first, const nxClockTime& last) noexcept
{
    _backlog.Lose(records, first, last);
    _lost.fetch_add(records, std::memory_order_relaxed);
}

void nxLogDeviceQueue::_EnsureThread() noexcept
try
{
    if (_hasThread.load(std::memory_order_relaxed))
        return;
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    if (now < _nextStart)
        return;
    if (_thread != nullptr)
        static_cast<void>(_thread->Wait());  // it has left Run() already
    delete std::exchange(_thread, nullptr);
    _hasThread.store(true, std::memory_order_relaxed);
    _isGivenUp.store(false, std::memory_order_relaxed);
    _nextStart = now + nxLogLimits::RestartInterval;
    const auto self = std::static_pointer_cast<nxLogDeviceQueue>(shared_from_this());
    _thread = nxLogDeviceThread::Start([self] { self->Run(); });
    if (_thread != nullptr)
        _nextStart = 0;
    else
        _hasThread.store(false, std::memory_order_relaxed);
}
catch (...)
{
    _hasThread.store(false, std::memory_order_relaxed);
}

void nxLogDeviceQueue::AskForFlush() noexcept { static_cast<void>(_RequestFlush()); }

// @return the ticket of all that was added before.
std::uint32_t nxLogDeviceQueue::_RequestFlush() noexcept
{
    const nxMutexGuard guard(_mutex);
    const bool wasEmpty = _backlog.IsEmpty();
    const std::uint32_t ticket = _backlog.AddFlush();
    if (_backlog.IsEmpty())
        return ticket;
    if (wasEmpty)
        _bell.Ring();
    _EnsureThread();
    return ticket;
}

void nxLogDeviceQueue::AskForMaintenance() noexcept
{
    _isMaintenanceDue.store(true, std::memory_order_relaxed);
    _bell.Ring();
}

void nxLogDeviceQueue::Run() noexcept
{
    nxServiceThread::Become("nxlogdevice");
    nxLocalZone::LeaveEnvironmentAlone();
    _ofThisThread = this;
    // What a device reports while it is called never waits for room, nor for other devices.
    nxLogBell::SetCallerInsideDevice(true);
    while (_IsServedByCaller() && !_IsToEnd())
    {
        if (_isMaintenanceDue.exchange(false, std::memory_order_relaxed))
        {
            const nxMutexGuard guard(_inside);
            _target->Maintain();
        }
        if (!_IsServedByCaller())
            break;
        if (nxLogDeviceItem item; _inHand.Look(item))
            _Deliver(item);
        else if (!_TakeNext())
            _bell.Sleep(untilCalled);
    }
    nxLogBell::SetCallerInsideDevice(false);
}

bool nxLogDeviceQueue::_IsToEnd() noexcept
{
    const nxMutexGuard guard(_mutex);
    if (!_isEnding)
        return false;
    _inHand = nxLogDeviceItems();
    _inHandBytes.store(0, std::memory_order_relaxed);
    _hasThread.store(false, std::memory_order_release);
    return true;
}

// @return whether there is something in hand again.
bool nxLogDeviceQueue::_TakeNext() noexcept
{
    const nxMutexGuard guard(_mutex);
    _isGivenUp.store(false, std::memory_order_relaxed);
    if (_backlog.IsEmpty())
        static_cast<void>(_backlog.TellLosses());
    _inHand = _backlog.Take();
    _inHandBytes.store(_inHand.GetSize(), std::memory_order_relaxed);
    return _inHand.GetSize() != 0;
}

void nxLogDeviceQueue::_Deliver(const nxLogDeviceItem& item) noexcept
{
    if (_isGivenUp.load(std::memory_order_relaxed))
        return _inHand.Pass();
    const Outcome outcome = _Write(item);
    if (!_IsServedByCaller())
        return;
    switch (outcome)
    {
        case Outcome::Taken:
            return _Finish(item, true);
        case Outcome::Lost:
            return _Finish(item, false);
        case Outcome::Full:
            // A service whose room is taken by others at once must not keep the thread busy.
            if (++_refusals % 2 == 0)
                nxThisThread::SleepMilliseconds(1);
            return _target->WaitForRoom();
        case Outcome::Away:
            return _WaitWhileAway();
    }
}

nxLogTarget::Outcome nxLogDeviceQueue::_Write(const nxLogDeviceItem& item) noexcept
{
    const nxMutexGuard guard(_inside);
    if (const auto* const record = std::get_if<nxLogRecord>(&item))
        return _target->Write(nxLogConversion::Borrow(*record));
    if (const auto* const lines = std::get_if<nxLogLineBatch>(&item))
        return _target->WriteLines(*lines);
    if (const auto* const losses = std::get_if<nxLogLosses>(&item))
        return _target->Write(*losses);
    _target->Flush();
    return Outcome::Taken;
}

void nxLogDeviceQueue::_Finish(const nxLogDeviceItem& item, bool isTaken) noexcept
{
    _refusals = 0;
    _progress.fetch_add(1, std::memory_order_relaxed);
    const nxMutexGuard guard(_mutex);
    _inHand.Pass();
    // A thread that waits for this item finds the room of the last one.
    if (_inHand.IsPassed())
        _inHandBytes.store(0, std::memory_order_relaxed);
    if (_isGivenUp.load(std::memory_order_relaxed))
        return;
    if (const auto* const flush = std::get_if<nxLogFlushRequest>(&item))
    {
        nxThreadSanitizer::Release(&_reached);
        _reached.store(flush->ticket, std::memory_order_release);
        nxWaitWord::WakeAll(_reached);
    }
    const std::uint64_t records = nxLogDeviceItems::CountRecords(item);
    _waiting.fetch_sub(records, std::memory_order_relaxed);
    if (!isTaken && records != 0)
        _CountLost(records, nxClock::Now(), nxClock::Now());
}

void nxLogDeviceQueue::_WaitWhileAway() noexcept
{
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    _lastAttempt.store(now, std::memory_order_relaxed);
    _attempts.fetch_add(1, std::memory_order_release);
    const std::int64_t next = now + nxLogLimits::DeviceRetryInterval;
    for (std::int64_t left = next - now; left > 0; left = next - nxClock::MonotonicNanoseconds())
    {
        if (_isAttemptWanted.exchange(false, std::memory_order_relaxed))
            return;
        {
            const nxMutexGuard guard(_mutex);
            if (_isEnding)
                return;
        }
        _bell.Sleep(left);
    }
}

bool nxLogDeviceQueue::WaitUntilWritten(const nxLogLimits::Wait& limit, nxLogAwakeTime& time) noexcept
{
    const std::uint32_t ticket = _RequestFlush();
    const std::uint32_t attempts = _attempts.load(std::memory_order_acquire);
    std::uint32_t progress = _progress.load(std::memory_order_relaxed);
    std::int64_t lastSign = time.Look();
    const bool wasJustAway =
        attempts != 0 && nxClock::MonotonicNanoseconds() - _lastAttempt.load(std::memory_order_relaxed) <
                             nxLogLimits::DeviceRetryInterval / 10;
    for (bool isFirst = true;; isFirst = false)
    {
        const std::uint32_t reached = _reached.load(std::memory_order_acquire);
        nxThreadSanitizer::Acquire(&_reached);
        if (IsTicketReached(reached, ticket))
            return true;
        if (wasJustAway || _attempts.load(std::memory_order_acquire) != attempts)
            return false;
        if (isFirst)
        {
            _isAttemptWanted.store(true, std::memory_order_relaxed);
            _bell.Ring();
        }
        const std::int64_t waited = time.Look();
        if (std::exchange(progress, _progress.load(std::memory_order_relaxed)) != progress)
            lastSign = waited;
        const std::int64_t left = std::min(limit.inAll - waited, limit.withoutProgress - (waited - lastSign));
        if (left <= 0)
            break;
        nxWaitWord::Wait(_reached, reached, std::min(left, longestWaitForDevice));
    }
    if (limit.withoutProgress >= nxLogLimits::End.withoutProgress)
    {
        _progressAtStall.store(progress, std::memory_order_relaxed);
        _hasStalled.store(true, std::memory_order_relaxed);
    }
    return false;
}

nxLogLimits::Wait nxLogDeviceQueue::GetLimitFor(const nxLogLimits::Wait& limit) const noexcept
{
    const bool isStuck = _hasStalled.load(std::memory_order_relaxed) &&
                         _progressAtStall.load(std::memory_order_relaxed) == _progress.load(std::memory_order_relaxed);
    return isStuck ? nxLogLimits::Wait{limit.inAll, std::min(limit.withoutProgress, nxLogLimits::StalledDeviceAtEnd)}
                   : limit;
}

void nxLogDeviceQueue::End(bool destroyTarget) noexcept
{
    const bool mayWait = nxLogBell::CallerMayWait();
    nxLogAwakeTime time;
    const bool isWritten = mayWait && WaitUntilWritten(GetLimitFor(nxLogLimits::End), time);
    const bool hasEnded = _EndThread(isWritten ? nxLogLimits::ThreadAtEnd
                                     : mayWait ? nxLogLimits::StalledDeviceAtEnd
                                               : 0);
    if (const std::uint64_t dropped = _DropWaiting(); dropped != 0)
        nxLogDeviceQueues::TellDropped(dropped);
    if (!hasEnded || !destroyTarget)
        return;
    const nxMutexGuard guard(_inside);
    _target->Destroy();
}

// @return whether there is no thread any more.
bool nxLogDeviceQueue::_EndThread(std::int64_t limit) noexcept
{
    {
        const nxMutexGuard guard(_mutex);
        _isEnding = HasThread();
    }
    _bell.Ring();
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + limit;
    while (_hasThread.load(std::memory_order_acquire))
    {
        if (nxClock::MonotonicNanoseconds() >= deadline)
            return false;
        nxThisThread::SleepMilliseconds(1);
    }
    nxLogDeviceThread* ended = nullptr;
    {
        const nxMutexGuard guard(_mutex);
        // Another record may have started the next one.
        if (!HasThread())
            ended = std::exchange(_thread, nullptr);
    }
    if (ended != nullptr)
        static_cast<void>(ended->Wait());
    delete ended;
    return true;
}

std::uint64_t nxLogDeviceQueue::_DropWaiting() noexcept
{
    const nxMutexGuard guard(_mutex);
    const std::uint64_t dropped = _waiting.exchange(0, std::memory_order_relaxed);
    _isGivenUp.store(true, std::memory_order_relaxed);
    _lost.fetch_add(dropped, std::memory_order_relaxed);
    _backlog.Clear();
    _reached.store(_backlog.GetTicket(), std::memory_order_release);
    return dropped;
}

void nxLogDeviceQueue::BeforeFork() noexcept
{
    // Where the device forks itself, the calling thread holds the lock already.
    _isLockedForFork = !_IsServedByCaller() && nxLogForkLock::Take(_inside);
    if (_isLockedForFork)
        _target->BeforeFork();
}

void nxLogDeviceQueue::LockForFork() noexcept { nxForkMutex::Take(_mutex); }

void nxLogDeviceQueue::AfterForkInParent() noexcept
{
    nxForkMutex::GiveBack(_mutex);
    if (_isLockedForFork)
        _target->AfterForkInParent();
    nxLogForkLock::GiveBack(_inside, std::exchange(_isLockedForFork, false));
}

void nxLogDeviceQueue::AfterForkInChild() noexcept
{
    const bool isWhole = std::exchange(_isLockedForFork, false);
    nxForkMutex::Renew(_mutex);
    nxLogForkLock::RenewInChild(_inside, isWhole);
    _backlog.ForgetInChild();
    // What the device was given, where it has forked itself, stays valid until it returns. Leak checkers find it.
    [[gnu::used]] alignas(nxLogDeviceItems) static unsigned char given[sizeof(nxLogDeviceItems)];
    if (_IsServedByCaller())
    {
        ::new (given) nxLogDeviceItems(std::move(_inHand));
        _ofThisThread = nullptr;
    }
    _inHand = nxLogDeviceItems();
    _inHandBytes.store(0, std::memory_order_relaxed);
    _reached.store(0, std::memory_order_relaxed);
    nxLogDeviceThread::Abandon(std::exchange(_thread, nullptr));
    _nextStart = 0;
    _isEnding = false;
    _refusals = 0;
    _bell.Reset();
    _attempts.store(0, std::memory_order_relaxed);
    _hasStalled.store(false, std::memory_order_relaxed);
    _hasThread.store(false, std::memory_order_relaxed);
    _isMaintenanceDue.store(false, std::memory_order_relaxed);
    _waiting.store(0, std::memory_order_relaxed);
    _lost.store(0, std::memory_order_relaxed);
    _toldLost.store(0, std::memory_order_relaxed);
    _target->AfterForkInChild(isWhole);
}
void nxLogDeviceQueue::BlockForGood(std::int64_t deadline) noexcept
{
    static_cast<void>(nxLogTimedLock::TakeUntil(_inside, deadline));
}
