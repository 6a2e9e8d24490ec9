// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICEENTRY_H
#define CORE_LOG_INTERNAL_NXLOGDEVICEENTRY_H

#include <atomic>
#include <cstdint>
#include <memory>

#include "core/log/internal/nxLogDeviceBook.h"
#include "core/platform/nxThreadSanitizer.h"
#include "core/thread/nxMutex.h"

class nxLogDevice;
class nxLogLineSink;

/// One registration of a device, and the lock that lets one thread at a time into the device.
///
/// Invariant: one thread at a time is inside a device. A call begins under the device's lock, and only while the
/// registration is not marked as removed; the mark is set under the list's lock, before any list without the entry is
/// published. So a thread that has held the device's lock after the mark was set knows that no call is going on and
/// that none will begin.
///
/// - All registrations of one device that are still referred to share one lock, so that a device that is registered
///   again is not entered while a call of its earlier registration goes on.
/// - A thread inside another device waits nxLogLimits::DeviceInsideDevice at most, because the thread inside this one may
///   be waiting for it.
/// - Errors: what a device throws is dropped. Threads: any. Ownership: the device belongs to the application.
class nxLogDeviceEntry
{
public:
    nxLogDeviceEntry(nxLogDevice* registered, std::shared_ptr<nxMutex> mutex, nxLogDeviceBook::Counts counts) noexcept;
    ~nxLogDeviceEntry();
    nxLogDeviceEntry(const nxLogDeviceEntry&) = delete;
    nxLogDeviceEntry& operator=(const nxLogDeviceEntry&) = delete;

    /// Calls @p action(device). Not when the device is unregistered by now or this thread is inside it already, nor when
    /// this thread is inside another device and waited too long; the last counts as a dropped record.
    /// @return whether the device was called.
    template <class Action>
    bool Call(const Action& action) noexcept
    {
        const Visit visit(*this, GetLongestWait());
        if (!visit.IsInside())
        {
            _CountMissed();
            return false;
        }
        if (IsRemoved())
            return false;
        _CallGuarded([&] { action(*_device); });
        nxThreadSanitizer::Release(_device);
        return true;
    }

    /// The same, and counts what the device is given.
    template <class Action>
    bool CallToWrite(std::uint64_t records, std::uint64_t bytes, const Action& action) noexcept
    {
        return Call(
            [&](nxLogDevice& device)
            {
                nxLogDeviceCounts::AddInside(_counts->records, records);
                nxLogDeviceCounts::AddInside(_counts->bytes, bytes);
                action(device);
            });
    }

    /// What was counted for the device.
    const nxLogDeviceCounts& GetCounts() const { return *_counts; }
    nxLogLineSink* GetLineSink() const { return _lineSink; }
    const nxLogDevice* GetDevice() const { return _device; }

    bool IsRemoved() const { return _removed.load(std::memory_order_relaxed); }
    /// Called under the lock of nxLogDeviceList.
    void MarkRemoved() noexcept { _removed.store(true, std::memory_order_relaxed); }

    /// Gives the unregistered device its last Flush() and its Destroy(), without another call between them; not when
    /// MarkEnded() was called, because the owner may have destroyed the device since.
    /// @param wait whether for a call that is going on; if not, a device that is in use is left as it is.
    void End(bool wait) noexcept;
    /// The device is its owner's again: End() leaves it alone.
    void MarkEnded() noexcept { _ended.store(true, std::memory_order_relaxed); }

    /// Waits until no other thread is inside the device, @p limit nanoseconds at most, and calls @p action while none can
    /// enter. After the limit it calls @p action as well.
    template <class Action>
    void WhenLeft(std::int64_t limit, const Action& action) noexcept
    {
        const Visit visit(*this, limit);
        action();
    }

    /// How long the calling thread waits for a device, in nanoseconds.
    static std::int64_t GetLongestWait() noexcept;

    /// The lock, to be shared by another registration of the same device.
    const std::shared_ptr<nxMutex>& GetMutex() const { return _mutex; }

    /// Keeps every thread out of the device until the fork is done; gives up at @p deadline of the monotonic clock.
    void BeforeFork(std::int64_t deadline) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() noexcept;

private:
    /// The calling thread's stay in the device. It locks only if the thread is not inside already.
    class Visit
    {
    public:
        Visit(nxLogDeviceEntry& entry, std::int64_t limit) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
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

    // A device that throws loses what it was given; the log goes on.
    template <class Action>
    void _CallGuarded(const Action& action) const noexcept
    {
        try
        {
            action();
        }
        catch (...)
        {
            _counts->errors.fetch_add(1, std::memory_order_relaxed);
        }
    }

    bool _IsThreadInside() const noexcept;
    void _CountMissed() const noexcept;

    static constinit thread_local const Visit* _innermost;

    nxLogDevice* const _device;
    nxLogLineSink* const _lineSink;
    const std::shared_ptr<nxMutex> _mutex;  // held during every call
    const nxLogDeviceBook::Counts _counts;
    // Relaxed: ordered by the device's lock, see above.
    std::atomic<bool> _removed{false};
    std::atomic<bool> _ended{false};
    bool _lockedForFork = false;  // touched by the forking thread only
};

#endif
