// SPDX-License-Identifier: Apache-2.0
#include "core/thread/internal/nxNamedHandle.h"

#include <cerrno>

#include "core/platform/nxNamedLocks.h"
#include "core/thread/internal/nxThreadReport.h"

namespace
{
// Leaves errno as it is.
void Tell(nxNamedLockNotice notice, const std::string& name) noexcept
{
    const int error = errno;
    try
    {
        if (notice == nxNamedLockNotice::Refused)
            nxThreadReport::NamedObjectsRefused(name, error);
        if (notice == nxNamedLockNotice::Removed)
            nxThreadReport::NamedObjectsRemoved();
    }
    catch (...)
    {
        // No memory for the report. The result is the same without it.
    }
    errno = error;
}
}  // namespace

nxNamedMutex* nxNamedHandle::OpenMutex(const std::string& name) noexcept
{
    nxNamedLockNotice notice{};
    nxNamedMutex* const mutex = nxNamedLocks::OpenMutex(name, notice);
    Tell(notice, name);
    return mutex;
}

nxNamedSemaphore* nxNamedHandle::OpenSemaphore(const std::string& name, unsigned initialCount,
                                               unsigned maximumCount) noexcept
{
    nxNamedLockNotice notice{};
    nxNamedSemaphore* const semaphore = nxNamedLocks::OpenSemaphore(name, initialCount, maximumCount, notice);
    Tell(notice, name);
    return semaphore;
}
