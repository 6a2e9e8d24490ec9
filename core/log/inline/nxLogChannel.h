// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGCHANNEL_H
#define CORE_LOG_INLINE_NXLOGCHANNEL_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/enum/nxEnumValue.h"
#include "core/log/inline/nxLogRecordHeader.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxClock.h"

class nxLogRing;
struct nxLogSource;
struct nxLogSegment;
struct nxLogSpill;

/// Where an open statement writes: the free part of its thread's channel, or a block of its own.
struct nxLogRoom
{
    class nxLogChannel* channel;  ///< The channel that the statement has taken; null when there was no memory for one.
    char* cursor;                 ///< Where the next value goes.
    char* end;                    ///< The end of the room.
    nxLogSpill* spill;            ///< The block, when the channel's own room did not suffice or there is none.
};

/// The way of one thread's records to the deferred-write thread, as statements see it: a ring in memory that one thread
/// fills and one empties, without a lock. Operations that need not be inline in every statement are in nxLogRing.
///
/// Invariant: a statement holds one channel, from Open() to Close(). Records that are logged meanwhile on the same
/// thread, by a function that an argument calls or by a signal handler, go to the channel's nested one. Open() never
/// waits; Close() may.
///
/// Errors: without memory a record is counted as dropped. Threads: any; a channel serves one thread.
class NX_CORE_API nxLogChannel
{
public:
    nxLogChannel(const nxLogChannel&) = delete;
    nxLogChannel& operator=(const nxLogChannel&) = delete;

    /// Takes the calling thread's channel and begins a record in it. Never waits.
    [[gnu::always_inline]] static nxLogRoom Open(const nxLogSource* source) noexcept
    {
        nxLogChannel* const channel = _current;
        if (channel == nullptr) [[unlikely]]
            return _BeginFirst(source);
        _current = channel->_nested;
        // A signal handler that logs here finds the nested channel, or has finished with this one. It runs on this thread,
        // so that only the compiler must keep the order.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        char* const begin = channel->_head.load(std::memory_order_relaxed);
        if (channel->_roomEnd - begin < static_cast<std::ptrdiff_t>(MinimumRoom)) [[unlikely]]
            return _BeginSlowly(channel, source);
        _WriteHeader(begin, source);
        return {channel, begin + sizeof(nxLogRecordHeader), channel->_roomEnd, nullptr};
    }

    /// Publishes the record and gives the channel back. May wait for room when the record did not fit, and waits for a
    /// fatal record to be written.
    [[gnu::always_inline]] static void Close(const nxLogRoom& room, nxEnumValue level) noexcept
    {
        if (room.spill != nullptr) [[unlikely]]
        {
            _CloseSlowly(room.channel, room.cursor, room.spill, level);
            return;
        }
        nxLogChannel* const channel = room.channel;
        char* const begin = channel->_head.load(std::memory_order_relaxed);
        const auto size = static_cast<std::uint64_t>(room.cursor - begin);
        const std::uint64_t word = size | static_cast<std::uint64_t>(*channel->_processor & 0xFFFF) << 32 |
                                   static_cast<std::uint64_t>(level & 0xFF) << 48;
        std::memcpy(begin, &word, sizeof word);
        channel->_head.store(begin + ((size + 7) & ~std::uint64_t{7}), std::memory_order_release);
        // Keeps the compiler from reading the flag first. The processor is kept from it by nxLogIdleSleep, which alone
        // pays for a barrier.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        _current = channel;
        if (channel->_isCallWanted.load(std::memory_order_relaxed)) [[unlikely]]
            _CallWriter(channel);
        if (level >= NX_LOG_LEVEL_WARNING)
            Urge(level);
    }

    /// @return @p room with at least @p bytes free; the values written so far may have moved. Without memory, or beyond
    ///         the longest record, there is no room left.
    [[gnu::always_inline]] static nxLogRoom Grow(const nxLogRoom& room, std::size_t bytes) noexcept
    {
        return _GrowSlowly(room.channel, room.cursor, room.spill, bytes);
    }

    /// Has the calling thread's last record, of @p level, written at once; waits for a fatal one.
    static void Urge(nxEnumValue level) noexcept;
    /// The same for a warning. Programs that were built with version 1.0 call it.
    static void WakeWriter() noexcept;

    /// The room in bytes that every record has when it is begun; one that needs more may have to move.
    static constexpr std::size_t MinimumRoom = 256;

protected:
    nxLogChannel() = default;

    [[gnu::always_inline]] static void _WriteHeader(char* begin, const nxLogSource* source) noexcept
    {
        const std::uint64_t ticks = nxClock::Ticks();
        std::memcpy(begin + 8, &ticks, sizeof ticks);
        std::memcpy(begin + 16, &source, sizeof source);
        // The cache lines of the record after next were last read by the other thread, so fetch them back in good time.
        __builtin_prefetch(begin + _prefetchDistance, 1);
        __builtin_prefetch(begin + _prefetchDistance + 64, 1);
    }
    // These take the parts of a room one by one: a room that is handed over as a whole has to be in memory, and then
    // the compiler keeps it there from the beginning.
    [[gnu::cold, gnu::noinline]] static nxLogRoom _GrowSlowly(nxLogChannel* channel, char* cursor, nxLogSpill* spill,
                                                              std::size_t bytes) noexcept;
    [[gnu::cold, gnu::noinline]] static void _CloseSlowly(nxLogChannel* channel, char* cursor, nxLogSpill* spill,
                                                          nxEnumValue level) noexcept;
    [[gnu::cold, gnu::noinline]] static nxLogRoom _BeginFirst(const nxLogSource* source) noexcept;
    [[gnu::cold, gnu::noinline]] static nxLogRoom _BeginSlowly(nxLogChannel* channel,
                                                               const nxLogSource* source) noexcept;
    [[gnu::cold, gnu::noinline]] static void _CallWriter(nxLogChannel* channel) noexcept;
    // The same two for statements that were compiled with version 1.0: they do not look at _isCallWanted.
    [[gnu::cold, gnu::noinline]] static nxLogRoom _OpenFirst(const nxLogSource* source) noexcept;
    [[gnu::cold, gnu::noinline]] static nxLogRoom _OpenSlowly(nxLogChannel* channel,
                                                              const nxLogSource* source) noexcept;

    static constexpr std::ptrdiff_t _prefetchDistance = 512;

    // The channel that a record of the calling thread goes to; null before the first one and while all its channels are
    // taken. Initial-exec: read without a call, from any module that the code is inlined into.
    static constinit thread_local nxLogChannel* _current __attribute__((tls_model("initial-exec")));

    // Written by the filling thread only, but for _isCallWanted.
    // Where the next record will begin; all before it is published: Close() and nxLogRing::_MoveHead() store it (release),
    // nxLogRing::_LoadHead() and IsEmpty() load it (acquire). Relaxed on the filling thread, which reads its own store.
    std::atomic<char*> _head{nullptr};
    char* _limit = nullptr;                         // _roomEnd for statements of version 1.0; null before the first one
    nxLogChannel* _nested = nullptr;                // the one that serves the thread while this one is taken
    const volatile unsigned* _processor = nullptr;  // the number of the processor the thread runs on
    nxLogSegment* _segment = nullptr;               // where the head is
    // The thread has ended: nothing will follow. nxLogRing::End() stores it after the last head (release),
    // nxLogRing::IsFinished() loads it before that (acquire).
    std::atomic<bool> _ended{false};
    // Whether the emptying thread sleeps until it is called. Set by that thread, cleared by both. Relaxed: nxLogIdleSleep
    // says what orders it, and nxLogIdleSleep.pml proves it.
    std::atomic<bool> _isCallWanted{false};
    char* _roomEnd = nullptr;  // up to where the filling thread may write without looking

    // Written by the emptying thread only, while there are records. What it reads for each of them must be here:
    // reading the cache line above would take it from the filling thread every time.
    //
    // All before it is free again: nxLogRing::MoveTail() stores it after the last read (release), nxLogRing::_LookForRoom()
    // loads it before it writes there (acquire). Relaxed on the emptying thread, and for others under the list's mutex.
    alignas(64) std::atomic<char*> _tail{nullptr};
    char* _read = nullptr;                 // the next record to be read
    char* _seen = nullptr;                 // the head as the current round found it
    nxLogSegment* _readSegment = nullptr;  // where _read is
    unsigned _threadIndex = 0;             // of the filling thread
    bool _finished = false;                // nothing more in this round
    nxLogRing* _nextInRound = nullptr;     // in the list of this round's rings
    nxLogRing* _next = nullptr;            // in the list of all rings, under its mutex
};

#endif
