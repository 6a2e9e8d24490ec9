// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXTESTTHREADS_H
#define TESTS_SUPPORT_NXTESTTHREADS_H

#include <chrono>
#include <thread>
#include <type_traits>
#include <vector>

/// Executes a function in `count` threads at once, each with its number if the function takes one, and returns when all
/// have ended.
template <class Body>
void nxInThreads(int count, const Body& body)
{
    std::vector<std::jthread> threads;
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
              [body](const std::stop_token& stop)
              {
                  while (!stop.stop_requested())
                      body();
              })
    {
    }

private:
    std::jthread _thread;
};

/// Waits until `holds` returns true, half a minute at most. @return whether it did.
template <class Holds>
bool nxEventually(const Holds& holds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    bool held = holds();
    for (; !held && std::chrono::steady_clock::now() < end; held = holds())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return held;
}

#endif
