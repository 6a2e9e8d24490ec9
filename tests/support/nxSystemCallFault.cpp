// SPDX-License-Identifier: Apache-2.0
#include "tests/support/nxSystemCallFault.h"

#include <dirent.h>
#include <dlfcn.h>
#include <ifaddrs.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <type_traits>

#include "tests/support/nxCallPauses.h"

// This file is compiled without sanitizers: its functions are called before and below them. It does not include <fcntl.h>,
// so that open, openat and fcntl can be defined without their ellipsis: an argument that is there travels in the same
// register, and one that is not is not looked at.

namespace
{
enum Function : unsigned
{
#define NX_CALL(style, result, name, parameters, arguments, exceptions) Function_##name,
#include "tests/support/nxSystemCalls.inc"
#undef NX_CALL
    Function_malloc,
    Function_realloc,
    FunctionCount
};

constexpr const char* names[] = {
#define NX_CALL(style, result, name, parameters, arguments, exceptions) #name,
#include "tests/support/nxSystemCalls.inc"
#undef NX_CALL
    "malloc",
    "realloc",
};
static_assert(sizeof(names) / sizeof(names[0]) == FunctionCount);

// How a function tells its caller that it has failed.
enum class Style
{
    Code,
    Errno
};

// One armed fault. Atomic, because threads read a fault for any thread without synchronisation.
struct Fault
{
    std::atomic<bool> armed{false};
    std::atomic<int> error{0};
    std::atomic<bool> executed{false};
    std::atomic<void (*)()> meanwhile{nullptr};
    std::atomic<unsigned> skip{0};
    std::atomic<unsigned> times{0};
    std::atomic<unsigned> hits{0};
};

constinit Fault ofAnyThread[FunctionCount];
constinit thread_local Fault ofThisThread[FunctionCount];

constinit thread_local bool clockStands = false;
constinit thread_local timespec standingClock{};
constinit thread_local long long hurry = 0;  // nanoseconds a reading, and in all
constinit thread_local long long hurried = 0;
constinit thread_local bool hurryWaits = false;

Fault& FaultOf(unsigned function, bool anyThread) { return anyThread ? ofAnyThread[function] : ofThisThread[function]; }

// Takes one from `count` unless it is zero.
bool TakeOne(std::atomic<unsigned>& count)
{
    unsigned left = count.load();
    while (left != 0 && !count.compare_exchange_weak(left, left - 1))
    {
    }
    return left != 0;
}

bool Strikes(Fault& fault)
{
    if (!fault.armed.load(std::memory_order_acquire) || TakeOne(fault.skip) || !TakeOne(fault.times))
        return false;
    ++fault.hits;
    return true;
}

// What is to become of a call: fail with `error` unless that is 0, and be executed first or not.
struct Verdict
{
    int error = 0;
    bool executed = false;
};

Verdict Judge(Function function)
{
    for (Fault* const fault : {&ofThisThread[function], &ofAnyThread[function]})
    {
        if (!Strikes(*fault))
            continue;
        if (void (*const meanwhile)() = fault->meanwhile; meanwhile != nullptr)
            meanwhile();
        return {fault->error.load(), fault->executed.load()};
    }
    return {};
}

// The function that would have been called without this file: the sanitizer's if there is one, else the C library's.
template <class Pointer>
Pointer Next(std::atomic<void*>& cache, Pointer sanitizers, const char* name)
{
    if (sanitizers != nullptr)
        return sanitizers;
    void* next = cache.load(std::memory_order_relaxed);
    if (next == nullptr)
    {
        next = dlsym(RTLD_NEXT, name);
        cache.store(next, std::memory_order_relaxed);
    }
    return reinterpret_cast<Pointer>(next);
}

// A pause before a call and one after, each where chance wants it.
struct Pauses
{
    Pauses() noexcept { nxCallPauses::MayPause(); }
    ~Pauses() { nxCallPauses::MayPause(); }
    Pauses(const Pauses&) = delete;
    Pauses& operator=(const Pauses&) = delete;
};

template <class Result>
Result Failed([[maybe_unused]] Style style, int error)
{
    if constexpr (std::is_pointer_v<Result>)
    {
        errno = error;
        return MAP_FAILED;
    }
    else
    {
        if (style != Style::Errno)
            return error;
        errno = error;
        return -1;
    }
}

// Whether an allocation is to fail, which it then tells in errno.
bool IsFailingAllocation(Function function)
{
    const int error = Judge(function).error;
    if (error != 0)
        errno = error;
    return error != 0;
}
}  // namespace

#define NX_NEXT(name) Next(next_##name, &__interceptor_##name, #name)

extern "C"
{
#define NX_CALL(style, result, name, parameters, arguments, exceptions)      \
    __attribute__((weak)) result __interceptor_##name parameters exceptions; \
    static constinit std::atomic<void*> next_##name{nullptr};                \
    result name parameters exceptions                                        \
    {                                                                        \
        const Verdict verdict = Judge(Function_##name);                      \
        if (verdict.error == 0 && !nxCallPauses::IsOn())                     \
            return NX_NEXT(name) arguments;                                  \
        if (verdict.error == 0)                                              \
        {                                                                    \
            const Pauses pauses;                                             \
            return NX_NEXT(name) arguments;                                  \
        }                                                                    \
        if (verdict.executed)                                                \
            NX_NEXT(name) arguments;                                         \
        return Failed<result>(Style::style, verdict.error);                  \
    }
#include "tests/support/nxSystemCalls.inc"
#undef NX_CALL

    // The C library's allocator is asked for by its other names, because dlsym may allocate.
    void* __libc_malloc(size_t size) noexcept;
    void* __libc_realloc(void* block, size_t size) noexcept;
    __attribute__((weak)) void* __interceptor_malloc(size_t size) noexcept;
    __attribute__((weak)) void* __interceptor_realloc(void* block, size_t size) noexcept;

    void* malloc(size_t size) noexcept
    {
        if (IsFailingAllocation(Function_malloc))
            return nullptr;
        return &__interceptor_malloc != nullptr ? __interceptor_malloc(size) : __libc_malloc(size);
    }

    void* realloc(void* block, size_t size) noexcept
    {
        if (IsFailingAllocation(Function_realloc))
            return nullptr;
        return &__interceptor_realloc != nullptr ? __interceptor_realloc(block, size) : __libc_realloc(block, size);
    }

    __attribute__((weak)) int __interceptor_clock_gettime(clockid_t clock, timespec* time) noexcept;
    static constinit std::atomic<void*> next_clock_gettime{nullptr};
    int clock_gettime(clockid_t clock, timespec* time) noexcept
    {
        if (clockStands && clock == CLOCK_REALTIME)
        {
            *time = standingClock;
            return 0;
        }
        constexpr long long second = 1'000'000'000;
        timespec begin{};
        timespec now{};
        if (hurryWaits)
            NX_NEXT(clock_gettime)(CLOCK_MONOTONIC, &begin);
        while (hurryWaits && (now.tv_sec - begin.tv_sec) * second + now.tv_nsec - begin.tv_nsec < hurry)
            NX_NEXT(clock_gettime)(CLOCK_MONOTONIC, &now);
        const int result = NX_NEXT(clock_gettime)(clock, time);
        if (clock == CLOCK_MONOTONIC && hurry != 0 && !hurryWaits)
        {
            hurried += hurry;
            const long long nanoseconds = time->tv_nsec + hurried;
            time->tv_sec += nanoseconds / second;
            time->tv_nsec = nanoseconds % second;
        }
        return result;
    }
}  // extern "C"

nxSystemCallFault::nxSystemCallFault(const char* function, int error) : nxSystemCallFault(function, error, Options()) {}

nxSystemCallFault::nxSystemCallFault(const char* function, int error, const Options& options)
    : _function(0), _anyThread(options.anyThread)
{
    while (_function != FunctionCount && std::strcmp(names[_function], function) != 0)
        ++_function;
    if (_function == FunctionCount || FaultOf(_function, _anyThread).armed)
    {
        std::fprintf(stderr, "nxSystemCallFault: \"%s\" is unknown or has a fault already\n", function);
        std::abort();
    }
    Fault& fault = FaultOf(_function, _anyThread);
    fault.error = error;
    fault.executed = options.executed;
    fault.meanwhile = options.meanwhile;
    fault.skip = options.skip;
    fault.times = options.times;
    fault.hits = 0;
    fault.armed.store(true, std::memory_order_release);
}

nxSystemCallFault::~nxSystemCallFault() { FaultOf(_function, _anyThread).armed = false; }

unsigned nxSystemCallFault::GetHits() const { return FaultOf(_function, _anyThread).hits; }

nxFixedWallClock::nxFixedWallClock(long long seconds, long nanoseconds)
{
    standingClock = {seconds, nanoseconds};
    clockStands = true;
}

nxFixedWallClock::~nxFixedWallClock() { clockStands = false; }

nxHurriedClock::nxHurriedClock(long long nanosecondsAReading, bool waits)
{
    hurried = 0;
    hurry = nanosecondsAReading;
    hurryWaits = waits;
}

nxHurriedClock::~nxHurriedClock()
{
    hurry = 0;
    hurryWaits = false;
}
