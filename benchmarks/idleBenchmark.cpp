// SPDX-License-Identifier: Apache-2.0
// The log where little is reported: how long one record takes from its statement to the sink when nothing was reported for
// a while, how often an idle process wakes up, and what a busy thread pays beside 300 threads that reported once.
//
// Sinks keep the time at which they were given the last record. A wake-up is a voluntary context switch of any thread but
// the calling one.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "core/log/nxLogDevice.h"
#include "core/log/nxLogMacros.h"

#if defined(NX_BENCHMARK_HAS_SPDLOG)
    #include <spdlog/async.h>
    #include <spdlog/sinks/base_sink.h>
    #include <spdlog/spdlog.h>
#endif

namespace
{
using Clock = std::chrono::steady_clock;

constexpr auto silence = std::chrono::milliseconds(250);
constexpr auto idleTime = std::chrono::seconds(3);
constexpr unsigned silentThreads = 300;
constexpr unsigned burst = 50'000;

struct Arrivals
{
    void Take()
    {
        last = Clock::now();
        ++count;
    }

    Clock::time_point last;  // read after count
    std::atomic<unsigned> count{0};
};

class Ours final : public nxLogDevice
{
public:
    Ours() { nxLogManager::GetInstance().RegisterLogDevice(this); }
    ~Ours() override { nxLogManager::GetInstance().UnregisterLogDevice(this); }
    void Write(const nxLog&) override { arrivals.Take(); }
    void Flush() override {}
    void Destroy() override {}

    static void Log(unsigned number) { NX_LOG(NX_LOG_LEVEL_INFO) << "record " << number; }

    Arrivals arrivals;
};

#if defined(NX_BENCHMARK_HAS_SPDLOG)
class Spdlog
{
public:
    void Log(unsigned number) { SPDLOG_LOGGER_INFO(_logger, "record {}", number); }

    Arrivals arrivals;

private:
    class Sink final : public spdlog::sinks::base_sink<std::mutex>
    {
    public:
        explicit Sink(Arrivals& arrivals) : _arrivals(arrivals) {}

    protected:
        void sink_it_(const spdlog::details::log_msg&) override { _arrivals.Take(); }
        void flush_() override {}

    private:
        Arrivals& _arrivals;
    };

    std::shared_ptr<spdlog::details::thread_pool> _pool = std::make_shared<spdlog::details::thread_pool>(8192, 1);
    std::shared_ptr<spdlog::async_logger> _logger = std::make_shared<spdlog::async_logger>(
        "idle", std::make_shared<Sink>(arrivals), _pool, spdlog::async_overflow_policy::block);
};
#endif

// The number after a name in a file of the system's about a thread or process.
long NumberIn(const std::filesystem::path& file, const std::string& name)
{
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(name))
            return std::stol(line.substr(name.size()));
    return 0;
}

long WakeUps()
{
    long sum = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task"))
        if (thread.path().filename() != std::to_string(getpid()))
            sum += NumberIn(thread.path() / "status", "voluntary_ctxt_switches:");
    return sum;
}

template <class Logger>
void OneRecord(benchmark::State& state)
{
    Logger logger;
    unsigned number = 0;
    for (auto _ : state)
    {
        std::this_thread::sleep_for(silence);
        const unsigned before = logger.arrivals.count;
        const auto begin = Clock::now();
        logger.Log(number++);
        while (logger.arrivals.count == before)
            std::this_thread::sleep_for(std::chrono::microseconds(20));
        state.SetIterationTime(std::chrono::duration<double>(logger.arrivals.last - begin).count());
    }
    std::this_thread::sleep_for(silence);
    const long before = WakeUps();
    std::this_thread::sleep_for(idleTime);
    state.counters["wakeups_per_second"] =
        static_cast<double>(WakeUps() - before) / static_cast<double>(idleTime.count());
}

// A thread that logs `burst` records, beside others that have logged one each.
void BusyBeside(benchmark::State& state, unsigned others)
{
    Ours device;
    Ours::Log(0);  // the calling thread's own memory is not part of the difference
    const long before = NumberIn("/proc/self/status", "VmRSS:");
    std::atomic<unsigned> there{0};
    std::atomic<bool> isOver{false};
    std::vector<std::jthread> threads;
    for (unsigned index = 0; index < others; ++index)
        threads.emplace_back(
            [&]
            {
                Ours::Log(index);
                ++there;
                isOver.wait(false);
            });
    while (there != others)
        std::this_thread::yield();
    state.counters["resident_kib"] = static_cast<double>(NumberIn("/proc/self/status", "VmRSS:") - before);
    for (auto _ : state)
    {
        std::this_thread::sleep_for(silence);
        const auto begin = Clock::now();
        for (unsigned number = 0; number < burst; ++number)
            Ours::Log(number);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count() / burst);
    }
    isOver = true;
    isOver.notify_all();
}

template <class Logger>
void RegisterOneRecord(const char* column)
{
    benchmark::RegisterBenchmark((std::string("log_one_record_when_idle/") + column).c_str(), OneRecord<Logger>)
        ->Iterations(10)
        ->Unit(benchmark::kMicrosecond)
        ->UseManualTime();
}

void RegisterBusy(const char* column, unsigned others)
{
    benchmark::RegisterBenchmark((std::string("log_busy_beside_300_threads/") + column).c_str(), BusyBeside, others)
        ->Iterations(5)
        ->UseManualTime();
}

[[maybe_unused]] const bool registered = []
{
#if defined(NX_BENCHMARK_HAS_SPDLOG)
    RegisterOneRecord<Spdlog>("peer_spdlog_async");  // first, while our thread is not there to wake up
#endif
    RegisterOneRecord<Ours>("ours");
    RegisterBusy("limit_alone", 0);
    RegisterBusy("ours", silentThreads);
    return true;
}();
}  // namespace
