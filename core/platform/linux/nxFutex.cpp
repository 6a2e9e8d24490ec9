#include "core/platform/nxFutex.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t), "the kernel looks at the word itself");

void nxFutex::Wait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t nanoseconds) noexcept
{
    constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
    timespec time{};
    time.tv_sec = static_cast<time_t>(nanoseconds / nanosecondsPerSecond);
    time.tv_nsec = static_cast<long>(nanoseconds % nanosecondsPerSecond);
    const int saved = errno;
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, expected, &time, nullptr, 0);
    errno = saved;
}

void nxFutex::WakeAll(const std::atomic<std::uint32_t>& word) noexcept
{
    const int saved = errno;
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
    errno = saved;
}
