#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECT_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECT_H

#include <atomic>
#include <cstdint>

#include "core/platform/nxNamedLocks.h"

/// What a name stands for. The values are stored in the shared file.
enum class nxNamedObjectKind : std::uint32_t
{
    Mutex = 1,
    Semaphore = 2
};

/// One entry of the table of named objects, as it lies in the shared file.
struct nxNamedObject
{
    static constexpr std::size_t LongestName = nxNamedLocks::LongestName;  ///< Bytes.

    /// 0 while the entry belongs to nobody or is being written; the rest counts only when it is not.
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
