#include "core/log/internal/nxLogWriter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "core/log/internal/nxLogExit.h"
#include "core/log/internal/nxLogQueue.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/nxLogDeferredWriteThread.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxThisThread.h"
#include "core/platform/nxWaitWord.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t millisecond = 1'000'000;
// How long the thread sleeps between two looks, while records come and while none do.
constexpr std::int64_t busySleep = 3 * millisecond / 2;
constexpr std::int64_t idleSleep = 100 * millisecond;
// After how many looks in vain the sleeps become long.
constexpr unsigned looksInVain = 64;
// Lines go out in pieces of this size.
constexpr std::size_t batchSize = std::size_t{1} << 20;
constexpr std::size_t batchCapacity = batchSize + (std::size_t{1} << 16);
// With so much of it at least a round goes on when memory is short, in smaller pieces.
constexpr std::size_t leastBatchCapacity = std::size_t{1} << 14;
// How long a fatal record waits, and how long a caller that has to write his record himself waits for his turn.
constexpr std::int64_t longestUrge = 100 * millisecond;
// How often in a long round the callers get back what has been taken.
constexpr unsigned recordsPerRelease = 256;
// What is kept of the records from before the first device, with what each costs beside its values.
constexpr std::size_t maximumEarlyBytes = std::size_t{1} << 20;
constexpr std::size_t dateSize = 7;

// States of the word that the thread sleeps on.
constexpr std::uint32_t awake = 0;
constexpr std::uint32_t called = 1;
constexpr std::uint32_t asleep = 2;

constinit thread_local bool isWriter = false;

bool HasReached(std::uint32_t reached, std::uint32_t ticket)
{
    return static_cast<std::int32_t>(reached - ticket) >= 0;
}
}  // namespace

nxLogWriter& nxLogWriter::GetInstance() noexcept
{
    // Never destroyed: threads and static destructors report to the very end.
    alignas(nxLogWriter) static unsigned char storage[sizeof(nxLogWriter)];
    static nxLogWriter& writer = *::new (storage) nxLogWriter;
    return writer;
}

// The thread.

bool nxLogWriter::EnsureRunning() noexcept
{
    if (IsRunning()) [[likely]]
        return true;
    // Whoever finds another thread at it leaves it to that one.
    if (!_startMutex.TryLock().IsOK())
        return false;
    _startMutex.AssertHeld();
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    // A thread that Stop() has given up waiting for goes on, unless it has ended meanwhile.
    State state = State::Stopping;
    bool running = _state.compare_exchange_strong(state, State::Running) || state == State::Running;
    if (!running && now >= _nextStart)
    {
        nxLogExit::Register();
        if (_thread != nullptr)
            _thread->Wait();  // it has ended: that is what the state says
        else
            _thread = new (std::nothrow) nxLogDeferredWriteThread;
        _state.store(State::Running, std::memory_order_release);
        running = _thread != nullptr && _thread->_Start(_service).IsOK();
        if (!running)
        {
            _state.store(State::Stopped, std::memory_order_release);
            _nextStart = now + second;
        }
        _couldNotStart.store(!running, std::memory_order_relaxed);
    }
    static constinit bool isTold = false;
    const bool isToBeTold = _couldNotStart.load(std::memory_order_relaxed) && !std::exchange(isTold, true);
    _startMutex.Unlock();
    if (isToBeTold)
        nxLogExit::Complain(
            "Failed to start the log's thread: warnings and worse are written by the threads that report them, other "
            "records wait.\n");
    return running;
}

bool nxLogWriter::Stop(std::int64_t limit) noexcept
{
    if (!MayWait())
        return false;
    const nxMutexGuard guard(_startMutex);
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + limit;
    State running = State::Running;
    _state.compare_exchange_strong(running, State::Stopping);
    while (_state.load(std::memory_order_acquire) != State::Stopped)
    {
        Wake();
        const std::int64_t left = deadline - nxClock::MonotonicNanoseconds();
        if (left <= 0)
            return false;  // it will end when the device lets it, unless it is wanted again before
        nxWaitWord::Wait(_reached, _reached.load(std::memory_order_relaxed), std::min(left, millisecond));
    }
    if (_thread != nullptr)
        _thread->Wait();
    return true;
}

void nxLogWriter::Wake() noexcept
{
    if (_wake.exchange(called, std::memory_order_acq_rel) == asleep)
        nxWaitWord::WakeAll(_wake);
}

void nxLogWriter::Urge(nxEnumValue level) noexcept
{
    const bool running = EnsureRunning();
    Wake();
    if (level >= NX_LOG_LEVEL_FATAL)
        WaitUntilWritten(longestUrge, longestUrge);
    else if (!running && _couldNotStart.load(std::memory_order_relaxed))
        DrainHere(longestUrge);
}

void nxLogWriter::SetThread(std::span<const unsigned> processors, unsigned priority) noexcept
{
    const nxMutexGuard guard(_startMutex);
    _service.SetProcessors(processors);
    _service.SetPriority(priority);
    if (_thread != nullptr)
        _thread->_Apply(_service);
}

bool nxLogWriter::MayWait() const noexcept { return !isWriter && !nxLogDeviceEntry::IsThreadInsideAny(); }

void nxLogWriter::_Sleep(bool busy) noexcept
{
    std::uint32_t expected = awake;
    if (_wake.compare_exchange_strong(expected, asleep, std::memory_order_acq_rel))
        nxWaitWord::Wait(_wake, asleep, busy ? busySleep : idleSleep);
    // Not a plain store, which could reach memory after the exchange of a caller and so overwrite a call.
    _wake.exchange(awake, std::memory_order_acq_rel);
}

void nxLogWriter::_Run() noexcept
{
    nxServiceThread::Become("nxlog");
    isWriter = true;
    unsigned inVain = 0;
    std::int64_t nextLookAround = nxClock::MonotonicNanoseconds() + second;
    for (State stopping = State::Stopping; !_state.compare_exchange_strong(stopping, State::Stopped);
         stopping = State::Stopping)
    {
        _roundMutex.Lock();
        const bool found = _WriteQueued(false);
        _roundMutex.Unlock();
        inVain = found ? 0 : inVain + 1;
        const bool busy = inVain < looksInVain;
        if (inVain == looksInVain)
            nxLogQueue::GetInstance().Trim();
        inVain = std::min(inVain, looksInVain + 1);
        if (const std::int64_t now = nxClock::MonotonicNanoseconds(); !busy && now >= nextLookAround)
        {
            nextLookAround = now + second;
            nxLogExit::EndProcessIfLast();
        }
        _Sleep(busy);
    }
    isWriter = false;
}

void nxLogWriter::Leave() noexcept
{
    isWriter = false;
    {
        // Whoever reports from now on starts another thread.
        const nxMutexGuard guard(_startMutex);
        _thread = nullptr;
        _state.store(State::Stopped, std::memory_order_release);
    }
    DrainHere();
    _FlushDevices(true);
}

// Under the mutex of the rounds everything that has been queued by now is taken: one round only is not enough for a
// caller whose record came while it was going on.
void nxLogWriter::DrainHere(std::int64_t patience) noexcept
{
    if (!MayWait() || !_LockRound(patience))
        return;
    _roundMutex.AssertHeld();
    isWriter = true;
    _WriteQueued(true);
    isWriter = false;
    _roundMutex.Unlock();
}

bool nxLogWriter::_LockRound(std::int64_t patience) noexcept
{
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + patience;
    while (!_roundMutex.TryLock().IsOK())
    {
        if (nxClock::MonotonicNanoseconds() >= deadline)
            return false;
        nxThisThread::SleepMilliseconds(1);
    }
    return true;
}

bool nxLogWriter::WaitUntilWritten(std::int64_t limit, std::int64_t stallLimit) noexcept
{
    nxLogPatience patience;
    return MayWait() && _WaitUntilWritten(limit, stallLimit, patience, true);
}

bool nxLogWriter::_WaitUntilWritten(std::int64_t limit, std::int64_t stallLimit, nxLogPatience& patience,
                                    bool mayStart) noexcept
{
    const nxLogQueue& queue = nxLogQueue::GetInstance();
    const std::uint32_t ticket = _wanted.fetch_add(1, std::memory_order_acq_rel) + 1;
    std::int64_t lastSign = patience.Look();
    std::uint32_t progress = queue.GetProgress();
    for (;;)
    {
        if (!(mayStart ? EnsureRunning() : _state.load(std::memory_order_acquire) != State::Stopped))
            DrainHere();
        Wake();
        const std::uint32_t reached = _reached.load(std::memory_order_acquire);
        if (HasReached(reached, ticket))
            return true;
        const std::int64_t waited = patience.Look();
        if (queue.GetProgress() != progress)
        {
            progress = queue.GetProgress();
            lastSign = waited;
        }
        const std::int64_t left = std::min(limit - waited, stallLimit - (waited - lastSign));
        if (left <= 0)
            return false;
        nxWaitWord::Wait(_reached, reached, std::min(left, 10 * millisecond));
    }
}

bool nxLogWriter::WriteOut(std::int64_t limit, std::int64_t stallLimit) noexcept
{
    nxLogPatience patience;
    return WriteOut(limit, stallLimit, patience);
}

bool nxLogWriter::WriteOut(std::int64_t limit, std::int64_t stallLimit, nxLogPatience& patience) noexcept
{
    // A thread that ends the process from inside a device cannot wait for itself.
    const bool nothingEver =
        _state.load(std::memory_order_acquire) == State::Stopped && nxLogQueue::GetInstance().IsEmpty();
    return nothingEver || (MayWait() && _WaitUntilWritten(limit, stallLimit, patience, false));
}

void nxLogWriter::CopyRecords(std::vector<nxLog>& records)
{
    nxLogQueue& queue = nxLogQueue::GetInstance();
    // Only before the first device do records wait here, and then no device can make a round long.
    if (_hadDevices.load(std::memory_order_relaxed) || !MayWait())
        return queue.CopyRecords(records);
    const nxMutexGuard guard(_roundMutex);
    records.insert(records.end(), _early.begin(), _early.end());
    queue.CopyRecords(records);
}

void nxLogWriter::KeepStill(std::int64_t limit) noexcept
{
    // A round has the mutex from its beginning to its end.
    static_cast<void>(MayWait() && _LockRound(limit));
}

void nxLogWriter::SetFlushInterval(double seconds) noexcept
{
    constexpr double most = 3'600;
    const double clamped = std::isnan(seconds) ? 0 : std::clamp(seconds, 0.0, most);
    _flushInterval.store(static_cast<std::int64_t>(clamped * 1e9), std::memory_order_relaxed);
}

// A round.

// Everything that one look at the queue entails. With the round's mutex.
bool nxLogWriter::_WriteQueued(bool everything) noexcept
{
    const std::uint32_t wanted = _wanted.load(std::memory_order_acquire);
    const bool isAwaited = wanted != _reached.load(std::memory_order_relaxed);
    _isInRound.store(true, std::memory_order_seq_cst);
    bool found = false;
    const bool hasRun = _DoRound(everything || isAwaited, found);
    _isInRound.store(false, std::memory_order_release);
    _FlushWhereDue(isAwaited);
    _MaintainWhereDue();
    _ReportLosses();
    // A wait is over when a round that began after it has run to its end; one that could not begin has taken nothing.
    if (isAwaited && hasRun)
    {
        _reached.store(wanted, std::memory_order_release);
        nxWaitWord::WakeAll(_reached);
    }
    return found;
}

// Whether there was memory for a round. With it, every record of the round has been given to a device or counted.
bool nxLogWriter::_DoRound(bool everything, bool& found) noexcept
{
    nxLogQueue& queue = nxLogQueue::GetInstance();
    nxClock::Recalibrate();
    // The records before the devices: what is reported after a device was registered finds it in the list.
    queue.BeginRound(everything);
    try
    {
        _BeginRound();
    }
    catch (...)
    {
        // The records stay where they are until there is memory.
        return false;
    }
    _WriteEarly();
    nxLogRecord record;
    unsigned count = 0;
    unsigned inHand = 0;
    const auto release = [&]
    {
        queue.Release();
        _inHand.store(inHand = 0, std::memory_order_relaxed);
    };
    while (queue.Next(record))
    {
        ++count;
        _inHand.store(++inHand, std::memory_order_relaxed);
        _Pass(record);
        if (inHand == recordsPerRelease)
            release();
    }
    _SendBatches();
    // Also after no record at all: a thread may have gone on to the start of its ring.
    release();
    if (_round->worstLevel >= NX_LOG_LEVEL_WARNING)
        _FlushDevices(false);
    found = count != 0;
    return true;
}

// Looks at which devices there are, and at the lines that they want.
void nxLogWriter::_BeginRound()
{
    if (_round == nullptr)
        _round = std::make_unique<Round>();
    Round& round = *_round;
    round.devices = nxLogDeviceList::GetInstance().Get();
    const nxLogManager& manager = nxLogManager::GetInstance();
    round.thread = {manager.GetLogThreadIndex(), manager.GetLogThreadCPU()};
    round.worstLevel = NX_ENUM_UNDEFINED;
    round.time.Forget();
    round.batchOfDevice.assign(round.devices->size(), nullptr);
    round.hasDevices = round.hasRecordDevices = false;
    round.onlyBatch = nullptr;
    for (const auto& batch : round.batches)
        batch->isWanted = false;
    for (std::size_t index = 0; index < round.devices->size(); ++index)
    {
        nxLogDeviceEntry& entry = *(*round.devices)[index];
        // It stands in the list because there was no memory for one without it.
        if (entry.IsRemoved())
            continue;
        round.hasDevices = true;
        if (entry.GetLineSink() == nullptr)
        {
            round.hasRecordDevices = true;
            continue;
        }
        nxLogLineStyle style;
        entry.Call([&](nxLogDevice&) { style = entry.GetLineSink()->GetLineStyle(); });
        round.batchOfDevice[index] = round.onlyBatch = &_GetBatch(style);
        round.onlyBatch->lines.SetStyle(style, round.thread);
    }
    const auto isOther = [&round](const Batch* batch) { return batch != round.onlyBatch; };
    if (std::any_of(round.batchOfDevice.begin(), round.batchOfDevice.end(), isOther))
        round.onlyBatch = nullptr;
    if (round.hasDevices)
        _hadDevices.store(true, std::memory_order_relaxed);
}

// The batch of lines in this style. There are few styles, so a batch once made is kept.
nxLogWriter::Batch& nxLogWriter::_GetBatch(const nxLogLineStyle& style)
{
    for (const auto& batch : _round->batches)
        if (batch->style == style)
        {
            batch->isWanted = true;
            return *batch;
        }
    auto batch = std::make_unique<Batch>();
    batch->style = style;
    batch->isWanted = true;
    if (!batch->lines.Reserve(batchCapacity) && !batch->lines.Reserve(leastBatchCapacity))
        throw std::bad_alloc();
    _round->batches.push_back(std::move(batch));
    return *_round->batches.back();
}

// The first device gets what was reported before there was one.
void nxLogWriter::_WriteEarly() noexcept
{
    if (_early.empty() || !_round->hasDevices)
        return;
    for (const nxLog& early : _early)
        _Pass(early._GetRecord());
    _early = std::vector<nxLog>();
    _earlyBytes = 0;
}

void nxLogWriter::_KeepEarly(const nxLogRecord& record) noexcept
{
    const std::size_t cost =
        sizeof(nxLog) + static_cast<std::size_t>(record.end - record.values) + std::strlen(record.GetFile());
    if (_hadDevices.load(std::memory_order_relaxed) || _earlyBytes + cost > maximumEarlyBytes)
    {
        _unheard.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    try
    {
        const nxLog borrowed(record);
        _early.push_back(borrowed);
        _earlyBytes += cost;
    }
    catch (...)
    {
        _unheard.fetch_add(1, std::memory_order_relaxed);
    }
}

// Where memory is short, a batch takes no more than it has room for, and makes room by being sent.
[[gnu::noinline]] bool nxLogWriter::_AppendToEmptied(Batch& batch, const nxLogRecord& record) noexcept
{
    _SendBatches();
    if (batch.lines.AppendLine(record, _round->time))
        return true;
    nxLogQueue::GetInstance().CountDrop();
    return false;
}

[[gnu::always_inline]] inline bool nxLogWriter::_AppendToBatch(Batch& batch, const nxLogRecord& record) noexcept
{
    if (!batch.lines.AppendLine(record, _round->time)) [[unlikely]]
        if (!_AppendToEmptied(batch, record))
            return false;
    if (batch.count++ == 0)
        batch.seconds = record.time.seconds;
    batch.worstLevel = std::max(batch.worstLevel, static_cast<nxEnumValue>(record.level));
    if (batch.lines.GetSize() >= batchSize) [[unlikely]]
        _SendBatches();
    return true;
}

[[gnu::always_inline]] inline void nxLogWriter::_Pass(const nxLogRecord& record) noexcept
{
    Round& round = *_round;
    // No batch holds lines of two days.
    if (round.time.Set(record.time) && std::memcmp(round.date, round.time.GetBytes(), dateSize) != 0)
    {
        _SendBatches();
        std::memcpy(round.date, round.time.GetBytes(), dateSize);
    }
    if (round.onlyBatch != nullptr) [[likely]]
        _AppendToBatch(*round.onlyBatch, record);
    else
        _PassToAll(record);
}

void nxLogWriter::_PassToAll(const nxLogRecord& record) noexcept
{
    Round& round = *_round;
    if (!round.hasDevices)
    {
        _KeepEarly(record);
        return;
    }
    bool isForLines = false, isInLines = false;
    for (const auto& batch : round.batches)
        if (batch->isWanted)
        {
            isForLines = true;
            isInLines |= _AppendToBatch(*batch, record);
        }
    const bool isTaken = round.hasRecordDevices && _PassRecord(record);
    // What found no room in the lines has been counted as dropped.
    if (isTaken || !isForLines)
        _Count(1, isTaken);
    else if (isInLines)
        ++round.inLinesAlone;
    round.worstLevel = std::max(round.worstLevel, static_cast<nxEnumValue>(record.level));
}

// Every record once, when it is clear whether a device has been given it. One thread at a time is here.
void nxLogWriter::_Count(unsigned records, bool isTaken) noexcept
{
    _unflushed = _unflushed || (isTaken && records != 0);
    std::atomic<std::uint64_t>& counter = isTaken ? _written : _unheard;
    counter.store(counter.load(std::memory_order_relaxed) + records, std::memory_order_relaxed);
}

// To the devices that take records instead of lines. @return whether one was given it.
bool nxLogWriter::_PassRecord(const nxLogRecord& record) noexcept
{
    bool isTaken = false;
    const Round& round = *_round;
    for (std::size_t index = 0; index < round.batchOfDevice.size(); ++index)
    {
        if (round.batchOfDevice[index] != nullptr)
            continue;
        const nxLog borrowed(record);
        isTaken |= (*round.devices)[index]->Call([&](nxLogDevice& device) { device.Write(borrowed); });
        nxLogQueue::GetInstance().CountProgress();
    }
    return isTaken;
}

void nxLogWriter::_SendBatches() noexcept
{
    Round& round = *_round;
    bool isTaken = false;
    for (std::size_t index = 0; index < round.batchOfDevice.size(); ++index)
    {
        const Batch* const batch = round.batchOfDevice[index];
        if (batch == nullptr || batch->count == 0)
            continue;
        nxLogDeviceEntry& entry = *(*round.devices)[index];
        const nxLogLineBatch lines{batch->lines.GetText(), batch->lines.GetSize(), batch->count, batch->worstLevel,
                                   batch->seconds};
        isTaken |= entry.Call([&](nxLogDevice&) { entry.GetLineSink()->WriteLines(lines); });
        nxLogQueue::GetInstance().CountProgress();
    }
    _Count(round.onlyBatch != nullptr ? round.onlyBatch->count : std::exchange(round.inLinesAlone, 0), isTaken);
    for (const auto& batch : round.batches)
    {
        batch->lines.Clear();
        batch->lines.ShrinkTo(batchCapacity);
        batch->count = 0;
        round.worstLevel = std::max(round.worstLevel, batch->worstLevel);
        batch->worstLevel = NX_ENUM_UNDEFINED;
    }
}

// `linesToo`: also the devices that take lines, which see to warnings themselves.
void nxLogWriter::_FlushDevices(bool linesToo) noexcept
{
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *devices)
        if (linesToo || entry->GetLineSink() == nullptr)
        {
            entry->Call([](nxLogDevice& device) { device.Flush(); });
            nxLogQueue::GetInstance().CountProgress();
        }
}

void nxLogWriter::_FlushWhereDue(bool now) noexcept
{
    const std::int64_t time = nxClock::MonotonicNanoseconds();
    if (!_unflushed)
    {
        // The interval begins with the first record after a flush.
        _lastFlush = time;
        if (!now)
            return;
    }
    if (!now && time - _lastFlush < _flushInterval.load(std::memory_order_relaxed))
        return;
    _FlushDevices(true);
    _unflushed = false;
    _lastFlush = time;
}

// Devices that are in trouble get the chance to mend it although nobody reports anything.
void nxLogWriter::_MaintainWhereDue() noexcept
{
    const std::int64_t time = nxClock::MonotonicNanoseconds();
    if (time < _nextMaintenance)
        return;
    _nextMaintenance = time + second;
    const std::shared_ptr<const nxLogDeviceList::Entries> devices = nxLogDeviceList::GetInstance().Get();
    for (const auto& entry : *devices)
        if (nxLogLineSink* const sink = entry->GetLineSink())
            entry->Call([sink](nxLogDevice&) { sink->Maintain(); });
}

// Tells in the log what the log has lost, and who had to wait; once for what has come together in a second.
void nxLogWriter::_ReportLosses() noexcept
{
    const nxLogQueue& queue = nxLogQueue::GetInstance();
    const std::uint64_t drops = queue.GetDropped() - _reportedDrops;
    const std::uint64_t waits = queue.GetWaits() - _reportedWaits;
    if (drops == 0 && waits == 0)
        return;
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    if (_lastReport != 0 && now - _lastReport < second)
        return;
    _lastReport = now;
    _reportedDrops += drops;
    _reportedWaits += waits;
    if (drops != 0)
        NX_LOG_AT(NX_LOG_LEVEL_WARNING, "core/trunk/nxLogManager", 211)
            << "Log records dropped because the queue was full and a device had stalled: " << drops
            << ", callers that waited: " << waits;
    else
        NX_LOG_AT(NX_LOG_LEVEL_INFO, "core/trunk/nxLogManager", 215)
            << "Callers that waited because the log's queue was full: " << waits;
}

void nxLogWriter::AfterForkInChild() noexcept
{
    // Nobody took these two for the fork: threads that are gone in the child may hold them.
    ::new (&_startMutex) nxMutex;
    ::new (&_roundMutex) nxMutex;
    // Whatever the parent's thread was at is left as it was caught, and not touched again; leak checkers find it here.
    [[gnu::used]] static Round* caught;
    caught = _round.release();
    static_cast<void>(caught);  // clang++ takes a variable that is only written for a mistake
    [[gnu::used]] alignas(std::vector<nxLog>) static unsigned char caughtEarly[sizeof(std::vector<nxLog>)];
    ::new (caughtEarly) std::vector<nxLog>(std::move(_early));
    _earlyBytes = 0;
    _thread = nullptr;
    _state.store(State::Stopped, std::memory_order_relaxed);
    _isInRound.store(false, std::memory_order_relaxed);
    _inHand.store(0, std::memory_order_relaxed);
    _nextStart = 0;
    _couldNotStart.store(false, std::memory_order_relaxed);
    _wake.store(awake, std::memory_order_relaxed);
    _wanted.store(0, std::memory_order_relaxed);
    _reached.store(0, std::memory_order_relaxed);
    _unflushed = false;
    _reportedDrops = _reportedWaits = 0;
    _lastReport = 0;
    _written.store(0, std::memory_order_relaxed);
    _unheard.store(0, std::memory_order_relaxed);
}
