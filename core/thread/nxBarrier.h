// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXBARRIER_H
#define CORE_THREAD_NXBARRIER_H

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"

/// A point where a number of threads wait for each other, any number of times: one POSIX barrier.
///
/// | waiting threads | Wait()                                 | destructor |
/// |-----------------|----------------------------------------|------------|
/// | 0               | waits; returns at once when count is 1 | valid      |
/// | 1 to count - 2  | waits                                  | hangs      |
/// | count - 1       | returns, and so do the others          | hangs      |
///
/// - Errors: none. For 0 threads, or for more than the system allows, Wait() returns at once.
/// @code
/// nxBarrier start(4);
/// static_cast<void>(start.Wait());  // in each of four threads: none goes on before all have come
/// @endcode
class NX_CORE_API nxBarrier
{
public:
    /// A barrier for @p count threads.
    explicit nxBarrier(unsigned count);
    ~nxBarrier() { pthread_barrier_destroy(&_barrier); }

    /// Waits until all threads of the barrier have called it. Always success.
    nxErrorEnum Wait()
    {
        pthread_barrier_wait(&_barrier);
        return nxErrorEnum();
    }

private:
    nxBarrier(const nxBarrier&) {}
    nxBarrier& operator=(const nxBarrier&) { return *this; }

    nxNative::Barrier _barrier;
};

static_assert(sizeof(nxBarrier) == sizeof(nxNative::Barrier), "nothing but its primitive");

#endif
