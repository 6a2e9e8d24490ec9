#ifndef CORE_APP_INTERNAL_NXMUTEXACROSSFORK_H
#define CORE_APP_INTERNAL_NXMUTEXACROSSFORK_H

#include "core/platform/nxThreadHooks.h"
#include "core/thread/internal/nxMutexInChild.h"
#include "core/thread/nxMutex.h"

/// Keeps a process-wide mutex usable in forked children. Without it, a child of a process one of whose other threads
/// held the mutex at the fork would wait for ever.
///
/// The forking thread takes the mutex before the fork, so that the data behind it is whole in the child. The parent
/// gives it back; in the child, where its holder does not exist, it is made anew.
/// @tparam GetMutex returns the mutex, always the same one.
template <nxMutex& (*GetMutex)()>
class nxMutexAcrossFork
{
public:
    /// Called once. @return whether the system accepted; otherwise forks go on without.
    static bool Register() { return nxThreadHooks::AtFork(&_Before, &_AfterInParent, &_AfterInChild); }

private:
    static void _Before() NX_NO_THREAD_SAFETY_ANALYSIS { GetMutex().Lock(); }
    static void _AfterInParent() NX_NO_THREAD_SAFETY_ANALYSIS { GetMutex().Unlock(); }
    static void _AfterInChild() { nxMutexInChild::Renew(GetMutex()); }
};

#endif
