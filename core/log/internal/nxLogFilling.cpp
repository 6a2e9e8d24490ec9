// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFilling.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/internal/nxLogBackpressure.h"
#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogCounters.h"

namespace
{
bool WaitForRoom(nxLogRing& ring, std::size_t bytes)
{
    nxLogRingMemory& memory = nxLogRingMemory::GetInstance();
    return ring.FindRoom(memory, bytes, bytes) ||
           nxLogBackpressure::WaitUntil(
               [&] { return ring.FindRoom(memory, bytes, std::max(bytes, ring.GetRoomWorthWaitingFor())); });
}

template <class Fill>
bool AppendToRing(nxLogRing& ring, std::size_t size, const Fill& fill)
{
    if (!WaitForRoom(ring, nxLogRecordBytes::RoundUp(size)))
        return false;
    fill(ring.GetHead());
    ring.Publish(size);
    ring.CloseFastPathIfStopped();
    return true;
}

// The ring's record refers to the block and owns it from now on.
bool AppendBlock(nxLogRing& ring, char* block, std::size_t size)
{
    nxLogRingMemory& memory = nxLogRingMemory::GetInstance();
    const auto claim = [&] { return memory.ClaimBlock(size); };
    if (!claim() && !nxLogBackpressure::WaitUntil(claim))
    {
        std::free(block);
        return false;
    }
    const bool isAppended = AppendToRing(ring, nxLogRecordBytes::ElsewhereSize,
                                         [block](char* out) { nxLogRecordBytes::WriteElsewhere(out, block); });
    if (!isAppended)
        memory.FreeBlock(block, size);
    return isAppended;
}

template <class Fill>
bool AppendInBlock(nxLogRing& ring, std::size_t size, const Fill& fill, nxLogCounters::Reason& reason)
{
    char* const block = static_cast<char*>(std::malloc(size));
    if (block == nullptr)
    {
        reason = nxLogCounters::Reason::NoMemory;
        return false;
    }
    fill(block);
    return AppendBlock(ring, block, size);
}

// Appends a record of `size` bytes, which `fill` writes; waits for room where it must.
template <class Fill>
void AppendRecord(nxLogRing& ring, std::size_t size, const Fill& fill)
{
    constexpr std::size_t large = nxLogRingMemory::RingSize;
    const std::size_t rounded = nxLogRecordBytes::RoundUp(size);
    const auto fits = [&] { return nxLogRing::MayHold(ring.GetCapacity(), rounded); };
    // A record that is too large for a small segment alone gets the thread a large one.
    if (!fits() && nxLogRing::MayHold(large, rounded) && ring.GetCapacity() < large)
        ring.AppendSegment(nxLogRingMemory::GetInstance());
    auto reason = nxLogCounters::Reason::QueueFull;
    if (!(fits() ? AppendToRing(ring, size, fill) : AppendInBlock(ring, size, fill, reason)))
        nxLogCounters::CountDropped(1, reason);
}
}  // namespace

void nxLogFilling::Append(nxLogRing& ring, const char* bytes, std::size_t size) noexcept
{
    AppendRecord(ring, size, [=](char* out) { std::memcpy(out, bytes, size); });
}

void nxLogFilling::Write(const nxLogRecord& record) noexcept
{
    nxLogBell::EnsureRunning();
    nxLogRing* ring = nxLogRing::GetCurrent();
    if (ring == nullptr)
        ring = nxLogChannelList::GetInstance().Attach();
    if (ring == nullptr)
    {
        nxLogCounters::CountDropped(1, nxLogCounters::Reason::NoMemory);
        return;
    }
    // A signal handler that logs meanwhile finds the nested ring.
    nxLogRing::SetCurrent(ring->GetNested());
    const std::size_t size = nxLogRecordBytes::GetObjectSize(record);
    AppendRecord(*ring, size, [&record, size](char* out) { nxLogRecordBytes::WriteObject(out, record, size); });
    nxLogRing::SetCurrent(ring);
    if (record.level >= NX_LOG_LEVEL_WARNING)
        nxLogBell::Urge(static_cast<nxEnumValue>(record.level));
}
