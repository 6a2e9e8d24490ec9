#include "core/log/internal/nxLogDeviceList.h"

#include <algorithm>
#include <new>
#include <utility>

#include "core/log/internal/nxLogQueue.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLineSink.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// For one device, of a thread that is inside another one.
constexpr std::int64_t patienceInside = 100'000'000;
// For one device that is unregistered while the process ends.
constexpr std::int64_t patienceAtEnd = 2'000'000'000;
}  // namespace

constinit thread_local const nxLogDeviceEntry::Visit* nxLogDeviceEntry::_innermost = nullptr;

nxLogDeviceEntry::nxLogDeviceEntry(nxLogDevice* registered, std::shared_ptr<nxMutex> mutex) noexcept
    : _device(registered), _lineSink(registered->GetLineSink()), _mutex(std::move(mutex))
{
}

nxLogDeviceEntry::Visit::Visit(nxLogDeviceEntry& entry, std::int64_t patience) noexcept
    : _entry(entry), _outer(_innermost), _inside(!entry._IsThreadInside() && entry._LockInTime(patience))
{
    if (_inside)
        _innermost = this;
}

nxLogDeviceEntry::Visit::~Visit()
{
    if (!_inside)
        return;
    _innermost = _outer;
    _entry._mutex->Unlock();
}

bool nxLogDeviceEntry::_IsThreadInside() const noexcept
{
    for (const Visit* visit = _innermost; visit != nullptr; visit = visit->GetOuter())
        if (visit->GetMutex() == _mutex.get())
            return true;
    return false;
}

bool nxLogDeviceEntry::IsThreadInsideAny() noexcept { return _innermost != nullptr; }

std::int64_t nxLogDeviceEntry::GetPatience() noexcept { return IsThreadInsideAny() ? patienceInside : Forever; }

// What a device reports at once is not for itself; all else that could not be handed over is missed.
void nxLogDeviceEntry::_CountMissed() const noexcept
{
    if (!_IsThreadInside())
        nxLogQueue::GetInstance().CountDrop();
}

bool nxLogDeviceEntry::_LockInTime(std::int64_t patience) noexcept
{
    if (patience == Forever)
        return _mutex->Lock().IsOK();
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + patience;
    while (!_mutex->TryLock().IsOK())
    {
        if (nxClock::MonotonicNanoseconds() > deadline)
            return false;
        nxThisThread::SleepMilliseconds(1);
    }
    return true;
}

void nxLogDeviceEntry::End(bool wait) noexcept
{
    const Visit visit(*this, wait ? GetPatience() : 0);
    if (!visit.IsInside() || _ended.exchange(true, std::memory_order_relaxed))
        return;
    _Do([this] { _device->Flush(); });
    // The device may end itself there, which does not end this entry.
    _Do([this] { _device->Destroy(); });
}

void nxLogDeviceEntry::BeforeFork(std::int64_t deadline) noexcept
{
    _lockedForFork = false;
    if (_IsThreadInside())
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
    _mutex->Unlock();
}

void nxLogDeviceEntry::AfterForkInChild() noexcept
{
    ::new (_mutex.get()) nxMutex;
    if (_lineSink != nullptr && !IsRemoved())
        _lineSink->AfterForkInChild();
}

namespace
{
// The list before the first registration, which may have to do without memory. It owns nothing and is not destroyed.
std::shared_ptr<const nxLogDeviceList::Entries> NoEntries() noexcept
{
    using Entries = const nxLogDeviceList::Entries;
    alignas(Entries) static unsigned char storage[sizeof(Entries)];
    return {std::shared_ptr<void>(), ::new (storage) Entries};
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

// The entries that are not removed, in a list of its own. Those that are removed are remembered as leaving before the
// list without them can be published, or nothing is changed: bad_alloc.
std::shared_ptr<nxLogDeviceList::Entries> nxLogDeviceList::_CopyLive()
{
    std::erase_if(_leaving, [](const auto& each) { return each.expired(); });
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
            _leaving.push_back(entry);  // has its room
    _entries = std::move(entries);
}

// Of one device.
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
            entries->push_back(std::make_shared<nxLogDeviceEntry>(device, std::move(mutex)));
        }
        _Publish(entries);
    }
    catch (...)
    {
        // Without memory there is no list with them.
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
        // It stays in the list, marked, and is never called again.
    }
    WaitUntilLeft(device);
}

// Not under the list's lock while it waits: the device may be at work, and may itself be registering another one.
void nxLogDeviceList::WaitUntilLeft(const nxLogDevice* device) noexcept
{
    std::shared_ptr<nxLogDeviceEntry> any;
    {
        const nxMutexGuard guard(_mutex);
        _ForEachRemoved(device, [&any](const auto& entry) { any = entry; });
    }
    if (any == nullptr)
        return;
    const bool isEnding = _isEnding.load(std::memory_order_relaxed);
    const std::int64_t patience = isEnding ? patienceAtEnd : nxLogDeviceEntry::Forever;
    // Under the device's lock: who ends a device looks at the mark under it.
    any->WhenLeft(std::min(nxLogDeviceEntry::GetPatience(), patience),
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
        // The entries stay in the list, where their mark keeps everybody out.
    }
    return taken;
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
    nxForkMutex::Renew(_mutex);
    for (const auto& entry : *_entries)
        entry->AfterForkInChild();
    // Whoever was inside of those is gone, and their locks stay with him.
    _leaving.clear();
    _forking.reset();
}
