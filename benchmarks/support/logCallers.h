// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_SUPPORT_LOGCALLERS_H
#define BENCHMARKS_SUPPORT_LOGCALLERS_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>
#include <vector>

#include "benchmarks/support/logLimits.h"

// Threads that report as fast as they can.
namespace LogBenchmark
{
// Each of `threads` threads reports `records` records. @param begin becomes the moment before the first one.
template <class Logger>
void RunCallers(Logger& logger, std::size_t threads, std::size_t records, std::chrono::steady_clock::time_point& begin)
{
    std::atomic<std::size_t> ready{0};
    std::atomic<bool> go{false};
    std::vector<std::thread> callers;
    for (std::size_t thread = 0; thread < threads; ++thread)
        callers.emplace_back(
            [&, thread]
            {
                Caller<Logger> caller(logger);
                ++ready;
                while (!go)
                    std::this_thread::yield();
                for (std::size_t i = 0; i < records; ++i)
                    caller.Log(thread * 100 + i);
            });
    while (ready != threads)
        std::this_thread::yield();
    begin = std::chrono::steady_clock::now();
    go = true;
    for (std::thread& caller : callers)
        caller.join();
}
}  // namespace LogBenchmark

#endif
