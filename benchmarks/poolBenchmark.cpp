// SPDX-License-Identifier: Apache-2.0
// Threads that run functors: the processor time of all threads for each functor that is posted and run, and how long a thread
// that sleeps takes to begin. The functors are empty, so that nothing but the queue is measured.

#include <benchmark/benchmark.h>
#include <semaphore.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

#include "core/thread/nxFunctorThreadPool.h"

#if __has_include(<boost/asio/thread_pool.hpp>)
    #include <boost/asio/post.hpp>
    #include <boost/asio/thread_pool.hpp>
    #define NX_BENCHMARK_HAS_ASIO
#endif
#ifdef NX_BENCHMARK_HAS_TBB
    #include <oneapi/tbb/task_arena.h>
#endif

namespace
{
constexpr int functorsOfRound = 100'000;

double ProcessorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

class Ours
{
public:
    explicit Ours(unsigned threads) { static_cast<void>(_pool.Start(threads)); }
    template <class F>
    void Post(F&& functor)
    {
        static_cast<void>(_pool.Post(std::forward<F>(functor)));
    }

private:
    nxFunctorThreadPool _pool;
};

#ifdef NX_BENCHMARK_HAS_ASIO
class Asio
{
public:
    explicit Asio(unsigned threads) : _pool(threads) {}
    ~Asio() { _pool.join(); }
    template <class F>
    void Post(F&& functor)
    {
        boost::asio::post(_pool, std::forward<F>(functor));
    }

private:
    boost::asio::thread_pool _pool;
};
#endif

#ifdef NX_BENCHMARK_HAS_TBB
class Arena
{
public:
    explicit Arena(unsigned threads) : _arena(static_cast<int>(threads), 0) {}
    template <class F>
    void Post(F&& functor)
    {
        _arena.enqueue(std::forward<F>(functor));
    }

private:
    oneapi::tbb::task_arena _arena;
};
#endif

// What is written in an hour.
class Deque
{
public:
    explicit Deque(unsigned threads)
    {
        for (unsigned i = 0; i < threads; ++i)
            _threads.emplace_back([this](const std::stop_token& stop) { Run(stop); });
    }
    template <class F>
    void Post(F&& functor)
    {
        {
            const std::lock_guard lock(_mutex);
            _functors.emplace_back(std::forward<F>(functor));
        }
        _isFilled.notify_one();
    }

private:
    void Run(const std::stop_token& stop)
    {
        while (true)
        {
            std::unique_lock lock(_mutex);
            if (!_isFilled.wait(lock, stop, [this] { return !_functors.empty(); }))
                return;
            const std::function<void()> functor = std::move(_functors.front());
            _functors.pop_front();
            lock.unlock();
            functor();
        }
    }

    std::mutex _mutex;
    std::condition_variable_any _isFilled;
    std::deque<std::function<void()>> _functors;
    std::vector<std::jthread> _threads;
};

template <class Subject>
void PostAndRun(benchmark::State& state, int producers, unsigned threads)
{
    Subject subject(threads);
    std::counting_semaphore ended(0);
    const auto produce = [&]
    {
        for (int i = 0; i < functorsOfRound / producers; ++i)
            subject.Post(
                [&ended, isLast = i + 1 == functorsOfRound / producers]
                {
                    if (isLast)
                        ended.release();
                });
    };
    while (state.KeepRunningBatch(functorsOfRound))
    {
        const double before = ProcessorSeconds();
        {
            std::vector<std::jthread> others;
            for (int i = 1; i < producers; ++i)
                others.emplace_back(produce);
            produce();
        }
        for (int i = 0; i < producers; ++i)
            ended.acquire();
        state.SetIterationTime(ProcessorSeconds() - before);
    }
}

// A thread that waits for a semaphore: nothing can wake a thread for less.
class BareSemaphore
{
public:
    explicit BareSemaphore(unsigned) { sem_init(&_filled, 0, 0); }
    ~BareSemaphore()
    {
        _functor = nullptr;
        sem_post(&_filled);
        _thread.join();
        sem_destroy(&_filled);
    }
    template <class F>
    void Post(F&& functor)
    {
        _functor = std::forward<F>(functor);
        sem_post(&_filled);
    }

private:
    void Run()
    {
        while (true)
        {
            while (sem_wait(&_filled) != 0)
            {
            }
            if (!_functor)
                return;
            _functor();
        }
    }

    sem_t _filled{};
    std::function<void()> _functor;
    std::thread _thread{[this] { Run(); }};
};

// From the post to the begin of the functor, while the thread sleeps.
template <class Subject>
void WakeUp(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    Subject subject(1);
    std::binary_semaphore ended(0);
    std::vector<double> times;
    for (auto _ : state)
    {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        Clock::time_point begun;
        const Clock::time_point posted = Clock::now();
        subject.Post(
            [&begun, &ended]
            {
                begun = Clock::now();
                ended.release();
            });
        ended.acquire();
        times.push_back(std::chrono::duration<double>(begun - posted).count());
        state.SetIterationTime(times.back());
    }
    std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
    state.counters["p50"] = 1e9 * times[times.size() / 2];
}

template <class Subject>
void Register(const std::string& column)
{
    const auto add = [&](const char* row, int producers, unsigned threads)
    {
        benchmark::RegisterBenchmark((std::string(row) + '/' + column).c_str(),
                                     [producers, threads](benchmark::State& state)
                                     { PostAndRun<Subject>(state, producers, threads); })
            ->UseManualTime();
    };
    add("pool_one_producer", 1, 1);
    add("pool_four_producers", 4, 1);
    add("pool_two_threads", 1, 2);
    benchmark::RegisterBenchmark(("pool_wake_up/" + column).c_str(), WakeUp<Subject>)->UseManualTime();
}

[[maybe_unused]] const bool areRegistered = []
{
    Register<Ours>("ours");
#ifdef NX_BENCHMARK_HAS_ASIO
    Register<Asio>("peer_asio");
#endif
#ifdef NX_BENCHMARK_HAS_TBB
    Register<Arena>("peer_tbb");
#endif
    Register<Deque>("peer_deque");
    benchmark::RegisterBenchmark("pool_wake_up/limit_semaphore", WakeUp<BareSemaphore>)->UseManualTime();
    return true;
}();
}  // namespace
