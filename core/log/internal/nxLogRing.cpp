// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogRing.h"

#include <algorithm>

#include "core/log/internal/nxLogBell.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/nxThreadIndex.h"

namespace
{
// Kept free between the limit and a tail ahead of it: a jump fits, and head == tail always means empty.
constexpr std::ptrdiff_t headToTailGap = 24;
}  // namespace

nxLogRing::nxLogRing(nxLogSegment& segment) noexcept
{
    _head.store(segment.begin, std::memory_order_relaxed);
    _roomEnd = segment.begin;
    _processor = nxThisThread::GetProcessorWord();
    _segment = &segment;
    _threadIndex = nxThreadIndex::GetIndexOfCurrentThread();
    _tail.store(segment.begin, std::memory_order_relaxed);
    _read = _seen = segment.begin;
    _readSegment = &segment;
}

bool nxLogRing::_IsInHeadSegment(const char* tail) const noexcept
{
    return _segment->begin <= tail && tail <= _segment->end;
}

// Whether the end of the segment is too short for `bytes`, and there are as many before the tail.
bool nxLogRing::_HasRoomAtStart(const char* head, const char* tail, std::size_t bytes) const noexcept
{
    return _IsInHeadSegment(tail) && tail <= head && nxLogRecordBytes::Count(head, _segment->end) < bytes &&
           tail - _segment->begin >= static_cast<std::ptrdiff_t>(bytes) + headToTailGap;
}

char* nxLogRing::_GoToStart(char* head) noexcept
{
    nxLogRecordBytes::WriteJump(head, _segment->begin);
    _MoveHead(_segment->begin);
    return _segment->begin;
}

// The end of the free bytes at the head.
char* nxLogRing::_GetFreeEnd(char* head, char* tail) const noexcept
{
    return _IsInHeadSegment(tail) && tail > head ? std::max(head, tail - headToTailGap) : _segment->end;
}

// The bytes of the head's segment that hold records, or all where the emptying thread has not reached it.
std::size_t nxLogRing::_GetUsed(const char* head, const char* tail) const noexcept
{
    if (!_IsInHeadSegment(tail))
        return _segment->capacity;
    return tail <= head ? nxLogRecordBytes::Count(tail, head)
                        : _segment->capacity - nxLogRecordBytes::Count(head, tail);
}

// Looks how far the emptying thread has come, and moves the limit on; with `mayMove` the head, too.
bool nxLogRing::_LookForRoom(const nxLogRingMemory& memory, std::size_t bytes, bool mayMove) noexcept
{
    // A record that is waited for finds room in an empty ring wherever head and tail are: after the head, or else
    // before it.
    static_assert(2 * (nxLogRingMemory::SmallRingSize / _recordDivisor) + static_cast<std::size_t>(headToTailGap) +
                      nxLogRecordBytes::JumpSize <=
                  nxLogRingMemory::SmallRingSize);

    char* head = GetHead();
    char* const tail = _tail.load(std::memory_order_acquire);
    nxThreadSanitizer::Acquire(&_tail);
    if (mayMove && _HasRoomAtStart(head, tail, bytes))
        head = _GoToStart(head);

    const std::size_t capacity = _segment->capacity;
    const std::size_t quarter = capacity / 4;
    // A small segment that overflows is followed by a large one, which costs the thread less than to wake the writer
    // for every few kilobytes; without room for that it has to be emptied in time, like a large one.
    const bool mayOverflow = capacity < nxLogRingMemory::RingSize && memory.HasRoomForSegment();
    if (_GetUsed(head, tail) >= quarter && !mayOverflow)
        nxLogBell::Ring();
    // The limit stops at every quarter, so that the writer is woken in time.
    const std::size_t most = mayOverflow ? capacity : std::max(bytes, quarter);
    const std::size_t room = std::min(nxLogRecordBytes::Count(head, _GetFreeEnd(head, tail)), most);
    _SetLimit(head + room);
    return room >= bytes;
}

bool nxLogRing::Extend(const nxLogRingMemory& memory, std::size_t bytes) noexcept
{
    return _LookForRoom(memory, bytes, false);
}

bool nxLogRing::FindRoom(nxLogRingMemory& memory, std::size_t bytes, std::size_t preferred) noexcept
{
    return _LookForRoom(memory, preferred, true) || (AppendSegment(memory) && _LookForRoom(memory, bytes, true));
}

bool nxLogRing::AppendSegment(nxLogRingMemory& memory) noexcept
{
    nxLogSegment* const segment = memory.TakeSegment();
    if (segment == nullptr)
        return false;
    nxLogRecordBytes::WriteJump(GetHead(), segment->begin);
    _segment = segment;
    _SetLimit(segment->begin);
    _MoveHead(segment->begin);
    return true;
}

void nxLogRing::CloseFastPathIfStopped() noexcept
{
    if (!nxLogBell::IsRunning())
        _SetLimit(GetHead());
}

void nxLogRing::CallWriter() noexcept
{
    // A late clearing does no harm: the bell rings after it, and the emptying thread sets the flag again before it sleeps.
    _isCallWanted.store(false, std::memory_order_relaxed);
    nxLogBell::Ring();
}

void nxLogRing::ForgetWaiting() noexcept
{
    _isCallWanted.store(false, std::memory_order_relaxed);
    char* const head = GetHead();
    _SetLimit(head);
    _tail.store(head, std::memory_order_relaxed);
    _read = _seen = head;
    _readSegment = _segment;
}
