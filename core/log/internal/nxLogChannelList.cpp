// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogChannelList.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

#include "core/log/internal/nxLogCounters.h"
#include "core/platform/nxThisThread.h"

namespace
{
// The outermost ring of the calling thread.
constinit thread_local nxLogRing* ringsOfThisThread = nullptr;

// Destructors of other thread-local objects that log after this get new rings.
void EndRings(void* first) noexcept
{
    nxLogRing::SetCurrent(nullptr);
    ringsOfThisThread = nullptr;
    for (auto* ring = static_cast<nxLogRing*>(first); ring != nullptr;)
    {
        nxLogRing* const nested = ring->GetNested();
        ring->End();
        ring = nested;
    }
}

bool IsOfThisThread(const nxLogRing* ring)
{
    for (const nxLogRing* own = ringsOfThisThread; own != nullptr; own = own->GetNested())
        if (own == ring)
            return true;
    return false;
}
}  // namespace

nxLogChannelList& nxLogChannelList::GetInstance() noexcept
{
    alignas(nxLogChannelList) static unsigned char storage[sizeof(nxLogChannelList)];
    static nxLogChannelList& list = *::new (storage) nxLogChannelList(nxLogRingMemory::GetInstance());
    return list;
}

nxLogRing* nxLogChannelList::_MakeRing() noexcept
{
    nxLogSegment* const segment = _memory.TakeSmallSegment();
    if (segment == nullptr)
        return nullptr;
    const nxMutexGuard guard(_mutex);
    void* memory = _unusedRings;
    if (memory != nullptr)
        _unusedRings = _unusedRings->_next;
    else
        memory = std::aligned_alloc(alignof(nxLogRing), sizeof(nxLogRing));
    if (memory == nullptr)
    {
        _memory.GiveSegment(segment);
        return nullptr;
    }
    auto* const ring = ::new (memory) nxLogRing(*segment);
    ring->WantCall(_areCallsWanted);
    ring->_next = _rings;
    _rings = ring;
    return ring;
}

nxLogRing* nxLogChannelList::Attach() noexcept
{
    nxLogRing* const ring = _MakeRing();
    if (ring == nullptr)
        return nullptr;
    if (ringsOfThisThread == nullptr)
    {
        ringsOfThisThread = ring;
        nxThisThread::CallAtEnd(&EndRings, ring);
        return ring;
    }
    nxLogRing* last = ringsOfThisThread;
    while (last->GetNested() != nullptr)
        last = last->GetNested();
    last->SetNested(ring);
    return ring;
}

void nxLogChannelList::RemoveFinished() noexcept
{
    for (nxLogRing** link = &_rings; *link != nullptr;)
    {
        nxLogRing* const ring = *link;
        if (!ring->IsFinished())
        {
            link = &ring->_next;
            continue;
        }
        *link = ring->_next;
        _memory.GiveSegment(ring->_readSegment);
        ring->_next = std::exchange(_unusedRings, ring);
    }
}

bool nxLogChannelList::IsEmpty() noexcept
{
    const nxMutexGuard guard(_mutex);
    for (const nxLogRing* ring = _rings; ring != nullptr; ring = ring->_next)
        if (!ring->IsEmpty())
            return false;
    return true;
}

void nxLogChannelList::WantCalls(bool areWanted) noexcept
{
    const nxMutexGuard guard(_mutex);
    _areCallsWanted = areWanted;
    for (nxLogRing* ring = _rings; ring != nullptr; ring = ring->_next)
        ring->WantCall(areWanted);
}

std::uint64_t nxLogChannelList::DropWaiting(std::uint64_t inHand) noexcept
{
    std::uint64_t waiting = 0;
    const nxMutexGuard guard(_mutex);
    for (const nxLogRing* ring = _rings; ring != nullptr; ring = ring->_next)
        ring->ForEachWaiting([&waiting](const char*) { ++waiting; });
    waiting -= std::min(waiting, inHand);
    nxLogCounters::CountDropped(waiting, nxLogCounters::Reason::AtEnd);
    return waiting;
}

std::uint64_t nxLogChannelList::GetOldestTicks() noexcept
{
    std::uint64_t oldest = std::numeric_limits<std::uint64_t>::max();
    const nxMutexGuard guard(_mutex);
    for (const nxLogRing* ring = _rings; ring != nullptr; ring = ring->_next)
        if (const char* const first = ring->GetFirstWaiting(); first != nullptr)
            oldest = std::min(oldest, nxLogRecordBytes::ReadTicks(first));
    return oldest;
}

std::size_t nxLogChannelList::AfterForkInChild() noexcept
{
    nxForkMutex::Renew(_mutex);
    _areCallsWanted = false;
    // Rings of the parent's other threads are abandoned: their contents may be half written. They are kept in a list,
    // for leak checkers.
    [[gnu::used]] static nxLogRing* abandoned;
    while (_rings != nullptr)
    {
        nxLogRing* const ring = std::exchange(_rings, _rings->_next);
        if (!IsOfThisThread(ring))
            ring->_next = std::exchange(abandoned, ring);
    }
    std::size_t bytes = 0;
    for (nxLogRing* ring = ringsOfThisThread; ring != nullptr; ring = ring->GetNested())
    {
        ring->ForgetWaiting();
        ring->_next = std::exchange(_rings, ring);
        bytes += ring->GetCapacity();
    }
    return bytes;
}
