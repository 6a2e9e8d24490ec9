// SPDX-License-Identifier: Apache-2.0
// Each lock beside the bare primitive of its type and what the standard library offers, alone and with two threads that
// do nothing but take it; and the number of the calling thread.

#include <benchmark/benchmark.h>
#include <pthread.h>
#include <semaphore.h>
#include <unistd.h>

#include <barrier>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <semaphore>
#include <shared_mutex>
#include <string>

#include "core/thread/nxBarrier.h"
#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxConditionRaw.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxReaderWriterLockGuard_Read.h"
#include "core/thread/nxReaderWriterLockGuard_Write.h"
#include "core/thread/nxSemaphore.h"
#include "core/thread/nxSpinLockGuard.h"
#include "core/thread/nxThreadIndex.h"
#include "core/thread/nxWindowsMutex.h"
#include "core/thread/nxWindowsSemaphore.h"

#if __has_include(<boost/smart_ptr/detail/spinlock.hpp>)
    #include <boost/smart_ptr/detail/spinlock.hpp>
    #define NX_BENCHMARK_HAS_BOOST_SPINLOCK
#endif

namespace
{
// Each lock has cache lines of its own, and so has the data that it protects. No row then depends on its neighbours, nor
// on whether a lock is in the object or, as a named one is, elsewhere.
template <class Subject>
void TakeAndGive(benchmark::State& state)
{
    struct alignas(128) Place
    {
        Subject subject;
        alignas(128) long count = 0;
    };
    static Place place;
    for (auto _ : state)
    {
        place.subject.Take();
        if constexpr (requires { Subject::isShared; })
            benchmark::DoNotOptimize(long{place.count});
        else
            ++place.count;
        benchmark::ClobberMemory();
        place.subject.Give();
    }
}

template <class Subject>
void Register(const std::string& row, const std::string& column, bool contended = true)
{
    benchmark::RegisterBenchmark((row + "_alone/" + column).c_str(), TakeAndGive<Subject>);
    if (contended)
        benchmark::RegisterBenchmark((row + "_contended/" + column).c_str(), TakeAndGive<Subject>)
            ->Threads(2)
            ->UseRealTime();
}

// Mutexes

pthread_mutex_t Bare(int type, bool shared)
{
    pthread_mutex_t mutex;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, type);
    if (shared)
    {
        pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    }
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return mutex;
}

template <int type, bool shared>
struct BareMutex
{
    void Take() { pthread_mutex_lock(&mutex); }
    void Give() { pthread_mutex_unlock(&mutex); }
    pthread_mutex_t mutex = Bare(type, shared);
};

struct OurMutex
{
    void Take() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(mutex.Lock()); }
    void Give() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(mutex.Unlock()); }
    nxMutex mutex;
};

struct OurCheckedMutex
{
    void Take() NX_NO_THREAD_SAFETY_ANALYSIS { failures += !mutex.Lock().IsOK(); }
    void Give() NX_NO_THREAD_SAFETY_ANALYSIS { failures += !mutex.Unlock().IsOK(); }
    nxMutex mutex;
    unsigned failures = 0;
};

struct OurRecursiveMutex : OurMutex
{
    OurRecursiveMutex() : OurMutex{nxMutex(true)} {}
};

struct OurRobustMutex : OurMutex
{
    OurRobustMutex() { static_cast<void>(mutex.InitialiseAsShared(true)); }
};

struct OurNamedMutex
{
    void Take() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(mutex.Lock()); }
    void Give() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(mutex.Unlock()); }
    nxWindowsMutex mutex{"nxcore benchmark " + std::to_string(getpid())};
};

template <class Mutex>
struct Standard
{
    void Take() { mutex.lock(); }
    void Give() { mutex.unlock(); }
    Mutex mutex;
};

struct OurTriedMutex
{
    void Take() { taken = mutex.TryLock().IsOK(); }
    void Give() NX_NO_THREAD_SAFETY_ANALYSIS
    {
        if (taken)
            static_cast<void>(mutex.Unlock());
    }
    nxMutex mutex;
    bool taken = false;
};

struct BareTriedMutex
{
    void Take() { taken = pthread_mutex_trylock(&mutex) == 0; }
    void Give()
    {
        if (taken)
            pthread_mutex_unlock(&mutex);
    }
    pthread_mutex_t mutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
    bool taken = false;
};

constexpr std::chrono::milliseconds timeLimit(100);

struct OurTimedMutex : OurTriedMutex
{
    void Take() { taken = mutex.LockFor(timeLimit).IsOK(); }
};

struct StandardTimedMutex
{
    void Take() { taken = mutex.try_lock_for(timeLimit); }
    void Give()
    {
        if (taken)
            mutex.unlock();
    }
    std::timed_mutex mutex;
    bool taken = false;
};

void GuardOurs(benchmark::State& state)
{
    static nxMutex mutex;
    for (auto _ : state)
    {
        const nxMutexGuard guard(mutex);
        benchmark::ClobberMemory();
    }
}

void GuardBare(benchmark::State& state)
{
    static pthread_mutex_t mutex = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
    for (auto _ : state)
    {
        pthread_mutex_lock(&mutex);
        benchmark::ClobberMemory();
        pthread_mutex_unlock(&mutex);
    }
}

void GuardStandard(benchmark::State& state)
{
    static std::mutex mutex;
    for (auto _ : state)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        benchmark::ClobberMemory();
    }
}

// Spin lock, semaphores, reader-writer lock, barrier, conditions

struct OurSpinLock
{
    void Take() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(lock.Lock()); }
    void Give() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(lock.Unlock()); }
    nxSpinLock lock;
};

struct BareSpinLock
{
    BareSpinLock() { pthread_spin_init(&lock, PTHREAD_PROCESS_PRIVATE); }
    void Take() { pthread_spin_lock(&lock); }
    void Give() { pthread_spin_unlock(&lock); }
    pthread_spinlock_t lock;
};

struct OurSemaphore
{
    void Take() { static_cast<void>(semaphore.Wait()); }
    void Give() { static_cast<void>(semaphore.Post()); }
    nxSemaphore semaphore{1};
};

struct OurNamedSemaphore
{
    void Take() { static_cast<void>(semaphore.Wait()); }
    void Give() { static_cast<void>(semaphore.Post()); }
    nxWindowsSemaphore semaphore{"nxcore benchmark semaphore " + std::to_string(getpid()), 1, 1};
};

template <int shared>
struct BareSemaphore
{
    BareSemaphore() { sem_init(&semaphore, shared, 1); }
    void Take() { sem_wait(&semaphore); }
    void Give() { sem_post(&semaphore); }
    sem_t semaphore;
};

struct StandardSemaphore
{
    void Take() { semaphore.acquire(); }
    void Give() { semaphore.release(); }
    std::counting_semaphore<> semaphore{1};
};

struct OurReader
{
    static constexpr bool isShared = true;
    void Take() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(lock.ReadLock()); }
    void Give() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(lock.ReadUnlock()); }
    nxReaderWriterLock lock;
};

struct OurWriter
{
    void Take() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(lock.WriteLock()); }
    void Give() NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(lock.WriteUnlock()); }
    nxReaderWriterLock lock;
};

struct BareReader
{
    static constexpr bool isShared = true;
    void Take() { pthread_rwlock_rdlock(&lock); }
    void Give() { pthread_rwlock_unlock(&lock); }
    pthread_rwlock_t lock = PTHREAD_RWLOCK_INITIALIZER;
};

struct BareWriter
{
    void Take() { pthread_rwlock_wrlock(&lock); }
    void Give() { pthread_rwlock_unlock(&lock); }
    pthread_rwlock_t lock = PTHREAD_RWLOCK_INITIALIZER;
};

struct StandardReader
{
    static constexpr bool isShared = true;
    void Take() { lock.lock_shared(); }
    void Give() { lock.unlock_shared(); }
    std::shared_mutex lock;
};

struct OurBarrier
{
    void Take() { static_cast<void>(barrier.Wait()); }
    void Give() {}
    nxBarrier barrier{1};
};

struct BareBarrier
{
    BareBarrier() { pthread_barrier_init(&barrier, nullptr, 1); }
    void Take() { pthread_barrier_wait(&barrier); }
    void Give() {}
    pthread_barrier_t barrier;
};

// A signal that nobody waits for.
struct OurCondition
{
    void Take() { static_cast<void>(condition.Signal()); }
    void Give() {}
    nxConditionRaw condition;
};

struct BareCondition
{
    void Take() { pthread_cond_signal(&condition); }
    void Give() {}
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
};

struct StandardCondition
{
    void Take() { condition.notify_one(); }
    void Give() {}
    std::condition_variable condition;
};

// The thread's number

thread_local unsigned indexOfThisProgram = 1;

void ThreadIndexOurs(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(nxThreadIndex::GetIndexOfCurrentThread());
}

void ThreadIndexLibraryCall(benchmark::State& state)
{
    // One load and a return. By a pointer that is read again and again, because the compiler knows that the answer
    // stays.
    pthread_t (*self)() = &pthread_self;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(self);
        benchmark::DoNotOptimize(self());
    }
}

void ThreadIndexInline(benchmark::State& state)
{
    for (auto _ : state)
    {
        benchmark::ClobberMemory();
        benchmark::DoNotOptimize(unsigned(indexOfThisProgram));
    }
}

const bool registered = []
{
    constexpr bool isShared = true;
    Register<OurMutex>("mutex", "ours");
    Register<OurCheckedMutex>("mutex", "ours_result_tested");
    Register<BareMutex<PTHREAD_MUTEX_ERRORCHECK, !isShared>>("mutex", "limit_errorcheck");
    Register<BareMutex<PTHREAD_MUTEX_NORMAL, !isShared>>("mutex", "limit_normal");
    Register<Standard<std::mutex>>("mutex", "peer_std");

    Register<OurTriedMutex>("mutex_try", "ours", false);
    Register<BareTriedMutex>("mutex_try", "limit_errorcheck", false);

    Register<OurTimedMutex>("mutex_timed", "ours", false);
    Register<BareTriedMutex>("mutex_timed", "limit_errorcheck_try", false);
    Register<StandardTimedMutex>("mutex_timed", "peer_std", false);

    Register<OurRecursiveMutex>("mutex_recursive", "ours");
    Register<BareMutex<PTHREAD_MUTEX_RECURSIVE, !isShared>>("mutex_recursive", "limit_recursive");
    Register<Standard<std::recursive_mutex>>("mutex_recursive", "peer_std");

    Register<OurRobustMutex>("mutex_robust", "ours");
    Register<BareMutex<PTHREAD_MUTEX_ERRORCHECK, isShared>>("mutex_robust", "limit_robust");

    Register<OurNamedMutex>("mutex_named", "ours");
    Register<BareMutex<PTHREAD_MUTEX_RECURSIVE, isShared>>("mutex_named", "limit_robust_recursive");

    Register<OurSpinLock>("spin_lock", "ours");
    Register<BareSpinLock>("spin_lock", "limit_pthread");
#ifdef NX_BENCHMARK_HAS_BOOST_SPINLOCK
    Register<Standard<boost::detail::spinlock>>("spin_lock", "peer_boost");
#endif

    Register<OurSemaphore>("semaphore", "ours");
    Register<BareSemaphore<0>>("semaphore", "limit_sem");
    Register<StandardSemaphore>("semaphore", "peer_std");

    Register<OurNamedSemaphore>("semaphore_named", "ours");
    Register<BareSemaphore<1>>("semaphore_named", "limit_sem_shared");

    Register<OurReader>("read_lock", "ours");
    Register<BareReader>("read_lock", "limit_pthread");
    Register<StandardReader>("read_lock", "peer_std");

    Register<OurWriter>("write_lock", "ours");
    Register<BareWriter>("write_lock", "limit_pthread");
    Register<Standard<std::shared_mutex>>("write_lock", "peer_std");

    Register<OurBarrier>("barrier", "ours", false);
    Register<BareBarrier>("barrier", "limit_pthread", false);

    Register<OurCondition>("signal", "ours", false);
    Register<BareCondition>("signal", "limit_pthread", false);
    Register<StandardCondition>("signal", "peer_std", false);

    benchmark::RegisterBenchmark("mutex_guard/ours", GuardOurs);
    benchmark::RegisterBenchmark("mutex_guard/limit_errorcheck", GuardBare);
    benchmark::RegisterBenchmark("mutex_guard/peer_std", GuardStandard);

    benchmark::RegisterBenchmark("thread_index/ours", ThreadIndexOurs);
    benchmark::RegisterBenchmark("thread_index/limit_library_call", ThreadIndexLibraryCall);
    benchmark::RegisterBenchmark("thread_index/limit_inline_thread_local", ThreadIndexInline);
    return true;
}();
}  // namespace
