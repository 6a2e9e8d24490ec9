#include "core/thread/nxWindowsMutex.h"

#include <cerrno>

#include "core/platform/linux/inline/nxRobustMutex.h"
#include "core/thread/internal/nxNamedHandle.h"

namespace
{
bool Initialise(pthread_mutex_t& mutex)
{
    pthread_mutexattr_t attributes;
    int result = pthread_mutexattr_init(&attributes);
    if (result == 0)
    {
        result = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        if (result == 0)
            result = pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        if (result == 0)
            result = pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        if (result == 0)
            result = pthread_mutex_init(&mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    errno = result;
    return result == 0;
}
}  // namespace

nxWindowsMutex::nxWindowsMutex(const std::string& name) : _mutex(nullptr)
{
    nxNamedObject* const object =
        nxNamedHandle::Open(name, nxNamedObjectKind::Mutex, [](nxNamedObject& made) { return Initialise(made.mutex); });
    if (object != nullptr)
        _mutex = &object->mutex;
}

nxWindowsMutex::~nxWindowsMutex() = default;

void nxWindowsMutex::_LockSlowly(int result)
{
    if (result == EBUSY)
        result = nxRobustMutex::Wait(*_mutex);
    if (result == EOWNERDEAD)
        pthread_mutex_consistent(_mutex);
}
