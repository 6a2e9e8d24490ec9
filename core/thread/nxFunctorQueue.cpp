// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxFunctorQueue.h"

#include <utility>

#include "core/thread/internal/nxFunctorRing.h"

nxFunctorQueue::nxFunctorQueue(std::size_t capacity) : _ring(std::make_shared<nxFunctorRing>(capacity, 0U)) {}

nxFunctorQueue::~nxFunctorQueue()
{
    // A functor that is destroyed unrun may destroy what has the queue; the ring lives until the end of this.
    const std::shared_ptr<nxFunctorRing> ring = std::move(_ring);
    ring->Stop(StopMode::Abandon);
}

nxErrorEnum nxFunctorQueue::_Post(void* functor, const nxFunctorActions& actions, double seconds, Priority priority)
{
    return _ring->Post(functor, actions, seconds, priority);
}

nxErrorEnum nxFunctorQueue::RunOne(double seconds)
{
    const std::shared_ptr<nxFunctorRing> ring = _ring;  // the functor may destroy the queue
    return ring->RunOne(seconds);
}

std::size_t nxFunctorQueue::Stop(StopMode mode)
{
    const std::shared_ptr<nxFunctorRing> ring = _ring;  // the destructor of a functor may destroy the queue
    return ring->Stop(mode);
}

nxErrorEnum nxFunctorQueue::WaitIdle(double seconds) { return _ring->WaitIdle(seconds); }

nxFunctorQueue::Counts nxFunctorQueue::GetCounts() const { return _ring->GetCounts(); }
