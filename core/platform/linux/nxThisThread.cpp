// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxThisThread.h"

#include <cxxabi.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <ctime>

#include "core/platform/nxNanoseconds.h"

#if __has_include(<sys/rseq.h>)
    #include <sys/rseq.h>
#endif

// Stands for this library: what is registered with it ends with it.
extern "C" void* __dso_handle;

unsigned nxThisThread::GetID() { return static_cast<unsigned>(gettid()); }

void nxThisThread::SetName(const char* name) noexcept { pthread_setname_np(pthread_self(), name); }

void nxThisThread::SleepMilliseconds(unsigned milliseconds)
{
    if (milliseconds == 0)
    {
        sched_yield();
        return;
    }
    timespec left{static_cast<time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000 * nxNanoseconds::PerMillisecond)};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR)
    {
    }
}

bool nxThisThread::CallAtEnd(void (*function)(void*), void* argument) noexcept
{
    // Not initialised by a function-local static: a child forked meanwhile would wait for its guard for ever. The key
    // is kept one higher, 0 for none. The thread that made it publishes it by the exchange (release), the others load it
    // (acquire), because the C library keeps what belongs to the key in plain memory.
    static constinit std::atomic<unsigned> kept{0};
    unsigned found = kept.load(std::memory_order_acquire);
    if (pthread_key_t key; found == 0 && pthread_key_create(&key, function) == 0)
    {
        if (kept.compare_exchange_strong(found, key + 1, std::memory_order_acq_rel))
            found = key + 1;
        else
            pthread_key_delete(key);
    }
    if (found == 0)
        return abi::__cxa_thread_atexit(function, argument, &__dso_handle) == 0;
    return pthread_setspecific(found - 1, argument) == 0;
}

const volatile unsigned* nxThisThread::GetProcessorWord() noexcept
{
#ifdef RSEQ_SIG
    if (__rseq_size != 0)
    {
        // The thread's area of restartable sequences, where the kernel keeps the number for anybody to read.
        const auto* const area =
            reinterpret_cast<const struct rseq*>(static_cast<const char*>(__builtin_thread_pointer()) + __rseq_offset);
        return &area->cpu_id_start;
    }
#endif
    static const unsigned none = 0;
    return &none;
}
