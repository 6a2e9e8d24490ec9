// SPDX-License-Identifier: Apache-2.0
// The log: how many records a second reach the system, from the first call until every line is there.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "benchmarks/support/logCallers.h"
#include "benchmarks/support/logLimits.h"
#include "benchmarks/support/logOurs.h"
#include "benchmarks/support/logPeers.h"

namespace
{
using namespace LogBenchmark;

constexpr std::size_t ratedRecords = 200'000;

template <class Logger, Destination destination>
void Rate(benchmark::State& state, std::size_t threads)
{
    for (auto _ : state)
    {
        const Target target(destination);
        Logger logger(target);
        Clock::time_point begin;
        RunCallers(logger, threads, ratedRecords / threads, begin);
        logger.Finish();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
        if (logger.GetDropped() != 0 ||
            (destination == Destination::File && CountLines(logger.GetPath()) < ratedRecords / threads * threads))
        {
            state.SkipWithError("lines are missing");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(ratedRecords / threads * threads));
}

template <class Logger, Destination destination>
void RegisterRate(const char* row, const char* column, const std::vector<std::size_t>& threadCounts = {1, 2, 4, 8})
{
    for (const std::size_t threads : threadCounts)
        benchmark::RegisterBenchmark((std::string(row) + '_' + std::to_string(threads) + '/' + column).c_str(),
                                     Rate<Logger, destination>, threads)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime();
}

template <class Logger>
void RegisterRates(const char* column)
{
    RegisterRate<Logger, Destination::Null>("log_rate_dev_null", column);
    RegisterRate<Logger, Destination::File>("log_rate_file", column);
}

[[maybe_unused]] const bool registered = []
{
    RegisterRates<Ours>("ours");
    RegisterRates<FinishedLines>("limit_finished_lines");
    using Form = nxLogFormSettings::Form;
    RegisterRate<OursWithFields<Form::Text>, Destination::File>("log_rate_fields", "ours", {1});
    RegisterRate<OursWithFields<Form::Json>, Destination::File>("log_rate_json", "ours", {1});
    RegisterRate<OursWithFields<Form::Text>, Destination::File>("log_rate_json", "limit_text", {1});
#if defined(NX_BENCHMARK_HAS_SPDLOG)
    RegisterRates<Spdlog>("peer_spdlog_async");
    RegisterRate<SpdlogWithFields, Destination::File>("log_rate_fields", "peer_spdlog_async", {1});
    RegisterRate<SpdlogJson, Destination::File>("log_rate_json", "peer_spdlog_async", {1});
#endif
#if defined(NX_BENCHMARK_HAS_LOG4CPLUS)
    RegisterRates<Log4cplus>("peer_log4cplus_async");
#endif
    return true;
}();
}  // namespace
