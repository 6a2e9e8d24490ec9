#ifndef CORE_THREAD_NXBARRIER_H
#define CORE_THREAD_NXBARRIER_H

#include <pthread.h>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

/// A point where a number of threads wait for each other, as often as they like: one POSIX barrier.
///
/// - Errors: none. For 0 threads, or more than the system allows, Wait() returns at once.
/// - Nobody waits when it is destroyed; the destructor would hang.
/// @code
/// nxBarrier start(4);
/// start.Wait();  // in each of four threads: none goes on before all have come
/// @endcode
class NX_CORE_API nxBarrier
{
public:
    /// A barrier for @p count threads.
    explicit nxBarrier(unsigned count);
    ~nxBarrier() { pthread_barrier_destroy(&_barrier); }

    /// Waits until the last of the threads has come.
    nxErrorEnum Wait()
    {
        pthread_barrier_wait(&_barrier);
        return nxErrorEnum();
    }

private:
    nxBarrier(const nxBarrier&) {}
    nxBarrier& operator=(const nxBarrier&) { return *this; }

    pthread_barrier_t _barrier;
};

static_assert(sizeof(nxBarrier) == sizeof(pthread_barrier_t), "nothing but its primitive");

#endif
