// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGMERGE_H
#define CORE_LOG_INTERNAL_NXLOGMERGE_H

#include <cstdint>
#include <limits>

#include "core/log/internal/nxLogChannelList.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/platform/inline/nxClock.h"

/// Takes the records out of all rings, in rounds: Begin(), then Next() until there is none, then GiveBackRoom().
///
/// Invariant: within a round the records of each ring come in order, those of different rings in the order of their
/// ticks, and none that was begun after Begin(). The bytes of a record stay until the next call of Next() or
/// GiveBackRoom(). Tails move in GiveBackRoom(), and where a block or a segment has been read to its end.
///
/// Threads: one at a time, the one that holds the round.
class nxLogMerge
{
public:
    /// The merge of all rings of the process. Never destroyed.
    static nxLogMerge& GetInstance() noexcept;
    /// @param list, memory outlive the merge.
    nxLogMerge(nxLogChannelList& list, nxLogRingMemory& memory) noexcept : _list(list), _memory(memory) {}

    /// Fixes which records belong to the round: those that have been published by now. Records begun later than this
    /// moment wait for the next round, so that the threads' records go out in the order of time.
    /// @param everything takes these, too, and asks no clock; the order across threads may suffer.
    void Begin(bool everything) noexcept;
    /// How many nanoseconds ago the oldest record of the round was begun; 0 for a round without records.
    std::int64_t GetLag() const noexcept;
    /// Sets @p record to the oldest one that is left. Inlined into the loop over the records: nearly always it is the next
    /// statement of the ring that had the last one. @return whether there was one.
    [[gnu::always_inline]] bool Next(nxLogRecord& record) noexcept
    {
        nxLogRing* const ring = _round.current;
        if (ring == nullptr || ring->_read == ring->_seen) [[unlikely]]
            return _NextOfAll(record);
        const char* const bytes = ring->_read;
        if (nxLogRecordBytes::ReadKind(bytes) != nxLogRecordHeader::Statement ||
            nxLogRecordBytes::ReadTicks(bytes) > _round.currentUntil) [[unlikely]]
            return _NextOfAll(record);
        const std::uint32_t size = _Take(*ring);
        nxLogRecordBytes::DecodeStatement(record, bytes, size, ring->_threadIndex, _round.times);
        return true;
    }
    /// Gives the room of all that has been read back to the filling threads, and wakes those that wait for it.
    void GiveBackRoom() noexcept;

    /// The child has no round.
    void AfterForkInChild() noexcept { _round = Round(); }

private:
    static constexpr std::uint64_t _noTicks = std::numeric_limits<std::uint64_t>::max();

    // When a record was begun, seen from the round.
    enum class Age
    {
        Due,
        Later,        // belongs to the next round
        ClockSetBack  // was stamped before the clock was set back; it does not wait for the clock to catch up
    };

    struct Round
    {
        nxLogRing* rings = nullptr;  // those that had records when it began
        nxLogRing* current = nullptr;
        char* block = nullptr;            // where the record is that Next() returned last, if not in the ring
        std::uint64_t otherOldest = 0;    // up to these ticks `current` goes before another ring's turn
        std::uint64_t currentUntil = 0;   // up to these ticks nothing but `current` needs a look
        std::uint64_t oldest = _noTicks;  // when its first record was begun
        std::uint64_t cutOff = 0;         // records begun later belong to the next round
        nxLogRecordTimes times;
    };

    static Age _GetAge(std::uint64_t ticks, std::uint64_t cutOff) noexcept;
    const char* _AdvanceToRecord(nxLogRing& ring) noexcept;
    void _FollowJump(nxLogRing& ring) noexcept;
    // Its room is not given back before GiveBackRoom(). @return the size of the record.
    static std::uint32_t _Take(nxLogRing& ring) noexcept
    {
        const std::uint32_t size = nxLogRecordBytes::ReadSize(ring._read);
        nxLogRecordBytes::Prefetch(ring._read);
        ring._read += nxLogRecordBytes::RoundUp(size);
        return size;
    }
    bool _NextOfAll(nxLogRecord& record) noexcept;
    void _ChooseRing() noexcept;
    void _ChooseOldest() noexcept;
    void _FreeBlock() noexcept;

    nxLogChannelList& _list;
    nxLogRingMemory& _memory;
    Round _round;
};

#endif
