// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXNAMEDLOCKS_H
#define CORE_PLATFORM_NXNAMEDLOCKS_H

#include <string>

#include "core/platform/inline/nxNative.h"
#include "core/platform/nxNamedLockNotice.h"

/// The mutexes and semaphores that processes of one user share by a name. They are of the classes nxNamedMutex and
/// nxNamedSemaphore, which each system has for itself.
///
/// - Life: what has been opened stays open until the process ends. A name lives as long as a process has it open.
/// - Errors: null, with errno: ENAMETOOLONG when the name is longer than 260 bytes, EEXIST when it stands for the
///   other kind, EINVAL for counts that no semaphore has, ETIMEDOUT when another process keeps the names locked for five
///   seconds, else the reason of the system.
/// - Threads: any.
class nxNamedLocks
{
public:
    nxNamedLocks() = delete;

    /// Opens the mutex of this name, or makes a free one.
    static nxNamedMutex* OpenMutex(const std::string& name, nxNamedLockNotice& notice) noexcept;

    /// Opens the semaphore of this name, whatever its counts, or makes one with these.
    static nxNamedSemaphore* OpenSemaphore(const std::string& name, unsigned initialCount, unsigned maximumCount,
                                           nxNamedLockNotice& notice) noexcept;
};

#endif
