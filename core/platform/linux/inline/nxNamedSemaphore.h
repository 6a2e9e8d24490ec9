// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_INLINE_NXNAMEDSEMAPHORE_H
#define CORE_PLATFORM_LINUX_INLINE_NXNAMEDSEMAPHORE_H

#include <atomic>
#include <cstdint>

#include "core/nxExport.h"

/// A semaphore in memory shared by processes, any of which may be killed at any moment.
///
/// One word holds the count and a bit that is set while a thread may be asleep. A sleeper tries again every 50 ms, so that
/// no thread depends on a wake-up that a killed process has not made.
class NX_CORE_API nxNamedSemaphore
{
public:
    static constexpr std::uint32_t LargestCount = 0x7FFFFFFF;

    void Initialise(std::uint32_t initialCount, std::uint32_t maximumCount)
    {
        _maximum = maximumCount;
        _word.store(initialCount, std::memory_order_release);
    }

    /// Takes one count if it is not 0.
    bool TryWait()
    {
        std::uint32_t word = _word.load(std::memory_order_relaxed);
        while (_CountOf(word) != 0)
        {
            if (_word.compare_exchange_weak(word, word - 1, std::memory_order_acquire, std::memory_order_relaxed))
                return true;
        }
        return false;
    }

    /// Takes one count and waits for it at most @p nanoseconds; a negative number means no limit.
    /// @return false when the time has passed.
    bool Wait(std::int64_t nanoseconds);

    /// Adds one count unless the maximum is reached.
    void Post()
    {
        // Clears the bit and wakes all sleepers; those that find no count set it again. A single sleeper might be killed
        // before it takes the count.
        std::uint32_t word = _word.load(std::memory_order_relaxed);
        do
        {
            if (_CountOf(word) >= _maximum)
                return;
        } while (!_word.compare_exchange_weak(word, _CountOf(word) + 1));
        if ((word & SleepersBit) != 0) [[unlikely]]
            _WakeSleepers();
    }

private:
    static constexpr std::uint32_t SleepersBit = 0x80000000;

    static std::uint32_t _CountOf(std::uint32_t word) { return word & ~SleepersBit; }

    bool _Announce();
    void _WakeSleepers();

    // Post() adds a count after what its thread did, in the default order, of which the release is needed; TryWait() takes
    // one (acquire). _Announce() has the default order, because it comes before a sleep. Initialise() stores it after
    // _maximum (release). Relaxed where an exchange compares the value that was loaded.
    std::atomic<std::uint32_t> _word;
    std::uint32_t _maximum;
};

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

#endif
