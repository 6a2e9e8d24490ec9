// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXFUNCTORTHREADPOOL_H
#define CORE_THREAD_NXFUNCTORTHREADPOOL_H

#include <memory>
#include <utility>

#include "core/thread/nxFunctorQueue.h"
#include "core/thread/nxFunctorThreadOptions.h"

class nxFunctorWorkers;

/// Threads that run functors from one bounded queue. See nxFunctorQueue for functors, priorities, exceptions and times.
///
/// | state          | Start()                    | Post()                 | Wait()                    | destructor        |
/// |----------------|----------------------------|------------------------|---------------------------|-------------------|
/// | not started    | starts the threads         | NX_ERR_NOT_INITIALISED | NX_ERR_NOT_INITIALISED    | nothing           |
/// | started        | NX_ERR_THR_ALREADY_STARTED | waits for room         | waits for a Stop() as well| abandons and joins|
/// | stopping       | NX_ERR_THR_ALREADY_STARTED | NX_ERR_THR_NOT_RUNNING | until the threads end     | abandons and joins|
/// | ended          | NX_ERR_THR_ALREADY_STARTED | NX_ERR_THR_NOT_RUNNING | success                   | nothing           |
/// | forked child   | NX_ERR_THR_NOT_RUNNING     | NX_ERR_THR_NOT_RUNNING | NX_ERR_THR_NOT_RUNNING    | nothing           |
/// | the same, while a thread was inside Start() | NX_ERR_THR_NOT_RUNNING | NX_ERR_NOT_INITIALISED | NX_ERR_NOT_INITIALISED | nothing |
///
/// A child can start a pool that was not started when it was forked.
///
/// - Order: functors of one priority begin in the order in which they were posted, but several run at once. With one thread each
///   ends before the next begins: see nxFunctorThread.
/// - The threads block all signals but those of faults and of profilers, so that signals go to the threads of the application.
/// - Destructor: Stop(StopMode::Abandon), then a join, which lasts as long as the functors that have begun. A functor may
///   destroy its own pool; the thread that runs it then ends by itself. Do not make a pool a static object: its threads would
///   run functors while other static objects are destroyed, and a join at exit may last for ever.
/// - If all threads of a pool have ended because functors left them by pthread_exit() or were cancelled, what is queued is
///   abandoned.
/// - Ownership: the pool has its threads and what is queued. An object is started once.
/// - Threads: any may call any operation, but the destructor.
/// @code
/// nxFunctorThreadPool pool;
/// nxErrorEnum error = pool.Start(4, {.capacity = 10'000, .name = "pricing"});
/// if (error.IsOK())
///     error = pool.Post([order] { Price(order); });
/// pool.Stop(nxFunctorQueue::StopMode::Drain);
/// error = pool.Wait(5.0);
/// @endcode
class NX_CORE_API nxFunctorThreadPool
{
public:
    using Priority = nxFunctorQueue::Priority;  ///< Which functor goes first.
    using StopMode = nxFunctorQueue::StopMode;  ///< What becomes of functors that have not begun.
    using Counts = nxFunctorQueue::Counts;      ///< What has happened so far.

    nxFunctorThreadPool();
    ~nxFunctorThreadPool();
    nxFunctorThreadPool(const nxFunctorThreadPool&) = delete;
    nxFunctorThreadPool& operator=(const nxFunctorThreadPool&) = delete;

    /// Starts @p threads threads.
    /// @return NX_ERR_THR_ALREADY_STARTED when it was started; NX_ERR_INVALID_PARAMETER for no threads or a capacity of 0;
    ///         NX_ERR_INSUFFICIENT_MEMORY; NX_ERR_THR_FAILED_TO_SET_SCHEDULER_PARAMATERS when no thread may run on these
    ///         processors; NX_ERR_THR_RESOURCE when the system does not give all threads. After a failure no thread runs,
    ///         and another Start() is possible.
    [[nodiscard]] nxErrorEnum Start(unsigned threads, const nxFunctorThreadOptions& options = {});

    /// Queues @p functor and waits for room as long as necessary. @return as nxFunctorQueue::Post(); NX_ERR_NOT_INITIALISED
    /// before Start().
    template <nxFunctor F>
    [[nodiscard]] nxErrorEnum Post(F&& functor, Priority priority = Priority::Normal)
    {
        return TimedPost(std::forward<F>(functor), std::numeric_limits<double>::infinity(), priority);
    }

    /// Queues @p functor and waits @p seconds for room; 0 does not wait. @return NX_ERR_THR_TIMEDOUT when the queue stayed full;
    /// otherwise as Post().
    template <nxFunctor F>
    [[nodiscard]] nxErrorEnum TimedPost(F&& functor, double seconds, Priority priority = Priority::Normal)
    {
        return nxPostFunctor(std::forward<F>(functor), [&](void* address, const nxFunctorActions& actions)
                             { return _Post(address, actions, seconds, priority); });
    }

    /// Accepts nothing more; the threads end when nothing is left to run. May be called again, from any thread and from a
    /// functor; Abandon may follow Drain. Does not wait.
    /// @return how many functors this call has destroyed; 0 for Drain. After a return from Abandon none begins any more.
    std::size_t Stop(StopMode mode);

    /// Waits @p seconds until all threads have ended, and joins them.
    /// @return NX_ERR_THR_TIMEDOUT when they have not, and all stays as it is; NX_ERR_THR_DEADLOCK in one of the threads;
    ///         NX_ERR_NOT_INITIALISED before Start().
    [[nodiscard]] nxErrorEnum Wait(double seconds);

    /// Waits @p seconds until nothing is queued and nothing runs. @return as nxFunctorQueue::WaitIdle();
    /// NX_ERR_NOT_INITIALISED before Start().
    [[nodiscard]] nxErrorEnum WaitIdle(double seconds);

    Counts GetCounts() const;  ///< All of one moment. Before Start() and in a forked child all are 0.

private:
    nxErrorEnum _Post(void* functor, const nxFunctorActions& actions, double seconds, Priority priority);

    std::unique_ptr<nxFunctorWorkers> _workers;
};

#endif
