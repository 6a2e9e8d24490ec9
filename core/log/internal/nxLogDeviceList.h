// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICELIST_H
#define CORE_LOG_INTERNAL_NXLOGDEVICELIST_H

#include <atomic>
#include <memory>
#include <span>
#include <vector>

#include "core/log/internal/nxLogDeviceEntry.h"
#include "core/thread/nxMutex.h"

/// The registered devices. Every reader gets the list as it was at that moment. Never destroyed.
///
/// Invariant: an entry in the list is live, or it is marked as removed and everyone skips it: Add(), Contains(), the
/// rounds and the counts. A removed entry that is still referred to is in the list or among those that leave.
///
/// Errors: without memory nothing is added, and a removed entry stays in the list with its mark. Threads: any.
class nxLogDeviceList
{
public:
    using Entries = std::vector<std::shared_ptr<nxLogDeviceEntry>>;

    static nxLogDeviceList& GetInstance() noexcept;

    /// @return the list, never null. Some of its entries may be removed.
    std::shared_ptr<const Entries> Get() noexcept;

    bool Contains(const nxLogDevice* device) noexcept;
    /// Adds the devices that are not registered yet, in one step: every list that a reader gets has all of them or none.
    /// Null ones are left out.
    void Add(std::span<nxLogDevice* const> devices) noexcept;
    /// Takes the device out if it is registered. Then, also if it is not, it waits until no thread is inside the device,
    /// so that no thread calls it after this: several threads may unregister one device, and each may destroy it then.
    void Remove(const nxLogDevice* device) noexcept;
    /// @return the devices that were registered. The caller ends them or waits for them.
    std::shared_ptr<const Entries> TakeAll() noexcept;
    /// Waits until no other thread is inside a device that is not registered any more: without limit, but inside another
    /// device nxLogLimits::DeviceInsideDevice at most, and at the end of the process nxLogLimits::DeviceAtEnd.
    void WaitUntilLeft(const nxLogDevice* device) noexcept;

    /// From now on the process ends, and waits for a device are short.
    void BeginEnd() noexcept { _isEnding.store(true, std::memory_order_relaxed); }

    void BeforeFork() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    nxLogDeviceList() noexcept;
    ~nxLogDeviceList() = delete;

    std::shared_ptr<Entries> _CopyLive() NX_REQUIRES(_mutex);
    void _Publish(std::shared_ptr<const Entries> entries) noexcept NX_REQUIRES(_mutex);
    template <class Action>
    void _ForEachRemoved(const nxLogDevice* device, const Action& action) noexcept NX_REQUIRES(_mutex);

    nxMutex _mutex;
    std::shared_ptr<const Entries> _entries NX_GUARDED_BY(_mutex);
    // Removed entries that are no longer in the list, and that a thread may still be inside of.
    std::vector<std::weak_ptr<nxLogDeviceEntry>> _leaving NX_GUARDED_BY(_mutex);
    // Relaxed: only how long a wait may last.
    std::atomic<bool> _isEnding{false};
    std::shared_ptr<const Entries> _forking;  // the devices that the forking thread has locked
};

#endif
