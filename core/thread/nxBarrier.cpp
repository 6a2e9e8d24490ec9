// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxBarrier.h"

nxBarrier::nxBarrier(unsigned count)
{
    // Waiting on a barrier that was never initialised divides by zero. A barrier of one never waits.
    if (pthread_barrier_init(&_barrier, nullptr, count) != 0)
        pthread_barrier_init(&_barrier, nullptr, 1);
}
