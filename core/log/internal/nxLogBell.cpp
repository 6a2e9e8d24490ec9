// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogBell.h"

#include "core/platform/nxWaitWord.h"

namespace
{
// The states of the word.
constexpr std::uint32_t writerAwake = 0;
constexpr std::uint32_t writerCalled = 1;
constexpr std::uint32_t writerAsleep = 2;

constinit thread_local bool isCallerWriter = false;
constinit thread_local bool isCallerInsideDevice = false;
}  // namespace

constinit std::atomic<nxLogBell::State> nxLogBell::_state{State::Stopped};
constinit std::atomic<std::uint32_t> nxLogBell::_word{writerAwake};
constinit std::atomic<bool> nxLogBell::_mustKeepLooking{false};

nxLogBell::State nxLogBell::ChangeState(State from, State to) noexcept
{
    State before = from;
    _state.compare_exchange_strong(before, to);
    return before;
}

void nxLogBell::Ring() noexcept
{
    if (_word.exchange(writerCalled, std::memory_order_acq_rel) == writerAsleep)
        nxWaitWord::WakeAll(_word);
}

void nxLogBell::Sleep(std::int64_t nanoseconds) noexcept
{
    std::uint32_t expected = writerAwake;
    if (_word.compare_exchange_strong(expected, writerAsleep, std::memory_order_acq_rel))
        nxWaitWord::Wait(_word, writerAsleep, nanoseconds);
    // Not a plain store, which could reach memory after the exchange of a caller and so overwrite a call.
    _word.exchange(writerAwake, std::memory_order_acq_rel);
}

void nxLogBell::KeepLooking() noexcept
{
    if (!MustKeepLooking() && !_mustKeepLooking.exchange(true, std::memory_order_relaxed))
        Ring();  // the thread may be about to sleep longer; the exchange in Ring() orders the flag before its next look
}

bool nxLogBell::IsCallerWriter() noexcept { return isCallerWriter; }

bool nxLogBell::IsCallerInsideDevice() noexcept { return isCallerInsideDevice; }

void nxLogBell::SetCallerWriter(bool isWriter) noexcept { isCallerWriter = isWriter; }

void nxLogBell::SetCallerInsideDevice(bool isInside) noexcept { isCallerInsideDevice = isInside; }

void nxLogBell::AfterForkInChild() noexcept
{
    _state.store(State::Stopped, std::memory_order_relaxed);
    _word.store(writerAwake, std::memory_order_relaxed);
}
