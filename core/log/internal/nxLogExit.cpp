// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogExit.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "core/log/internal/nxLogAwakeTime.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogDeviceQueues.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/platform/nxProcess.h"
#include "core/platform/nxStandardStream.h"

namespace
{
// Does nothing when the limit is used up, or when a device has stalled in an earlier step and not moved since.
// @return whether all has been written.
bool WriteOutInStep()
{
    static nxLogAwakeTime waited;
    static bool stalled = false;
    static std::uint32_t progressAtStall = 0;
    nxLogDeviceList::GetInstance().BeginEnd();
    if (waited.Look() >= nxLogLimits::End.inAll || (stalled && nxLogCounters::GetProgress() == progressAtStall))
        return false;
    stalled = !nxLogWriter::GetInstance().WriteOutAtEnd(waited);
    // What the log's thread has handed to the threads of devices.
    static_cast<void>(nxLogDeviceQueues::WaitUntilWritten(nxLogLimits::End, waited));
    progressAtStall = nxLogCounters::GetProgress();
    return !stalled;
}

void WriteOutAtExit() { static_cast<void>(WriteOutInStep()); }

void TellLostRecords(std::uint64_t lost)
{
    constexpr std::string_view begin = "Log records that were not written when the process ended: ";
    char text[128];
    char* end = std::copy(begin.begin(), begin.end(), text);
    end = std::to_chars(end, text + sizeof text - 1, lost).ptr;
    *end++ = '\n';
    static_cast<void>(nxStandardStream::GetErrors().Write({text, static_cast<std::size_t>(end - text)}));
}

// Once more when the library itself ends: static destructors that ran meanwhile may have reported.
[[gnu::destructor]] void WriteOutAtUnload()
{
    nxLogWriter& writer = nxLogWriter::GetInstance();
    const bool isWritten = WriteOutInStep();
    nxLogDeviceQueues::BlockForGood();
    if (const std::uint64_t lost = nxLogDeviceQueues::CountWaiting(); lost != 0)
        nxLogDeviceQueues::TellDropped(lost);
    // From here the process may end at any instruction of its threads. Make sure that none of them is writing a line.
    if (isWritten)
        return writer.BlockRoundsForGood();
    // A device has stalled, or there is no memory to write with.
    if (const std::uint64_t lost = nxLogChannelList::GetInstance().DropWaiting(writer.GetInHand()); lost != 0)
        TellLostRecords(lost);
}
}  // namespace

void nxLogExit::Register() noexcept
{
    // Not initialised by a function-local static: a child forked meanwhile would wait for its guard for ever.
    static constinit bool isRegistered = false;
    isRegistered = isRegistered || nxProcess::CallAtEnd(&WriteOutAtExit);
}
