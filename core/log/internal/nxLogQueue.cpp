#include "core/log/internal/nxLogQueue.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "core/log/inline/nxLogSource.h"
#include "core/log/internal/nxLogPatience.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLog.h"
#include "core/platform/nxThisThread.h"
#include "core/platform/nxWaitWord.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxThreadIndex.h"

constinit thread_local nxLogChannel* nxLogChannel::_current = nullptr;

namespace
{
// All channels of the calling thread, from the outermost on, by their _nested.
constinit thread_local nxLogChannel* firstChannel = nullptr;

constexpr std::size_t segmentHeader = 64;
static_assert(sizeof(nxLogSegment) <= segmentHeader);
constexpr std::size_t jumpSize = 16;
// Between a head and the tail before it: room for a jump, and never nothing, which would mean empty.
constexpr std::ptrdiff_t gap = 24;
constexpr std::size_t pageSize = 4096;
// Touched in advance, so that a thread's first records do not pay for page faults.
constexpr std::size_t touchedInAdvance = std::size_t{64} << 10;
constexpr std::size_t firstSpill = 1024;
constexpr std::int64_t stallTime = 1'000'000'000;
constexpr std::int64_t waitSlice = 1'000'000;
constexpr std::int64_t overfullTime = 100'000'000;
// By so many ticks, some microseconds, processors were seen to read their counters too early.
constexpr std::uint64_t clockSlack = 10'000;
// By so many ticks at least, no more than some seconds, a clock has stepped rather than run on.
constexpr std::uint64_t clockSetBack = 100'000'000;
constexpr std::uint64_t noCutOff = std::numeric_limits<std::uint64_t>::max();
// What the average record is taken to need.
constexpr std::size_t averageRecord = 128;
// The largest part of a ring that one record may take.
constexpr std::size_t shareOfRing = 4;

// The small rings beyond the bound, a thousand.
constexpr std::size_t mostBeyond = std::size_t{16} << 20;

// How far ahead of itself the emptying side fetches.
constexpr std::size_t prefetchDistance = 512;

constexpr std::size_t RoundUp(std::size_t size) { return (size + 7) & ~std::size_t{7}; }

std::size_t Distance(const char* from, const char* to) { return static_cast<std::size_t>(to - from); }

nxLogRecordHeader ReadHeader(const char* bytes)
{
    nxLogRecordHeader header;
    std::memcpy(&header, bytes, sizeof header);
    return header;
}

char* ReadPointer(const char* bytes)
{
    char* pointer;
    std::memcpy(&pointer, bytes, sizeof pointer);
    return pointer;
}

std::uint32_t ReadSize(const char* bytes)
{
    std::uint32_t size;
    std::memcpy(&size, bytes + offsetof(nxLogRecordHeader, size), sizeof size);
    return size;
}

const nxLogSource* ReadSource(const char* bytes)
{
    const nxLogSource* source;
    std::memcpy(&source, bytes + offsetof(nxLogRecordHeader, source), sizeof source);
    return source;
}

std::uint64_t ReadTicks(const char* bytes)
{
    std::uint64_t ticks;
    std::memcpy(&ticks, bytes + offsetof(nxLogRecordHeader, ticks), sizeof ticks);
    return ticks;
}

nxLogRecordHeader::Kind ReadKind(const char* bytes)
{
    return static_cast<nxLogRecordHeader::Kind>(bytes[offsetof(nxLogRecordHeader, kind)]);
}

void WriteJump(char* at, char* target)
{
    at[offsetof(nxLogRecordHeader, kind)] = nxLogRecordHeader::Jump;
    std::memcpy(at + 8, &target, sizeof target);
}

// Jumps lead to the first byte of a segment only.
nxLogSegment* SegmentAt(char* begin) { return reinterpret_cast<nxLogSegment*>(begin - segmentHeader); }

void Touch(char* begin, std::size_t size)
{
    for (std::size_t offset = 0; offset < size; offset += pageSize)
        begin[offset] = 0;
}
}  // namespace

nxLogQueue& nxLogQueue::GetInstance() noexcept
{
    // Never destroyed: threads and static destructors report to the very end.
    alignas(nxLogQueue) static unsigned char storage[sizeof(nxLogQueue)];
    static nxLogQueue& queue = *::new (storage) nxLogQueue;
    return queue;
}

// What the inline part of a statement falls back on.

nxLogRoom nxLogChannel::_OpenFirst(const nxLogSource* source) noexcept
{
    return nxLogQueue::GetInstance().Open(nullptr, source);
}

nxLogRoom nxLogChannel::_OpenSlowly(nxLogChannel* channel, const nxLogSource* source) noexcept
{
    return nxLogQueue::GetInstance().Open(channel, source);
}

nxLogRoom nxLogChannel::_GrowSlowly(nxLogChannel* channel, char* cursor, nxLogSpill* spill, std::size_t bytes) noexcept
{
    // Without an end: what cannot grow takes no more.
    return nxLogQueue::GetInstance().Grow({channel, cursor, cursor, spill}, bytes);
}

void nxLogChannel::_CloseSlowly(nxLogChannel* channel, char* cursor, nxLogSpill* spill, nxEnumValue level) noexcept
{
    nxLogQueue::GetInstance().Close({channel, cursor, cursor, spill}, level);
}

void nxLogChannel::Urge(nxEnumValue level) noexcept { nxLogWriter::GetInstance().Urge(level); }

void nxLogChannel::WakeWriter() noexcept { Urge(NX_LOG_LEVEL_WARNING); }

// Memory.

bool nxLogQueue::_ClaimBytes(std::size_t bytes) noexcept
{
    const std::size_t maximum = GetMaximumBytes();
    std::size_t claimed = _bytes.load(std::memory_order_relaxed);
    do
    {
        if (claimed + bytes > maximum)
            return false;
    } while (!_bytes.compare_exchange_weak(claimed, claimed + bytes, std::memory_order_relaxed));
    return true;
}

// For a record in a block of its own. Rings that nobody fills make way for it; and one such record at a time may go
// beyond the bound, so that none waits for rings that are held but empty.
bool nxLogQueue::_ClaimBlock(std::size_t bytes) noexcept
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

void nxLogQueue::_FreeClaimedBlock(char* block, std::size_t bytes) noexcept
{
    std::free(block);
    _bytes.fetch_sub(bytes, std::memory_order_relaxed);
    _blocks.fetch_sub(1, std::memory_order_relaxed);
}

bool nxLogQueue::_FreeIdleSegment() noexcept
{
    const nxMutexGuard guard(_mutex);
    nxLogSegment* const segment = _PopFreeSegment();
    if (segment != nullptr)
        _FreeSegment(segment);
    return segment != nullptr;
}

nxLogSegment* nxLogQueue::_AllocateSegment(std::size_t capacity) noexcept
{
    void* const memory = std::aligned_alloc(segmentHeader, segmentHeader + capacity);
    if (memory == nullptr)
        return nullptr;
    char* const begin = static_cast<char*>(memory) + segmentHeader;
    Touch(begin, std::min(capacity, touchedInAdvance));
    return ::new (memory) nxLogSegment{nullptr, capacity, begin, begin + capacity - jumpSize};
}

nxLogSegment* nxLogQueue::_TakeSegment() noexcept
{
    {
        const nxMutexGuard guard(_mutex);
        if (nxLogSegment* const segment = _PopFreeSegment())
        {
            if (_bytes.load(std::memory_order_relaxed) <= GetMaximumBytes())
                return segment;
            // The bound has been lowered since.
            _FreeSegment(segment);
        }
    }
    if (!_ClaimBytes(_ringSize))
        return nullptr;
    nxLogSegment* const segment = _AllocateSegment(_ringSize);
    if (segment == nullptr)
        _bytes.fetch_sub(_ringSize, std::memory_order_relaxed);
    return segment;
}

// With the mutex held, as in the following ones.
nxLogSegment* nxLogQueue::_PopFreeSegment() noexcept
{
    nxLogSegment* const segment = _freeSegments;
    if (segment == nullptr)
        return nullptr;
    _freeSegments = segment->nextFree;
    --_freeSegmentCount;
    return segment;
}

void nxLogQueue::_GiveSegment(nxLogSegment* segment) noexcept
{
    if (segment->capacity != _ringSize)
    {
        _FreeSegment(segment);
        return;
    }
    segment->nextFree = _freeSegments;
    _freeSegments = segment;
    ++_freeSegmentCount;
}

void nxLogQueue::_FreeSegment(nxLogSegment* segment) noexcept
{
    _bytes.fetch_sub(segment->capacity, std::memory_order_relaxed);
    std::free(segment);
}

void nxLogQueue::SetMaximumBytes(std::size_t bytes) noexcept
{
    constexpr std::size_t least = std::size_t{1} << 20;
    _maximumBytes.store(std::max(bytes, least), std::memory_order_relaxed);
    const nxMutexGuard guard(_mutex);
    while (_bytes.load(std::memory_order_relaxed) > GetMaximumBytes() && _freeSegments != nullptr)
        _FreeSegment(_PopFreeSegment());
}

void nxLogQueue::Reserve(std::size_t records) noexcept
{
    const std::size_t most = GetMaximumBytes() / _ringSize;
    const std::size_t wanted = std::min((records * averageRecord + _ringSize - 1) / _ringSize, most);
    _reservedSegments.store(wanted, std::memory_order_relaxed);
    for (std::size_t count = 0; count < wanted; ++count)
    {
        {
            const nxMutexGuard guard(_mutex);
            if (_freeSegmentCount >= wanted)
                return;
        }
        if (!_ClaimBytes(_ringSize))
            return;
        nxLogSegment* const segment = _AllocateSegment(_ringSize);
        if (segment == nullptr)
        {
            _bytes.fetch_sub(_ringSize, std::memory_order_relaxed);
            return;
        }
        Touch(segment->begin, segment->capacity);
        const nxMutexGuard guard(_mutex);
        _GiveSegment(segment);
    }
}

// Channels.

// Whether there is much more than the bound, and nothing has moved for a while.
bool nxLogQueue::_IsOverfull() noexcept
{
    const std::size_t bytes = _bytes.load(std::memory_order_relaxed);
    const std::size_t most = GetMaximumBytes() + mostBeyond;
    if (bytes <= most)
        return false;
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    const nxMutexGuard guard(_mutex);
    if (const std::uint32_t progress = GetProgress(); progress != _overfullAt)
    {
        _overfullAt = progress;
        _overfullSince = now;
    }
    // Threads can come so fast that the time alone would bound nothing.
    return now - _overfullSince >= (bytes <= most + mostBeyond ? overfullTime : overfullTime / 10);
}

// The first ring of a thread. Most threads say little, so it is small: a large one comes when it overflows.
nxLogSegment* nxLogQueue::_NewSmallSegment() noexcept
{
    while (!_ClaimBytes(_smallRingSize))
    {
        if (_FreeIdleSegment())
            continue;
        // The bound is reached: a thread that has not reported yet gets a ring all the same, but a device that stands
        // still while threads come and go does not take all memory.
        if (_IsOverfull())
            return nullptr;
        _bytes.fetch_add(_smallRingSize, std::memory_order_relaxed);
        break;
    }
    nxLogSegment* const segment = _AllocateSegment(_smallRingSize);
    if (segment == nullptr)
        _bytes.fetch_sub(_smallRingSize, std::memory_order_relaxed);
    return segment;
}

nxLogChannel* nxLogQueue::_NewChannel() noexcept
{
    nxLogSegment* const segment = _NewSmallSegment();
    if (segment == nullptr)
        return nullptr;
    const nxMutexGuard guard(_mutex);
    void* memory = _freeChannels;
    if (memory != nullptr)
        _freeChannels = _freeChannels->_next;
    else
        memory = std::aligned_alloc(alignof(nxLogChannel), sizeof(nxLogChannel));
    if (memory == nullptr)
    {
        _GiveSegment(segment);
        return nullptr;
    }
    auto* const channel = ::new (memory) nxLogChannel;
    channel->_head.store(segment->begin, std::memory_order_relaxed);
    channel->_limit = segment->begin;
    channel->_processor = nxThisThread::GetProcessorWord();
    channel->_segment = segment;
    channel->_threadIndex = nxThreadIndex::GetIndexOfCurrentThread();
    channel->_tail.store(segment->begin, std::memory_order_relaxed);
    channel->_read = channel->_seen = segment->begin;
    channel->_readSegment = segment;
    channel->_next = _channels;
    _channels = channel;
    return channel;
}

// A channel for a thread that has none, or none that is not taken.
nxLogChannel* nxLogQueue::_Attach() noexcept
{
    nxLogChannel* const channel = _NewChannel();
    if (channel == nullptr)
        return nullptr;
    if (firstChannel == nullptr)
    {
        firstChannel = channel;
        nxThisThread::CallAtEnd(&nxLogQueue::ThreadEnds, channel);
        return channel;
    }
    nxLogChannel* last = firstChannel;
    while (last->_nested != nullptr)
        last = last->_nested;
    last->_nested = channel;
    return channel;
}

void nxLogQueue::ThreadEnds(void* first) noexcept
{
    // What logs after this, in the end of some other thread-local object, gets channels anew.
    nxLogChannel::_current = nullptr;
    firstChannel = nullptr;
    auto* channel = static_cast<nxLogChannel*>(first);
    while (channel != nullptr)
    {
        nxLogChannel* const nested = channel->_nested;
        channel->_ended.store(true, std::memory_order_release);
        channel = nested;
    }
}

// Looks at how far the emptying thread has come and moves the limit on.
bool nxLogQueue::_LookForRoom(nxLogChannel& channel, std::size_t bytes, Effort effort) noexcept
{
    // A record that is waited for finds room in an empty ring wherever head and tail are: behind the head, or else
    // before it.
    static_assert(2 * (_smallRingSize / shareOfRing) + static_cast<std::size_t>(gap) + jumpSize <= _smallRingSize);

    nxLogSegment& segment = *channel._segment;
    char* head = channel._head.load(std::memory_order_relaxed);
    char* const tail = channel._tail.load(std::memory_order_acquire);
    const bool tailIsHere = segment.begin <= tail && tail <= segment.end;
    char* limit = segment.end;
    if (tailIsHere && tail > head)
        limit = std::max(head, tail - gap);
    else if (tailIsHere && effort != Effort::Extend && Distance(head, limit) < bytes &&
             tail - segment.begin >= static_cast<std::ptrdiff_t>(bytes) + gap)
    {
        WriteJump(head, segment.begin);
        channel._head.store(segment.begin, std::memory_order_release);
        head = segment.begin;
        limit = tail - gap;
    }

    const std::size_t quarter = segment.capacity / 4;
    const std::size_t used = !tailIsHere    ? segment.capacity
                             : tail <= head ? Distance(tail, head)
                                            : segment.capacity - Distance(head, tail);
    // A small ring that overflows is followed by a large one, which costs the thread less than to wake the writer for
    // every few kilobytes; without room for that it has to be emptied in time, like a large one.
    const bool mayOverflow =
        segment.capacity < _ringSize && _bytes.load(std::memory_order_relaxed) + _ringSize <= GetMaximumBytes();
    if (used >= quarter && !mayOverflow)
        nxLogWriter::GetInstance().Wake();
    // The limit stops at every quarter, so that the writer is woken in time.
    const std::size_t room = std::min(Distance(head, limit), mayOverflow ? segment.capacity : std::max(bytes, quarter));
    channel._limit = head + room;
    return room >= bytes;
}

bool nxLogQueue::_AppendSegment(nxLogChannel& channel) noexcept
{
    nxLogSegment* const segment = _TakeSegment();
    if (segment == nullptr)
        return false;
    WriteJump(channel._head.load(std::memory_order_relaxed), segment->begin);
    channel._segment = segment;
    channel._limit = segment->begin;
    channel._head.store(segment->begin, std::memory_order_release);
    return true;
}

// Repeats `attempt` while the writer shows signs of life. False when a device has stalled, or when the caller would
// wait for itself.
template <class Attempt>
bool nxLogQueue::_WaitUntil(const Attempt& attempt) noexcept
{
    nxLogWriter& writer = nxLogWriter::GetInstance();
    std::uint32_t seen = GetProgress();
    if (_stalledAt.load(std::memory_order_relaxed) == seen || !writer.MayWait())
        return false;
    _waits.fetch_add(1, std::memory_order_relaxed);
    _waiting.fetch_add(1, std::memory_order_seq_cst);
    nxLogPatience patience;
    std::int64_t lastSign = 0;
    bool found = false;
    for (;;)
    {
        if (!writer.EnsureRunning())
            writer.DrainHere();
        writer.Wake();
        found = attempt();
        if (found)
            break;
        nxWaitWord::Wait(_progress, seen, waitSlice);
        const std::uint32_t progress = GetProgress();
        const std::int64_t waited = patience.Look();
        if (progress != seen)
        {
            seen = progress;
            lastSign = waited;
        }
        else if (waited - lastSign >= stallTime)
        {
            // Everybody else need not wait as long again.
            _stalledAt.store(seen, std::memory_order_relaxed);
            break;
        }
    }
    _waiting.fetch_sub(1, std::memory_order_relaxed);
    return found;
}

void nxLogQueue::CountProgress() noexcept
{
    _progress.fetch_add(1, std::memory_order_seq_cst);
    if (_waiting.load(std::memory_order_seq_cst) != 0)
        nxWaitWord::WakeAll(_progress);
}

bool nxLogQueue::_FindRoom(nxLogChannel& channel, std::size_t bytes, Effort effort) noexcept
{
    if (_LookForRoom(channel, bytes, effort))
        return true;
    if (effort == Effort::Extend)
        return false;
    if (_AppendSegment(channel))
        return _LookForRoom(channel, bytes, effort);
    if (effort == Effort::Move)
        return false;
    return _WaitUntil(
        [&]
        {
            // A little more than is needed, so that not every further record waits again.
            const std::size_t wanted = std::max(bytes, channel._segment->capacity / (2 * shareOfRing));
            return _LookForRoom(channel, wanted, effort) ||
                   (_AppendSegment(channel) && _LookForRoom(channel, bytes, effort));
        });
}

// The filling side.

// While nobody empties the rings, the next statement shall come by Open() and try again to start who does.
void nxLogQueue::_HoldBack(nxLogChannel& channel) noexcept
{
    if (!nxLogWriter::GetInstance().IsRunning())
        channel._limit = channel._head.load(std::memory_order_relaxed);
}

nxLogRoom nxLogQueue::_OpenSpill(nxLogChannel* channel, const nxLogSource* source) noexcept
{
    auto* const spill = static_cast<nxLogSpill*>(std::malloc(sizeof(nxLogSpill) + firstSpill));
    if (spill == nullptr)
        return {channel, nullptr, nullptr, nullptr};
    ::new (spill) nxLogSpill{reinterpret_cast<char*>(spill + 1), firstSpill, false};
    nxLogChannel::_WriteHeader(spill->begin, source);
    return {channel, spill->begin + sizeof(nxLogRecordHeader), spill->begin + firstSpill, spill};
}

nxLogRoom nxLogQueue::Open(nxLogChannel* channel, const nxLogSource* source) noexcept
{
    nxLogWriter::GetInstance().EnsureRunning();
    if (channel == nullptr)
    {
        channel = _Attach();
        if (channel == nullptr)
            return {nullptr, nullptr, nullptr, nullptr};
    }
    nxLogChannel::_current = channel->_nested;
    // Waiting, where that must be, is left to the end of the statement.
    if (!_FindRoom(*channel, nxLogChannel::MinimumRoom, Effort::Move))
        return _OpenSpill(channel, source);
    char* const begin = channel->_head.load(std::memory_order_relaxed);
    nxLogChannel::_WriteHeader(begin, source);
    const nxLogRoom room{channel, begin + sizeof(nxLogRecordHeader), channel->_limit, nullptr};
    _HoldBack(*channel);
    return room;
}

nxLogRoom nxLogQueue::Grow(nxLogRoom room, std::size_t bytes) noexcept
{
    if (room.channel == nullptr || room.cursor == nullptr || (room.spill != nullptr && room.spill->cut))
        return room;
    nxLogSpill* spill = room.spill;
    const char* const begin = spill != nullptr ? spill->begin : room.channel->_head.load(std::memory_order_relaxed);
    const std::size_t size = Distance(begin, room.cursor);
    if (spill == nullptr && size + bytes <= room.channel->_segment->capacity / shareOfRing &&
        _FindRoom(*room.channel, RoundUp(size + bytes), Effort::Extend))
    {
        room.end = room.channel->_limit;
        _HoldBack(*room.channel);
        return room;
    }

    const bool cut = size + bytes > nxLogMessage::MaximumSize;
    // One byte is kept for the mark of a cut.
    const std::size_t wanted = (cut ? size : std::max(2 * size, size + bytes)) + 1;
    if (spill == nullptr || spill->capacity < wanted)
    {
        void* const memory = std::realloc(spill, sizeof(nxLogSpill) + wanted);
        if (memory == nullptr)
            return room;
        char* const moved = static_cast<char*>(memory) + sizeof(nxLogSpill);
        if (spill == nullptr)
            std::memcpy(moved, begin, size);
        spill = ::new (memory) nxLogSpill{moved, wanted, false};
    }
    room.spill = spill;
    room.cursor = spill->begin + size;
    room.end = spill->begin + spill->capacity - 1;
    if (cut)
    {
        spill->cut = true;
        *room.cursor++ = static_cast<char>(nxLogTag::Cut);
        room.end = room.cursor;
    }
    return room;
}

// Appends a record of `size` bytes that `fill` writes, waiting for room where it must.
template <class Fill>
bool nxLogQueue::_Append(nxLogChannel& channel, std::size_t size, const Fill& fill) noexcept
{
    const std::size_t rounded = RoundUp(size);
    // What is too large for a small ring alone gets the thread a large one.
    if (rounded > channel._segment->capacity / shareOfRing && rounded <= _ringSize / shareOfRing &&
        channel._segment->capacity < _ringSize)
        _AppendSegment(channel);
    if (rounded > channel._segment->capacity / shareOfRing)
    {
        char* const block = static_cast<char*>(std::malloc(size));
        if (block == nullptr)
            return false;
        fill(block);
        return _AppendElsewhere(channel, block, size);
    }
    if (!_FindRoom(channel, rounded, Effort::Wait))
        return false;
    char* const begin = channel._head.load(std::memory_order_relaxed);
    fill(begin);
    channel._head.store(begin + rounded, std::memory_order_release);
    _HoldBack(channel);
    return true;
}

// Appends a record that stays in a block of its own, which is given away.
bool nxLogQueue::_AppendElsewhere(nxLogChannel& channel, char* block, std::size_t size) noexcept
{
    constexpr std::size_t recordSize = sizeof(nxLogRecordHeader) + sizeof block;
    if (!_ClaimBlock(size) && !_WaitUntil([&] { return _ClaimBlock(size); }))
    {
        std::free(block);
        return false;
    }
    nxLogRecordHeader header = ReadHeader(block);
    header.size = static_cast<std::uint32_t>(recordSize);
    header.kind = nxLogRecordHeader::Elsewhere;
    const bool appended = _Append(channel, recordSize,
                                  [&](char* out)
                                  {
                                      std::memcpy(out, &header, sizeof header);
                                      std::memcpy(out + sizeof header, &block, sizeof block);
                                  });
    if (!appended)
        _FreeClaimedBlock(block, size);
    return appended;
}

void nxLogQueue::Close(const nxLogRoom& room, nxEnumValue level) noexcept
{
    if (room.channel == nullptr || room.spill == nullptr)
        CountDrop();
    else
    {
        nxLogRecordHeader header = ReadHeader(room.spill->begin);
        header.size = static_cast<std::uint32_t>(room.cursor - room.spill->begin);
        header.processor = static_cast<std::uint16_t>(*room.channel->_processor);
        header.level = static_cast<std::uint8_t>(level);
        header.kind = nxLogRecordHeader::Statement;
        std::memcpy(room.spill->begin, &header, sizeof header);
        if (!_Append(*room.channel, header.size, [&](char* out) { std::memcpy(out, room.spill->begin, header.size); }))
            CountDrop();
        std::free(room.spill);
    }
    if (room.channel != nullptr)
        nxLogChannel::_current = room.channel;
    if (level >= NX_LOG_LEVEL_WARNING)
        nxLogWriter::GetInstance().Urge(level);
}

void nxLogQueue::_WriteObject(char* out, const nxLog& record, std::size_t size) noexcept
{
    nxLogRecordHeader header{};
    header.size = static_cast<std::uint32_t>(size);
    header.processor = static_cast<std::uint16_t>(record._threadCPU);
    header.level = static_cast<std::uint8_t>(record._level.GetValue());
    header.kind = nxLogRecordHeader::Object;
    header.ticks = nxClock::Ticks();
    const char* const file = record._message.GetFile();
    const std::size_t fileSize = std::strlen(file);
    const nxLogObjectFields fields{record._timeStamp.GetSeconds(), record._timeStamp.GetNanoseconds(),
                                   record._threadIndex, record._line, static_cast<unsigned>(fileSize)};
    std::memcpy(out, &header, sizeof header);
    out += sizeof header;
    std::memcpy(out, &fields, sizeof fields);
    out += sizeof fields;
    std::memcpy(out, file, fileSize + 1);
    out += fileSize + 1;
    const char* const values = record._message.GetValues();
    std::memcpy(out, values, Distance(values, record._message.GetEnd()));
}

void nxLogQueue::Write(const nxLog& record) noexcept
{
    nxLogWriter::GetInstance().EnsureRunning();
    nxLogChannel* channel = nxLogChannel::_current;
    if (channel == nullptr)
        channel = _Attach();
    if (channel == nullptr)
    {
        CountDrop();
        return;
    }
    nxLogChannel::_current = channel->_nested;
    const std::size_t size = sizeof(nxLogRecordHeader) + sizeof(nxLogObjectFields) +
                             std::strlen(record._message.GetFile()) + 1 +
                             Distance(record._message.GetValues(), record._message.GetEnd());
    if (!_Append(*channel, size, [&](char* out) { _WriteObject(out, record, size); }))
        CountDrop();
    nxLogChannel::_current = channel;
    if (record._level.GetValue() >= NX_LOG_LEVEL_WARNING)
        nxLogWriter::GetInstance().Urge(static_cast<nxEnumValue>(record._level.GetValue()));
}

// The emptying side.

void nxLogQueue::BeginRound(bool everything) noexcept
{
    _scale = nxClock::GetScale();
    // Before the heads are read: whatever was begun earlier and is published by now is in this round. One that is to
    // take everything does not ask the clocks, which may differ from processor to processor.
    _cutOff = everything ? noCutOff : nxClock::Ticks() - clockSlack;
    _round = nullptr;
    _current = nullptr;
    const nxMutexGuard guard(_mutex);
    _RemoveEnded();
    for (nxLogChannel* channel = _channels; channel != nullptr; channel = channel->_next)
    {
        channel->_seen = channel->_head.load(std::memory_order_acquire);
        channel->_finished = channel->_read == channel->_seen;
        if (channel->_finished)
            continue;
        channel->_nextInRound = _round;
        _round = channel;
    }
}

// The next record of the channel that belongs to the round, null when there is none left.
const char* nxLogQueue::_Peek(nxLogChannel& channel) noexcept
{
    if (channel._finished)
        return nullptr;
    for (;;)
    {
        if (channel._read == channel._seen)
        {
            channel._finished = true;
            return nullptr;
        }
        if (ReadKind(channel._read) != nxLogRecordHeader::Jump)
            break;
        char* const target = ReadPointer(channel._read + 8);
        nxLogSegment* const segment = SegmentAt(target);
        channel._read = target;
        if (segment == channel._readSegment)
            continue;
        const nxMutexGuard guard(_mutex);
        channel._tail.store(target, std::memory_order_release);
        _GiveSegment(channel._readSegment);
        channel._readSegment = segment;
    }
    // What lies far ahead was read from a clock that has been set back since, and does not wait for it.
    const std::uint64_t ahead = ReadTicks(channel._read) - _cutOff - 1;
    if (_cutOff != noCutOff && ahead < clockSetBack)
    {
        channel._finished = true;
        return nullptr;
    }
    return channel._read;
}

// Chooses the channel with the oldest record.
void nxLogQueue::_Pick() noexcept
{
    std::uint64_t oldest = std::numeric_limits<std::uint64_t>::max();
    _bound = std::numeric_limits<std::uint64_t>::max();
    _current = nullptr;
    for (nxLogChannel* channel = _round; channel != nullptr; channel = channel->_nextInRound)
    {
        const char* const bytes = _Peek(*channel);
        if (bytes == nullptr)
            continue;
        const std::uint64_t ticks = ReadTicks(bytes);
        if (_current == nullptr || ticks < oldest)
        {
            if (_current != nullptr)
                _bound = oldest;
            oldest = ticks;
            _current = channel;
        }
        else
            _bound = std::min(_bound, ticks);
    }
}

// Of the record that Next() returned last.
void nxLogQueue::_FreeBlock() noexcept
{
    char* const block = std::exchange(_block, nullptr);
    {
        // Nobody who copies records may find the block any more.
        const nxMutexGuard guard(_mutex);
        _current->_tail.store(_current->_read, std::memory_order_release);
    }
    _FreeClaimedBlock(block, ReadSize(block));
}

inline void nxLogQueue::_Decode(nxLogRecord& record, const char* bytes, const nxLogChannel& channel,
                                const nxClockScale& scale, long long& second) noexcept
{
    record.level = static_cast<std::uint8_t>(bytes[offsetof(nxLogRecordHeader, level)]);
    std::uint16_t processor;
    std::memcpy(&processor, bytes + offsetof(nxLogRecordHeader, processor), sizeof processor);
    record.processor = processor;
    record.values = bytes + sizeof(nxLogRecordHeader);
    record.end = bytes + ReadSize(bytes);
    if (ReadKind(bytes) == nxLogRecordHeader::Statement) [[likely]]
    {
        record.time = scale.ToTimeNear(ReadTicks(bytes), second);
        second = record.time.seconds;
        record.threadIndex = channel._threadIndex;
        record.source = ReadSource(bytes);
        return;
    }
    nxLogObjectFields fields;
    std::memcpy(&fields, record.values, sizeof fields);
    record.time = {fields.seconds, fields.nanoseconds};
    record.threadIndex = fields.threadIndex;
    record.source = nullptr;
    record.ownFile = record.values + sizeof fields;
    record.ownLine = fields.line;
    record.values = record.ownFile + fields.fileSize + 1;
}

// Whether the current channel's next record is the next one of all, without a closer look.
inline bool nxLogQueue::_IsNextAtHand() const noexcept
{
    if (_current == nullptr || _current->_read == _current->_seen)
        return false;
    const char* const bytes = _current->_read;
    return ReadKind(bytes) != nxLogRecordHeader::Jump && ReadTicks(bytes) <= _bound && ReadTicks(bytes) <= _cutOff;
}

void nxLogQueue::_Find() noexcept
{
    const char* const bytes = _current != nullptr ? _Peek(*_current) : nullptr;
    if (bytes == nullptr || ReadTicks(bytes) > _bound)
        _Pick();
}

bool nxLogQueue::Next(nxLogRecord& record) noexcept
{
    if (_block != nullptr) [[unlikely]]
        _FreeBlock();
    if (!_IsNextAtHand()) [[unlikely]]
    {
        _Find();
        if (_current == nullptr)
            return false;
    }
    const char* bytes = _current->_read;
    // The other thread's processor has the bytes; a few records from now they will be here.
    __builtin_prefetch(bytes + prefetchDistance);
    // Its room is not given back before Release().
    _current->_read += RoundUp(ReadSize(bytes));
    if (ReadKind(bytes) == nxLogRecordHeader::Elsewhere) [[unlikely]]
        bytes = _block = ReadPointer(bytes + sizeof(nxLogRecordHeader));
    _Decode(record, bytes, *_current, _scale, _second);
    return true;
}

void nxLogQueue::Release() noexcept
{
    if (_block != nullptr)
        _FreeBlock();
    if (_round == nullptr)
        return;
    // A thread's ring counts as empty only where the tail has reached the head, and is given back only then. So after a
    // round the tail of each of its rings is where the reading stopped, also when there was but a jump to follow.
    bool hasMoved = false;
    {
        const nxMutexGuard guard(_mutex);
        for (nxLogChannel* channel = _round; channel != nullptr; channel = channel->_nextInRound)
            hasMoved |= channel->_tail.exchange(channel->_read, std::memory_order_release) != channel->_read;
    }
    if (hasMoved)
        CountProgress();
}

// Takes the channels of threads that are gone out of the list, once they are empty.
void nxLogQueue::_RemoveEnded() noexcept
{
    for (nxLogChannel** link = &_channels; *link != nullptr;)
    {
        nxLogChannel* const channel = *link;
        if (!channel->_ended.load(std::memory_order_acquire) ||
            channel->_head.load(std::memory_order_acquire) != channel->_tail.load(std::memory_order_relaxed))
        {
            link = &channel->_next;
            continue;
        }
        *link = channel->_next;
        _GiveSegment(channel->_readSegment);
        channel->_next = _freeChannels;
        _freeChannels = channel;
    }
}

void nxLogQueue::Trim() noexcept
{
    const std::size_t kept = std::max(_spareSegments, _reservedSegments.load(std::memory_order_relaxed));
    const nxMutexGuard guard(_mutex);
    while (_freeSegmentCount > kept)
        _FreeSegment(_PopFreeSegment());
}

bool nxLogQueue::IsEmpty() noexcept
{
    const nxMutexGuard guard(_mutex);
    for (const nxLogChannel* channel = _channels; channel != nullptr; channel = channel->_next)
        if (channel->_head.load(std::memory_order_acquire) != channel->_tail.load(std::memory_order_relaxed))
            return false;
    return true;
}

// Calls `action` with the bytes of each record that waits in a channel. Tails do not move meanwhile: with the mutex.
template <class Action>
void nxLogQueue::_ForEachWaiting(const Action& action)
{
    for (const nxLogChannel* channel = _channels; channel != nullptr; channel = channel->_next)
    {
        const char* const head = channel->_head.load(std::memory_order_acquire);
        const char* at = channel->_tail.load(std::memory_order_relaxed);
        while (at != head)
        {
            const nxLogRecordHeader::Kind kind = ReadKind(at);
            if (kind == nxLogRecordHeader::Jump)
            {
                at = ReadPointer(at + 8);
                continue;
            }
            action(*channel, kind == nxLogRecordHeader::Elsewhere ? ReadPointer(at + sizeof(nxLogRecordHeader)) : at);
            at += RoundUp(ReadSize(at));
        }
    }
}

void nxLogQueue::CopyRecords(std::vector<nxLog>& records)
{
    const nxClockScale scale = nxClock::GetScale();
    long long second = 0;
    const nxMutexGuard guard(_mutex);
    _ForEachWaiting(
        [&](const nxLogChannel& channel, const char* bytes)
        {
            nxLogRecord record;
            _Decode(record, bytes, channel, scale, second);
            records.push_back(nxLog(record));
        });
}

std::uint64_t nxLogQueue::DropWaiting(unsigned inHand) noexcept
{
    std::uint64_t waiting = 0;
    const nxMutexGuard guard(_mutex);
    _ForEachWaiting([&waiting](const nxLogChannel&, const char*) { ++waiting; });
    waiting -= std::min<std::uint64_t>(waiting, inHand);
    _dropped.fetch_add(waiting, std::memory_order_relaxed);
    return waiting;
}

void nxLogQueue::AfterForkInChild() noexcept
{
    nxForkMutex::Renew(_mutex);
    // The channels of the other threads, which are gone, are left alone: what they hold was caught in the middle of
    // anything. They are kept in a list, for leak checkers. Those of this thread begin again, empty.
    [[gnu::used]] static nxLogChannel* caught;
    while (_channels != nullptr)
    {
        nxLogChannel* const channel = std::exchange(_channels, _channels->_next);
        const nxLogChannel* own = firstChannel;
        while (own != nullptr && own != channel)
            own = own->_nested;
        if (own == nullptr)
            channel->_next = std::exchange(caught, channel);
    }
    std::size_t bytes = _freeSegmentCount * _ringSize;
    for (nxLogChannel* channel = firstChannel; channel != nullptr; channel = channel->_nested)
    {
        char* const head = channel->_head.load(std::memory_order_relaxed);
        // No room: the next statement comes by Open(), which starts the child's own writer.
        channel->_limit = head;
        channel->_tail.store(head, std::memory_order_relaxed);
        channel->_read = channel->_seen = head;
        channel->_readSegment = channel->_segment;
        channel->_next = _channels;
        _channels = channel;
        bytes += channel->_segment->capacity;
    }
    _bytes.store(bytes, std::memory_order_relaxed);
    _blocks.store(0, std::memory_order_relaxed);
    _dropped.store(0, std::memory_order_relaxed);
    _waits.store(0, std::memory_order_relaxed);
    _waiting.store(0, std::memory_order_relaxed);
    _stalledAt.store(~std::uint64_t{0}, std::memory_order_relaxed);
    _round = _current = nullptr;
    _block = nullptr;
}
