// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXFUNCTORRING_H
#define CORE_THREAD_INTERNAL_NXFUNCTORRING_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "core/enum/nxErrorEnum.h"
#include "core/thread/inline/nxFunctorQueueTypes.h"
#include "core/thread/internal/nxFunctorCells.h"
#include "core/thread/nxMutex.h"

class nxTimeLimit;

/// What a thread has taken out of the queue and runs. One of a ring may have more than one functor: that of its only thread.
struct nxFunctorBatch
{
    /// Whether the thread has more to run, which it begins with this call. @param run how many of @p taken it has run.
    bool BeginNext(std::uint32_t run, std::uint32_t taken)
    {
        // Relaxed: the exchange of nxFunctorRing::_Recall() pairs with it, and both only settle who has which functor. The
        // functors themselves were handed over under the lock.
        return run < taken && begun.fetch_add(1, std::memory_order_relaxed) < taken;
    }

    static constexpr std::uint32_t Closed = std::uint32_t{1} << 31;

    nxFunctorChain cells;          // guarded by the ring's lock; empty while the thread has none
    std::size_t level = 0;         // likewise: their priority
    unsigned long long threw = 0;  // the thread's own
    // Relaxed: it only settles who has which functor; see BeginNext().
    alignas(64) std::atomic<std::uint32_t> begun{0};
};

/// The state of a functor queue: one lock, the cells, and what waits for a change. nxFunctorQueue.h has the rules.
///
/// - Under the lock no function of a caller runs: a functor that is more than bytes is made between two holds of the lock, in a
///   cell that is reserved for it, and runs and is destroyed in its cell.
/// - A thread says under the lock that it is going to sleep. The thread that makes the change calls it, so that a change without a
///   sleeper costs no system call. nxFunctorRing.pml has a model of this.
/// - The thread of a ring with one thread takes several functors at once. Those that it has not begun count as queued. A functor
///   of a higher priority and a Stop() take them back, so that nobody sees the difference.
/// - A functor is begun exactly once: it leaves a chain under the lock, or a batch by its counter.
class nxFunctorRing
{
public:
    using Priority = nxFunctorQueueTypes::Priority;
    using StopMode = nxFunctorQueueTypes::StopMode;
    using Counts = nxFunctorQueueTypes::Counts;

    /// @param threads that are going to run functors by Exchange(); 0 if RunOne() does it.
    /// @throws std::bad_alloc
    nxFunctorRing(std::size_t capacity, unsigned threads);
    ~nxFunctorRing();
    nxFunctorRing(const nxFunctorRing&) = delete;
    nxFunctorRing& operator=(const nxFunctorRing&) = delete;

    nxErrorEnum Post(void* functor, const nxFunctorActions& actions, double seconds, Priority priority);
    nxErrorEnum RunOne(double seconds);
    std::size_t Stop(StopMode mode);
    nxErrorEnum WaitIdle(double seconds);
    /// Waits until no thread is left.
    nxErrorEnum WaitForEnd(double seconds);
    Counts GetCounts();

    /// Grows with every fork, in the child.
    static unsigned GetGeneration() noexcept;
    /// Whether this is a child of the process that made the ring. Its locks and cells may then be in any state.
    bool IsOfParent() const noexcept;

    /// Gives back what the thread has run and waits for more. @return what it has now, of which the first one has begun; nothing
    /// when it is to end.
    nxFunctorChain Exchange(nxFunctorBatch& batch);
    /// Runs what Exchange() has returned, as far as it is not taken back.
    void Run(nxFunctorBatch& batch, const nxFunctorChain& taken);
    /// The thread ends. It may be in the middle of a batch.
    void Leave(nxFunctorBatch& batch);

private:
    using Word = std::atomic<std::uint32_t>;

    // Whom to wake once the lock is free. The words may be gone then; waking threads by the address of a word that is gone does
    // nothing, and may at worst wake a thread early that sleeps on what came to its place.
    struct Calls
    {
        void Make() const;
        const Word* work = nullptr;
        const Word* room = nullptr;
        const Word* change = nullptr;
    };
    // What a caller of WaitIdle() or WaitForEnd() waits for.
    enum class Change : unsigned char
    {
        Idle,
        End
    };
    class Turn;

    nxErrorEnum _PostPlain(void* functor, const nxFunctorActions& actions, double seconds, std::size_t level);
    nxErrorEnum _PostMade(void* functor, const nxFunctorActions& actions, double seconds, std::size_t level);
    nxErrorEnum _Reserve(double seconds, std::uint32_t& cell);
    nxErrorEnum _Commit(std::uint32_t cell, std::size_t level, bool isMade);
    void _Finish(nxFunctorBatch& batch);
    void _Destroy(const nxFunctorChain& chain);
    nxErrorEnum _WaitFor(Change change, double seconds);

    nxErrorEnum _AwaitRoom(double seconds) NX_REQUIRES(_mutex);
    nxErrorEnum _AwaitWork(const nxTimeLimit& limit) NX_REQUIRES(_mutex);
    void _LookAgain() NX_REQUIRES(_mutex);
    void _SleepOn(const Word& word, std::int64_t nanoseconds) NX_REQUIRES(_mutex);
    Calls _GetCalls() NX_REQUIRES(_mutex);

    void _Enqueue(std::uint32_t cell, std::size_t level) NX_REQUIRES(_mutex);
    nxFunctorChain _Take(nxFunctorBatch& batch, std::uint32_t most) NX_REQUIRES(_mutex);
    void _Return(nxFunctorBatch& batch) NX_REQUIRES(_mutex);
    void _Recall() NX_REQUIRES(_mutex);
    nxFunctorChain _TakeAll() NX_REQUIRES(_mutex);

    std::uint32_t _GetTakenAhead() const NX_REQUIRES(_mutex);
    std::uint32_t _GetTakenAheadAtMost() const NX_REQUIRES(_mutex);
    bool _HasRoom() const NX_REQUIRES(_mutex);
    bool _HasMuchRoom() const NX_REQUIRES(_mutex);
    bool _Has(Change change) const NX_REQUIRES(_mutex);

    // What seldom changes.
    const std::uint32_t _capacity;
    const std::uint32_t _mostTaken;  // by a thread at once
    const unsigned _generation;
    nxFunctorCells _cells;
    Counts _counts NX_GUARDED_BY(_mutex);  // without what is in batches; `posted` is apart

    // The first line, and what every post changes: few lines have to come from another processor.
    alignas(64) nxMutex _mutex;
    bool _isStopped NX_GUARDED_BY(_mutex) = false;
    bool _isRoomAwaited NX_GUARDED_BY(_mutex) = false;
    std::array<bool, 2> _isAwaited NX_GUARDED_BY(_mutex){};  // by Change
    std::uint32_t _sleepers NX_GUARDED_BY(_mutex) = 0;       // that wait for work
    std::uint32_t _called NX_GUARDED_BY(_mutex) = 0;         // of them, and have not come yet
    std::uint32_t _reserved NX_GUARDED_BY(_mutex) = 0;       // cells in which functors are being made
    unsigned long long _posted NX_GUARDED_BY(_mutex) = 0;
    // The second one.
    std::array<nxFunctorChain, 3> _chains NX_GUARDED_BY(_mutex);  // by priority
    // How many functors are in them. Changed under the lock, and read without it by a thread that looks whether to take it:
    // relaxed, because a wrong answer only costs a look or a sleep that a call ends.
    std::atomic<std::uint32_t> _queued{0};
    nxFunctorBatch* _ahead NX_GUARDED_BY(_mutex) = nullptr;  // that may have functors that have not begun
    nxFunctorChain _free NX_GUARDED_BY(_mutex);              // what was used last is used first
    // What only threads that run change.
    std::uint32_t _running NX_GUARDED_BY(_mutex) = 0;  // threads with functors that have begun
    std::uint32_t _threads NX_GUARDED_BY(_mutex);      // that have not left
    // What threads sleep on. Changed and read under the lock, which orders them, and compared by the system.
    alignas(64) Word _workWord{0};
    Word _roomWord{0};
    Word _changeWord{0};
};

#endif
