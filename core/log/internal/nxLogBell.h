#ifndef CORE_LOG_INTERNAL_NXLOGBELL_H
#define CORE_LOG_INTERNAL_NXLOGBELL_H

#include <atomic>
#include <cstdint>

#include "core/enum/nxEnumValue.h"

/// Calls the deferred-write thread, and tells whether it runs. This is all that the parts which fill the queue know of
/// the parts which empty it.
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
        Stopping  ///< It is to end, and has not looked yet.
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
    /// Returns when the bell rings or has rung since the last call, after @p nanoseconds, or for no reason. Called by the
    /// deferred-write thread.
    static void Sleep(std::int64_t nanoseconds) noexcept;

    /// Whether the calling thread may wait for records to be written: it does not write them itself, and is not inside a
    /// device.
    static bool CallerMayWait() noexcept { return !IsCallerWriter() && !IsCallerInsideDevice(); }
    static bool IsCallerWriter() noexcept;
    static bool IsCallerInsideDevice() noexcept;
    /// The calling thread begins to write records, or has ceased to.
    static void SetCallerWriter(bool isWriter) noexcept;
    /// The calling thread has entered a device, or has left the last one that it was inside.
    static void SetCallerInsideDevice(bool isInside) noexcept;

    // Declared here for those who ring; defined by nxLogWriter, which does the work.

    /// Starts the deferred-write thread, which did not run a moment ago. Never waits for it. @return whether it runs.
    static bool Start() noexcept;
    /// Does one round in the calling thread, if it may wait and gets its turn within @p limit nanoseconds.
    static void RunRoundHere(std::int64_t limit = 0) noexcept;
    /// Has what the calling thread has just queued, a record of @p level, on its way to the operating system at once:
    /// by the deferred-write thread, or while that cannot be started by the calling thread itself. Waits for a fatal
    /// record, a tenth of a second at most, until it is there: the process may not live to see another round.
    static void Urge(nxEnumValue level) noexcept;

    /// The child has no deferred-write thread yet.
    static void AfterForkInChild() noexcept;

private:
    static constinit std::atomic<State> _state;
    static constinit std::atomic<std::uint32_t> _word;  // what the deferred-write thread sleeps on
};

#endif
