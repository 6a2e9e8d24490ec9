// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INLINE_NXFUNCTORQUEUETYPES_H
#define CORE_THREAD_INLINE_NXFUNCTORQUEUETYPES_H

#include <cstddef>

/// What nxFunctorQueue, nxFunctorThread and nxFunctorThreadPool have in common. Each names it as its own.
struct nxFunctorQueueTypes
{
    /// Which functor goes first.
    enum class Priority : unsigned char
    {
        High,
        Normal,
        Low
    };

    /// What becomes of functors that were accepted and have not begun.
    enum class StopMode : unsigned char
    {
        Drain,   ///< They run.
        Abandon  ///< They are destroyed without a run.
    };

    /// What has happened so far. Once no thread posts or runs any more, posted = run + abandoned.
    struct Counts
    {
        unsigned long long posted = 0;     ///< Accepted.
        unsigned long long run = 0;        ///< Ended, normally or by an exception.
        unsigned long long threw = 0;      ///< Those of them of which an exception was caught.
        unsigned long long refused = 0;    ///< Not accepted: full, stopped or out of memory.
        unsigned long long abandoned = 0;  ///< Accepted and destroyed without a run.
        std::size_t queued = 0;            ///< Accepted and not begun, at this moment.
        std::size_t mostQueued = 0;        ///< The largest number of them.
    };
};

#endif
