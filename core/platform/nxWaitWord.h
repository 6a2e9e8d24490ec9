// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXWAITWORD_H
#define CORE_PLATFORM_NXWAITWORD_H

#include <atomic>
#include <cstdint>

/// Sleeping on a word of memory until another thread of the process changes it. The log waits with it, because it needs
/// no lock, works in a forked child and has no failure that would have to be logged.
class nxWaitWord
{
public:
    nxWaitWord() = delete;

    /// Sleeps until a wake-up, or for @p nanoseconds of a clock that cannot be set; the largest number is no limit. Returns at
    /// once when @p word is not @p expected. May return early without a reason: callers check again what they wait for.
    /// Leaves errno as it is.
    static void Wait(const std::atomic<std::uint32_t>& word, std::uint32_t expected, std::int64_t nanoseconds) noexcept;

    /// Wakes every thread that sleeps on @p word. Leaves errno as it is.
    static void WakeAll(const std::atomic<std::uint32_t>& word) noexcept { WakeAll(&word); }
    /// The same by the address of a word, which may be gone. A thread that sleeps on what came to its place may wake early.
    static void WakeAll(const std::atomic<std::uint32_t>* address) noexcept;
    /// Wakes one thread. @copydetails WakeAll(const std::atomic<std::uint32_t>*)
    static void WakeOne(const std::atomic<std::uint32_t>* address) noexcept;
};

#endif
