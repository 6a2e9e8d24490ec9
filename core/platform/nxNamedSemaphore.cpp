#include "core/platform/nxNamedSemaphore.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <ctime>
#include <limits>

namespace
{
constexpr std::uint32_t SleepersBit = 0x80000000;
constexpr std::int64_t SliceNanoseconds = 100'000'000;

std::uint32_t CountOf(std::uint32_t word) { return word & ~SleepersBit; }

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

void WakeAll(std::atomic<std::uint32_t>& word) { syscall(SYS_futex, &word, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0); }
}  // namespace

void nxNamedSemaphore::Initialise(std::uint32_t initialCount, std::uint32_t maximumCount)
{
    _maximum = maximumCount;
    _word.store(initialCount);
}

bool nxNamedSemaphore::Wait(std::int64_t nanoseconds)
{
    if (_TryWait())
        return true;
    const std::int64_t deadline = DeadlineAfter(nanoseconds);
    while (!_TryWait())
    {
        const std::int64_t left = deadline - Now();
        if (left <= 0)
            return false;
        if (_Announce())
            Sleep(_word, SleepersBit, std::min(left, SliceNanoseconds));
    }
    return true;
}

void nxNamedSemaphore::Post()
{
    // All sleepers are woken and the bit is cleared; those who find nothing set it again. Waking one of them would rely
    // on that one to live long enough to take the count.
    std::uint32_t word = _word.load();
    do
    {
        if (CountOf(word) >= _maximum)
            return;
    } while (!_word.compare_exchange_weak(word, CountOf(word) + 1));
    if ((word & SleepersBit) != 0)
        WakeAll(_word);
}

bool nxNamedSemaphore::_TryWait()
{
    std::uint32_t word = _word.load();
    while (CountOf(word) != 0)
    {
        if (_word.compare_exchange_weak(word, word - 1))
            return true;
    }
    return false;
}

// Sets the bit; false when there is a count instead.
bool nxNamedSemaphore::_Announce()
{
    std::uint32_t word = 0;
    return _word.compare_exchange_strong(word, SleepersBit) || word == SleepersBit;
}
