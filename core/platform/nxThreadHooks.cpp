#include "core/platform/nxThreadHooks.h"

#include <pthread.h>
#include <signal.h>

#include <cstddef>
#include <cstdlib>

#if __has_include(<sys/rseq.h>)
    #include <sys/rseq.h>
#endif

bool nxThreadHooks::AtFork(void (*before)(), void (*afterInParent)(), void (*afterInChild)()) noexcept
{
    return pthread_atfork(before, afterInParent, afterInChild) == 0;
}

bool nxThreadHooks::AtThreadExit(void (*function)(void*), void* argument) noexcept
{
    struct Key
    {
        explicit Key(void (*destructor)(void*)) : valid(pthread_key_create(&key, destructor) == 0) {}
        pthread_key_t key{};
        bool valid;
    };
    static const Key key(function);
    return key.valid && pthread_setspecific(key.key, argument) == 0;
}

bool nxThreadHooks::AtExit(void (*function)()) noexcept { return std::atexit(function) == 0; }

void nxThreadHooks::BecomeServiceThread(const char* name) noexcept
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    pthread_setname_np(pthread_self(), name);
}

const volatile unsigned* nxThreadHooks::GetProcessorWord() noexcept
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
