// SPDX-License-Identifier: Apache-2.0
#include "core/thread/nxFunctorThreadPool.h"

#include "core/thread/internal/nxFunctorWorkers.h"

nxFunctorThreadPool::nxFunctorThreadPool() : _workers(std::make_unique<nxFunctorWorkers>()) {}
nxFunctorThreadPool::~nxFunctorThreadPool() = default;

nxErrorEnum nxFunctorThreadPool::Start(unsigned threads, const nxFunctorThreadOptions& options)
{
    return _workers->Start(threads, options);
}

nxErrorEnum nxFunctorThreadPool::_Post(void* functor, const nxFunctorActions& actions, double seconds,
                                       Priority priority)
{
    nxFunctorRing* const ring = _workers->GetRing();
    return ring != nullptr ? ring->Post(functor, actions, seconds, priority) : nxErrorEnum(NX_ERR_NOT_INITIALISED);
}

std::size_t nxFunctorThreadPool::Stop(StopMode mode)
{
    const std::shared_ptr<nxFunctorRing> ring = _workers->ShareRing();
    return ring != nullptr ? ring->Stop(mode) : 0;
}

nxErrorEnum nxFunctorThreadPool::Wait(double seconds) { return _workers->Wait(seconds); }

nxErrorEnum nxFunctorThreadPool::WaitIdle(double seconds)
{
    nxFunctorRing* const ring = _workers->GetRing();
    return ring != nullptr ? ring->WaitIdle(seconds) : nxErrorEnum(NX_ERR_NOT_INITIALISED);
}

nxFunctorThreadPool::Counts nxFunctorThreadPool::GetCounts() const
{
    nxFunctorRing* const ring = _workers->GetRing();
    return ring != nullptr ? ring->GetCounts() : Counts();
}
