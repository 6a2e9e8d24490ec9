// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXFUNCTORQUEUE_H
#define CORE_THREAD_NXFUNCTORQUEUE_H

#include <cstddef>
#include <limits>
#include <memory>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/thread/inline/nxFunctorActions.h"
#include "core/thread/inline/nxFunctorQueueTypes.h"

class nxFunctorRing;

/// A bounded queue of functors: any number of threads post, and any number of threads run what was posted. It has no thread of
/// its own; nxFunctorThread and nxFunctorThreadPool have.
///
/// | state            | Post()                     | RunOne()                    | WaitIdle()                    |
/// |------------------|----------------------------|-----------------------------|-------------------------------|
/// | open             | waits for room             | waits for a functor         | until none is queued or runs  |
/// | stopped, drain   | NX_ERR_THR_NOT_RUNNING     | runs what was accepted      | the same                      |
/// | stopped, abandon | NX_ERR_THR_NOT_RUNNING     | NX_ERR_THR_NOT_RUNNING      | until none runs               |
/// | in a forked child| NX_ERR_THR_NOT_RUNNING     | NX_ERR_THR_NOT_RUNNING      | NX_ERR_THR_NOT_RUNNING        |
///
/// - Functors: anything that can be moved and called without arguments. Up to 48 bytes are in the queue and need no
///   allocation; a larger functor, and one that needs an alignment above 16, is on the heap. Each runs once or is destroyed
///   once, while no lock of the queue is held.
/// - Order: first in, first out within a priority; a higher priority goes first. Functors of a low priority may wait for ever
///   while there are others.
/// - A thread that runs a functor of the queue never waits for the same queue: Post() to a full queue, RunOne() and WaitIdle()
///   return NX_ERR_THR_DEADLOCK at once.
/// - Full: a thread that waits for room is woken when half of the queue is free. Before that it looks for itself every few
///   milliseconds, so that long functors do not hold it up.
/// - Exceptions: one that leaves a functor, or its destructor, is caught, counted and written to the log at the error level.
///   A thread that is cancelled in a functor, or leaves it by pthread_exit(), ends as usual; the functor is destroyed.
/// - Times: seconds on a clock that cannot be set. 0, negative values and NaN try once.
/// - Fork: a child can use none of the parent's queues and does not destroy what is in them. Their memory remains allocated.
/// - Ownership: the queue has what is in it. The destructor stops it with StopMode::Abandon. No thread may be inside an operation
///   then, except one that runs a functor: a functor may destroy its own queue.
/// - Threads: any may call any operation.
/// @code
/// nxFunctorQueue queue(1024);
/// const nxErrorEnum posted = queue.Post([&book, update] { book.Apply(update); });  // in the network thread
/// while (queue.RunOne(0.1) != NX_ERR_THR_NOT_RUNNING)                              // in the thread that owns the book
///     book.Publish();
/// @endcode
class NX_CORE_API nxFunctorQueue
{
public:
    using Priority = nxFunctorQueueTypes::Priority;  ///< Which functor goes first.
    using StopMode = nxFunctorQueueTypes::StopMode;  ///< What becomes of functors that have not begun.
    using Counts = nxFunctorQueueTypes::Counts;      ///< What has happened so far.

    /// Takes all memory but that of large functors.
    /// @param capacity how many functors may wait; 0 counts as 1.
    /// @throws std::bad_alloc when there is no memory, and for more than 2,000,000,000.
    explicit nxFunctorQueue(std::size_t capacity);
    ~nxFunctorQueue();
    nxFunctorQueue(const nxFunctorQueue&) = delete;
    nxFunctorQueue& operator=(const nxFunctorQueue&) = delete;

    /// Queues @p functor and waits for room as long as necessary.
    ///
    /// An rvalue may have been moved from, whatever is returned. What a constructor of the functor throws comes out; nothing
    /// is queued then.
    /// @return NX_ERR_THR_NOT_RUNNING after Stop(), also when it comes during the wait; NX_ERR_THR_DEADLOCK when the queue is
    ///         full and the calling thread runs one of its functors; NX_ERR_INSUFFICIENT_MEMORY when a functor on the heap
    ///         finds no memory; NX_ERR_INVALID_PARAMETER for a null function or an unknown priority.
    template <nxFunctor F>
    [[nodiscard]] nxErrorEnum Post(F&& functor, Priority priority = Priority::Normal)
    {
        return TimedPost(std::forward<F>(functor), std::numeric_limits<double>::infinity(), priority);
    }

    /// Queues @p functor and waits @p seconds for room; 0 does not wait.
    /// @return NX_ERR_THR_TIMEDOUT when the queue stayed full; otherwise as Post().
    template <nxFunctor F>
    [[nodiscard]] nxErrorEnum TimedPost(F&& functor, double seconds, Priority priority = Priority::Normal)
    {
        return nxPostFunctor(std::forward<F>(functor), [&](void* address, const nxFunctorActions& actions)
                             { return _Post(address, actions, seconds, priority); });
    }

    /// Waits @p seconds for a functor and runs it in this thread.
    /// @return NX_ERR_THR_TIMEDOUT when none came; NX_ERR_THR_NOT_RUNNING when the queue is stopped and empty;
    ///         NX_ERR_THR_DEADLOCK in a functor of this queue.
    [[nodiscard]] nxErrorEnum RunOne(double seconds);

    /// Accepts nothing more, and wakes the threads that wait. May be called again, from any thread and from a functor;
    /// Abandon may follow Drain. Does not wait for functors that have begun.
    /// @return how many functors this call has destroyed; 0 for Drain. After a return from Abandon none begins any more.
    std::size_t Stop(StopMode mode);

    /// Waits @p seconds until nothing is queued and nothing runs.
    /// @return NX_ERR_THR_TIMEDOUT when that did not happen; NX_ERR_THR_DEADLOCK in a functor of this queue.
    [[nodiscard]] nxErrorEnum WaitIdle(double seconds);

    Counts GetCounts() const;  ///< All of one moment. In a forked child all are 0.

private:
    nxErrorEnum _Post(void* functor, const nxFunctorActions& actions, double seconds, Priority priority);

    // A functor that destroys its queue shares the rest with the call that runs it, so this is no unique_ptr.
    std::shared_ptr<nxFunctorRing> _ring;
};

#endif
