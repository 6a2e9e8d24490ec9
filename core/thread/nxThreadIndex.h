#ifndef CORE_THREAD_NXTHREADINDEX_H
#define CORE_THREAD_NXTHREADINDEX_H

#include "core/nxExport.h"

/// A small number for every thread that asks: 0, 1, 2 and so on in the order in which threads first ask.
///
/// A thread keeps its number for life; the number is not given out again when the thread ends. Numbers tell threads
/// apart in log records and serve as an index of per-thread data.
/// - Errors: none. After 2^32 threads the numbers start again at 0.
/// - Threads: any thread at any time, before main, while thread-locals are destroyed and at exit included. Never logs.
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

    // 0 means unassigned; wider than an index, so that the last of them is none either. Initial-exec: read without a
    // call, from whatever module the code is inlined into.
    static constinit thread_local unsigned long long _indexPlusOne __attribute__((tls_model("initial-exec")));

    unsigned _index;
};

#endif
