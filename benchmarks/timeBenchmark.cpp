// Time stamps: taking one and printing one.
#include <benchmark/benchmark.h>

#include <ctime>

#include "core/time/nxTimeStamp.h"

namespace
{
void TakeOurs(benchmark::State& state)
{
    for (auto _ : state)
    {
        const nxTimeStamp now;
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(TakeOurs)->Name("time_stamp_take/ours");

void TakeTicks(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(nxClock::Ticks());
}
BENCHMARK(TakeTicks)->Name("time_stamp_take/ours_ticks");

void TakeCounterRead(benchmark::State& state)
{
#if defined(__x86_64__)
    for (auto _ : state)
        benchmark::DoNotOptimize(__builtin_ia32_rdtsc());
#endif
}
BENCHMARK(TakeCounterRead)->Name("time_stamp_take/limit_counter_read");

void TakeClockGettime(benchmark::State& state)
{
    for (auto _ : state)
    {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(TakeClockGettime)->Name("time_stamp_take/peer_clock_gettime");
}  // namespace
