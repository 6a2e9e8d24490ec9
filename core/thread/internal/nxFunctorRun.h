// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXFUNCTORRUN_H
#define CORE_THREAD_INTERNAL_NXFUNCTORRUN_H

struct nxFunctorCell;

/// Runs and destroys functors, and knows for which queues the calling thread does so.
///
/// Exceptions are reported to the log. No lock of a queue is held here.
class nxFunctorRun
{
public:
    /// While the object lives, the thread runs functors of @p queue. Objects of a thread are nested.
    explicit nxFunctorRun(const void* queue) : _queue(queue), _outer(_innermost) { _innermost = this; }
    ~nxFunctorRun() { _innermost = _outer; }
    nxFunctorRun(const nxFunctorRun&) = delete;
    nxFunctorRun& operator=(const nxFunctorRun&) = delete;

    /// Whether the calling thread runs functors of @p queue.
    static bool IsInside(const void* queue) noexcept;

    /// Runs and destroys a functor. @return whether it ended without an exception. The functor is destroyed as well when the
    /// thread is cancelled or calls pthread_exit() in it, which comes out as unwinding.
    static bool RunAndDestroy(nxFunctorCell& cell);
    /// @return whether it ended without an exception.
    static bool Destroy(nxFunctorCell& cell);

private:
    static constinit thread_local const nxFunctorRun* _innermost;

    const void* const _queue;
    const nxFunctorRun* const _outer;
};

#endif
