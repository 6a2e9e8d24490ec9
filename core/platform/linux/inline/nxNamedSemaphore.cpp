#include "core/platform/linux/inline/nxNamedSemaphore.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <ctime>
#include <limits>

#include "core/platform/nxSpin.h"

namespace
{
constexpr std::int64_t LongestSleep = 50'000'000;

std::int64_t Now()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

std::int64_t DeadlineAfter(std::int64_t nanoseconds)
{
    const std::int64_t now = Now();
    const std::int64_t never = std::numeric_limits<std::int64_t>::max();
    return nanoseconds < 0 || nanoseconds > never - now ? never : now + nanoseconds;
}

// The word is shared between processes, which rules out the cheaper private form of the call.
void Sleep(std::atomic<std::uint32_t>& word, std::uint32_t whileEqual, std::int64_t nanoseconds)
{
    const timespec time{nanoseconds / 1'000'000'000, nanoseconds % 1'000'000'000};
    syscall(SYS_futex, &word, FUTEX_WAIT, whileEqual, &time, nullptr, 0);
}
}  // namespace

bool nxNamedSemaphore::Wait(std::int64_t nanoseconds)
{
    if (TryWait() || (nanoseconds != 0 && nxSpin::Until([this] { return TryWait(); })))
        return true;
    const std::int64_t deadline = DeadlineAfter(nanoseconds);
    while (!TryWait())
    {
        const std::int64_t left = deadline - Now();
        if (left <= 0)
            return false;
        if (_Announce())
            Sleep(_word, SleepersBit, std::min(left, LongestSleep));
    }
    return true;
}

// Sets the bit; false when there is a count instead.
bool nxNamedSemaphore::_Announce()
{
    std::uint32_t word = 0;
    return _word.compare_exchange_strong(word, SleepersBit) || word == SleepersBit;
}

void nxNamedSemaphore::_WakeSleepers() { syscall(SYS_futex, &_word, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0); }
