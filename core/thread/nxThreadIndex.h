// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXTHREADINDEX_H
#define CORE_THREAD_NXTHREADINDEX_H

#include "core/nxExport.h"

/// A small number for every thread that asks: 0, 1, 2 and so on in the order in which threads first ask.
///
/// A thread keeps its number as long as it lives, and no later thread gets that number. Numbers distinguish threads in
/// log records and serve as an index of per-thread data.
/// - Errors: none. After 2^32 threads the numbers start again at 0.
/// - Threads: any thread at any time, including before main, during the destruction of thread-locals and at exit. Never
///   logs.
/// - Fork: the child's thread keeps the number of the thread that forked.
/// - Cost: one thread-local read after a thread's first call.
class NX_CORE_API nxThreadIndex
{
public:
    /// @return the calling thread's number, assigned by its first call.
    static unsigned GetIndexOfCurrentThread()
    {
        const unsigned long long indexPlusOne = _indexPlusOne;
        return indexPlusOne != 0 ? static_cast<unsigned>(indexPlusOne - 1) : _Assign();
    }

private:
    nxThreadIndex();

    static unsigned _Assign();

    // 0 means unassigned. Wider than an index, so that index + 1 never wraps to 0. Initial-exec, so that it is read
    // without a call from every module into which the code is inlined.
    static constinit thread_local unsigned long long _indexPlusOne __attribute__((tls_model("initial-exec")));

    unsigned _index;
};

#endif
