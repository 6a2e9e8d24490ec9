// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceList.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogTimedLock.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxThreadSanitizer.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// The list before the first registration, made without memory. It owns nothing and is not destroyed.
std::shared_ptr<const nxLogDeviceList::Entries> NoEntries() noexcept
{
    using Entries = const nxLogDeviceList::Entries;
    alignas(Entries) static unsigned char storage[sizeof(Entries)];
    return {std::shared_ptr<void>(), ::new (storage) Entries};
}

// A weak pointer tells that its object is gone by a relaxed load. The threads that dropped the object did so with a
// release; the fence pairs with that, so that all they did in the device happened before what follows.
void AcquireFromLastOwners() noexcept
{
#if !defined(__SANITIZE_THREAD__)  // which knows no fences, and is told by nxThreadSanitizer
    std::atomic_thread_fence(std::memory_order_acquire);
#endif
}
}  // namespace

nxLogDeviceList::nxLogDeviceList() noexcept : _entries(NoEntries()) {}

nxLogDeviceList& nxLogDeviceList::GetInstance() noexcept
{
    alignas(nxLogDeviceList) static unsigned char storage[sizeof(nxLogDeviceList)];
    static nxLogDeviceList& list = *::new (storage) nxLogDeviceList;
    return list;
}

std::shared_ptr<const nxLogDeviceList::Entries> nxLogDeviceList::Get() noexcept
{
    const nxMutexGuard guard(_mutex);
    return _entries;
}

bool nxLogDeviceList::Contains(const nxLogDevice* device) noexcept
{
    const std::shared_ptr<const Entries> entries = Get();
    return std::any_of(entries->begin(), entries->end(),
                       [device](const auto& entry) { return entry->GetDevice() == device && !entry->IsRemoved(); });
}

// @return a new list of the entries that are not removed. Makes room to remember the others, so that _Publish() of a list
// without them cannot fail. Throws std::bad_alloc, and has changed nothing then.
std::shared_ptr<nxLogDeviceList::Entries> nxLogDeviceList::_CopyLive()
{
    std::erase_if(_leaving, [](const auto& each) { return each.expired(); });
    AcquireFromLastOwners();  // for the threads that find them erased
    _leaving.reserve(_leaving.size() + _entries->size());
    auto live = std::make_shared<Entries>();
    live->reserve(_entries->size());
    for (const auto& entry : *_entries)
        if (!entry->IsRemoved())
            live->push_back(entry);
    return live;
}

void nxLogDeviceList::_Publish(std::shared_ptr<const Entries> entries) noexcept
{
    for (const auto& entry : *_entries)
        if (entry->IsRemoved())
            _leaving.push_back(entry);  // _CopyLive() has made room
    _entries = std::move(entries);
}

// Calls `action` for each entry of the device that is removed and still referred to.
template <class Action>
void nxLogDeviceList::_ForEachRemoved(const nxLogDevice* device, const Action& action) noexcept
{
    for (const auto& entry : *_entries)
        if (entry->IsRemoved() && entry->GetDevice() == device)
            action(entry);
    for (const auto& each : _leaving)
        if (const std::shared_ptr<nxLogDeviceEntry> entry = each.lock();
            entry != nullptr && entry->GetDevice() == device)
            action(entry);
}

void nxLogDeviceList::Add(std::span<nxLogDevice* const> devices) noexcept
{
    try
    {
        const nxMutexGuard guard(_mutex);
        const std::shared_ptr<Entries> entries = _CopyLive();
        for (nxLogDevice* const device : devices)
        {
            const auto isItself = [device](const auto& entry) { return entry->GetDevice() == device; };
            if (device == nullptr || std::any_of(entries->begin(), entries->end(), isItself))
                continue;
            std::shared_ptr<nxMutex> mutex;
            _ForEachRemoved(device, [&mutex](const auto& entry) { mutex = entry->GetMutex(); });
            if (mutex == nullptr)
                mutex = std::make_shared<nxMutex>();
            entries->push_back(std::make_shared<nxLogDeviceEntry>(device, std::move(mutex),
                                                                  nxLogDeviceBook::GetInstance().Open(device)));
        }
        _Publish(entries);
    }
    catch (...)
    {
        // No memory for a list with them.
    }
}

void nxLogDeviceList::Remove(const nxLogDevice* device) noexcept
{
    try
    {
        const nxMutexGuard guard(_mutex);
        bool any = false;
        for (const auto& entry : *_entries)
            if (entry->GetDevice() == device)
            {
                entry->MarkRemoved();
                any = true;
            }
        if (any)
            _Publish(_CopyLive());
    }
    catch (...)
    {
        // No memory for a list without it: it stays, and its mark keeps every thread out.
    }
    WaitUntilLeft(device);
}

// It does not hold the list's lock while it waits, because the device may be registering another one at the moment.
void nxLogDeviceList::WaitUntilLeft(const nxLogDevice* device) noexcept
{
    std::shared_ptr<nxLogDeviceEntry> any;
    {
        const nxMutexGuard guard(_mutex);
        _ForEachRemoved(device, [&any](const auto& entry) { any = entry; });
    }
    if (any == nullptr)
    {
        AcquireFromLastOwners();
        nxThreadSanitizer::Acquire(device);  // the last caller has dropped its reference
        return;
    }
    const bool isEnding = _isEnding.load(std::memory_order_relaxed);
    const std::int64_t limit = isEnding ? nxLogLimits::DeviceAtEnd : nxLogTimedLock::Forever;
    // The mark is set under the device's lock, under which End() looks at it.
    any->WhenLeft(std::min(nxLogDeviceEntry::GetLongestWait(), limit),
                  [&]
                  {
                      const nxMutexGuard guard(_mutex);
                      _ForEachRemoved(device, [](const auto& entry) { entry->MarkEnded(); });
                  });
}

std::shared_ptr<const nxLogDeviceList::Entries> nxLogDeviceList::TakeAll() noexcept
{
    const nxMutexGuard guard(_mutex);
    std::shared_ptr<const Entries> taken = _entries;
    for (const auto& entry : *taken)
        entry->MarkRemoved();
    try
    {
        _Publish(_CopyLive());
    }
    catch (...)
    {
        // No memory for an empty list: the entries stay, and their marks keep every thread out.
    }
    return taken;
}

void nxLogDeviceList::BeforeFork() noexcept
{
    // A device that does not return must not keep the process from forking.
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + nxLogLimits::DevicesAtFork;
    // The devices before the list, because a device may be changing the list. So the list may have changed meanwhile.
    for (;;)
    {
        _forking = Get();
        for (const auto& entry : *_forking)
            entry->BeforeFork(deadline);
        nxForkMutex::Take(_mutex);
        if (_entries == _forking || nxClock::MonotonicNanoseconds() > deadline)
            return;
        nxForkMutex::GiveBack(_mutex);
        for (const auto& entry : *_forking)
            entry->AfterForkInParent();
    }
}

void nxLogDeviceList::AfterForkInParent() noexcept
{
    nxForkMutex::GiveBack(_mutex);
    for (const auto& entry : *_forking)
        entry->AfterForkInParent();
    _forking.reset();
}

void nxLogDeviceList::AfterForkInChild() noexcept
{
    nxForkMutex::Renew(_mutex);
    for (const auto& entry : *_entries)
        entry->AfterForkInChild();
    // The threads inside of those do not exist in the child, and their locks are held for good.
    _leaving.clear();
    _forking.reset();
}
