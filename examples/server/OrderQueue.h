// SPDX-License-Identifier: Apache-2.0
#ifndef EXAMPLES_SERVER_ORDERQUEUE_H
#define EXAMPLES_SERVER_ORDERQUEUE_H

#include <cstdint>
#include <deque>

#include "core/nxCore.h"

struct Order
{
    unsigned feed;
    std::uint64_t number;  // counts the orders of a feed, from 0
};

/// Orders on their way from the feeds to the workers. The guide's page on the bounded queue explains it.
/// Errors: NX_ERR_THR_NOT_RUNNING when the queue is closed.
class OrderQueue
{
public:
    explicit OrderQueue(std::size_t capacity) : _capacity(capacity) {}

    /// Waits for room.
    [[nodiscard]] nxErrorEnum Push(const Order& order)
    {
        const nxMutexGuard guard(_mutex);
        while (!_isClosed && _orders.size() == _capacity)
            if (const nxErrorEnum error = _hasRoom.Wait(_mutex); !error.IsOK())
                return error;
        if (_isClosed)
            return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
        _orders.push_back(order);
        return _hasOrders.Signal();
    }

    /// Waits for an order. A closed queue gives away what it still has.
    [[nodiscard]] nxErrorEnum Pop(Order& order)
    {
        const nxMutexGuard guard(_mutex);
        while (!_isClosed && _orders.empty())
            if (const nxErrorEnum error = _hasOrders.Wait(_mutex); !error.IsOK())
                return error;
        if (_orders.empty())
            return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
        order = _orders.front();
        _orders.pop_front();
        return _hasRoom.Signal();
    }

    /// Wakes every thread that waits.
    void Close()
    {
        const nxMutexGuard guard(_mutex);
        _isClosed = true;
        static_cast<void>(_hasOrders.SignalAll());
        static_cast<void>(_hasRoom.SignalAll());
    }

private:
    nxMutex _mutex;
    nxConditionRaw _hasOrders, _hasRoom;
    std::deque<Order> _orders NX_GUARDED_BY(_mutex);
    bool _isClosed NX_GUARDED_BY(_mutex) = false;
    const std::size_t _capacity;
};

#endif
