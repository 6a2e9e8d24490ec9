#ifndef CORE_THREAD_NXWINDOWSMUTEX_H
#define CORE_THREAD_NXWINDOWSMUTEX_H

#include <pthread.h>

#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/thread/nxThreadAnnotations.h"

/// A mutex that processes of one user share by its name.
///
/// - Name: up to 260 bytes, any bytes, case-sensitive. Mutexes and semaphores share one set of names.
/// - Life: a name lives while some process that has constructed an object of it is running; when the last such
///   process has ended, by kill -9 too, the next constructor starts afresh. Destroying the object changes nothing.
/// - Owner: a thread. It may lock again and unlocks as often. When it ends or is killed while it holds the mutex, the
///   next one to lock gets it; nobody is told that the data may be half-changed.
/// - Errors: none are returned or thrown. When the name is too long or stands for a semaphore, or the system refuses,
///   IsNull() is true and Lock() and Unlock() do nothing: test IsNull() where exclusion matters; errno tells the reason
///   after the constructor. What the system refuses is told by one record at the error level, until it works again;
///   ETIMEDOUT is another process that was stopped for five seconds in the middle of a constructor.
/// - One user: processes of the same effective user id, process-id namespace and user namespace, at the moment of the
///   constructor. A process that drops its privileges keeps what it has open and opens the new user's names from then
///   on. One that the system does not tell its namespaces (a chroot without /proc) gets null objects.
/// - Place: a file in /dev/shm, in /tmp on machines without that directory, or in the absolute path that the variable
///   NX_SHARED_DIRECTORY has at the first use; all who share names must have the same. Whoever removes that file
///   divides the name: those who have it open go on among themselves, and those who come later share another mutex. The
///   next constructor of the former says so by a record at the error level. See the guide on locks.
/// - Fork: the child has the object open too and owns nothing that the parent has locked. Closing descriptors that one
///   has not opened (closefrom) ends the claim to the names until the next constructor.
/// @code
/// nxWindowsMutex mutex("my firm's order gateway");
/// mutex.Lock();
/// mutex.Unlock();
/// @endcode
class NX_CORE_API NX_CAPABILITY("mutex") nxWindowsMutex
{
public:
    /// Opens the mutex of that name, or makes it: free. Where neither can be done, IsNull() and errno say so.
    explicit nxWindowsMutex(const std::string& name);
    virtual ~nxWindowsMutex();

    nxWindowsMutex(const nxWindowsMutex&) = delete;
    nxWindowsMutex& operator=(const nxWindowsMutex&) = delete;

    /// Waits until the mutex is free, or held by this thread, and takes it. Always success.
    nxErrorEnum Lock() NX_ACQUIRE()
    {
        const int result = _mutex != nullptr ? pthread_mutex_trylock(_mutex) : 0;
        if (result != 0) [[unlikely]]
            _LockSlowly(result);
        return nxErrorEnum();
    }

    /// Undoes one Lock() of this thread; has no effect in any other thread. Always success.
    nxErrorEnum Unlock() NX_RELEASE()
    {
        if (_mutex != nullptr)
            pthread_mutex_unlock(_mutex);
        return nxErrorEnum();
    }

    /// Whether the mutex is not there, so that Lock() excludes nobody.
    bool IsNull() const { return _mutex == nullptr; }

private:
    void _LockSlowly(int result);

    pthread_mutex_t* _mutex;  // in shared memory, for the life of the process
};

static_assert(sizeof(nxWindowsMutex) == 2 * sizeof(void*), "the virtual table and the handle");

#endif
