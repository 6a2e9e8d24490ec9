// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxSystemClock.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <ctime>
#include <optional>
#include <string_view>

#if defined(__x86_64__)
    #include <cpuid.h>
#endif

namespace
{
// Set by CanUseCounter(), before any record: a sandbox has made reading the processor's counter a fault.
// Relaxed: published with nxClock's choice of the source, which follows.
constinit std::atomic<bool> isCounterForbidden{false};

bool IsCounterForbidden()
{
    int mode = PR_TSC_ENABLE;
    return prctl(PR_GET_TSC, &mode, 0, 0, 0) == 0 && mode != PR_TSC_ENABLE;
}

std::int64_t ReadClock(clockid_t clock)
{
    timespec now{};
    // The C library reads the counter too, except where it makes the system call as well.
    if (isCounterForbidden.load(std::memory_order_relaxed)) [[unlikely]]
        syscall(SYS_clock_gettime, clock, &now);
    else
        clock_gettime(clock, &now);
    // Unsigned, because a machine's clock may be set to a year that 64 bits of nanoseconds do not reach.
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U +
                                     static_cast<std::uint64_t>(now.tv_nsec));
}

// The processor's word that its counter runs at one speed, whatever its clock frequency and however deep it sleeps.
bool IsCounterConstant()
{
#if defined(__x86_64__)
    unsigned a = 0, b = 0, c = 0, d = 0;
    constexpr unsigned powerManagement = 0x80000007U, invariantCounter = 1U << 8;
    return __get_cpuid(powerManagement, &a, &b, &c, &d) != 0 && (d & invariantCounter) != 0;
#elif defined(__aarch64__)
    return true;
#else
    return false;
#endif
}

// The kernel's word that all processors' counters agree: it keeps time by them itself. No value where it does not say.
std::optional<bool> KernelTrustsCounter()
{
#if defined(__x86_64__)
    constexpr std::string_view trusted = "tsc\n";
#else
    constexpr std::string_view trusted = "arch_sys_counter\n";
#endif
    const int file = open("/sys/devices/system/clocksource/clocksource0/current_clocksource", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return std::nullopt;
    char text[32];
    const ssize_t size = read(file, text, sizeof text);
    close(file);
    if (size <= 0)
        return std::nullopt;
    return std::string_view(text, static_cast<std::size_t>(size)) == trusted;
}
}  // namespace

std::int64_t nxSystemClock::WallNanoseconds() { return ReadClock(CLOCK_REALTIME); }

std::int64_t nxSystemClock::MonotonicNanoseconds() { return ReadClock(CLOCK_MONOTONIC); }

bool nxSystemClock::CanUseCounter()
{
    const int error = errno;
    const bool isForbidden = IsCounterForbidden();
    isCounterForbidden.store(isForbidden, std::memory_order_relaxed);
    const bool canUse = IsCounterConstant() && !isForbidden && KernelTrustsCounter() == true;
    errno = error;
    return canUse;
}

bool nxSystemClock::HasLeftCounter()
{
    const int error = errno;
    const bool hasLeft = KernelTrustsCounter() == false;
    errno = error;
    return hasLeft;
}

void nxSystemClock::Yield() { sched_yield(); }
