#include "core/platform/nxPlatformThread.h"

#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

unsigned nxPlatformThread::GetID() { return static_cast<unsigned>(gettid()); }

void nxPlatformThread::SleepMilliseconds(unsigned milliseconds)
{
    if (milliseconds == 0)
    {
        sched_yield();
        return;
    }
    timespec left{static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR)
    {
    }
}
