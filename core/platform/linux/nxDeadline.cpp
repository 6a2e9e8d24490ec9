// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxDeadline.h"

#include <cmath>

#include "core/platform/nxNanoseconds.h"

timespec nxDeadline::Split(double seconds)
{
    if (!(seconds >= 0))
        return {-1, 0};
    if (seconds >= static_cast<double>(MaximumSeconds))
        return {MaximumSeconds, 0};
    const double whole = std::floor(seconds);
    return {static_cast<time_t>(whole), static_cast<long>((seconds - whole) * nxNanoseconds::PerSecond)};
}

timespec nxDeadline::SplitMicroseconds(unsigned long long microseconds)
{
    const unsigned long long whole = microseconds / 1'000'000;
    if (whole >= static_cast<unsigned long long>(MaximumSeconds))
        return {MaximumSeconds, 0};
    return {static_cast<time_t>(whole), static_cast<long>(microseconds % 1'000'000) * 1000};
}

timespec nxDeadline::After(const timespec& relative)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    timespec deadline{now.tv_sec + relative.tv_sec,
                      relative.tv_nsec + now.tv_nsec / nxNanoseconds::PerMillisecond * nxNanoseconds::PerMillisecond};
    if (deadline.tv_nsec > nxNanoseconds::PerSecond)
    {
        deadline.tv_nsec -= nxNanoseconds::PerSecond;
        ++deadline.tv_sec;
    }
    return deadline;
}
