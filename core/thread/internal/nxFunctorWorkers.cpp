// SPDX-License-Identifier: Apache-2.0
#include "core/thread/internal/nxFunctorWorkers.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "core/platform/nxServiceThread.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/internal/nxFunctorRun.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxThreadOptions.h"

namespace
{
// The number of a thread in a pool remains when its name is cut.
std::string GetWorkerName(const std::string& name, unsigned number, unsigned threads)
{
    std::string text = name.empty() ? "functors" : name;
    std::string suffix;
    if (threads > 1)
        suffix.append("-").append(std::to_string(number));
    text.resize(std::min(text.size(), nxThisThread::LongestName - suffix.size()));
    return text.append(suffix);
}

// A number that no processor has stays one.
nxThreadOptions GetThreadOptions(const nxFunctorThreadOptions& options)
{
    nxThreadOptions result;
    for (const int processor : options.processors)
        result.processors.push_back(static_cast<unsigned>(processor));
    return result;
}
}  // namespace

// The thread from the beginning to its end, however that comes.
class nxFunctorWorker::Stay
{
public:
    explicit Stay(nxFunctorWorker& worker) : _worker(worker), _ring(worker._ring), _run(_ring.get()) {}
    ~Stay()
    {
        _ring->Leave(batch);
        if (_worker._isLeftToItself)
            delete &_worker;
    }
    Stay(const Stay&) = delete;
    Stay& operator=(const Stay&) = delete;

    nxFunctorBatch batch;

private:
    nxFunctorWorker& _worker;
    const std::shared_ptr<nxFunctorRing> _ring;
    const nxFunctorRun _run;
};

nxErrorEnum nxFunctorWorker::Run()
{
    nxServiceThread::Become(_name.c_str());
    nxFunctorRing& ring = *_ring;
    Stay stay(*this);
    for (nxFunctorChain taken = ring.Exchange(stay.batch); taken.count != 0; taken = ring.Exchange(stay.batch))
        ring.Run(stay.batch, taken);
    return nxErrorEnum();
}

void nxFunctorWorker::LeaveToItself(std::unique_ptr<nxFunctorWorker> worker)
{
    pthread_detach(pthread_self());
    worker.release()->_isLeftToItself = true;
}

nxErrorEnum nxFunctorWorkers::Start(unsigned threads, const nxFunctorThreadOptions& options)
{
    if (const nxFunctorRing* const ring = GetRing(); ring != nullptr && ring->IsOfParent())
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    if (!_Enter())
        return nxErrorEnum(NX_ERR_THR_NOT_RUNNING);
    const nxErrorEnum error = _Start(threads, options);
    _starting.fetch_sub(1);
    return error;
}

// @return false where a thread was inside Start() when this process was forked.
bool nxFunctorWorkers::_Enter() noexcept
{
    const std::uint64_t generation = std::uint64_t{nxFunctorRing::GetGeneration()} << 32;
    std::uint64_t before = _starting.load();
    for (;;)
    {
        const auto threads = static_cast<std::uint32_t>(before);
        if (threads != 0 && before - threads != generation)
            return false;
        if (_starting.compare_exchange_weak(before, generation + threads + 1))
            return true;
    }
}

nxErrorEnum nxFunctorWorkers::_Start(unsigned threads, const nxFunctorThreadOptions& options)
{
    const nxMutexGuard guard(_mutex);
    if (GetRing() != nullptr)
        return nxErrorEnum(NX_ERR_THR_ALREADY_STARTED);
    if (threads == 0 || options.capacity == 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    try
    {
        const auto ring = std::make_shared<nxFunctorRing>(options.capacity, threads);
        Workers workers = _Make(ring, threads, options.name);
        if (const nxErrorEnum error = _StartAll(workers, options); !error.IsOK())
        {
            ring->Stop(nxFunctorRing::StopMode::Abandon);
            for (const auto& worker : workers)
                static_cast<void>(worker->Wait());
            return error;
        }
        _workers = std::move(workers);
        _ring = ring;
        _published.store(ring.get(), std::memory_order_release);
        return nxErrorEnum();
    }
    catch (const std::bad_alloc&)
    {
        return nxErrorEnum(NX_ERR_INSUFFICIENT_MEMORY);
    }
}

nxFunctorWorkers::Workers nxFunctorWorkers::_Make(const std::shared_ptr<nxFunctorRing>& ring, unsigned threads,
                                                  const std::string& name)
{
    Workers workers;
    for (unsigned number = 1; number <= threads; ++number)
        workers.push_back(std::make_unique<nxFunctorWorker>(ring, GetWorkerName(name, number, threads)));
    return workers;
}

// Does not throw once a thread runs. After a failure some do.
nxErrorEnum nxFunctorWorkers::_StartAll(const Workers& workers, const nxFunctorThreadOptions& options)
{
    const nxThreadOptions threadOptions = GetThreadOptions(options);
    for (const auto& worker : workers)
    {
        const nxErrorEnum error = worker->Create(threadOptions);
        if (!error.IsOK())
            return nxErrorEnum(error == NX_ERR_INVALID_PARAMETER ? NX_ERR_THR_FAILED_TO_SET_SCHEDULER_PARAMATERS
                                                                 : NX_ERR_THR_RESOURCE);
    }
    return nxErrorEnum();
}

nxErrorEnum nxFunctorWorkers::Wait(double seconds)
{
    nxFunctorRing* const ring = GetRing();
    if (ring == nullptr)
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    const nxErrorEnum error = ring->WaitForEnd(seconds);
    if (!error.IsOK())
        return error;
    const nxMutexGuard guard(_mutex);
    for (const auto& worker : _workers)
        static_cast<void>(worker->Wait());
    _workers.clear();
    return error;
}

// No other thread uses the object now.
nxFunctorWorkers::~nxFunctorWorkers() NX_NO_THREAD_SAFETY_ANALYSIS
{
    if (_ring == nullptr)
        return;
    _ring->Stop(nxFunctorRing::StopMode::Abandon);
    for (auto& worker : _workers)
        if (_ring->IsOfParent())
            static_cast<void>(worker.release());  // its thread does not exist here
        else if (worker->Wait() == NX_ERR_THR_DEADLOCK)
            nxFunctorWorker::LeaveToItself(std::move(worker));
}
