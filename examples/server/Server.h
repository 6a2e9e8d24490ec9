// SPDX-License-Identifier: Apache-2.0
#ifndef EXAMPLES_SERVER_SERVER_H
#define EXAMPLES_SERVER_SERVER_H

#include <atomic>
#include <deque>

#include "OrderQueue.h"

/// Makes orders, where a program of yours would read them from a connection.
class Feed : public nxThread
{
public:
    /// @param rate orders a second.
    Feed(OrderQueue& queue, unsigned index, unsigned rate) : _queue(queue), _index(index), _rate(rate) {}

    void Stop() { _isStopping = true; }

private:
    nxErrorEnum Run() override;

    OrderQueue& _queue;
    const unsigned _index;
    const unsigned _rate;
    std::atomic<bool> _isStopping{false};
};

/// Handles orders until the queue is closed and empty.
class Worker : public nxThread
{
public:
    explicit Worker(OrderQueue& queue) : _queue(queue) {}

private:
    nxErrorEnum Run() override;

    OrderQueue& _queue;
};

/// The feeds and the workers.
/// Threads: Stop() may be called by any, the rest by one.
class Server
{
public:
    Server(unsigned feeds, unsigned workers, unsigned rate);
    ~Server() { _Drain(); }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Starts the threads, waits for Stop(), and handles what has come until then.
    /// @return why a thread could not be started.
    [[nodiscard]] nxErrorEnum Run();

    /// Makes Run() return. Takes no time, so that the thread that is told to stop is free at once.
    void Stop() { static_cast<void>(_stop.Post()); }

private:
    void _Drain();

    nxSemaphore _stop{0};
    OrderQueue _queue{1000};
    std::deque<Feed> _feeds;
    std::deque<Worker> _workers;
};

#endif
