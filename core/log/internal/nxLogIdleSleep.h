// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGIDLESLEEP_H
#define CORE_LOG_INTERNAL_NXLOGIDLESLEEP_H

#include <cstdint>

class nxLogChannelList;

/// The sleep of the deferred-write thread while no records come. The first record ends it, and the thread that reports
/// that record pays for the call; no other record costs its thread more than a look at a flag of its own.
///
/// Invariant: a record that is published while the deferred-write thread sleeps is followed by nxLogBell::Ring(). It
/// holds although neither side orders its own two steps by a fence:
///
/// | the thread that reports, for its ring | the deferred-write thread, for all rings                       |
/// |---------------------------------------|----------------------------------------------------------------|
/// | 1. store `_head` (release)            | 1. store `_isCallWanted` (relaxed)                             |
/// | 2. load `_isCallWanted` (relaxed)     | 2. nxProcessBarrier::Pass()                                    |
/// | 3. if set: Ring()                     | 3. load `_head` (acquire); no sleep if a record is there       |
/// |                                       | 4. nxLogBell::Sleep()                                          |
///
/// The barrier takes place in every thread of the process, between two of its instructions; the compiler keeps the steps
/// of the reporting thread in their order. If the barrier comes before step 1 or 2 of a reporting thread, that thread's
/// load sees the flag. If it comes after step 2, the store of step 1 came before it, and the look of step 3 sees the
/// record. `_head` pairs with `_head`: the store of step 1 with the look of step 3 and of the next round.
/// `_isCallWanted` orders no other memory. Ring() and Sleep() pair through the word of nxSleepBell, each with an exchange
/// (acquire and release), so a bell that rings before step 4 keeps the thread awake.
///
/// A thread that gets a ring later takes the flag under the mutex of the list, before its first record.
///
/// Errors: without the barrier (an old kernel, a filter of system calls, an emulator), and as soon as the process has
/// statements that do not look at the flag, the sleep lasts nxLogLimits::LookInterval at most. Threads: the
/// deferred-write thread.
class nxLogIdleSleep
{
public:
    /// @param list outlives the object.
    explicit nxLogIdleSleep(nxLogChannelList& list) noexcept : _list(list) {}

    /// Sleeps until a record is published, the bell rings or @p nanoseconds have passed; shorter when a record waits.
    void Sleep(std::int64_t nanoseconds) noexcept;
    /// Records come: no thread needs to call any more.
    void End() noexcept;

private:
    bool _AskForCalls() noexcept;

    nxLogChannelList& _list;
    bool _isPrepared = false;  // the barrier was prepared, or refused
    bool _hasBarrier = false;
    bool _areCallsWanted = false;
};

#endif
