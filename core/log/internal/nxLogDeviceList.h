#ifndef CORE_LOG_INTERNAL_NXLOGDEVICELIST_H
#define CORE_LOG_INTERNAL_NXLOGDEVICELIST_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "core/thread/nxMutex.h"

class nxLogDevice;
class nxLogLineSink;

/// A registered device, and the lock that lets one thread at a time into it.
class nxLogDeviceEntry
{
public:
    explicit nxLogDeviceEntry(nxLogDevice* registered) noexcept;

    /// Calls @p action(device), unless the device is unregistered by now or this thread is inside it already. Inside
    /// another device the thread does not wait long for this one, whose own thread may be waiting for that: what cannot
    /// be handed over counts as dropped.
    template <class Action>
    void Call(const Action& action) noexcept
    {
        Visit visit(*this);
        if (!visit.IsInside() || _removed.load(std::memory_order_relaxed))
            return;
        try
        {
            action(*_device);
        }
        catch (...)
        {
            // A device of an application's own that throws loses what it was given; the log goes on.
        }
    }

    nxLogLineSink* GetLineSink() const { return _lineSink; }
    bool IsFor(const nxLogDevice* device) const { return _device == device; }
    bool IsRemoved() const { return _removed.load(std::memory_order_relaxed); }

    /// No call begins after this. Waits for the one that is going on, unless it is this thread's own; inside another
    /// device not for long.
    void Remove() noexcept;
    /// Waits for a call that is going on, unless it is this thread's own. @return whether none is any more.
    bool WaitUntilLeft(std::int64_t patience) noexcept;

    /// Unregistered, the device gets its Destroy(). @param wait whether for the call that is going on; if not, a device
    /// that is in use is left as it is.
    void RemoveAndDestroy(bool wait) noexcept;

    /// Whether the calling thread is inside a device.
    static bool IsThreadInsideAny() noexcept;

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
        explicit Visit(nxLogDeviceEntry& entry) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
        ~Visit() NX_NO_THREAD_SAFETY_ANALYSIS;
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        bool IsInside() const { return _inside; }
        const nxLogDeviceEntry& GetEntry() const { return _entry; }
        const Visit* GetOuter() const { return _outer; }

    private:
        nxLogDeviceEntry& _entry;
        const Visit* _outer;
        bool _inside;
    };

    bool _LockInTime(std::int64_t patience) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    static bool _IsThreadInside(const nxLogDeviceEntry& entry) noexcept;

    static constinit thread_local const Visit* _innermost;

    nxLogDevice* const _device;
    nxLogLineSink* const _lineSink;
    nxMutex _mutex;  // held during every call
    std::atomic<bool> _removed{false};
    bool _lockedForFork = false;
};

/// The registered devices. Every reader gets the list as it was at that moment. Never destroyed.
class nxLogDeviceList
{
public:
    using Entries = std::vector<std::shared_ptr<nxLogDeviceEntry>>;

    static nxLogDeviceList& GetInstance() noexcept;

    /// @return the list, never null.
    std::shared_ptr<const Entries> Get() noexcept;
    /// A number that changes whenever the list does.
    unsigned GetVersion() const noexcept { return _version.load(std::memory_order_acquire); }

    bool Contains(const nxLogDevice* device) noexcept;
    /// Adds those that are not registered yet, in one step: every list that a reader gets has all of them or none. Null
    /// ones are left out. Without memory nothing is added.
    void Add(std::span<nxLogDevice* const> devices) noexcept;
    /// @return whether it was registered.
    bool Remove(const nxLogDevice* device) noexcept;
    /// Waits, for two seconds at most, for a thread that is still inside a device that is not registered any more.
    void WaitUntilLeft(const nxLogDevice* device) noexcept;
    /// @return the devices that were registered; the caller removes their entries.
    std::shared_ptr<const Entries> TakeAll() noexcept;

    void BeforeFork() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() noexcept;

private:
    void _RememberLeaving(const std::shared_ptr<nxLogDeviceEntry>& entry) noexcept NX_REQUIRES(_mutex);

    nxLogDeviceList() noexcept;
    ~nxLogDeviceList() = delete;

    nxMutex _mutex;  // the pointer to the list
    std::shared_ptr<const Entries> _entries;
    std::vector<std::weak_ptr<nxLogDeviceEntry>> _leaving;  // those taken out that somebody may still be inside of
    std::atomic<unsigned> _version{0};
    std::shared_ptr<const Entries> _forking;  // the devices that are kept still for a fork
};

#endif
