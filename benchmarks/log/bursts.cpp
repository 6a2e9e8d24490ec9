// SPDX-License-Identifier: Apache-2.0
// The log: what a burst costs its callers, and how fast many of them are after a silence.

#include <benchmark/benchmark.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>

#include "benchmarks/support/logCallers.h"
#include "benchmarks/support/logLimits.h"
#include "benchmarks/support/logOurs.h"

namespace
{
using namespace LogBenchmark;
using Clock = std::chrono::steady_clock;

// Far more records than the ring of a thread holds, and fewer than the queue.
constexpr std::size_t burstRecords = 500'000;
constexpr std::size_t recordsAfterSilence = 200'000;
constexpr auto silence = std::chrono::milliseconds(300);

// Takes lines, and holds the log's thread up while it is shut.
class Gate final : public nxLogDevice, private nxLogLineSink
{
public:
    Gate() : nxLogDevice(static_cast<nxLogLineSink*>(this)) { nxLogManager::GetInstance().RegisterLogDevice(this); }
    ~Gate() override { nxLogManager::GetInstance().UnregisterLogDevice(this); }
    void Write(const nxLog&) override {}
    void Flush() override {}
    void Destroy() override {}

    void SetOpen(bool isOpen)
    {
        const std::lock_guard lock(_mutex);
        _isOpen = isOpen;
        _changed.notify_all();
    }

private:
    nxLogLineStyle GetLineStyle() const override { return {nxLogLineStyle::Full, true}; }
    void WriteLines(const nxLogLineBatch&) override
    {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [this] { return _isOpen; });
    }

    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isOpen = true;
};

template <class Action>
double SecondsOf(const Action& action)
{
    const auto begin = Clock::now();
    action();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

void WaitForLines() { nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(100.0)); }

// A burst that no record leaves the queue in. The memory that the last burst took is still there.
void Burst(benchmark::State& state)
{
    Gate gate;
    for (auto _ : state)
    {
        gate.SetOpen(false);
        const double seconds = SecondsOf(
            []
            {
                for (std::size_t i = 0; i < burstRecords; ++i)
                    Ours::Log(SampleAt(i));
            });
        state.SetIterationTime(seconds / static_cast<double>(burstRecords));
        gate.SetOpen(true);
        WaitForLines();
    }
}

// A burst that the ring holds, read by another thread.
void BurstIntoRing(benchmark::State& state)
{
    const Target target(Destination::Null);
    RingToReader rings(target);
    for (auto _ : state)
    {
        const double seconds = SecondsOf(
            [&]
            {
                for (std::size_t i = 0; i < RingToReader::Records; ++i)
                    rings.Log(i);
            });
        state.SetIterationTime(seconds / static_cast<double>(RingToReader::Records));
        std::this_thread::sleep_for(2 * RingToReader::ReaderPause);
    }
}

// Records a second into a file, from threads that have reported nothing for a while.
void RateAfterSilence(benchmark::State& state, std::size_t threads)
{
    for (auto _ : state)
    {
        const Target target(Destination::File);
        Ours logger(target);
        std::this_thread::sleep_for(silence);
        Clock::time_point begin;
        RunCallers(logger, threads, recordsAfterSilence / threads, begin);
        logger.Finish();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(recordsAfterSilence));
}

[[maybe_unused]] const bool registered = []
{
    benchmark::RegisterBenchmark("log_burst/ours", Burst)->Iterations(5)->UseManualTime();
    benchmark::RegisterBenchmark("log_burst/limit_ring_to_reader", BurstIntoRing)->Iterations(50)->UseManualTime();
    benchmark::RegisterBenchmark("log_rate_after_silence_8/ours", RateAfterSilence, 8)->Iterations(3)->UseManualTime();
    benchmark::RegisterBenchmark("log_rate_after_silence_8/limit_one_producer", RateAfterSilence, 1)
        ->Iterations(3)
        ->UseManualTime();
    return true;
}();
}  // namespace
