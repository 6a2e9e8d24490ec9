// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogRingMemory.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogRecordBytes.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxNanoseconds.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
constexpr std::size_t pageSize = 4096;
// Touched in advance, so that a thread's first records do not pay for page faults.
constexpr std::size_t touchedInAdvance = std::size_t{64} << 10;
constexpr std::size_t leastMaximumBytes = std::size_t{1} << 20;
// Free segments that are kept even when none are reserved.
constexpr std::size_t spareSegments = 4;
// The assumed size of an average record.
constexpr std::size_t averageRecord = 128;
// New threads may exceed the maximum by this much in total, about a thousand small segments.
constexpr std::size_t maximumOverdraft = std::size_t{16} << 20;
// After this time without progress new threads beyond the overdraft get no segment.
constexpr std::int64_t overfullTime = nxNanoseconds::PerSecond / 10;

void TouchPages(char* begin, std::size_t size)
{
    for (std::size_t offset = 0; offset < size; offset += pageSize)
        begin[offset] = 0;
}
}  // namespace

nxLogRingMemory& nxLogRingMemory::GetInstance() noexcept
{
    alignas(nxLogRingMemory) static unsigned char storage[sizeof(nxLogRingMemory)];
    static nxLogRingMemory& memory = *::new (storage) nxLogRingMemory;
    return memory;
}

bool nxLogRingMemory::_ClaimBytes(std::size_t bytes) noexcept
{
    const std::size_t maximum = GetMaximumBytes();
    std::size_t claimed = GetBytes();
    do
    {
        if (claimed + bytes > maximum)
            return false;
    } while (!_bytes.compare_exchange_weak(claimed, claimed + bytes, std::memory_order_relaxed));
    return true;
}

bool nxLogRingMemory::ClaimBlock(std::size_t bytes) noexcept
{
    while (!_ClaimBytes(bytes))
    {
        if (_FreeIdleSegment())
            continue;
        std::size_t none = 0;
        if (!_blocks.compare_exchange_strong(none, 1, std::memory_order_relaxed))
            return false;
        _bytes.fetch_add(bytes, std::memory_order_relaxed);
        return true;
    }
    _blocks.fetch_add(1, std::memory_order_relaxed);
    return true;
}

void nxLogRingMemory::FreeBlock(char* block, std::size_t bytes) noexcept
{
    std::free(block);
    _bytes.fetch_sub(bytes, std::memory_order_relaxed);
    _blocks.fetch_sub(1, std::memory_order_relaxed);
}

bool nxLogRingMemory::_FreeIdleSegment() noexcept
{
    const nxMutexGuard guard(_mutex);
    nxLogSegment* const segment = _PopFreeSegment();
    if (segment != nullptr)
        _FreeSegment(segment);
    return segment != nullptr;
}

// Gives the claim back when there is no memory.
nxLogSegment* nxLogRingMemory::_AllocateClaimed(std::size_t capacity) noexcept
{
    void* const memory = std::aligned_alloc(nxLogSegment::HeaderSize, nxLogSegment::HeaderSize + capacity);
    if (memory == nullptr)
    {
        _bytes.fetch_sub(capacity, std::memory_order_relaxed);
        return nullptr;
    }
    char* const begin = static_cast<char*>(memory) + nxLogSegment::HeaderSize;
    TouchPages(begin, std::min(capacity, touchedInAdvance));
    return ::new (memory) nxLogSegment{nullptr, capacity, begin, begin + capacity - nxLogRecordBytes::JumpSize};
}

nxLogSegment* nxLogRingMemory::TakeSegment() noexcept
{
    {
        const nxMutexGuard guard(_mutex);
        if (nxLogSegment* const segment = _PopFreeSegment())
        {
            if (GetBytes() <= GetMaximumBytes())
                return segment;
            // The maximum has been lowered since.
            _FreeSegment(segment);
        }
    }
    return _ClaimBytes(RingSize) ? _AllocateClaimed(RingSize) : nullptr;
}

// Most threads say little, so their first segment is small: a large one comes when it overflows.
nxLogSegment* nxLogRingMemory::TakeSmallSegment() noexcept
{
    while (!_ClaimBytes(SmallRingSize))
    {
        if (_FreeIdleSegment())
            continue;
        // A thread that has not reported yet gets a segment beyond the maximum, too. But a device that makes no
        // progress while threads come and go must not take all memory.
        if (_IsOverfull())
            return nullptr;
        _bytes.fetch_add(SmallRingSize, std::memory_order_relaxed);
        break;
    }
    return _AllocateClaimed(SmallRingSize);
}

// Whether the maximum is exceeded by more than the overdraft, and no device has made progress for overfullTime.
bool nxLogRingMemory::_IsOverfull() noexcept
{
    const std::size_t bytes = GetBytes();
    const std::size_t most = GetMaximumBytes() + maximumOverdraft;
    if (bytes <= most)
        return false;
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    const nxMutexGuard guard(_mutex);
    if (const std::uint32_t progress = nxLogCounters::GetProgress(); progress != _progressAtOverfull)
    {
        _progressAtOverfull = progress;
        _overfullSince = now;
    }
    // Threads can come so fast that the time alone would bound nothing.
    return now - _overfullSince >= (bytes <= most + maximumOverdraft ? overfullTime : overfullTime / 10);
}

nxLogSegment* nxLogRingMemory::_PopFreeSegment() noexcept
{
    nxLogSegment* const segment = _freeSegments;
    if (segment == nullptr)
        return nullptr;
    _freeSegments = segment->nextFree;
    --_freeSegmentCount;
    return segment;
}

void nxLogRingMemory::GiveSegment(nxLogSegment* segment) noexcept
{
    if (segment->capacity != RingSize)
        return _FreeSegment(segment);
    const nxMutexGuard guard(_mutex);
    segment->nextFree = _freeSegments;
    _freeSegments = segment;
    ++_freeSegmentCount;
}

void nxLogRingMemory::_FreeSegment(nxLogSegment* segment) noexcept
{
    _bytes.fetch_sub(segment->capacity, std::memory_order_relaxed);
    std::free(segment);
}

void nxLogRingMemory::SetMaximumBytes(std::size_t bytes) noexcept
{
    _maximumBytes.store(std::max(bytes, leastMaximumBytes), std::memory_order_relaxed);
    const nxMutexGuard guard(_mutex);
    while (GetBytes() > GetMaximumBytes() && _freeSegments != nullptr)
        _FreeSegment(_PopFreeSegment());
}

void nxLogRingMemory::Reserve(std::size_t records) noexcept
{
    const std::size_t most = GetMaximumBytes() / RingSize;
    const std::size_t wanted = std::min((records * averageRecord + RingSize - 1) / RingSize, most);
    _reservedSegments.store(wanted, std::memory_order_relaxed);
    // Other threads may take segments meanwhile.
    for (std::size_t count = 0; count < wanted && _ReserveOne(wanted); ++count)
    {
    }
}

// Whether another segment may be added to the free ones, of which there are to be `wanted`.
bool nxLogRingMemory::_ReserveOne(std::size_t wanted) noexcept
{
    {
        const nxMutexGuard guard(_mutex);
        if (_freeSegmentCount >= wanted)
            return false;
    }
    nxLogSegment* const segment = _ClaimBytes(RingSize) ? _AllocateClaimed(RingSize) : nullptr;
    if (segment == nullptr)
        return false;
    TouchPages(segment->begin, segment->capacity);
    GiveSegment(segment);
    return true;
}

void nxLogRingMemory::Trim() noexcept
{
    const std::size_t kept = std::max(spareSegments, _reservedSegments.load(std::memory_order_relaxed));
    const nxMutexGuard guard(_mutex);
    const std::size_t left = _freeSegmentCount > kept ? kept + (_freeSegmentCount - kept) / 2 : kept;
    while (_freeSegmentCount > left)
        _FreeSegment(_PopFreeSegment());
}

void nxLogRingMemory::AfterForkInChild(std::size_t bytesInUse) noexcept
{
    nxForkMutex::Renew(_mutex);
    _bytes.store(bytesInUse + _freeSegmentCount * RingSize, std::memory_order_relaxed);
    _blocks.store(0, std::memory_order_relaxed);
}
