// SPDX-License-Identifier: Apache-2.0
// The part of nxLogChannel that statements call. It is not beside its header, because it uses the parts that are built
// on channels.

#include "core/log/inline/nxLogChannel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/log/inline/nxLogMessage.h"
#include "core/log/inline/nxLogTag.h"
#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogFilling.h"

constinit thread_local nxLogChannel* nxLogChannel::_current = nullptr;

/// The block of an open statement whose record did not fit into what its ring had left. The record's bytes follow.
struct nxLogSpill
{
    char* begin;
    std::size_t capacity;
    bool cut;  ///< The record takes no more values.
};

namespace
{
constexpr std::size_t firstSpillCapacity = 1024;
// Stands for the block of a record that has no memory at all. It takes no values, and the record's end finds it and counts
// the record as dropped.
constinit nxLogSpill noMemory{nullptr, 0, true};

nxLogRoom OpenSpill(nxLogRing& ring, const nxLogSource* source)
{
    auto* const spill = static_cast<nxLogSpill*>(std::malloc(sizeof(nxLogSpill) + firstSpillCapacity));
    if (spill == nullptr)
        return {&ring, nullptr, nullptr, &noMemory};
    ::new (spill) nxLogSpill{reinterpret_cast<char*>(spill + 1), firstSpillCapacity, false};
    nxLogRing::_WriteHeader(spill->begin, source);
    return {&ring, spill->begin + sizeof(nxLogRecordHeader), spill->begin + firstSpillCapacity, spill};
}

// Begins a record. Waiting, where that must be, is left to the end of the statement.
nxLogRoom OpenRecord(nxLogRing& ring, const nxLogSource* source)
{
    nxLogRing::SetCurrent(ring.GetNested());
    if (!ring.FindRoom(nxLogRingMemory::GetInstance(), nxLogChannel::MinimumRoom, nxLogChannel::MinimumRoom))
        return OpenSpill(ring, source);
    char* const begin = ring.GetHead();
    nxLogRing::_WriteHeader(begin, source);
    const nxLogRoom room{&ring, begin + sizeof(nxLogRecordHeader), ring.GetLimit(), nullptr};
    ring.CloseFastPathIfStopped();
    return room;
}

// Moves `size` bytes of a record from `begin` to a block of `capacity` bytes. @return null without memory.
nxLogSpill* MoveToSpill(nxLogSpill* spill, const char* begin, std::size_t size, std::size_t capacity)
{
    if (spill != nullptr && spill->capacity >= capacity)
        return spill;
    void* const memory = std::realloc(spill, sizeof(nxLogSpill) + capacity);
    if (memory == nullptr)
        return nullptr;
    char* const moved = static_cast<char*>(memory) + sizeof(nxLogSpill);
    if (spill == nullptr)
        std::memcpy(moved, begin, size);
    return ::new (memory) nxLogSpill{moved, capacity, false};
}

// Ends a record that has grown too long.
nxLogRoom Cut(nxLogChannel* channel, nxLogSpill* spill, std::size_t size)
{
    char* const end = spill->begin + size;
    *end = static_cast<char>(nxLogTag::Cut);
    spill->cut = true;
    return {channel, end + 1, end + 1, spill};
}

// Completes the header of a record in a block, and queues the record.
void QueueSpill(nxLogRing& ring, nxLogSpill* spill, const char* end, nxEnumValue level)
{
    nxLogRecordHeader header = nxLogRecordBytes::ReadHeader(spill->begin);
    header.size = static_cast<std::uint32_t>(end - spill->begin);
    header.processor = static_cast<std::uint16_t>(ring.GetProcessor());
    header.level = static_cast<std::uint8_t>(level);
    header.kind = nxLogRecordHeader::Statement;
    nxLogRecordBytes::WriteHeader(spill->begin, header);
    nxLogFilling::Append(ring, spill->begin, header.size);
    std::free(spill);
}
}  // namespace

nxLogRoom nxLogChannel::_BeginFirst(const nxLogSource* source) noexcept
{
    nxLogBell::EnsureRunning();
    nxLogRing* const ring = nxLogChannelList::GetInstance().Attach();
    return ring != nullptr ? OpenRecord(*ring, source) : nxLogRoom{nullptr, nullptr, nullptr, &noMemory};
}

nxLogRoom nxLogChannel::_BeginSlowly(nxLogChannel* channel, const nxLogSource* source) noexcept
{
    nxLogBell::EnsureRunning();
    return OpenRecord(static_cast<nxLogRing&>(*channel), source);
}

// Statements of version 1.0 come here with the first record of each ring, because its _limit is null until then. They
// call nobody after they have published it, so the deferred-write thread must go on looking.

nxLogRoom nxLogChannel::_OpenFirst(const nxLogSource* source) noexcept
{
    nxLogBell::KeepLooking();
    const nxLogRoom room = _BeginFirst(source);
    if (room.channel != nullptr)
        static_cast<nxLogRing*>(room.channel)->ServeFirstVersion();
    return room;
}

nxLogRoom nxLogChannel::_OpenSlowly(nxLogChannel* channel, const nxLogSource* source) noexcept
{
    nxLogBell::KeepLooking();
    const nxLogRoom room = _BeginSlowly(channel, source);
    static_cast<nxLogRing*>(channel)->ServeFirstVersion();
    return room;
}

void nxLogChannel::_CallWriter(nxLogChannel* channel) noexcept { static_cast<nxLogRing*>(channel)->CallWriter(); }

nxLogRoom nxLogChannel::_GrowSlowly(nxLogChannel* channel, char* cursor, nxLogSpill* spill, std::size_t bytes) noexcept
{
    // A room that ends at its cursor: a record that cannot grow takes no more values.
    const nxLogRoom full{channel, cursor, cursor, spill};
    if (channel == nullptr || cursor == nullptr || (spill != nullptr && spill->cut))
        return full;
    auto& ring = static_cast<nxLogRing&>(*channel);
    const char* const begin = spill != nullptr ? spill->begin : ring.GetHead();
    const std::size_t size = nxLogRecordBytes::Count(begin, cursor);
    if (spill == nullptr && nxLogRing::MayHold(ring.GetCapacity(), size + bytes) &&
        ring.Extend(nxLogRingMemory::GetInstance(), nxLogRecordBytes::RoundUp(size + bytes)))
    {
        const nxLogRoom extended{channel, cursor, ring.GetLimit(), nullptr};
        ring.CloseFastPathIfStopped();
        return extended;
    }

    const bool isTooLong = size + bytes > nxLogMessage::MaximumSize;
    const std::size_t wanted = isTooLong ? size : std::max(2 * size, size + bytes);
    // One byte is kept for the mark of a cut.
    spill = MoveToSpill(spill, begin, size, wanted + 1);
    if (spill == nullptr)
        return full;
    if (isTooLong)
        return Cut(channel, spill, size);
    return {channel, spill->begin + size, spill->begin + spill->capacity - 1, spill};
}

void nxLogChannel::_CloseSlowly(nxLogChannel* channel, char* cursor, nxLogSpill* spill, nxEnumValue level) noexcept
{
    if (spill == &noMemory)
        nxLogCounters::CountDropped(1, nxLogCounters::Reason::NoMemory);
    else
        QueueSpill(static_cast<nxLogRing&>(*channel), spill, cursor, level);
    if (channel != nullptr)
        _current = channel;
    if (level >= NX_LOG_LEVEL_WARNING)
        Urge(level);
}

void nxLogChannel::Urge(nxEnumValue level) noexcept { nxLogBell::Urge(level); }

void nxLogChannel::WakeWriter() noexcept { Urge(NX_LOG_LEVEL_WARNING); }
