// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGBELL_H
#define CORE_LOG_INTERNAL_NXLOGBELL_H

#include <atomic>
#include <cstdint>

#include "core/enum/nxEnumValue.h"
#include "core/platform/nxSleepBell.h"

/// Wakes the deferred-write thread, and tells whether it runs. The parts that fill the queue know no more than this
/// about the parts that empty it.
///
/// Invariant: a bell that rings before the deferred-write thread sleeps keeps it awake; a thread that writes records
/// itself, or that is inside a device, never waits for the deferred-write thread.
///
/// Errors: none. Threads: any. It works before and after all static objects live.
class nxLogBell
{
public:
    nxLogBell() = delete;

    /// Of the deferred-write thread.
    enum class State : std::uint32_t
    {
        Stopped,
        Running,
        Stopping  ///< It runs, and ends at its next look.
    };

    static State GetState() noexcept { return _state.load(std::memory_order_acquire); }
    static bool IsRunning() noexcept { return GetState() == State::Running; }
    static void SetState(State state) noexcept { _state.store(state, std::memory_order_release); }
    /// Changes the state to @p to if it is @p from. @return the state before.
    static State ChangeState(State from, State to) noexcept;

    /// Starts the deferred-write thread if it does not run. Never waits for it. @return whether it runs.
    static bool EnsureRunning() noexcept { return IsRunning() || Start(); }

    /// Makes the deferred-write thread look at the queue at once.
    static void Ring() noexcept;
    /// From now on the deferred-write thread looks at the queue every nxLogLimits::LookInterval at least: there are
    /// statements in the process that do not call it.
    static void KeepLooking() noexcept;
    static bool MustKeepLooking() noexcept { return _mustKeepLooking.load(std::memory_order_relaxed); }
    /// Returns when the bell rings or has rung since the last call, after @p nanoseconds, or for no reason. Called by
    /// the deferred-write thread.
    static void Sleep(std::int64_t nanoseconds) noexcept;

    /// Whether the calling thread may wait for records to be written: it does not write them itself, and is not inside
    /// a device.
    static bool CallerMayWait() noexcept { return !IsCallerWriter() && !IsCallerInsideDevice(); }
    /// Whether the calling thread writes records. A thread that was in a round is no writer any more in a child that a
    /// device has forked: the round and its records are the parent's, and the thread leaves it.
    static bool IsCallerWriter() noexcept;
    static bool IsCallerInsideDevice() noexcept;
    /// The calling thread begins to write records, or has ceased to.
    static void SetCallerWriter(bool isWriter) noexcept;
    /// The calling thread has entered a device, or has left the last one that it was inside.
    static void SetCallerInsideDevice(bool isInside) noexcept;

    // Declared here for the parts that ring, and defined with the writer, which does the work.

    /// Starts the deferred-write thread, which did not run a moment ago. Never waits for it. @return whether it runs.
    static bool Start() noexcept;
    /// Does one round in the calling thread, if it may wait and gets its turn within @p limit nanoseconds.
    static void RunRoundHere(std::int64_t limit = 0) noexcept;
    /// Has a record of @p level, which the calling thread has just queued, written at once: by the deferred-write
    /// thread, or by the calling thread itself while that does not run. Waits until a fatal record is written, a
    /// tenth of a second at most, because the process may end before the next round.
    static void Urge(nxEnumValue level) noexcept;

    /// The child has no deferred-write thread yet, and its only thread is in no round of the child.
    static void AfterForkInChild() noexcept;

private:
    // What the deferred-write thread did before it stopped is stored before the state (release), and a thread that finds it
    // stopped loads that (acquire). All other data of starting and stopping are under the mutex of nxLogWriterThread.
    // Changes by ChangeState() have the default order, because they are rare. Relaxed in a child, which has one thread.
    static constinit std::atomic<State> _state;
    // The deferred-write thread sleeps on it. Each exchange of Ring() pairs with the next one of Sleep(): what was done
    // before the call is seen after the sleep.
    static constinit nxSleepBell _bell;  // of the deferred-write thread
    // Never cleared. Relaxed: ordered by the Ring() that follows its change.
    static constinit std::atomic<bool> _mustKeepLooking;
};

#endif
