// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECT_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECT_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "core/platform/linux/inline/nxNamedMutex.h"
#include "core/platform/linux/inline/nxNamedSemaphore.h"

/// The kind of object that a name refers to. The values are stored in the shared file.
enum class nxNamedObjectKind : std::uint32_t
{
    Mutex = 1,
    Semaphore = 2
};

/// One entry of the table of named objects, as it is stored in the shared file.
struct nxNamedObject
{
    static constexpr std::size_t LongestName = 260;  ///< Bytes.

    /// 0 while the entry is free or being written. The other members are valid only while it is not 0.
    /// The default order, because objects are opened seldom. Processes read it under the lock of the table, which orders it
    /// too, and which the system takes back from a process that was killed.
    std::atomic<std::uint32_t> used;
    nxNamedObjectKind kind;
    std::uint32_t nameLength;
    char name[LongestName];
    union
    {
        nxNamedMutex mutex;
        nxNamedSemaphore semaphore;
    };
};

#endif
