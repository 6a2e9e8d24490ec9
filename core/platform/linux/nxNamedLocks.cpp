// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxNamedLocks.h"

#include <cerrno>

#include "core/platform/linux/nxNamedObjectTable.h"

nxNamedMutex* nxNamedLocks::OpenMutex(const std::string& name, nxNamedLockNotice& notice) noexcept
{
    nxNamedObject* const object = nxNamedObjectTable::GetInstance().Open(
        name, nxNamedObjectKind::Mutex, [](nxNamedObject& made) { return made.mutex.Initialise(); }, notice);
    return object != nullptr ? &object->mutex : nullptr;
}

nxNamedSemaphore* nxNamedLocks::OpenSemaphore(const std::string& name, unsigned initialCount, unsigned maximumCount,
                                              nxNamedLockNotice& notice) noexcept
{
    const auto initialise = [&](nxNamedObject& made)
    {
        errno = EINVAL;
        if (maximumCount == 0 || maximumCount > nxNamedSemaphore::LargestCount || initialCount > maximumCount)
            return false;
        made.semaphore.Initialise(initialCount, maximumCount);
        return true;
    };
    nxNamedObject* const object =
        nxNamedObjectTable::GetInstance().Open(name, nxNamedObjectKind::Semaphore, initialise, notice);
    return object != nullptr ? &object->semaphore : nullptr;
}
