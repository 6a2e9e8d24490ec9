// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxElapsedTimeCounter.h"

#include <atomic>

#include "core/platform/inline/nxClock.h"

namespace
{
// The performance counter is the system's monotonic clock, so its frequency is known without asking.
constexpr double ticksPerSecond = 1e9;

long long ReadCounter() { return nxClock::MeasuredNanoseconds(); }

// Set when the library is loaded. Before that, the process's start reads as 0, which is about when the machine started.
// Relaxed: a number, which orders no other memory.
std::atomic<long long> globalStart{ReadCounter()};

double SecondsSince(long long start)
{
    // Another thread may have stored a start that is later than this thread's reading.
    const long long ticks = ReadCounter() - start;
    return ticks > 0 ? static_cast<double>(ticks) / ticksPerSecond : 0.0;
}
}  // namespace

nxElapsedTimeCounter::nxElapsedTimeCounter() : _start(ReadCounter()) {}

nxElapsedTimeCounter::~nxElapsedTimeCounter() = default;

void nxElapsedTimeCounter::Reset() { _start = ReadCounter(); }

double nxElapsedTimeCounter::GetElapsedTimeInSeconds() const { return SecondsSince(_start); }

void nxElapsedTimeCounter::ResetGlobalTime() { globalStart.store(ReadCounter(), std::memory_order_relaxed); }

double nxElapsedTimeCounter::GetGlobalElapsedTimeInSeconds()
{
    return SecondsSince(globalStart.load(std::memory_order_relaxed));
}
