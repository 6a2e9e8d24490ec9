// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogWriter.h"

#include <algorithm>
#include <new>
#include <utility>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogDeviceQueues.h"
#include "core/log/internal/nxLogMerge.h"
#include "core/log/internal/nxLogTimedLock.h"
#include "core/log/internal/nxLogWait.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxThreadSanitizer.h"
#include "core/platform/nxWaitWord.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// How often in a long round the callers get back the room of what has been taken.
constexpr unsigned recordsPerRelease = 256;
// The longest sleep of a waiting thread between two looks.
constexpr std::int64_t longestWaitSlice = 10 * nxNanoseconds::PerMillisecond;

// Tickets wrap.
bool HasReached(std::uint32_t reached, std::uint32_t ticket)
{
    return static_cast<std::int32_t>(reached - ticket) >= 0;
}
}  // namespace

void nxLogBell::RunRoundHere(std::int64_t limit) noexcept { nxLogWriter::GetInstance().RunRoundHere(limit); }

nxLogWriter& nxLogWriter::GetInstance() noexcept
{
    // Never destroyed: threads and static destructors report to the very end.
    alignas(nxLogWriter) static unsigned char storage[sizeof(nxLogWriter)];
    static nxLogWriter& writer = *::new (storage) nxLogWriter;
    return writer;
}

nxLogWriter::Look nxLogWriter::RunRound() noexcept
{
    const nxMutexGuard guard(_roundMutex);
    const bool hasFound = _RunRoundAndUpkeep(false);
    return {hasFound, _upkeep.GetTimeUntilDue()};
}

// Takes everything that is in the queue when the mutex is locked. A record that was queued while another thread was in a
// round is not in that round.
void nxLogWriter::RunRoundHere(std::int64_t limit) noexcept
{
    if (!nxLogBell::CallerMayWait() || !nxLogTimedLock::Take(_roundMutex, limit))
        return;
    _roundMutex.AssertHeld();
    nxLogBell::SetCallerWriter(true);
    _RunRoundAndUpkeep(true);
    nxLogBell::SetCallerWriter(false);
    static_cast<void>(_roundMutex.Unlock());
}

// @return whether there was a record.
bool nxLogWriter::_RunRoundAndUpkeep(bool everything) noexcept
{
    const std::uint32_t wanted = _wanted.load(std::memory_order_acquire);
    nxThreadSanitizer::Acquire(&_wanted);
    const bool isAwaited = wanted != _reached.load(std::memory_order_relaxed);
    _isInRound.store(true, std::memory_order_relaxed);
    const Outcome outcome = _DoRound(everything || isAwaited);
    // A device has forked, and this is the child. Its writer has no round, or one of another thread.
    if (!nxLogBell::IsCallerWriter())
        return false;
    _isInRound.store(false, std::memory_order_release);
    _upkeep.AfterRound(_batches != nullptr && _batches->TakeHasWritten(), isAwaited);
    if (isAwaited && outcome != Outcome::NoMemory && nxLogBell::IsCallerWriter())
    {
        nxThreadSanitizer::Release(&_reached);
        _reached.store(wanted, std::memory_order_release);
        nxWaitWord::WakeAll(_reached);
    }
    return outcome == Outcome::Some;
}

nxLogWriter::Outcome nxLogWriter::_DoRound(bool everything) noexcept
{
    nxClock::Recalibrate();
    // The round's records are fixed before its devices, so that a record which is reported after a device was registered
    // finds the device in the list.
    nxLogMerge::GetInstance().Begin(everything);
    nxLogBatches* batches = nullptr;
    try
    {
        batches = &_PrepareBatches();
    }
    catch (...)
    {
        return Outcome::NoMemory;
    }
    _WriteEarlyRecords(*batches);
    const bool found = !batches->IsOfParent() && _DeliverQueued(*batches);
    if (!batches->IsOfParent() && batches->GetGravestLevel() >= NX_LOG_LEVEL_WARNING)
        nxLogUpkeep::FlushDevices(nxLogUpkeep::Devices::TakingRecords);
    return found ? Outcome::Some : Outcome::Nothing;
}

nxLogBatches& nxLogWriter::_PrepareBatches()
{
    if (_batches == nullptr)
        _batches = std::make_unique<nxLogBatches>();
    nxLogBatches& batches = *_batches;
    batches.Prepare();
    if (batches.HasDevices())
        _early.Close();
    return batches;
}

// The first device gets what was reported before there was one.
void nxLogWriter::_WriteEarlyRecords(nxLogBatches& batches) noexcept
{
    if (!batches.HasDevices())
        return;
    for (const nxLog& early : _early.Take())
        if (!batches.Deliver(nxLogConversion::View(early)))
            return;
}

// @return whether there was a record.
bool nxLogWriter::_DeliverQueued(nxLogBatches& batches) noexcept
{
    nxLogMerge& merge = nxLogMerge::GetInstance();
    nxLogRecord record;
    bool found = false;
    unsigned inHand = 0;
    const auto release = [&]
    {
        merge.GiveBackRoom();
        _inHand.store(inHand = 0, std::memory_order_relaxed);
    };
    while (merge.Next(record))
    {
        found = true;
        _inHand.store(++inHand, std::memory_order_relaxed);
        if (!batches.Deliver(record)) [[unlikely]]
        {
            if (batches.IsOfParent())
                return true;
            _KeepEarly(record);
        }
        if (inHand == recordsPerRelease)
            release();
    }
    if (!batches.Send())
        return found;
    if (found)
        nxLogCounters::SetRoundLag(merge.GetLag());
    // Also after no record at all: a thread may have moved on to the start of its ring.
    release();
    return found;
}

void nxLogWriter::_KeepEarly(const nxLogRecord& record) noexcept
{
    if (!_early.Keep(record))
        nxLogCounters::CountUndelivered(1);
}

bool nxLogWriter::WaitUntilWritten(const nxLogLimits::Wait& limit) noexcept
{
    nxLogAwakeTime time;
    return nxLogBell::CallerMayWait() && _WaitUntilReached(limit, time, true);
}

bool nxLogWriter::WaitUntilAllHave(const nxLogLimits::Wait& limit) noexcept
{
    nxLogAwakeTime time;
    const nxLogLimits::Wait ofDevices{limit.inAll, std::min(limit.withoutProgress, nxLogLimits::End.withoutProgress)};
    return nxLogBell::CallerMayWait() && _WaitUntilReached(limit, time, true) &&
           nxLogDeviceQueues::WaitUntilWritten(ofDevices, time);
}

bool nxLogWriter::WriteOutAtEnd() noexcept
{
    nxLogAwakeTime time;
    return WriteOutAtEnd(time);
}

bool nxLogWriter::WriteOutAtEnd(nxLogAwakeTime& time) noexcept
{
    const bool nothingEver =
        nxLogBell::GetState() == nxLogBell::State::Stopped && nxLogChannelList::GetInstance().IsEmpty();
    // A thread that ends the process from inside a device cannot wait for itself.
    return nothingEver || (nxLogBell::CallerMayWait() && _WaitUntilReached(nxLogLimits::End, time, false));
}

bool nxLogWriter::_WaitUntilReached(const nxLogLimits::Wait& limit, nxLogAwakeTime& time, bool mayStart) noexcept
{
    nxThreadSanitizer::Release(&_wanted);
    const std::uint32_t ticket = _wanted.fetch_add(1, std::memory_order_acq_rel) + 1;
    nxLogWait wait(limit.inAll, limit.withoutProgress, time);
    for (;;)
    {
        if (!(mayStart ? nxLogBell::EnsureRunning() : nxLogBell::GetState() != nxLogBell::State::Stopped))
            RunRoundHere(0);
        nxLogBell::Ring();
        const std::uint32_t reached = _reached.load(std::memory_order_acquire);
        nxThreadSanitizer::Acquire(&_reached);
        if (HasReached(reached, ticket))
            return true;
        const std::int64_t left = wait.Step();
        if (left <= 0)
            return false;
        nxWaitWord::Wait(_reached, reached, std::min(left, longestWaitSlice));
    }
}

void nxLogWriter::BlockRoundsForGood() noexcept
{
    static_cast<void>(nxLogBell::CallerMayWait() && nxLogTimedLock::Take(_roundMutex, nxLogLimits::RoundAtEnd));
}

void nxLogWriter::CopyRecords(std::vector<nxLog>& records)
{
    nxLogChannelList& list = nxLogChannelList::GetInstance();
    const auto copy = [&records](const nxLogRecord& record) { records.push_back(nxLogConversion::Borrow(record)); };
    // Records are kept only before the first device, and then no device can make a round long.
    if (_early.IsClosed() || !nxLogBell::CallerMayWait())
        return list.VisitWaiting(copy);
    const nxMutexGuard guard(_roundMutex);
    records.insert(records.end(), _early.Get().begin(), _early.Get().end());
    list.VisitWaiting(copy);
}

void nxLogWriter::AfterForkInChild() noexcept
{
    // The fork does not take this mutex; a thread that does not exist in the child may hold it.
    ::new (&_roundMutex) nxMutex;
    // What a round of the parent was working with is half changed and not touched again. Leak checkers find it here.
    [[gnu::used]] static nxLogBatches* caught;
    if (_batches != nullptr)
        _batches->LeaveToParent();
    caught = _batches.release();
    static_cast<void>(caught);  // clang++ takes a variable that is only written for a mistake
    [[gnu::used]] alignas(std::vector<nxLog>) static unsigned char caughtEarly[sizeof(std::vector<nxLog>)];
    ::new (caughtEarly) std::vector<nxLog>(_early.Take());
    _upkeep.AfterForkInChild();
    _isInRound.store(false, std::memory_order_relaxed);
    _inHand.store(0, std::memory_order_relaxed);
    // What the forking thread may be waiting for is the parent's business.
    _reached.store(_wanted.load(std::memory_order_relaxed), std::memory_order_relaxed);
}
