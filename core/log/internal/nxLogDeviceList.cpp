#include "core/log/internal/nxLogDeviceList.h"

#include <algorithm>
#include <new>

#include "core/log/internal/nxLogQueue.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLineSink.h"
#include "core/platform/nxClock.h"
#include "core/platform/nxPlatformThread.h"
#include "core/thread/internal/nxMutexInChild.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// For one device, of a thread that is inside another one.
constexpr std::int64_t patienceInside = 100'000'000;
}  // namespace

constinit thread_local const nxLogDeviceEntry::Visit* nxLogDeviceEntry::_innermost = nullptr;

nxLogDeviceEntry::nxLogDeviceEntry(nxLogDevice* registered) noexcept
    : _device(registered), _lineSink(registered->GetLineSink())
{
}

nxLogDeviceEntry::Visit::Visit(nxLogDeviceEntry& entry) noexcept
    : _entry(entry), _outer(_innermost), _inside(!_IsThreadInside(entry))
{
    if (!_inside)
        return;
    if (_outer == nullptr)
        _entry._mutex.Lock();
    else if (!_entry._LockInTime(patienceInside))
    {
        _inside = false;
        nxLogQueue::GetInstance().CountDrop();
        return;
    }
    _innermost = this;
}

nxLogDeviceEntry::Visit::~Visit()
{
    if (!_inside)
        return;
    _innermost = _outer;
    _entry._mutex.Unlock();
}

bool nxLogDeviceEntry::_IsThreadInside(const nxLogDeviceEntry& entry) noexcept
{
    for (const Visit* visit = _innermost; visit != nullptr; visit = visit->GetOuter())
        if (&visit->GetEntry() == &entry)
            return true;
    return false;
}

bool nxLogDeviceEntry::IsThreadInsideAny() noexcept { return _innermost != nullptr; }

void nxLogDeviceEntry::Remove() noexcept
{
    _removed.store(true, std::memory_order_relaxed);
    if (_innermost != nullptr)
        WaitUntilLeft(patienceInside);
    else
    {
        _mutex.Lock();
        _mutex.Unlock();
    }
}

bool nxLogDeviceEntry::WaitUntilLeft(std::int64_t patience) noexcept
{
    if (_IsThreadInside(*this) || !_LockInTime(patience))
        return false;
    _mutex.AssertHeld();
    _mutex.Unlock();
    return true;
}

bool nxLogDeviceEntry::_LockInTime(std::int64_t patience) noexcept
{
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + patience;
    while (!_mutex.TryLock().IsOK())
    {
        if (nxClock::MonotonicNanoseconds() > deadline)
            return false;
        nxPlatformThread::SleepMilliseconds(1);
    }
    return true;
}

void nxLogDeviceEntry::RemoveAndDestroy(bool wait) noexcept
{
    if (wait)
        Remove();
    else
    {
        _removed.store(true, std::memory_order_relaxed);
        if (!WaitUntilLeft(0))
            return;
    }
    // Nobody else comes here any more, and the device may end itself.
    try
    {
        _device->Destroy();
    }
    catch (...)
    {
    }
}

void nxLogDeviceEntry::BeforeFork(std::int64_t deadline) noexcept
{
    _lockedForFork = false;
    if (_IsThreadInside(*this))
        return;
    if (!_LockInTime(deadline - nxClock::MonotonicNanoseconds()))
        return;
    _lockedForFork = true;
    if (_lineSink != nullptr && !IsRemoved())
        _lineSink->BeforeFork();
}

void nxLogDeviceEntry::AfterForkInParent() noexcept
{
    if (!_lockedForFork)
        return;
    if (_lineSink != nullptr && !IsRemoved())
        _lineSink->AfterForkInParent();
    _mutex.Unlock();
}

void nxLogDeviceEntry::AfterForkInChild() noexcept
{
    ::new (&_mutex) nxMutex;
    if (_lineSink != nullptr && !IsRemoved())
        _lineSink->AfterForkInChild();
}

nxLogDeviceList::nxLogDeviceList() noexcept : _entries(std::make_shared<const Entries>()) {}

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
                       [device](const auto& entry) { return entry->IsFor(device) && !entry->IsRemoved(); });
}

void nxLogDeviceList::Add(std::span<nxLogDevice* const> devices) noexcept
{
    try
    {
        const nxMutexGuard guard(_mutex);
        auto entries = std::make_shared<Entries>(*_entries);
        for (nxLogDevice* const device : devices)
        {
            const auto isItself = [device](const auto& entry) { return entry->IsFor(device); };
            if (device != nullptr && std::none_of(entries->begin(), entries->end(), isItself))
                entries->push_back(std::make_shared<nxLogDeviceEntry>(device));
        }
        _entries = std::move(entries);
        _version.fetch_add(1, std::memory_order_release);
    }
    catch (...)
    {
        // Without memory there is no list with them.
    }
}

bool nxLogDeviceList::Remove(const nxLogDevice* device) noexcept
{
    std::shared_ptr<nxLogDeviceEntry> removed;
    try
    {
        const nxMutexGuard guard(_mutex);
        auto entries = std::make_shared<Entries>(*_entries);
        const auto found = std::find_if(entries->begin(), entries->end(),
                                        [device](const auto& entry) { return entry->IsFor(device); });
        if (found == entries->end())
            return false;
        removed = *found;
        entries->erase(found);
        _entries = std::move(entries);
        _RememberLeaving(removed);
        _version.fetch_add(1, std::memory_order_release);
    }
    catch (...)
    {
        // It stays in the list, marked, and is never called again.
        const std::shared_ptr<const Entries> entries = Get();
        for (const auto& entry : *entries)
            if (entry->IsFor(device) && !entry->IsRemoved())
                removed = entry;
    }
    if (removed == nullptr)
        return false;
    // Not under the list's lock: the device may be at work, and may itself be registering another one.
    removed->Remove();
    return true;
}

void nxLogDeviceList::_RememberLeaving(const std::shared_ptr<nxLogDeviceEntry>& entry) noexcept
{
    try
    {
        std::erase_if(_leaving, [](const auto& each) { return each.expired(); });
        _leaving.push_back(entry);
    }
    catch (...)
    {
        // Without memory nobody waits for it.
    }
}

void nxLogDeviceList::WaitUntilLeft(const nxLogDevice* device) noexcept
{
    constexpr std::int64_t patience = 2'000'000'000;
    std::vector<std::weak_ptr<nxLogDeviceEntry>> leaving;
    try
    {
        const nxMutexGuard guard(_mutex);
        leaving = _leaving;
    }
    catch (...)
    {
    }
    for (const auto& each : leaving)
        if (const std::shared_ptr<nxLogDeviceEntry> entry = each.lock(); entry != nullptr && entry->IsFor(device))
            entry->WaitUntilLeft(nxLogDeviceEntry::IsThreadInsideAny() ? 0 : patience);
}

std::shared_ptr<const nxLogDeviceList::Entries> nxLogDeviceList::TakeAll() noexcept
{
    std::shared_ptr<const Entries> none;
    try
    {
        none = std::make_shared<const Entries>();
    }
    catch (...)
    {
        // The entries stay in the list, where their mark keeps everybody out.
        return Get();
    }
    const nxMutexGuard guard(_mutex);
    std::swap(none, _entries);
    for (const auto& entry : *none)
        _RememberLeaving(entry);
    _version.fetch_add(1, std::memory_order_release);
    return none;
}

void nxLogDeviceList::BeforeFork() noexcept
{
    // A device that does not return must not keep the process from forking.
    constexpr std::int64_t patience = 1'000'000'000;
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + patience;
    // The devices before the list, as a device may be changing the list; so the list may have changed at the end.
    for (;;)
    {
        _forking = Get();
        for (const auto& entry : *_forking)
            entry->BeforeFork(deadline);
        _mutex.Lock();
        if (_entries == _forking || nxClock::MonotonicNanoseconds() > deadline)
            return;
        _mutex.Unlock();
        for (const auto& entry : *_forking)
            entry->AfterForkInParent();
    }
}

void nxLogDeviceList::AfterForkInParent() noexcept
{
    _mutex.Unlock();
    for (const auto& entry : *_forking)
        entry->AfterForkInParent();
    _forking.reset();
}

void nxLogDeviceList::AfterForkInChild() noexcept
{
    nxMutexInChild::Renew(_mutex);
    for (const auto& entry : *_entries)
        entry->AfterForkInChild();
    _forking.reset();
}
