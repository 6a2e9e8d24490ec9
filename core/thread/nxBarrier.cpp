#include "core/thread/nxBarrier.h"

nxBarrier::nxBarrier(unsigned count)
{
    // Waiting on a barrier that the system has refused is a division by zero; one thread alone never waits.
    if (pthread_barrier_init(&_barrier, nullptr, count) != 0)
        pthread_barrier_init(&_barrier, nullptr, 1);
}
