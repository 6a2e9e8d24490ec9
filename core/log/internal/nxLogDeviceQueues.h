// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICEQUEUES_H
#define CORE_LOG_INTERNAL_NXLOGDEVICEQUEUES_H

#include <cstdint>
#include <memory>

#include "core/log/internal/nxLogAwakeTime.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/thread/nxMutex.h"

/// All queues of devices with a thread of their own, for what concerns the process as a whole: waits, its end and its forks.
///
/// Invariant: every queue that lives is in the list, and none is destroyed while the list is locked.
///
/// Errors: none. Threads: any. It works before and after all static objects live.
class nxLogDeviceQueues
{
public:
    nxLogDeviceQueues() = delete;

    /// A queue, as this list sees it. It is in the list as long as it lives; what it inherits from is still whole when it
    /// calls Leave().
    class Member : public std::enable_shared_from_this<Member>
    {
    public:
        Member(const Member&) = delete;
        Member& operator=(const Member&) = delete;

        virtual bool WaitUntilWritten(const nxLogLimits::Wait& limit, nxLogAwakeTime& time) noexcept = 0;
        virtual nxLogLimits::Wait GetLimitFor(const nxLogLimits::Wait& limit) const noexcept = 0;
        virtual bool HasThread() const noexcept = 0;
        virtual std::uint64_t GetWaiting() const noexcept = 0;
        virtual void BlockForGood(std::int64_t deadline) noexcept = 0;
        virtual void BeforeFork() noexcept = 0;
        virtual void LockForFork() noexcept = 0;
        virtual void AfterForkInParent() noexcept = 0;
        virtual void AfterForkInChild() noexcept = 0;

    protected:
        Member() = default;
        ~Member() = default;

        /// The first and the last thing that a queue does.
        void Join() noexcept;
        void Leave() noexcept;

    private:
        friend class nxLogDeviceQueues;
        Member* _next = nullptr;
    };

    /// Waits until each device has what was added to its queue before the call, as its WaitUntilWritten()
    /// says; shortly for one that has stalled before. @param time what has been waited before. @return whether each has.
    static bool WaitUntilWritten(const nxLogLimits::Wait& limit, nxLogAwakeTime& time) noexcept;

    /// Threads that the queues have at the moment.
    static unsigned CountThreads() noexcept;
    /// Records that wait in all queues.
    static std::uint64_t CountWaiting() noexcept;
    /// Tells the error stream what a device, or all of them, did not take in time.
    static void TellDropped(std::uint64_t records) noexcept;
    /// Keeps the threads out of their devices for good, at the very end of the process.
    static void BlockForGood() noexcept;

    /// First of all that the log does before a fork.
    static void BeforeFork() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    /// After the locks of the devices and of their list are taken.
    static void LockForFork() noexcept;
    static void AfterForkInParent() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;
    static void AfterForkInChild() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    template <class Action>
    static void _ForEach(const Action& action);

    static nxMutex& _GetMutex() noexcept;

    static Member* _first;  // guarded by the mutex
};

#endif
