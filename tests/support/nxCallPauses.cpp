// SPDX-License-Identifier: Apache-2.0
#include "tests/support/nxCallPauses.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>

// Like nxSystemCallFault.cpp this is called below the sanitizers. The system is called directly, because clock_gettime of a
// test program is the program's own.

namespace
{
constexpr std::uint64_t longestPause = 20'000'000;  // nanoseconds

constinit std::uint64_t pausesInThousand = 0;
constinit thread_local std::uint64_t state = 0;

__attribute__((constructor)) void ReadSetting()
{
    const char* const setting = std::getenv("NX_TEST_PAUSES");
    pausesInThousand = setting == nullptr ? 0 : std::strtoull(setting, nullptr, 10);
}

// Steele's SplitMix, begun anew in each thread with the time.
std::uint64_t Random() noexcept
{
    if (state == 0)
    {
        timespec time{};
        syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
        state = static_cast<std::uint64_t>(time.tv_nsec) ^ reinterpret_cast<std::uintptr_t>(&state);
    }
    state += 0x9E3779B97F4A7C15U;
    std::uint64_t value = state;
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}
}  // namespace

bool nxCallPauses::IsOn() noexcept { return pausesInThousand != 0; }

void nxCallPauses::MayPause() noexcept
{
    const std::uint64_t random = Random();
    if (random % 1'000 >= pausesInThousand)
        return;
    const int before = errno;
    const timespec pause{0, static_cast<long>((random >> 16U) % longestPause)};
    syscall(SYS_nanosleep, &pause, nullptr);
    errno = before;
}
