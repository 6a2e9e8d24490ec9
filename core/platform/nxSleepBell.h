// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXSLEEPBELL_H
#define CORE_PLATFORM_NXSLEEPBELL_H

#include <atomic>
#include <cstdint>

#include "core/platform/nxWaitWord.h"

/// Lets one thread sleep until another one calls it.
///
/// Invariant: a Ring() that comes before the thread sleeps keeps it awake. Both sides exchange the word (acquire and release),
/// so what a caller wrote before Ring() is known to the thread after Sleep().
///
/// Errors: none. Threads: any may call Ring(), one thread at a time Sleep(). Works before and after all static objects live.
class nxSleepBell
{
public:
    /// Wakes the thread, or keeps it from its next sleep.
    void Ring() noexcept
    {
        if (_word.exchange(_called, std::memory_order_acq_rel) == _asleep)
            nxWaitWord::WakeAll(_word);
    }
    /// Returns when the bell rings or has rung since the last call, after @p nanoseconds, or for no reason.
    void Sleep(std::int64_t nanoseconds) noexcept
    {
        std::uint32_t expected = _awake;
        if (_word.compare_exchange_strong(expected, _asleep, std::memory_order_acq_rel))
            nxWaitWord::Wait(_word, _asleep, nanoseconds);
        // Not a plain store, which could reach memory after the exchange of a caller and so overwrite a call.
        _word.exchange(_awake, std::memory_order_acq_rel);
    }
    /// Forgets calls. For a forked child, whose thread does not exist yet.
    void Reset() noexcept { _word.store(_awake, std::memory_order_relaxed); }

private:
    static constexpr std::uint32_t _awake = 0;
    static constexpr std::uint32_t _called = 1;
    static constexpr std::uint32_t _asleep = 2;
    // Ring() exchanges it after what the caller did, Sleep() before what the thread does next: acquire and release on both
    // sides. Relaxed in a child, which has one thread.
    std::atomic<std::uint32_t> _word{_awake};
};

#endif
