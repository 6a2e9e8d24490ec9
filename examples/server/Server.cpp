// SPDX-License-Identifier: Apache-2.0
#include "Server.h"

#include <chrono>
#include <string>

nxErrorEnum Feed::Run()
{
    const auto start = std::chrono::steady_clock::now();
    std::uint64_t number = 0;
    nxErrorEnum error;
    while (!_isStopping && error.IsOK())
    {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        while (number < static_cast<std::uint64_t>(elapsed.count() * _rate) && !_isStopping && error.IsOK())
            if (error = _queue.Push(Order{_index, number}); error.IsOK())
                ++number;
        nxThread::Sleep(1000);
    }
    NX_LOG(NX_LOG_LEVEL_INFO) << "feed " << _index << " ends after " << number << " orders";
    return nxErrorEnum();  // the result of Run() is ignored
}

nxErrorEnum Worker::Run()
{
    Order order{};
    while (_queue.Pop(order).IsOK())
    {
        NX_LOG(NX_LOG_LEVEL_DEBUG) << "an order has come";
        NX_LOG(NX_LOG_LEVEL_INFO) << "feed " << order.feed << " order " << order.number << " handled";
    }
    return nxErrorEnum();
}

Server::Server(unsigned feeds, unsigned workers, unsigned rate)
{
    for (unsigned index = 0; index < feeds; ++index)
        _feeds.emplace_back(_queue, index, rate);
    for (unsigned index = 0; index < workers; ++index)
        _workers.emplace_back(_queue);
}

nxErrorEnum Server::Run()
{
    nxErrorEnum error;
    const auto start = [&error](nxThread& thread, const char* name)
    {
        if (error.IsOK())
            error = thread.Create(nxThreadOptions{.name = name});
    };
    for (Worker& worker : _workers)
        start(worker, "worker");
    for (Feed& feed : _feeds)
        start(feed, "feed");
    if (error.IsOK())
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << "at work";
        error = _stop.Wait();
    }
    _Drain();
    return error;
}

// First the sources run dry, then the workers handle what is left. A thread that was not started is not waited for.
void Server::_Drain()
{
    for (Feed& feed : _feeds)
        feed.Stop();
    for (Feed& feed : _feeds)
        static_cast<void>(feed.Wait());
    _queue.Close();
    for (Worker& worker : _workers)
        static_cast<void>(worker.Wait());
}
