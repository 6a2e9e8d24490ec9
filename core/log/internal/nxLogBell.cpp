// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogBell.h"

namespace
{
constinit thread_local bool isCallerWriter = false;
constinit thread_local bool isCallerInsideDevice = false;
}  // namespace

constinit std::atomic<nxLogBell::State> nxLogBell::_state{State::Stopped};
constinit nxSleepBell nxLogBell::_bell;
constinit std::atomic<bool> nxLogBell::_mustKeepLooking{false};

nxLogBell::State nxLogBell::ChangeState(State from, State to) noexcept
{
    State before = from;
    _state.compare_exchange_strong(before, to);
    return before;
}

void nxLogBell::Ring() noexcept { _bell.Ring(); }

void nxLogBell::Sleep(std::int64_t nanoseconds) noexcept { _bell.Sleep(nanoseconds); }

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
    _bell.Reset();
    isCallerWriter = false;
}
