#include "core/platform/nxClock.h"

#include <ctime>

namespace
{
timespec Read(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return now;
}
}  // namespace

nxClockTime nxClock::Now()
{
    const timespec now = Read(CLOCK_REALTIME);
    return {now.tv_sec, static_cast<unsigned>(now.tv_nsec)};
}

std::uint64_t nxClock::Ticks()
{
    const timespec now = Read(CLOCK_REALTIME);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U + static_cast<std::uint64_t>(now.tv_nsec);
}

nxClockScale nxClock::GetScale() { return nxClockScale(); }

void nxClock::Recalibrate() {}

std::int64_t nxClock::MonotonicNanoseconds()
{
    const timespec now = Read(CLOCK_MONOTONIC);
    return static_cast<std::int64_t>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}
