// SPDX-License-Identifier: Apache-2.0
#include "core/thread/internal/nxFunctorRing.h"

#include <algorithm>
#include <new>
#include <tuple>

#include "core/platform/nxForkHandlers.h"
#include "core/platform/nxNanoseconds.h"
#include "core/platform/nxWaitWord.h"
#include "core/thread/internal/nxFunctorLock.h"
#include "core/thread/internal/nxFunctorRun.h"
#include "core/thread/internal/nxTimeLimit.h"

namespace
{
constexpr std::uint32_t largestBatch = 16;
// Threads that may be in RunOne() with a functor before the functors that have begun take room from those that wait.
constexpr std::uint32_t sparesOfQueue = 64;
// How long a thread waits for room before it looks for itself.
constexpr std::int64_t roomInterval = 5 * nxNanoseconds::PerMillisecond;

// Relaxed: a fork is the only change, and its child has one thread then.
constinit std::atomic<unsigned> functorGeneration{0};
void BeginFunctorGeneration() { functorGeneration.fetch_add(1, std::memory_order_relaxed); }

constexpr nxForkHandlers::Functions aroundForksOfFunctors{nullptr, nullptr, &BeginFunctorGeneration};
[[maybe_unused]] const bool areFunctorsRegistered =
    nxForkHandlers::Register(nxForkHandlers::Rank::FunctorQueues, aroundForksOfFunctors);

// Cut to a number that nxFunctorCells refuses.
std::uint32_t CutCapacity(std::size_t capacity)
{
    return static_cast<std::uint32_t>(std::clamp<std::size_t>(capacity, 1, nxFunctorCells::Most + 1));
}

std::uint32_t GetLargestBatch(std::uint32_t capacity, unsigned threads)
{
    // Not more than half, so that what is left after a batch is few enough to call those that wait for room.
    return threads == 1 ? std::clamp<std::uint32_t>(capacity / 2, 1, largestBatch) : 1;
}

// Functors that run are in their cells still, and take no room from those that wait.
std::size_t CountCells(std::uint32_t capacity, unsigned threads)
{
    return std::size_t{capacity} + (threads > 1 ? threads : threads == 1 ? largestBatch : sparesOfQueue);
}
}  // namespace

nxFunctorRing::nxFunctorRing(std::size_t capacity, unsigned threads)
    : _capacity(CutCapacity(capacity)),
      _mostTaken(GetLargestBatch(_capacity, threads)),
      _generation(GetGeneration()),
      _cells(CountCells(_capacity, threads)),
      _free(_cells.Link(static_cast<std::uint32_t>(CountCells(_capacity, threads)))),
      _threads(threads)
{
}

nxFunctorRing::~nxFunctorRing()
{
    if (IsOfParent())
        _cells.Leak();
}

unsigned nxFunctorRing::GetGeneration() noexcept { return functorGeneration.load(std::memory_order_relaxed); }

bool nxFunctorRing::IsOfParent() const noexcept { return GetGeneration() != _generation; }

// Calls

void nxFunctorRing::Calls::Make() const
{
    if (work != nullptr)
        nxWaitWord::WakeOne(work);
    if (room != nullptr)
        nxWaitWord::WakeAll(room);
    if (change != nullptr)
        nxWaitWord::WakeAll(change);
}

// Called before each unlock after a change.
nxFunctorRing::Calls nxFunctorRing::_GetCalls()
{
    const auto call = [](Word& word)
    {
        word.store(word.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        return &word;
    };
    Calls calls;
    if (_sleepers > _called && _queued.load(std::memory_order_relaxed) > _called)
    {
        ++_called;
        calls.work = call(_workWord);
    }
    if (_isRoomAwaited && _HasMuchRoom())
    {
        _isRoomAwaited = false;
        calls.room = call(_roomWord);
    }
    for (const Change change : {Change::Idle, Change::End})
        if (bool& isAwaited = _isAwaited[static_cast<std::size_t>(change)]; isAwaited && _Has(change))
        {
            isAwaited = false;
            calls.change = call(_changeWord);
        }
    return calls;
}

void nxFunctorRing::_SleepOn(const Word& word, std::int64_t nanoseconds)
{
    const std::uint32_t seen = word.load(std::memory_order_relaxed);
    const Calls calls = _GetCalls();
    static_cast<void>(_mutex.Unlock());
    calls.Make();
    nxWaitWord::Wait(word, seen, nanoseconds);
    nxFunctorLock::Take(_mutex);
}

// Room

std::uint32_t nxFunctorRing::_GetTakenAhead() const
{
    if (_ahead == nullptr)
        return 0;
    // Relaxed: the number is of a moment, and only grows nearer to the end of the batch.
    return _ahead->cells.count - std::min(_ahead->begun.load(std::memory_order_relaxed), _ahead->cells.count);
}

// Does not look at the line that the thread of the batch writes to.
std::uint32_t nxFunctorRing::_GetTakenAheadAtMost() const { return _ahead != nullptr ? _ahead->cells.count - 1 : 0; }

bool nxFunctorRing::_HasRoom() const
{
    const std::uint32_t waiting = _queued.load(std::memory_order_relaxed) + _reserved;
    return _free.count != 0 && (waiting + _GetTakenAheadAtMost() < _capacity || waiting + _GetTakenAhead() < _capacity);
}

bool nxFunctorRing::_HasMuchRoom() const
{
    return _free.count != 0 &&
           _queued.load(std::memory_order_relaxed) + _reserved + _GetTakenAheadAtMost() <= _capacity / 2;
}

nxErrorEnum nxFunctorRing::_AwaitRoom(double seconds)
{
    if (_isStopped)
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    if (_HasRoom()) [[likely]]
        return nxErrorEnum();
    if (nxFunctorRun::IsInside(this))
        return nxErrorEnum(NX_ERR_THR_DEADLOCK);
    const nxTimeLimit limit(seconds);
    while (!_isStopped)
    {
        if (_HasRoom())
            return nxErrorEnum();
        const std::int64_t left = limit.GetLeft();
        if (left == 0)
            return nxErrorEnum(NX_ERR_THR_TIMEDOUT);
        _isRoomAwaited = true;
        _SleepOn(_roomWord, std::min(left, roomInterval));
    }
    return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
}

// Posting

nxErrorEnum nxFunctorRing::Post(void* functor, const nxFunctorActions& actions, double seconds, Priority priority)
{
    if (IsOfParent())
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    const auto level = static_cast<std::size_t>(priority);
    if (level >= std::tuple_size_v<decltype(_chains)>)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return actions.isPlain ? _PostPlain(functor, actions, seconds, level) : _PostMade(functor, actions, seconds, level);
}

nxErrorEnum nxFunctorRing::_PostPlain(void* functor, const nxFunctorActions& actions, double seconds, std::size_t level)
{
    nxErrorEnum error;
    Calls calls;
    {
        const nxFunctorLock lock(_mutex);
        error = _AwaitRoom(seconds);
        if (error.IsOK()) [[likely]]
        {
            const std::uint32_t cell = _cells.TakeFirst(_free, 1).first;
            _cells[cell].actions = &actions;
            actions.make(_cells[cell].place, functor);
            _Enqueue(cell, level);
        }
        else
            ++_counts.refused;
        calls = _GetCalls();
    }
    calls.Make();
    return error;
}

// Making may take long, throw, log or post to this queue.
nxErrorEnum nxFunctorRing::_PostMade(void* functor, const nxFunctorActions& actions, double seconds, std::size_t level)
{
    std::uint32_t cell = 0;
    const nxErrorEnum error = _Reserve(seconds, cell);
    if (!error.IsOK())
        return error;
    _cells[cell].actions = &actions;
    bool isMade = false;
    try
    {
        isMade = actions.make(_cells[cell].place, functor);
    }
    catch (const std::bad_alloc&)
    {
    }
    catch (...)
    {
        static_cast<void>(_Commit(cell, level, false));
        throw;
    }
    return _Commit(cell, level, isMade);
}

nxErrorEnum nxFunctorRing::_Reserve(double seconds, std::uint32_t& cell)
{
    const nxFunctorLock lock(_mutex);
    const nxErrorEnum error = _AwaitRoom(seconds);
    if (error.IsOK())
    {
        cell = _cells.TakeFirst(_free, 1).first;
        ++_reserved;
    }
    else
        ++_counts.refused;
    return error;
}

nxErrorEnum nxFunctorRing::_Commit(std::uint32_t cell, std::size_t level, bool isMade)
{
    if (IsOfParent())  // a constructor has forked
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    bool isAccepted = false;
    Calls calls;
    {
        const nxFunctorLock lock(_mutex);
        --_reserved;
        isAccepted = isMade && !_isStopped;
        if (isAccepted)
            _Enqueue(cell, level);
        else
        {
            ++_counts.refused;
            if (!isMade)
                _cells.Prepend(_free, {cell, cell, 1});
        }
        calls = _GetCalls();
    }
    calls.Make();
    if (isAccepted)
        return nxErrorEnum();
    if (!isMade)
        return nxErrorEnum(NX_ERR_INSUFFICIENT_MEMORY);
    _Destroy({cell, cell, 1});
    return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
}

void nxFunctorRing::_Enqueue(std::uint32_t cell, std::size_t level)
{
    if (_ahead != nullptr && level < _ahead->level)
        _Recall();
    _cells.Append(_chains[level], {cell, cell, 1});
    const std::uint32_t queued = _queued.load(std::memory_order_relaxed) + 1;
    _queued.store(queued, std::memory_order_relaxed);
    ++_posted;
    if (queued + _GetTakenAheadAtMost() > _counts.mostQueued)
        _counts.mostQueued = std::max<std::size_t>(_counts.mostQueued, queued + _GetTakenAhead());
}
