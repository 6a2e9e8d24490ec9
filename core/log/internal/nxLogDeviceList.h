#ifndef CORE_LOG_INTERNAL_NXLOGDEVICELIST_H
#define CORE_LOG_INTERNAL_NXLOGDEVICELIST_H

#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "core/thread/nxMutex.h"

class nxLogDevice;
class nxLogLineSink;

/// One registration of a device, and the lock that lets one thread at a time into the device.
///
/// - A call begins under the device's lock, and only while the registration is not removed. It is marked as removed
///   under the list's lock before anybody can see a list without it. So whoever has had the device's lock after the
///   mark knows that no call is going on and none will begin.
/// - All registrations of one device that anybody still has in hand share one lock, so that a device that is registered
///   again is not entered while a call of its earlier registration goes on.
class nxLogDeviceEntry
{
public:
    nxLogDeviceEntry(nxLogDevice* registered, std::shared_ptr<nxMutex> mutex) noexcept;

    /// Calls @p action(device), unless the device is unregistered by now or this thread is inside it already. Inside
    /// another device the thread does not wait long for this one, whose own thread may be waiting for that: what cannot
    /// be handed over counts as dropped.
    /// @return whether the device was called.
    template <class Action>
    bool Call(const Action& action) noexcept
    {
        const Visit visit(*this, GetPatience());
        if (!visit.IsInside())
        {
            _CountMissed();
            return false;
        }
        if (IsRemoved())
            return false;
        _Do([&] { action(*_device); });
        return true;
    }

    nxLogLineSink* GetLineSink() const { return _lineSink; }
    const nxLogDevice* GetDevice() const { return _device; }
    bool IsRemoved() const { return _removed.load(std::memory_order_relaxed); }
    /// With the list's mutex.
    void MarkRemoved() noexcept { _removed.store(true, std::memory_order_relaxed); }

    /// Unregistered, the device gets its last Flush() and its Destroy(), in one stay: unless its owner has unregistered
    /// it meanwhile, and so perhaps destroyed it.
    /// @param wait whether for the call that is going on; if not, a device that is in use is left as it is.
    void End(bool wait) noexcept;
    /// Its owner has it back: End() leaves it alone.
    void MarkEnded() noexcept { _ended.store(true, std::memory_order_relaxed); }

    /// Waits until no thread but this one is inside the device, @p patience nanoseconds at most, and calls @p action
    /// while none can enter; after waiting in vain, too.
    template <class Action>
    void WhenLeft(std::int64_t patience, const Action& action) noexcept
    {
        const Visit visit(*this, patience);
        action();
    }

    /// How long the calling thread waits for a device, in nanoseconds: without an end, unless it is inside another one.
    static std::int64_t GetPatience() noexcept;
    static constexpr std::int64_t Forever = std::numeric_limits<std::int64_t>::max();

    /// The lock, to be shared by another registration of the same device.
    const std::shared_ptr<nxMutex>& GetMutex() const { return _mutex; }

    /// Keeps every thread out of the device until the fork is done; gives up at @p deadline of the monotonic clock.
    void BeforeFork(std::int64_t deadline) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() noexcept;

private:
    /// The calling thread's stay in the device.
    class Visit
    {
    public:
        // Whether it locks depends on where the thread is.
        Visit(nxLogDeviceEntry& entry, std::int64_t patience) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
        ~Visit() NX_NO_THREAD_SAFETY_ANALYSIS;
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        bool IsInside() const { return _inside; }
        const nxMutex* GetMutex() const { return _entry._mutex.get(); }
        const Visit* GetOuter() const { return _outer; }

    private:
        nxLogDeviceEntry& _entry;
        const Visit* _outer;
        bool _inside;
    };

    // A device of an application's own that throws loses what it was given; the log goes on.
    template <class Action>
    static void _Do(const Action& action) noexcept
    {
        try
        {
            action();
        }
        catch (...)
        {
        }
    }

    bool _LockInTime(std::int64_t patience) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    bool _IsThreadInside() const noexcept;
    void _CountMissed() const noexcept;

    static constinit thread_local const Visit* _innermost;

    nxLogDevice* const _device;
    nxLogLineSink* const _lineSink;
    const std::shared_ptr<nxMutex> _mutex;  // held during every call
    std::atomic<bool> _removed{false};
    std::atomic<bool> _ended{false};
    bool _lockedForFork = false;
};

/// The registered devices. Every reader gets the list as it was at that moment. Never destroyed.
class nxLogDeviceList
{
public:
    using Entries = std::vector<std::shared_ptr<nxLogDeviceEntry>>;

    static nxLogDeviceList& GetInstance() noexcept;

    /// @return the list, never null. Some of its entries may be removed.
    std::shared_ptr<const Entries> Get() noexcept;

    bool Contains(const nxLogDevice* device) noexcept;
    /// Adds those that are not registered yet, in one step: every list that a reader gets has all of them or none. Null
    /// ones are left out. Without memory nothing is added.
    void Add(std::span<nxLogDevice* const> devices) noexcept;
    /// Takes the device out if it is registered. Whether it is or not, waits then until no thread is inside it, so that
    /// nobody calls it after this: several may unregister one device at a time, and each may destroy it.
    void Remove(const nxLogDevice* device) noexcept;
    /// @return the devices that were registered. The caller ends them or waits for them.
    std::shared_ptr<const Entries> TakeAll() noexcept;
    /// Waits until no thread but this one is inside a device that is not registered any more: without an end, but not
    /// long inside another device or when the process ends.
    void WaitUntilLeft(const nxLogDevice* device) noexcept;

    /// From now on the process ends: nobody waits long for a device any more.
    void BeginEnd() noexcept { _isEnding.store(true, std::memory_order_relaxed); }

    void BeforeFork() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() noexcept;

private:
    nxLogDeviceList() noexcept;
    ~nxLogDeviceList() = delete;

    std::shared_ptr<Entries> _CopyLive() NX_REQUIRES(_mutex);
    void _Publish(std::shared_ptr<const Entries> entries) noexcept NX_REQUIRES(_mutex);
    template <class Action>
    void _ForEachRemoved(const nxLogDevice* device, const Action& action) noexcept NX_REQUIRES(_mutex);

    nxMutex _mutex;  // the pointer to the list, and those that are leaving
    std::shared_ptr<const Entries> _entries;
    // Those taken out that somebody may still be inside of. A removed entry that somebody has in hand stands here or
    // in the list.
    std::vector<std::weak_ptr<nxLogDeviceEntry>> _leaving;
    std::atomic<bool> _isEnding{false};
    std::shared_ptr<const Entries> _forking;  // the devices that are kept still for a fork
};

#endif
