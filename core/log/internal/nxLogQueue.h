#ifndef CORE_LOG_INTERNAL_NXLOGQUEUE_H
#define CORE_LOG_INTERNAL_NXLOGQUEUE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/log/inline/nxLogChannel.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/platform/inline/nxClock.h"
#include "core/thread/nxMutex.h"

class nxLog;

/// The memory of one ring, its own bytes behind it.
struct nxLogSegment
{
    nxLogSegment* nextFree;
    std::size_t capacity;
    char* begin;
    char* end;  ///< Behind it is room for one jump.
};

/// The block of its own of a statement whose record did not fit into what its ring had left.
struct nxLogSpill
{
    char* begin;
    std::size_t capacity;
    bool cut;  ///< The record takes no more values.
};

/// All channels of the process, and the memory that they share: bounded in bytes.
///
/// The filling side is every reporting thread, each with channels of its own; what takes more than the inline part of
/// nxLogChannel is here. The emptying side is one thread at a time, whoever holds nxLogWriter's round. Never destroyed.
class nxLogQueue
{
public:
    static nxLogQueue& GetInstance() noexcept;

    // The filling side.

    nxLogRoom Open(nxLogChannel* channel, const nxLogSource* source) noexcept;
    nxLogRoom Grow(nxLogRoom room, std::size_t bytes) noexcept;
    void Close(const nxLogRoom& room, nxEnumValue level) noexcept;
    /// Queues a copy of @p record.
    void Write(const nxLog& record) noexcept;

    /// The bound in bytes, for rings and large records together. Threads get a small ring beyond it, and one large
    /// record at a time goes beyond it.
    void SetMaximumBytes(std::size_t bytes) noexcept;
    std::size_t GetMaximumBytes() const noexcept { return _maximumBytes.load(std::memory_order_relaxed); }
    /// Allocates rings for about so many records in advance.
    void Reserve(std::size_t records) noexcept;

    // The emptying side. One round is BeginRound(), then Next() until there is none.

    /// Fixes what belongs to the round: what has been published by now. Records begun later than this moment wait for
    /// the next round, so that the threads' records go out in the order of time; not so with @p everything, which asks
    /// no clock.
    void BeginRound(bool everything) noexcept;
    /// @return whether there is another record: the oldest of those left. Its bytes stay until the next call.
    bool Next(nxLogRecord& record) noexcept;
    /// Gives back the room of all that the round has read by now, and tells those who wait for it.
    void Release() noexcept;
    /// Frees what past bursts have left behind.
    void Trim() noexcept;
    /// Whether no channel holds a record.
    bool IsEmpty() noexcept;

    /// Appends copies of all records that wait; only that the order is kept within each thread.
    void CopyRecords(std::vector<nxLog>& records);

    /// Counts all records that wait, but those that the writer has in hand, as dropped: at the end of the process
    /// nobody will write them. @return how many these are.
    std::uint64_t DropWaiting(unsigned inHand) noexcept;
    void CountDrop() noexcept { _dropped.fetch_add(1, std::memory_order_relaxed); }
    /// Whenever a device has returned: the sign of life that waiting callers watch.
    void CountProgress() noexcept;

    std::uint64_t GetDropped() const noexcept { return _dropped.load(std::memory_order_relaxed); }
    std::uint64_t GetWaits() const noexcept { return _waits.load(std::memory_order_relaxed); }
    std::size_t GetBytes() const noexcept { return _bytes.load(std::memory_order_relaxed); }
    std::uint32_t GetProgress() const noexcept { return _progress.load(std::memory_order_acquire); }

    void BeforeFork() noexcept NX_NO_THREAD_SAFETY_ANALYSIS { _mutex.Lock(); }
    void AfterForkInParent() noexcept NX_NO_THREAD_SAFETY_ANALYSIS { _mutex.Unlock(); }
    void AfterForkInChild() noexcept;

    static void ThreadEnds(void* firstChannel) noexcept;

private:
    nxLogQueue() noexcept = default;
    ~nxLogQueue() = delete;

    // What may be done to make room in a channel.
    enum class Effort
    {
        Extend,  // use what is free behind the head
        Move,    // begin at the start of the ring again, or in a further one
        Wait     // wait for the writer as long as it makes progress
    };

    bool _IsOverfull() noexcept;
    nxLogChannel* _Attach() noexcept;
    nxLogChannel* _NewChannel() noexcept;
    nxLogSegment* _NewSmallSegment() noexcept;
    nxLogSegment* _TakeSegment() noexcept;
    nxLogSegment* _AllocateSegment(std::size_t capacity) noexcept;
    nxLogSegment* _PopFreeSegment() noexcept;
    void _GiveSegment(nxLogSegment* segment) noexcept;
    void _FreeSegment(nxLogSegment* segment) noexcept;
    bool _ClaimBytes(std::size_t bytes) noexcept;
    bool _ClaimBlock(std::size_t bytes) noexcept;
    void _FreeClaimedBlock(char* block, std::size_t bytes) noexcept;
    bool _FreeIdleSegment() noexcept;

    bool _FindRoom(nxLogChannel& channel, std::size_t bytes, Effort effort) noexcept;
    bool _LookForRoom(nxLogChannel& channel, std::size_t bytes, Effort effort) noexcept;
    bool _AppendSegment(nxLogChannel& channel) noexcept;
    template <class Attempt>
    bool _WaitUntil(const Attempt& attempt) noexcept;
    static void _HoldBack(nxLogChannel& channel) noexcept;
    nxLogRoom _OpenSpill(nxLogChannel* channel, const nxLogSource* source) noexcept;
    template <class Fill>
    bool _Append(nxLogChannel& channel, std::size_t size, const Fill& fill) noexcept;
    bool _AppendElsewhere(nxLogChannel& channel, char* block, std::size_t size) noexcept;

    const char* _Peek(nxLogChannel& channel) noexcept;
    void _RemoveEnded() noexcept;
    bool _IsNextAtHand() const noexcept;
    void _Find() noexcept;
    void _Pick() noexcept;
    void _FreeBlock() noexcept;
    template <class Action>
    void _ForEachWaiting(const Action& action);
    static void _WriteObject(char* out, const nxLog& record, std::size_t size) noexcept;
    static void _Decode(nxLogRecord& record, const char* bytes, const nxLogChannel& channel, const nxClockScale& scale,
                        long long& second) noexcept;

    static constexpr std::size_t _ringSize = std::size_t{256} << 10;
    static constexpr std::size_t _smallRingSize = std::size_t{16} << 10;
    static constexpr std::size_t _spareSegments = 4;

    nxMutex _mutex;  // the lists of channels and segments, and the moving of tails
    nxLogChannel* _channels = nullptr;
    nxLogChannel* _freeChannels = nullptr;
    nxLogSegment* _freeSegments = nullptr;
    std::size_t _freeSegmentCount = 0;
    std::atomic<std::size_t> _reservedSegments{0};
    std::uint32_t _overfullAt = ~std::uint32_t{0};  // the progress when the queue was last seen to be overfull
    std::int64_t _overfullSince = 0;                // since when there has been no other

    std::atomic<std::size_t> _bytes{0};
    std::atomic<std::size_t> _blocks{0};  // of records that stand in one of their own
    std::atomic<std::size_t> _maximumBytes{std::size_t{64} << 20};
    std::atomic<std::uint64_t> _dropped{0};
    std::atomic<std::uint64_t> _waits{0};
    std::atomic<std::uint32_t> _progress{0};
    std::atomic<std::uint32_t> _waiting{0};
    std::atomic<std::uint64_t> _stalledAt{~std::uint64_t{0}};  // the progress at which a caller gave up waiting

    // The round, touched by the emptying thread only.
    nxLogChannel* _round = nullptr;  // the channels that had records when it began
    nxLogChannel* _current = nullptr;
    char* _block = nullptr;     // where the record is that Next() returned last, if not in the ring
    std::uint64_t _bound = 0;   // up to which _current may go before another channel's turn
    std::uint64_t _cutOff = 0;  // records begun later belong to the next round
    nxClockScale _scale;
    long long _second = 0;  // of the statement that Next() returned last; most are of the same
};

#endif
