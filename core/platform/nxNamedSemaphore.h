#ifndef CORE_PLATFORM_NXNAMEDSEMAPHORE_H
#define CORE_PLATFORM_NXNAMEDSEMAPHORE_H

#include <atomic>
#include <cstdint>

/// A semaphore that lives in memory shared by processes, any of which may be killed at any moment.
///
/// One word: the count and a bit that says that somebody may be asleep. Nobody sleeps longer than 100 ms without
/// looking again, so nothing depends on a wake-up that a killed process did not get to make.
class nxNamedSemaphore
{
public:
    static constexpr std::uint32_t LargestCount = 0x7FFFFFFF;

    void Initialise(std::uint32_t initialCount, std::uint32_t maximumCount);

    /// Takes one count, waiting for it at most @p nanoseconds, for ever when that is negative.
    /// @return false when the time is over.
    bool Wait(std::int64_t nanoseconds);

    /// Adds one count unless the maximum is reached.
    void Post();

private:
    bool _TryWait();
    bool _Announce();

    std::atomic<std::uint32_t> _word;
    std::uint32_t _maximum;
};

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

#endif
