// SPDX-License-Identifier: Apache-2.0
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace
{
// While a process has a single thread, glibc leaves the atomics out of its locks and shared pointers, and everything
// looks cheaper than it is in a trading process. One parked thread for the whole run restores the real prices.
class ParkedThread
{
public:
    ~ParkedThread()
    {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _stop = true;
        }
        _wake.notify_one();
        _thread.join();
    }

private:
    void Park()
    {
        std::unique_lock<std::mutex> lock(_mutex);
        _wake.wait(lock, [this] { return _stop; });
    }

    std::mutex _mutex;
    std::condition_variable _wake;
    bool _stop = false;
    std::thread _thread{[this] { Park(); }};
};
}  // namespace

int main(int argc, char** argv)
{
    const ParkedThread parked;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
