// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGRINGMEMORY_H
#define CORE_LOG_INTERNAL_NXLOGRINGMEMORY_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutex.h"

/// The memory of one ring. The ring's own bytes follow it.
struct nxLogSegment
{
    static constexpr std::size_t HeaderSize = 64;  ///< From the segment to its bytes.

    /// The segment whose bytes begin at @p begin.
    static nxLogSegment* At(char* begin) { return reinterpret_cast<nxLogSegment*>(begin - HeaderSize); }

    nxLogSegment* nextFree;
    std::size_t capacity;
    char* begin;
    char* end;  ///< Room for one jump follows.
};
static_assert(sizeof(nxLogSegment) <= nxLogSegment::HeaderSize);

/// The memory for queued records: segments of rings, and claims for records in blocks of their own.
///
/// Invariant: GetBytes() is the sum of the capacities of all segments and the sizes of all claimed blocks. It exceeds
/// the maximum only by small segments, which threads get that have not reported yet, by one block at a time, and after
/// the maximum was lowered.
///
/// Errors: null or false without memory; nothing is claimed then. Threads: any.
class nxLogRingMemory
{
public:
    static constexpr std::size_t RingSize = std::size_t{256} << 10;      ///< Bytes of a large segment.
    static constexpr std::size_t SmallRingSize = std::size_t{16} << 10;  ///< Bytes of a small segment.

    /// The memory of the process. Never destroyed: threads and static destructors report to the very end.
    static nxLogRingMemory& GetInstance() noexcept;
    nxLogRingMemory() noexcept = default;

    /// @param bytes the maximum; at least a mebibyte counts. Segments that nothing uses are freed where it demands
    /// that.
    void SetMaximumBytes(std::size_t bytes) noexcept;
    std::size_t GetMaximumBytes() const noexcept { return _maximumBytes.load(std::memory_order_relaxed); }
    std::size_t GetBytes() const noexcept { return _bytes.load(std::memory_order_relaxed); }

    /// Allocates large segments for about @p records in advance, within the maximum, and keeps this many from now on.
    void Reserve(std::size_t records) noexcept;
    /// Frees half of the segments that past bursts have left. Called once a second: bursts that come within a few seconds
    /// find memory that has pages already, and pay for no page faults.
    void Trim() noexcept;

    /// @return a large segment within the maximum, which the caller gives back.
    nxLogSegment* TakeSegment() noexcept;
    /// Whether a large segment that is not there yet would be within the maximum.
    bool HasRoomForSegment() const noexcept { return GetBytes() + RingSize <= GetMaximumBytes(); }
    /// @return a small segment, the first of a thread; also beyond the maximum, as long as the devices make progress.
    nxLogSegment* TakeSmallSegment() noexcept;
    void GiveSegment(nxLogSegment* segment) noexcept;

    /// Claims @p bytes for a block. One claim at a time may exceed the maximum, so that a large record does not wait
    /// for rings that are held but empty. @return whether it was claimed.
    bool ClaimBlock(std::size_t bytes) noexcept;
    /// Frees a block, allocated by malloc(), for which @p bytes were claimed.
    void FreeBlock(char* block, std::size_t bytes) noexcept;

    void BeforeFork() noexcept { nxForkMutex::Take(_mutex); }
    void AfterForkInParent() noexcept { nxForkMutex::GiveBack(_mutex); }
    /// @param bytesInUse the capacities of the segments that the child goes on using. All that the parent's other
    ///        threads had taken no longer counts.
    void AfterForkInChild(std::size_t bytesInUse) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    bool _ClaimBytes(std::size_t bytes) noexcept;
    nxLogSegment* _AllocateClaimed(std::size_t capacity) noexcept;
    bool _ReserveOne(std::size_t wanted) noexcept;
    nxLogSegment* _PopFreeSegment() noexcept NX_REQUIRES(_mutex);
    void _FreeSegment(nxLogSegment* segment) noexcept;
    bool _FreeIdleSegment() noexcept;
    bool _IsOverfull() noexcept;

    nxMutex _mutex;
    nxLogSegment* _freeSegments NX_GUARDED_BY(_mutex) = nullptr;
    std::size_t _freeSegmentCount NX_GUARDED_BY(_mutex) = 0;
    // The progress when there was last seen to be too much, and since when there has been none.
    std::uint32_t _progressAtOverfull NX_GUARDED_BY(_mutex) = ~std::uint32_t{0};
    std::int64_t _overfullSince NX_GUARDED_BY(_mutex) = 0;

    // Relaxed: numbers, which order no other memory. Segments pass from thread to thread under _mutex or by malloc().
    std::atomic<std::size_t> _reservedSegments{0};
    std::atomic<std::size_t> _bytes{0};
    std::atomic<std::size_t> _blocks{0};  // that are claimed
    std::atomic<std::size_t> _maximumBytes{std::size_t{64} << 20};
};

#endif
