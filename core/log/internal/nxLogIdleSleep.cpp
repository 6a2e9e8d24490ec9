// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogIdleSleep.h"

#include <algorithm>
#include <utility>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/platform/nxProcessBarrier.h"

void nxLogIdleSleep::Sleep(std::int64_t nanoseconds) noexcept
{
    std::int64_t longest = std::min(nanoseconds, nxLogLimits::MaintenanceInterval);
    if (!_AskForCalls())
        longest = std::min(longest, nxLogLimits::LookInterval);
    else if (!_list.IsEmpty())
        longest = std::min(longest, nxLogLimits::BusySleep);
    if (longest > 0)
        nxLogBell::Sleep(longest);
}

// @return whether every record that is published from now on is followed by a call, and all others can be seen.
bool nxLogIdleSleep::_AskForCalls() noexcept
{
    if (!std::exchange(_isPrepared, true))
        _hasBarrier = nxProcessBarrier::Prepare();
    if (!_hasBarrier || nxLogBell::MustKeepLooking())
    {
        End();
        return false;
    }
    _areCallsWanted = true;
    _list.WantCalls(true);
    _hasBarrier = nxProcessBarrier::Pass();
    return _hasBarrier;
}

void nxLogIdleSleep::End() noexcept
{
    if (std::exchange(_areCallsWanted, false))
        _list.WantCalls(false);
}
