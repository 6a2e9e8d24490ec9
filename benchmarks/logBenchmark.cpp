// SPDX-License-Identifier: Apache-2.0
// The log: what a record costs its caller. log/rates.cpp has how many records a second reach the system, and log/bursts.cpp
// what bursts cost.
//
// The record is a literal, an integer, a decimal and a short string; its line has level, time, thread and source line.
// Callers write batches of 20 records with a pause after each, as programs do; a time is that of a record, averaged
// over its batch. Threads pause by sleeping where there are several, so that they do not take the processors from each
// other. Our writer sleeps between its looks, as it does by default.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "benchmarks/support/logLimits.h"
#include "benchmarks/support/logOurs.h"
#include "benchmarks/support/logPeers.h"
#include "core/platform/inline/nxClock.h"

namespace
{
using namespace LogBenchmark;
using Clock = std::chrono::steady_clock;

constexpr std::size_t batchSize = 20;
constexpr benchmark::IterationCount batchCount = 2000;
constexpr auto batchPause = std::chrono::microseconds(100);

double NanosecondsPerTick()
{
    static const double value = []
    {
        const auto begin = Clock::now();
        const std::uint64_t ticks = nxClock::Ticks();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return std::chrono::duration<double, std::nano>(Clock::now() - begin).count() /
               static_cast<double>(nxClock::Ticks() - ticks);
    }();
    return value;
}

void Pause(bool isAlone)
{
    if (!isAlone)
    {
        std::this_thread::sleep_for(batchPause);
        return;
    }
    for (const auto end = Clock::now() + batchPause; Clock::now() < end;)
    {
    }
}

template <class Logger>
struct Stage
{
    explicit Stage(Destination destination) : target(destination), logger(target) {}
    Target target;
    Logger logger;
    static inline std::unique_ptr<Stage> current;
};

template <class Logger, Destination destination>
void SetUp(const benchmark::State&)
{
    NanosecondsPerTick();
    Stage<Logger>::current = std::make_unique<Stage<Logger>>(destination);
}

template <class Logger>
void TearDown(const benchmark::State&)
{
    Stage<Logger>::current->logger.Finish();
    Stage<Logger>::current.reset();
}

void CountPercentiles(benchmark::State& state, std::vector<double>& times)
{
    std::sort(times.begin(), times.end());
    const auto at = [&](double part)
    { return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))]; };
    const auto flags = benchmark::Counter::kAvgThreads;
    state.counters["p50"] = benchmark::Counter(at(0.5), flags);
    state.counters["p99"] = benchmark::Counter(at(0.99), flags);
    state.counters["p999"] = benchmark::Counter(at(0.999), flags);
}

template <class Logger>
void Call(benchmark::State& state)
{
    Logger& logger = Stage<Logger>::current->logger;
    Caller<Logger> caller(logger);
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(batchCount));
    std::size_t index = static_cast<std::size_t>(state.thread_index()) * 100;
    for (auto _ : state)
    {
        const std::uint64_t begin = nxClock::Ticks();
        for (std::size_t i = 0; i < batchSize; ++i)
            caller.Log(index++);
        const std::uint64_t end = nxClock::Ticks();
        times.push_back(static_cast<double>(end - begin) * NanosecondsPerTick() / batchSize);
        Pause(state.threads() == 1);
    }
    CountPercentiles(state, times);
    if (state.thread_index() == 0)
    {
        state.counters["dropped"] = logger.GetDropped();
        state.counters["waits"] = logger.GetWaits();
    }
}

template <class Logger>
void RegisterCall(const char* column, const std::vector<int>& threadCounts)
{
    auto* const call = benchmark::RegisterBenchmark((std::string("log_caller/") + column).c_str(), Call<Logger>)
                           ->Iterations(batchCount)
                           ->Setup(SetUp<Logger, Destination::Null>)
                           ->Teardown(TearDown<Logger>)
                           ->UseRealTime();
    for (const int count : threadCounts)
        call->Threads(count);
}

template <class Logger>
void RegisterCallOnSlowDisk(const char* column)
{
    benchmark::RegisterBenchmark((std::string("log_caller_slow_disk/") + column).c_str(), Call<Logger>)
        ->Iterations(batchCount)
        ->Setup(SetUp<Logger, Destination::SlowPipe>)
        ->Teardown(TearDown<Logger>)
        ->UseRealTime();
}

template <class Logger>
void RegisterAll(const char* column)
{
    RegisterCall<Logger>(column, {1, 2, 4});
    RegisterCallOnSlowDisk<Logger>(column);
}

[[maybe_unused]] const bool registered = []
{
    RegisterAll<Ours>("ours");
    RegisterCall<HotRing>("limit_counter_and_copy", {1});
    RegisterCall<RingToReader>("limit_ring_to_reader", {1, 2, 4});
#if defined(NX_BENCHMARK_HAS_SPDLOG)
    RegisterAll<Spdlog>("peer_spdlog_async");
#endif
#if defined(NX_BENCHMARK_HAS_LOG4CPLUS)
    RegisterAll<Log4cplus>("peer_log4cplus_async");
#endif
    return true;
}();
}  // namespace
