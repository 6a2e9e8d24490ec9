// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogMerge.h"

#include <algorithm>
#include <new>
#include <utility>

#include "core/log/internal/nxLogCounters.h"

namespace
{
// Counters of different processors have been seen to differ by this many ticks, a few microseconds.
constexpr std::uint64_t counterSkew = 10'000;
// A record that is at least this far ahead was stamped before the clock was set back.
constexpr std::uint64_t leastClockStep = 100'000'000;
}  // namespace

nxLogMerge& nxLogMerge::GetInstance() noexcept
{
    alignas(nxLogMerge) static unsigned char storage[sizeof(nxLogMerge)];
    static nxLogMerge& merge =
        *::new (storage) nxLogMerge(nxLogChannelList::GetInstance(), nxLogRingMemory::GetInstance());
    return merge;
}

void nxLogMerge::Begin(bool everything) noexcept
{
    _round.times = nxLogRecordTimes(nxClock::GetScale());
    // Before the heads are read: all records that were begun earlier and are published by now are in this round. A
    // round that takes everything does not ask the clocks, which may differ from processor to processor.
    _round.cutOff = everything ? _noTicks : nxClock::Ticks() - counterSkew;
    _round.rings = nullptr;
    _round.current = nullptr;
    _round.oldest = _noTicks;
    const nxMutexGuard guard(_list.GetMutex());
    _list.RemoveFinished();
    for (nxLogRing* ring = _list.GetFirst(); ring != nullptr; ring = ring->_next)
        if (ring->Look())
        {
            ring->_nextInRound = std::exchange(_round.rings, ring);
            if (const char* const first = ring->GetFirstWaiting(); first != nullptr)
                _round.oldest = std::min(_round.oldest, nxLogRecordBytes::ReadTicks(first));
        }
}

std::int64_t nxLogMerge::GetLag() const noexcept
{
    return nxLogRecordBytes::GetAge(_round.oldest, _round.times.GetScale());
}

// Continues where the jump leads. When that is in another segment, the one before has been read to its end.
void nxLogMerge::_FollowJump(nxLogRing& ring) noexcept
{
    char* const target = nxLogRecordBytes::ReadJump(ring._read);
    nxLogSegment* const segment = nxLogSegment::At(target);
    ring._read = target;
    if (segment == ring._readSegment)
        return;
    const nxMutexGuard guard(_list.GetMutex());
    ring.MoveTail();
    _memory.GiveSegment(std::exchange(ring._readSegment, segment));
}

nxLogMerge::Age nxLogMerge::_GetAge(std::uint64_t ticks, std::uint64_t cutOff) noexcept
{
    if (ticks <= cutOff)
        return Age::Due;
    return ticks - cutOff <= leastClockStep ? Age::Later : Age::ClockSetBack;
}

// The ring's next record that belongs to the round; null when there is none left.
const char* nxLogMerge::_AdvanceToRecord(nxLogRing& ring) noexcept
{
    while (!ring._finished)
    {
        if (ring._read == ring._seen)
            ring._finished = true;
        else if (nxLogRecordBytes::ReadKind(ring._read) == nxLogRecordHeader::Jump)
            _FollowJump(ring);
        else if (_GetAge(nxLogRecordBytes::ReadTicks(ring._read), _round.cutOff) == Age::Later)
            ring._finished = true;
        else
            return ring._read;
    }
    return nullptr;
}

void nxLogMerge::_ChooseOldest() noexcept
{
    std::uint64_t oldest = _noTicks;
    _round.otherOldest = _noTicks;
    _round.current = nullptr;
    for (nxLogRing* ring = _round.rings; ring != nullptr; ring = ring->_nextInRound)
    {
        const char* const bytes = _AdvanceToRecord(*ring);
        if (bytes == nullptr)
            continue;
        const std::uint64_t ticks = nxLogRecordBytes::ReadTicks(bytes);
        if (_round.current == nullptr || ticks < oldest)
        {
            if (_round.current != nullptr)
                _round.otherOldest = oldest;
            oldest = ticks;
            _round.current = ring;
        }
        else
            _round.otherOldest = std::min(_round.otherOldest, ticks);
    }
}

// Leaves the current ring when another one has the oldest record.
void nxLogMerge::_ChooseRing() noexcept
{
    const char* const bytes = _round.current != nullptr ? _AdvanceToRecord(*_round.current) : nullptr;
    if (bytes == nullptr || nxLogRecordBytes::ReadTicks(bytes) > _round.otherOldest)
        _ChooseOldest();
}

bool nxLogMerge::_NextOfAll(nxLogRecord& record) noexcept
{
    if (_round.block != nullptr) [[unlikely]]
        _FreeBlock();
    _ChooseRing();
    if (_round.current == nullptr)
        return false;
    nxLogRing& ring = *_round.current;
    const char* bytes = ring._read;
    _Take(ring);
    // A block is freed by the next look at all rings.
    _round.currentUntil = std::min(_round.otherOldest, _round.cutOff);
    if (nxLogRecordBytes::ReadKind(bytes) == nxLogRecordHeader::Elsewhere) [[unlikely]]
    {
        bytes = _round.block = nxLogRecordBytes::ReadBlock(bytes);
        _round.currentUntil = 0;
    }
    nxLogRecordBytes::Decode(record, bytes, ring._threadIndex, _round.times);
    return true;
}

// The block of the record that Next() returned last.
void nxLogMerge::_FreeBlock() noexcept
{
    char* const block = std::exchange(_round.block, nullptr);
    {
        // From here on no thread that visits waiting records finds the block.
        const nxMutexGuard guard(_list.GetMutex());
        _round.current->MoveTail();
    }
    _memory.FreeBlock(block, nxLogRecordBytes::ReadSize(block));
}

void nxLogMerge::GiveBackRoom() noexcept
{
    if (_round.block != nullptr)
        _FreeBlock();
    if (_round.rings == nullptr)
        return;
    // A thread's ring counts as empty only where the tail has reached the head, and is given back only then. So after a
    // round the tail of each of its rings is where the reading stopped, also when there was but a jump to follow.
    bool hasMoved = false;
    {
        const nxMutexGuard guard(_list.GetMutex());
        for (nxLogRing* ring = _round.rings; ring != nullptr; ring = ring->_nextInRound)
            hasMoved |= ring->MoveTail();
    }
    if (hasMoved)
        nxLogCounters::CountProgress();
}
