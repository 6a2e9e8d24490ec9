// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGMERGE_H
#define CORE_LOG_INTERNAL_NXLOGMERGE_H

#include <algorithm>
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
    /// Sets @p record to the oldest one that is left. @return whether there was one.
    bool Next(nxLogRecord& record) noexcept;
    /// The statements that follow the record of the last Next(), before which no other ring has its turn. A loop over them keeps
    /// its place in registers.
    class Run
    {
    public:
        /// Continues after the last record of @p merge, which knows of what is taken here once EndRun() is called.
        explicit Run(const nxLogMerge& merge) noexcept;
        /// Sets @p record to the next one. @return false if there is none: then Next() tells what comes.
        [[gnu::always_inline]] bool Next(nxLogRecord& record, nxLogMerge& merge) noexcept;

    private:
        friend class nxLogMerge;

        const nxLogRing* _ring;
        const char* _read;
        const char* _end;
        std::uint64_t _lastTicks;  // a record with more is not of the run
        unsigned _threadIndex;
    };
    /// Takes over what @p run has taken, before any other operation.
    void EndRun(const Run& run) noexcept
    {
        // A device may have forked: the child has no round.
        if (_round.current == run._ring)
            _round.current->_read = const_cast<char*>(run._read);
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
        std::uint64_t oldest = _noTicks;  // when its first record was begun
        std::uint64_t cutOff = 0;         // records begun later belong to the next round
        nxLogRecordTimes times;
    };

    static Age _GetAge(std::uint64_t ticks, std::uint64_t cutOff) noexcept;
    const char* _AdvanceToRecord(nxLogRing& ring) noexcept;
    void _FollowJump(nxLogRing& ring) noexcept;
    bool _IsCurrentStillOldest() const noexcept;
    void _ChooseRing() noexcept;
    void _ChooseOldest() noexcept;
    void _FreeBlock() noexcept;

    nxLogChannelList& _list;
    nxLogRingMemory& _memory;
    Round _round;
};

// A run has no record while a block waits to be freed.
inline nxLogMerge::Run::Run(const nxLogMerge& merge) noexcept
    : _ring(merge._round.current),
      _read(_ring->_read),
      _end(merge._round.block == nullptr ? _ring->_seen : _read),
      _lastTicks(std::min(merge._round.otherOldest, merge._round.cutOff)),
      _threadIndex(_ring->_threadIndex)
{
}

inline bool nxLogMerge::Run::Next(nxLogRecord& record, nxLogMerge& merge) noexcept
{
    const char* const bytes = _read;
    if (bytes == _end || merge._round.current != _ring ||
        nxLogRecordBytes::ReadKind(bytes) != nxLogRecordHeader::Statement ||
        nxLogRecordBytes::ReadTicks(bytes) > _lastTicks) [[unlikely]]
        return false;
    nxLogRecordBytes::Prefetch(bytes);
    const std::uint32_t size = nxLogRecordBytes::ReadSize(bytes);
    _read = bytes + nxLogRecordBytes::RoundUp(size);
    nxLogRecordBytes::DecodeStatement(record, bytes, size, _threadIndex, merge._round.times);
    return true;
}

#endif
