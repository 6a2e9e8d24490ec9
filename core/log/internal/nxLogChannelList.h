// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGCHANNELLIST_H
#define CORE_LOG_INTERNAL_NXLOGCHANNELLIST_H

#include <cstdint>

#include "core/log/internal/nxLogRing.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

/// All rings, and those of the calling thread.
///
/// Invariant: every ring is in the list once, from its making until its thread has ended and it is empty. A thread's
/// rings are chained from the outermost on, in the order in which nested statements take them.
///
/// Errors: null without memory. Threads: any. Ownership: rings are owned by the list, and are never freed but used
/// again.
class nxLogChannelList
{
public:
    /// The list of the process. Never destroyed: threads and static destructors report to the very end.
    static nxLogChannelList& GetInstance() noexcept;
    /// @param memory outlives the list.
    explicit nxLogChannelList(nxLogRingMemory& memory) noexcept : _memory(memory) {}

    /// Gives the calling thread another ring: it has none, or all are in use by open statements.
    nxLogRing* Attach() noexcept;

    /// Held while tails move: the thread that holds it can walk from tail to head of every ring.
    nxMutex& GetMutex() noexcept NX_RETURN_CAPABILITY(_mutex) { return _mutex; }

    /// Takes rings out whose threads have ended, once they are empty.
    void RemoveFinished() noexcept NX_REQUIRES(_mutex);
    /// The first ring; the others follow by _next.
    nxLogRing* GetFirst() const noexcept NX_REQUIRES(_mutex) { return _rings; }

    /// Whether no ring holds a record.
    bool IsEmpty() noexcept;
    /// Whether threads are to call the deferred-write thread after they have published a record: those that have a ring,
    /// and those that get one later.
    void WantCalls(bool areWanted) noexcept;
    /// Calls @p visit with a view of every record that waits. The order is kept within each thread. What @p visit
    /// throws comes through.
    template <class Visitor>
    void VisitWaiting(const Visitor& visit);
    /// When the oldest record that waits was begun; the largest number when none waits. Looks at one record of each ring.
    std::uint64_t GetOldestTicks() noexcept;
    /// Counts as dropped all records that wait, except @p inHand that the writer has given to devices: at the end of
    /// the process no thread will write them. @return how many these are.
    std::uint64_t DropWaiting(std::uint64_t inHand) noexcept;

    void BeforeFork() noexcept { nxForkMutex::Take(_mutex); }
    void AfterForkInParent() noexcept { nxForkMutex::GiveBack(_mutex); }
    /// Keeps the rings of the forking thread, empty. @return the capacities of their segments.
    std::size_t AfterForkInChild() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    nxLogRing* _MakeRing() noexcept;

    nxLogRingMemory& _memory;
    nxMutex _mutex;
    nxLogRing* _rings NX_GUARDED_BY(_mutex) = nullptr;
    nxLogRing* _unusedRings NX_GUARDED_BY(_mutex) = nullptr;  // of threads that have ended
    bool _areCallsWanted NX_GUARDED_BY(_mutex) = false;
};

template <class Visitor>
void nxLogChannelList::VisitWaiting(const Visitor& visit)
{
    nxLogRecordTimes times(nxClock::GetScale());
    const nxMutexGuard guard(_mutex);
    for (const nxLogRing* ring = _rings; ring != nullptr; ring = ring->_next)
        ring->ForEachWaiting(
            [&](const char* bytes)
            {
                nxLogRecord record;
                nxLogRecordBytes::Decode(record, bytes, ring->_threadIndex, times);
                visit(record);
            });
}

#endif
