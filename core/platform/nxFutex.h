#ifndef CORE_PLATFORM_NXFUTEX_H
#define CORE_PLATFORM_NXFUTEX_H

#include <atomic>
#include <cstdint>

/// Sleeping on a word of memory until another thread changes it: what the log waits with, because it needs no lock,
/// works in a forked child and cannot fail in a way that would have to be logged.
class nxFutex
{
public:
    nxFutex() = delete;

    /// Sleeps until a wake-up, or for @p nanoseconds of a clock that nobody can set; returns at once when @p word is
    /// not @p expected. May return early without a reason: callers look again at what they wait for.
    static void Wait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t nanoseconds) noexcept;

    /// Wakes every thread that sleeps on @p word.
    static void WakeAll(const std::atomic<std::uint32_t>& word) noexcept;
};

#endif
