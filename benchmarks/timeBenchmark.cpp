// SPDX-License-Identifier: Apache-2.0
// Time stamps: taking one and printing one.
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>

#if defined(NX_BENCHMARK_HAS_FMT)
    #include <fmt/chrono.h>
    #include <fmt/compile.h>
#endif

#include "core/time/nxTimeStamp.h"

namespace
{
// A zone with summer time, whatever the machine's own.
const bool zoneIsSet = []
{
    setenv("TZ", "Europe/London", 1);
    tzset();
    return true;
}();

constexpr std::size_t ringSize = 1024;
using Ring = std::array<nxTimeStamp, ringSize>;

// Stamps as a busy log makes them: a few microseconds apart.
const Ring& Successive()
{
    static const Ring ring = []
    {
        std::mt19937_64 random(1);
        std::int64_t nanosecond = 1'709'629'623'000'000'000;
        Ring stamps;
        for (nxTimeStamp& stamp : stamps)
        {
            nanosecond += static_cast<std::int64_t>(random() % 20'000);
            stamp = nxTimeStamp(nanosecond / 1'000'000'000, static_cast<unsigned>(nanosecond % 1'000'000'000));
        }
        return stamps;
    }();
    return ring;
}

// Moments anywhere in the fifty years from 1990 on.
const Ring& Any()
{
    static const Ring ring = []
    {
        std::mt19937_64 random(2);
        Ring stamps;
        for (nxTimeStamp& stamp : stamps)
            stamp = nxTimeStamp(631'152'000 + static_cast<long long>(random() % 1'577'836'800),
                                static_cast<unsigned>(random() % 1'000'000'000));
        return stamps;
    }();
    return ring;
}

void PrintOurs(benchmark::State& state, const Ring& ring)
{
    char text[nxTimeStamp::TextSize];
    std::size_t i = 0;
    for (auto _ : state)
    {
        ring[i++ % ringSize].GetAsStringFast(text, sizeof text);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(PrintOurs, successive, Successive())->Name("time_stamp_text_successive/ours");
BENCHMARK_CAPTURE(PrintOurs, any, Any())->Name("time_stamp_text_any/ours");

void PrintCopy(benchmark::State& state)
{
    static char prepared[ringSize][nxTimeStamp::TextSize];
    for (std::size_t i = 0; i < ringSize; ++i)
        Successive()[i].GetAsStringFast(prepared[i], sizeof prepared[i]);
    char text[nxTimeStamp::TextSize];
    std::size_t i = 0;
    for (auto _ : state)
    {
        std::memcpy(text, prepared[i++ % ringSize], 24);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(PrintCopy)->Name("time_stamp_text_successive/limit_copy_24");

void PrintLocaltime(benchmark::State& state)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        const std::time_t second = Any()[i++ % ringSize].GetSeconds();
        std::tm fields;
        benchmark::DoNotOptimize(localtime_r(&second, &fields));
        benchmark::DoNotOptimize(fields);
    }
}
BENCHMARK(PrintLocaltime)->Name("time_stamp_text_any/limit_localtime_r");

void PrintStrftime(benchmark::State& state, const Ring& ring)
{
    char text[64];
    std::size_t i = 0;
    for (auto _ : state)
    {
        const nxTimeStamp& stamp = ring[i++ % ringSize];
        const std::time_t second = stamp.GetSeconds();
        std::tm fields;
        localtime_r(&second, &fields);
        const std::size_t size = std::strftime(text, sizeof text, "%d%b%y %H:%M:%S", &fields);
        const unsigned microseconds = stamp.GetMicroseconds();
        std::snprintf(text + size, sizeof text - size, ".%03u.%03u", microseconds / 1'000, microseconds % 1'000);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(PrintStrftime, successive, Successive())->Name("time_stamp_text_successive/peer_strftime");

#if defined(NX_BENCHMARK_HAS_FMT)
// The fastest of the ways in which it prints a local time and a fraction: a compiled format into plain memory.
void PrintFmt(benchmark::State& state, const Ring& ring)
{
    char text[64];
    std::size_t i = 0;
    for (auto _ : state)
    {
        const nxTimeStamp& stamp = ring[i++ % ringSize];
        const std::time_t second = stamp.GetSeconds();
        std::tm fields;
        localtime_r(&second, &fields);
        const unsigned microseconds = stamp.GetMicroseconds();
        fmt::format_to(text, FMT_COMPILE("{:%d%b%y %T}.{:03}.{:03}"), fields, microseconds / 1'000,
                       microseconds % 1'000);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(PrintFmt, successive, Successive())->Name("time_stamp_text_successive/peer_fmt_chrono");
BENCHMARK_CAPTURE(PrintFmt, any, Any())->Name("time_stamp_text_any/peer_fmt_chrono");
#endif

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
