// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXFUNCTORWORKERS_H
#define CORE_THREAD_INTERNAL_NXFUNCTORWORKERS_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/thread/internal/nxFunctorRing.h"
#include "core/thread/nxFunctorThreadOptions.h"
#include "core/thread/nxMutex.h"
#include "core/thread/nxThread.h"

/// A thread that runs what is in a ring. The ring lives as long as one of its threads.
class nxFunctorWorker final : public nxThread
{
public:
    nxFunctorWorker(std::shared_ptr<nxFunctorRing> ring, std::string name)
        : _ring(std::move(ring)), _name(std::move(name))
    {
    }

    /// Leaves the object to the thread, which destroys it when it ends. Called in that thread.
    static void LeaveToItself(std::unique_ptr<nxFunctorWorker> worker);

private:
    class Stay;
    nxErrorEnum Run() override;

    const std::shared_ptr<nxFunctorRing> _ring;
    const std::string _name;
    bool _isLeftToItself = false;
};

/// The threads of an nxFunctorThreadPool with their ring. nxFunctorThreadPool.h has the rules.
///
/// Invariant: a ring that is published has all its threads, and stays until the end.
class nxFunctorWorkers
{
public:
    nxFunctorWorkers() = default;
    ~nxFunctorWorkers();
    nxFunctorWorkers(const nxFunctorWorkers&) = delete;
    nxFunctorWorkers& operator=(const nxFunctorWorkers&) = delete;

    nxErrorEnum Start(unsigned threads, const nxFunctorThreadOptions& options);
    nxErrorEnum Wait(double seconds);

    /// @return null before Start(). Acquires what Start() has released.
    nxFunctorRing* GetRing() const { return _published.load(std::memory_order_acquire); }
    /// For operations during which a functor may destroy the pool. @return null before Start().
    std::shared_ptr<nxFunctorRing> ShareRing() const { return GetRing() != nullptr ? _ring : nullptr; }

private:
    using Workers = std::vector<std::unique_ptr<nxFunctorWorker>>;

    bool _Enter() noexcept;
    nxErrorEnum _Start(unsigned threads, const nxFunctorThreadOptions& options);
    static Workers _Make(const std::shared_ptr<nxFunctorRing>& ring, unsigned threads, const std::string& name);
    static nxErrorEnum _StartAll(const Workers& workers, const nxFunctorThreadOptions& options);

    // The threads inside Start() in the low half, and the generation of their process in the high one. A forked child that
    // finds threads of its parent leaves the mutex alone, which one of them may hold. Changed before the mutex is locked and
    // after it is unlocked. It hands nothing over, but has the default order: what a fork copies must not show the lock alone.
    std::atomic<std::uint64_t> _starting{0};
    nxMutex _mutex;
    std::shared_ptr<nxFunctorRing> _ring;  // constant once it is published
    Workers _workers NX_GUARDED_BY(_mutex);
    // Start() stores it once (release) with all that the ring has; every operation loads it (acquire).
    std::atomic<nxFunctorRing*> _published{nullptr};
};

#endif
