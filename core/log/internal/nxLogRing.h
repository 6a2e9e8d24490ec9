// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGRING_H
#define CORE_LOG_INTERNAL_NXLOGRING_H

#include <cstddef>
#include <cstdint>

#include "core/log/inline/nxLogChannel.h"
#include "core/log/internal/nxLogRecordBytes.h"
#include "core/log/internal/nxLogRingMemory.h"
#include "core/platform/nxThreadSanitizer.h"

/// The ring of a channel: one thread fills it at the head, one thread at a time empties it at the tail. All channels
/// are rings; nxLogChannel is the part of a ring that statements see.
///
/// Invariant: from the tail to the head there are whole records and jumps. In ring order tail <= read <= seen <= head
/// <= limit; where the tail is ahead of the head in one segment, a gap is kept between limit and tail. The filling
/// thread alone writes head, limit and segment; the emptying one alone writes read, seen and tail.
///
/// A ring is one segment, used in a circle,
/// @code
///     begin       tail        head                end           begin   head          tail                end
///     |...........|###########|...................|jump|   or   |#######|......[ gap ]|###################|jump|
///                 free bytes at the head: head to end                   free bytes at the head: head to gap
/// @endcode
/// or a chain of segments, each of which ends with a jump to the next. Then the tail is in an earlier one than the
/// head, and the rest of the head's segment is free.
///
/// Errors: false without room or memory; nothing else has happened then. It never waits.
/// Threads: functions are for the filling thread or for the emptying one, as they are grouped here.
class nxLogRing final : public nxLogChannel
{
public:
    /// An empty ring of the calling thread. It owns @p segment from now on.
    explicit nxLogRing(nxLogSegment& segment) noexcept;

    // The filling thread.

    static nxLogRing* GetCurrent() noexcept { return static_cast<nxLogRing*>(_current); }
    static void SetCurrent(nxLogChannel* channel) noexcept { _current = channel; }
    /// The ring that serves the thread while this one holds an open statement.
    nxLogRing* GetNested() const noexcept { return static_cast<nxLogRing*>(_nested); }
    void SetNested(nxLogRing* nested) noexcept { _nested = nested; }

    char* GetHead() const noexcept { return _head.load(std::memory_order_relaxed); }
    char* GetLimit() const noexcept { return _roomEnd; }
    unsigned GetProcessor() const noexcept { return *_processor; }
    std::size_t GetCapacity() const noexcept { return _segment->capacity; }
    using nxLogChannel::_WriteHeader;

    /// Whether a record of @p size bytes may be in a segment of @p capacity bytes; else it has a block of its own.
    static bool MayHold(std::size_t capacity, std::size_t size) noexcept { return size <= capacity / _recordDivisor; }
    /// The bytes that a waiting thread asks for: more than one record needs, because otherwise every following record
    /// would wait as well.
    std::size_t GetRoomWorthWaitingFor() const noexcept { return GetCapacity() / (2 * _recordDivisor); }

    /// Moves the limit on without moving the head. @return whether there are @p bytes free at the head.
    bool Extend(const nxLogRingMemory& memory, std::size_t bytes) noexcept;
    /// Moves head and limit on: to @p preferred bytes in the head's segment, else to @p bytes in a new one.
    bool FindRoom(nxLogRingMemory& memory, std::size_t bytes, std::size_t preferred) noexcept;
    /// Continues in a new, large segment.
    bool AppendSegment(nxLogRingMemory& memory) noexcept;
    /// Publishes a record of @p size bytes, not rounded, that begins at the head, and calls the emptying thread if that
    /// sleeps until it is called.
    void Publish(std::size_t size) noexcept
    {
        _MoveHead(GetHead() + nxLogRecordBytes::RoundUp(size));
        // For the compiler alone, as in nxLogChannel::Close().
        std::atomic_signal_fence(std::memory_order_seq_cst);
        if (_isCallWanted.load(std::memory_order_relaxed))
            CallWriter();
    }
    /// Calls the emptying thread, once for each time that it wants calls.
    void CallWriter() noexcept;
    /// From now on the ring has room for statements of version 1.0 without a look, too.
    void ServeFirstVersion() noexcept { _limit = _roomEnd; }
    /// While the writer does not run, closes the fast path: the next statement then comes by _OpenSlowly(), which tries
    /// to start it.
    void CloseFastPathIfStopped() noexcept;
    /// In a forked child: records that wait belong to the parent. The fast path is closed.
    void ForgetWaiting() noexcept;

    /// The thread has ended; it will publish nothing more.
    void End() noexcept
    {
        nxThreadSanitizer::Release(&_ended);
        _ended.store(true, std::memory_order_release);
    }

    // The emptying thread.

    /// Whether no record waits. Called under the mutex of nxLogChannelList, like the next ones, so that tails do not
    /// move meanwhile.
    bool IsEmpty() const noexcept
    {
        return _head.load(std::memory_order_acquire) == _tail.load(std::memory_order_relaxed);
    }
    /// Whether the thread has ended, and no record waits.
    bool IsFinished() const noexcept
    {
        if (!_ended.load(std::memory_order_acquire))
            return false;
        nxThreadSanitizer::Acquire(&_ended);
        return IsEmpty();
    }
    /// Gives the bytes before the read position back to the filling thread. @return whether there were any.
    bool MoveTail() noexcept
    {
        nxThreadSanitizer::Release(&_tail);
        return _tail.exchange(_read, std::memory_order_release) != _read;
    }
    /// @return the bytes of the oldest record that waits; null when there is none.
    const char* GetFirstWaiting() const noexcept
    {
        const char* const head = _LoadHead();
        const char* at = _tail.load(std::memory_order_relaxed);
        while (at != head && nxLogRecordBytes::ReadKind(at) == nxLogRecordHeader::Jump)
            at = nxLogRecordBytes::ReadJump(at);
        return at != head ? at : nullptr;
    }
    /// Calls @p action with the bytes of each record that waits.
    template <class Action>
    void ForEachWaiting(const Action& action) const;

    /// Looks how far records have been published. @return whether any wait to be read.
    bool Look() noexcept
    {
        _seen = _LoadHead();
        _finished = _read == _seen;
        return !_finished;
    }
    /// Whether the filling thread is to call the emptying thread after it has published a record. Does not write to the
    /// filling thread's cache line when nothing changes.
    void WantCall(bool isWanted) noexcept
    {
        if (_isCallWanted.load(std::memory_order_relaxed) != isWanted)
            _isCallWanted.store(isWanted, std::memory_order_relaxed);
    }
    using nxLogChannel::_finished;
    using nxLogChannel::_next;
    using nxLogChannel::_nextInRound;
    using nxLogChannel::_read;
    using nxLogChannel::_readSegment;
    using nxLogChannel::_seen;
    using nxLogChannel::_threadIndex;

private:
    // A record may take 1/_recordDivisor of a segment.
    static constexpr std::size_t _recordDivisor = 4;

    // Publishes all before `head`, and takes what has been published. Statements store the head inline.
    void _MoveHead(char* head) noexcept
    {
        nxThreadSanitizer::Release(&_head);
        _head.store(head, std::memory_order_release);
    }
    char* _LoadHead() const noexcept
    {
        char* const head = _head.load(std::memory_order_acquire);
        nxThreadSanitizer::Acquire(&_head);
        return head;
    }
    void _SetLimit(char* limit) noexcept
    {
        _roomEnd = limit;
        if (_limit != nullptr)
            _limit = limit;
    }
    bool _LookForRoom(const nxLogRingMemory& memory, std::size_t bytes, bool mayMove) noexcept;
    bool _HasRoomAtStart(const char* head, const char* tail, std::size_t bytes) const noexcept;
    char* _GoToStart(char* head) noexcept;
    char* _GetFreeEnd(char* head, char* tail) const noexcept;
    std::size_t _GetUsed(const char* head, const char* tail) const noexcept;
    bool _IsInHeadSegment(const char* tail) const noexcept;
};

static_assert(sizeof(nxLogRing) == sizeof(nxLogChannel));

template <class Action>
void nxLogRing::ForEachWaiting(const Action& action) const
{
    const char* const head = _LoadHead();
    const char* at = _tail.load(std::memory_order_relaxed);
    while (at != head)
    {
        const nxLogRecordHeader::Kind kind = nxLogRecordBytes::ReadKind(at);
        if (kind == nxLogRecordHeader::Jump)
        {
            at = nxLogRecordBytes::ReadJump(at);
            continue;
        }
        action(kind == nxLogRecordHeader::Elsewhere ? nxLogRecordBytes::ReadBlock(at) : at);
        at += nxLogRecordBytes::RoundUp(nxLogRecordBytes::ReadSize(at));
    }
}

#endif
