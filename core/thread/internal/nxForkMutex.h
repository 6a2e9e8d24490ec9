// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXFORKMUTEX_H
#define CORE_THREAD_INTERNAL_NXFORKMUTEX_H

#include <new>

#include "core/platform/nxForkHandlers.h"
#include "core/thread/nxMutex.h"

/// Mutexes that stay usable in forked children.
///
/// If another thread holds a mutex at the moment of a fork, the child waits for it for ever, because that thread does
/// not exist there. The forking thread therefore takes the mutex before the fork, so that the data under it is whole in
/// the child, and unlocks it in the parent. The child cannot unlock it, because its thread has another number, and
/// constructs the mutex again.
class nxForkMutex
{
public:
    nxForkMutex() = delete;

    /// Guards every fork of the process with a mutex that lives as long as the process. Called once for each mutex.
    /// @tparam GetMutex returns the mutex, the same one every time.
    /// @param rank when a fork takes the mutex.
    /// @return whether the system accepted; otherwise forks go on without.
    template <nxMutex& (*GetMutex)()>
    static bool Register(nxForkHandlers::Rank rank)
    {
        static constexpr nxForkHandlers::Functions functions{&_Before<GetMutex>, &_AfterInParent<GetMutex>,
                                                             &_AfterInChild<GetMutex>};
        return nxForkHandlers::Register(rank, functions);
    }

    /// Before the fork. Lock() fails only in a thread that holds the mutex already, and no such thread forks.
    static void Take(nxMutex& mutex) noexcept NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(mutex.Lock()); }

    /// In the parent, after the fork.
    static void GiveBack(nxMutex& mutex) noexcept NX_NO_THREAD_SAFETY_ANALYSIS { static_cast<void>(mutex.Unlock()); }

    /// In the child: constructs again, unlocked, a mutex that the forking thread took before the fork. The unlock before
    /// it fails, but without it the thread sanitizer, which follows locks through forks, believes the mutex held.
    static void Renew(nxMutex& mutex) noexcept
    {
        GiveBack(mutex);
        ::new (&mutex) nxMutex;
    }

private:
    template <nxMutex& (*GetMutex)()>
    static void _Before()
    {
        Take(GetMutex());
    }

    template <nxMutex& (*GetMutex)()>
    static void _AfterInParent()
    {
        GiveBack(GetMutex());
    }

    template <nxMutex& (*GetMutex)()>
    static void _AfterInChild()
    {
        Renew(GetMutex());
    }
};

#endif
