// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXSIGNALS_H
#define CORE_PLATFORM_NXSIGNALS_H

#include <cstdint>
#include <vector>

#include "core/platform/inline/nxNative.h"

/// The signals of the process: which are blocked, and waits for them. No call installs a handler.
///
/// Threads: any. Errors: none but those that are named.
class nxSignals
{
public:
    nxSignals() = delete;

    /// A set of signals, the lowest bit for signal 1.
    using Set = std::uint64_t;

    /// @return the set of @p signal alone; the empty set if a thread cannot wait for it: no number of a signal, a signal of
    ///         the C library, one that cannot be blocked, or one that a fault of a thread sends to that thread.
    static Set GetSet(int signal) noexcept;

    /// Whether the process ignores @p signal. A program inherits that from the one that started it.
    static bool IsIgnored(int signal) noexcept;

    /// Blocks @p signals for the calling thread. @return those that were not blocked before.
    static Set Block(Set signals) noexcept;
    /// Unblocks @p signals for the calling thread. May be called in a forked child.
    static void Unblock(Set signals) noexcept;

    /// Waits for one of @p signals, which are blocked for every thread, and takes it from the process.
    /// @return its number; 0 if Wake() was called with @p token for this thread.
    static int Wait(Set signals, const void* token) noexcept;
    /// Takes one of @p signals if it has come already; forgets a call of Wake() with @p token. @return its number; 0 for none.
    static int Take(Set signals, const void* token) noexcept;
    /// Ends one call of Wait() by @p thread, also one that has yet to begin.
    /// @param signals what the thread waits for; not empty.
    static void Wake(nxNative::Thread thread, Set signals, const void* token) noexcept;

    /// @return the numbers of the threads of the process in which one of @p signals is not blocked; empty where the system
    ///         does not tell.
    static std::vector<unsigned> FindThreadsThatAccept(Set signals);
};

#endif
