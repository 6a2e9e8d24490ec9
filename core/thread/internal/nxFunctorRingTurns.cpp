// SPDX-License-Identifier: Apache-2.0
// The side of a functor queue that runs, and its end.

#include <algorithm>
#include <limits>

#include "core/platform/nxSpin.h"
#include "core/platform/nxWaitWord.h"
#include "core/thread/internal/nxFunctorLock.h"
#include "core/thread/internal/nxFunctorRing.h"
#include "core/thread/internal/nxFunctorRun.h"
#include "core/thread/internal/nxTimeLimit.h"

// A functor that comes within a microsecond finds the thread awake.
void nxFunctorRing::_LookAgain()
{
    const Calls calls = _GetCalls();
    static_cast<void>(_mutex.Unlock());
    calls.Make();
    nxSpin::Until([this] { return _queued.load(std::memory_order_relaxed) >= _mostTaken; });
    nxFunctorLock::Take(_mutex);
}

nxErrorEnum nxFunctorRing::_AwaitWork(const nxTimeLimit& limit)
{
    bool hasLooked = false;
    while (_queued.load(std::memory_order_relaxed) == 0)
    {
        if (_isStopped)
            return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
        const std::int64_t left = limit.GetLeft();
        if (left == 0)
            return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
        if (!hasLooked)
        {
            hasLooked = true;
            _LookAgain();
            continue;
        }
        ++_sleepers;
        _SleepOn(_workWord, left);
        --_sleepers;
        // It answers any call: what it does not take is left to the thread that was meant, which looks as well.
        _called -= std::min(_called, 1U);
    }
    return nxErrorEnum();
}

nxFunctorChain nxFunctorRing::_Take(nxFunctorBatch& batch, std::uint32_t most)
{
    std::size_t level = 0;
    while (_chains[level].count == 0)
        ++level;
    const std::uint32_t taken = std::min(most, _chains[level].count);
    batch.cells = _cells.TakeFirst(_chains[level], taken);
    batch.level = level;
    batch.begun.store(1, std::memory_order_relaxed);
    _queued.store(_queued.load(std::memory_order_relaxed) - taken, std::memory_order_relaxed);
    ++_running;
    if (taken > 1)
        _ahead = &batch;
    return batch.cells;
}

// Only what has begun is in the batch now.
void nxFunctorRing::_Return(nxFunctorBatch& batch)
{
    if (batch.cells.count == 0)
        return;
    if (_ahead == &batch)
        _ahead = nullptr;
    _counts.run += batch.cells.count;
    _counts.threw += batch.threw;
    batch.threw = 0;
    --_running;
    _cells.Prepend(_free, batch.cells);
    batch.cells = {};
}

// Takes back what the only thread has not begun, to where it came from.
void nxFunctorRing::_Recall()
{
    if (_ahead == nullptr)
        return;
    nxFunctorBatch& batch = *_ahead;
    _ahead = nullptr;
    const std::uint32_t begun = batch.begun.exchange(nxFunctorBatch::Closed, std::memory_order_relaxed);
    if (begun >= batch.cells.count)
        return;
    nxFunctorChain rest = batch.cells;
    batch.cells = _cells.TakeFirst(rest, begun);
    _cells.Prepend(_chains[batch.level], rest);
    _queued.store(_queued.load(std::memory_order_relaxed) + rest.count, std::memory_order_relaxed);
}

nxFunctorChain nxFunctorRing::Exchange(nxFunctorBatch& batch)
{
    if (IsOfParent())  // a functor has forked, and the child goes on here
        return {};
    nxFunctorChain taken;
    Calls calls;
    {
        const nxFunctorLock lock(_mutex);
        _Return(batch);
        if (_AwaitWork(nxTimeLimit(std::numeric_limits<double>::infinity())).IsOK())
            taken = _Take(batch, _mostTaken);
        calls = _GetCalls();
    }
    calls.Make();
    return taken;
}

void nxFunctorRing::Run(nxFunctorBatch& batch, const nxFunctorChain& taken)
{
    std::uint32_t cell = taken.first;
    for (std::uint32_t run = 1;; ++run)
    {
        if (run < taken.count)
            _cells.Prefetch(_cells.GetNext(cell));
        batch.threw += nxFunctorRun::RunAndDestroy(_cells[cell]) ? 0 : 1;
        if (!batch.BeginNext(run, taken.count))
            return;
        cell = _cells.GetNext(cell);
    }
}

// Gives back what a thread has run, also when the thread is unwound.
void nxFunctorRing::_Finish(nxFunctorBatch& batch)
{
    if (IsOfParent())
        return;
    Calls calls;
    {
        const nxFunctorLock lock(_mutex);
        if (_ahead == &batch)
            _Recall();
        _Return(batch);
        calls = _GetCalls();
    }
    calls.Make();
}

// One call of RunOne() that has a functor.
class nxFunctorRing::Turn
{
public:
    Turn(nxFunctorRing& ring, nxFunctorBatch& batch) : _ring(ring), _batch(batch), _run(&ring) {}
    ~Turn() { _ring._Finish(_batch); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    nxFunctorRing& _ring;
    nxFunctorBatch& _batch;
    const nxFunctorRun _run;
};

nxErrorEnum nxFunctorRing::RunOne(double seconds)
{
    if (IsOfParent())
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    if (nxFunctorRun::IsInside(this))
        return nxErrorEnum(NX_ERR_THR_DEADLOCK);
    nxFunctorBatch batch;
    nxFunctorChain taken;
    nxErrorEnum error;
    Calls calls;
    {
        const nxFunctorLock lock(_mutex);
        error = _AwaitWork(nxTimeLimit(seconds));
        if (error.IsOK())
            taken = _Take(batch, 1);
        calls = _GetCalls();
    }
    calls.Make();
    if (!error.IsOK())
        return error;
    const Turn turn(*this, batch);
    Run(batch, taken);
    return error;
}

// Threads

void nxFunctorRing::Leave(nxFunctorBatch& batch)
{
    if (IsOfParent())
        return;
    _Finish(batch);
    bool isLast = false;
    Calls calls;
    {
        const nxFunctorLock lock(_mutex);
        isLast = --_threads == 0;
        calls = _GetCalls();
    }
    calls.Make();
    // Nothing is left after an ordinary end.
    if (isLast)
        Stop(StopMode::Abandon);
}

// The end

nxFunctorChain nxFunctorRing::_TakeAll()
{
    _Recall();
    nxFunctorChain all;
    for (nxFunctorChain& chain : _chains)
    {
        _cells.Append(all, chain);
        chain = {};
    }
    _queued.store(0, std::memory_order_relaxed);
    _counts.abandoned += all.count;
    return all;
}

std::size_t nxFunctorRing::Stop(StopMode mode)
{
    if (IsOfParent())
        return 0;
    nxFunctorChain abandoned;
    {
        const nxFunctorLock lock(_mutex);
        _isStopped = true;
        if (mode == StopMode::Abandon)
            abandoned = _TakeAll();
        for (Word* const word : {&_workWord, &_roomWord, &_changeWord})
            word->store(word->load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
    for (const Word* const word : {&_workWord, &_roomWord, &_changeWord})
        nxWaitWord::WakeAll(word);
    _Destroy(abandoned);
    return abandoned.count;
}

// The cells are in no chain that another thread knows.
void nxFunctorRing::_Destroy(const nxFunctorChain& chain)
{
    if (chain.count == 0)
        return;
    std::uint32_t cell = chain.first;
    for (std::uint32_t destroyed = 1;; ++destroyed, cell = _cells.GetNext(cell))
    {
        nxFunctorRun::Destroy(_cells[cell]);
        if (destroyed == chain.count)
            break;
    }
    const nxFunctorLock lock(_mutex);
    _cells.Prepend(_free, chain);
}

bool nxFunctorRing::_Has(Change change) const
{
    return change == Change::Idle ? _queued.load(std::memory_order_relaxed) == 0 && _running == 0 : _threads == 0;
}

nxErrorEnum nxFunctorRing::_WaitFor(Change change, double seconds)
{
    if (IsOfParent())
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    if (nxFunctorRun::IsInside(this))
        return nxErrorEnum(NX_ERR_THR_DEADLOCK);
    const nxTimeLimit limit(seconds);
    const nxFunctorLock lock(_mutex);
    while (!_Has(change))
    {
        const std::int64_t left = limit.GetLeft();
        if (left == 0)
            return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
        _isAwaited[static_cast<std::size_t>(change)] = true;
        _SleepOn(_changeWord, left);
    }
    return nxErrorEnum();
}

nxErrorEnum nxFunctorRing::WaitIdle(double seconds) { return _WaitFor(Change::Idle, seconds); }
nxErrorEnum nxFunctorRing::WaitForEnd(double seconds) { return _WaitFor(Change::End, seconds); }

nxFunctorRing::Counts nxFunctorRing::GetCounts()
{
    if (IsOfParent())
        return {};
    const nxFunctorLock lock(_mutex);
    Counts counts = _counts;
    counts.posted = _posted;
    const std::uint32_t ahead = _GetTakenAhead();
    counts.queued = _queued.load(std::memory_order_relaxed) + ahead;
    if (_ahead != nullptr)
        counts.run += _ahead->cells.count - ahead - 1;  // the last one that has begun may be running
    return counts;
}
