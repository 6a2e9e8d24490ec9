// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxWaitWord.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <ctime>
#include <limits>

#include "core/platform/nxNanoseconds.h"

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t), "the kernel looks at the word itself");

void nxWaitWord::Wait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t nanoseconds) noexcept
{
    const timespec time{nanoseconds / nxNanoseconds::PerSecond, nanoseconds % nxNanoseconds::PerSecond};
    // Without a time the system starts no timer, which it would have to stop before the thread goes on.
    const bool isEndless = nanoseconds == std::numeric_limits<std::int64_t>::max();
    const int saved = errno;
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, expected, isEndless ? nullptr : &time, nullptr, 0);
    errno = saved;
}

namespace
{
void Wake(const std::atomic<std::uint32_t>* address, int threads)
{
    const int saved = errno;
    syscall(SYS_futex, address, FUTEX_WAKE_PRIVATE, threads, nullptr, nullptr, 0);
    errno = saved;
}
}  // namespace

void nxWaitWord::WakeAll(const std::atomic<std::uint32_t>* address) noexcept { Wake(address, INT_MAX); }

void nxWaitWord::WakeOne(const std::atomic<std::uint32_t>* address) noexcept { Wake(address, 1); }
