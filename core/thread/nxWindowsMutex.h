// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXWINDOWSMUTEX_H
#define CORE_THREAD_NXWINDOWSMUTEX_H

#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxNative.h"
#include "core/thread/nxThreadAnnotations.h"

/// A mutex that processes of one user share by its name.
///
/// - Name: up to 260 bytes, any bytes, case-sensitive. Mutexes and semaphores share one set of names.
/// - Life: a name lives as long as a process runs that has constructed an object of that name. When the last such
///   process has ended, by kill -9 too, the next constructor makes a new mutex. Destroying the object changes nothing.
/// - Owner: a thread. It may lock again and unlocks as often. When it ends or is killed while it holds the mutex, the
///   next thread that locks gets the mutex and is not told that the data may be half changed.
/// - Errors: none are returned or thrown. IsNull() is true when the name is too long, when it is the name of a
///   semaphore and when the system refuses; Lock() and Unlock() then do nothing. Test IsNull() where exclusion matters;
///   errno has the reason after the constructor. A refusal by the system is written to the log at the error level, once
///   until it works again. ETIMEDOUT means that another process was stopped for five seconds inside a constructor.
/// - One user: processes of the same effective user id, process-id namespace and user namespace, at the moment of the
///   constructor. A process that drops its privileges keeps what it has open, and from then on opens the names of the
///   new user. A process that cannot find out its namespaces (a chroot without /proc) gets null objects.
/// - Place: a file in /dev/shm, in /tmp on machines without that directory, or in the absolute path that the variable
///   NX_SHARED_DIRECTORY has at the first use; it must be the same for all processes that share names. Removing the
///   file splits the name: processes that have it open go on sharing it, and later ones share another mutex. The next
///   constructor in one of the former writes a record at the error level. See the guide on locks.
/// - Fork: the child has the object open too and holds nothing that the parent has locked. Closing descriptors that the
///   program did not open (closefrom) gives the names up until the next constructor.
/// @code
/// nxWindowsMutex mutex("my firm's order gateway");
/// static_cast<void>(mutex.Lock());  // always success
/// static_cast<void>(mutex.Unlock());
/// @endcode
class NX_CORE_API NX_CAPABILITY("mutex") nxWindowsMutex
{
public:
    /// Opens the mutex of that name, or makes it, unlocked. When neither is possible, IsNull() is true.
    explicit nxWindowsMutex(const std::string& name);
    virtual ~nxWindowsMutex();

    nxWindowsMutex(const nxWindowsMutex&) = delete;
    nxWindowsMutex& operator=(const nxWindowsMutex&) = delete;

    /// Waits until the mutex is free or held by this thread, and takes it. Always success.
    nxErrorEnum Lock() NX_ACQUIRE()
    {
        const int result = _mutex != nullptr ? _mutex->TryLock() : 0;
        if (result != 0) [[unlikely]]
            _LockSlowly(result);
        return nxErrorEnum();
    }

    /// Undoes one Lock() of this thread; has no effect in any other thread. Always success.
    nxErrorEnum Unlock() NX_RELEASE()
    {
        if (_mutex != nullptr)
            _mutex->Unlock();
        return nxErrorEnum();
    }

    /// Whether there is no mutex, so that Lock() excludes no other thread.
    bool IsNull() const { return _mutex == nullptr; }

private:
    void _LockSlowly(int result);

    nxNamedMutex* _mutex;  // in shared memory, for the life of the process
};

static_assert(sizeof(nxWindowsMutex) == 2 * sizeof(void*), "the virtual table and the handle");

#endif
