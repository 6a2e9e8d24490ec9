// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXFUNCTORTHREAD_H
#define CORE_THREAD_NXFUNCTORTHREAD_H

#include <utility>

#include "core/thread/nxFunctorThreadPool.h"

/// One thread that runs functors from a bounded queue, one after another: what the functors share needs no lock.
///
/// Within a priority each functor ends before the one that was posted next begins. Everything else is as with a pool of one
/// thread: see nxFunctorThreadPool for states, errors and the destructor, and nxFunctorQueue for functors.
/// @code
/// Book book;                 // before the thread, which then ends first
/// nxFunctorThread bookThread;
/// nxErrorEnum error = bookThread.Start({.name = "book"});
/// if (error.IsOK())
///     error = bookThread.Post([&book, update] { book.Apply(update); });
/// @endcode
class nxFunctorThread
{
public:
    using Priority = nxFunctorQueue::Priority;  ///< Which functor goes first.
    using StopMode = nxFunctorQueue::StopMode;  ///< What becomes of functors that have not begun.
    using Counts = nxFunctorQueue::Counts;      ///< What has happened so far.

    /// @copydoc nxFunctorThreadPool::Start()
    [[nodiscard]] nxErrorEnum Start(const nxFunctorThreadOptions& options = {}) { return _pool.Start(1, options); }

    /// @copydoc nxFunctorThreadPool::Post()
    template <nxFunctor F>
    [[nodiscard]] nxErrorEnum Post(F&& functor, Priority priority = Priority::Normal)
    {
        return _pool.Post(std::forward<F>(functor), priority);
    }
    /// @copydoc nxFunctorThreadPool::TimedPost()
    template <nxFunctor F>
    [[nodiscard]] nxErrorEnum TimedPost(F&& functor, double seconds, Priority priority = Priority::Normal)
    {
        return _pool.TimedPost(std::forward<F>(functor), seconds, priority);
    }

    /// @copydoc nxFunctorThreadPool::Stop()
    std::size_t Stop(StopMode mode) { return _pool.Stop(mode); }
    /// @copydoc nxFunctorThreadPool::Wait()
    [[nodiscard]] nxErrorEnum Wait(double seconds) { return _pool.Wait(seconds); }
    /// @copydoc nxFunctorThreadPool::WaitIdle()
    [[nodiscard]] nxErrorEnum WaitIdle(double seconds) { return _pool.WaitIdle(seconds); }
    /// @copydoc nxFunctorThreadPool::GetCounts()
    Counts GetCounts() const { return _pool.GetCounts(); }

private:
    nxFunctorThreadPool _pool;
};

#endif
