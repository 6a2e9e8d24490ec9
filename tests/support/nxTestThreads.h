// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXTESTTHREADS_H
#define TESTS_SUPPORT_NXTESTTHREADS_H

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <type_traits>
#include <vector>

/// A thread that is joined when the object ends. libc++ 14 has no std::jthread.
class nxJoinedThread : public std::thread
{
public:
    using std::thread::thread;
    nxJoinedThread(nxJoinedThread&&) = default;
    nxJoinedThread& operator=(nxJoinedThread&&) = delete;
    ~nxJoinedThread()
    {
        if (joinable())
            join();
    }
};

/// Executes a function in `count` threads at once, each with its number if the function takes one, and returns when all
/// have ended.
template <class Body>
void nxInThreads(int count, const Body& body)
{
    std::vector<nxJoinedThread> threads;
    for (int number = 0; number < count; ++number)
    {
        if constexpr (std::is_invocable_v<const Body&, int>)
            threads.emplace_back([&body, number] { body(number); });
        else
            threads.emplace_back([&body] { body(); });
    }
}

/// A thread that executes a function again and again, for as long as the object lives.
class nxBusyThread
{
public:
    template <class Body>
    explicit nxBusyThread(Body body)
        : _thread(
              [this, body]
              {
                  while (!_isToEnd)
                      body();
              })
    {
    }
    ~nxBusyThread() { _isToEnd = true; }

private:
    std::atomic<bool> _isToEnd = false;
    nxJoinedThread _thread;
};

/// How many seconds a test may take: NX_TEST_SECONDS, two minutes without that setting. 0 is no limit.
inline const unsigned nxTestSeconds = []
{
    const char* const setting = std::getenv("NX_TEST_SECONDS");
    return setting == nullptr ? 120U : static_cast<unsigned>(std::atoi(setting));
}();

/// Waits until `holds` returns true, at most a quarter of what a test may take, half a minute where that has no limit.
/// @return whether it did.
template <class Holds>
bool nxEventually(const Holds& holds)
{
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(nxTestSeconds == 0 ? 30 : nxTestSeconds / 4);
    bool held = holds();
    for (; !held && std::chrono::steady_clock::now() < end; held = holds())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return held;
}

#endif
