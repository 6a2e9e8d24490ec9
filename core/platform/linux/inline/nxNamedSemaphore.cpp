// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/inline/nxNamedSemaphore.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

#include "core/platform/linux/nxMonotonicTime.h"
#include "core/platform/nxSpin.h"

namespace
{
constexpr std::int64_t longestSleep = 50 * nxNanoseconds::PerMillisecond;

// Processes share the word, so the cheaper private form of the call does not serve.
void Sleep(std::atomic<std::uint32_t>& word, std::uint32_t whileEqual, std::int64_t nanoseconds)
{
    const timespec time = nxMonotonicTime::ToTimespec(nanoseconds);
    syscall(SYS_futex, &word, FUTEX_WAIT, whileEqual, &time, nullptr, 0);
}
}  // namespace

bool nxNamedSemaphore::Wait(std::int64_t nanoseconds)
{
    if (TryWait() || (nanoseconds != 0 && nxSpin::Until([this] { return TryWait(); })))
        return true;
    const std::int64_t deadline = nanoseconds < 0 ? nxMonotonicTime::Never : nxMonotonicTime::After(nanoseconds);
    while (!TryWait())
    {
        const std::int64_t left = deadline - nxMonotonicTime::Now();
        if (left <= 0)
            return false;
        if (_Announce())
            Sleep(_word, SleepersBit, std::min(left, longestSleep));
    }
    return true;
}

// Sets the bit. @return false when there is a count to take.
bool nxNamedSemaphore::_Announce()
{
    std::uint32_t word = 0;
    return _word.compare_exchange_strong(word, SleepersBit) || word == SleepersBit;
}

void nxNamedSemaphore::_WakeSleepers() { syscall(SYS_futex, &_word, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0); }
