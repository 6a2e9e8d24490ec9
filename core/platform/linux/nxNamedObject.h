#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECT_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECT_H

#include <pthread.h>

#include <atomic>
#include <cstdint>

#include "core/platform/linux/inline/nxNamedSemaphore.h"

/// What a name stands for. The values are stored in the shared file.
enum class nxNamedObjectKind : std::uint32_t
{
    Mutex = 1,
    Semaphore = 2
};

/// One entry of the table of named objects, as it lies in the shared file.
struct nxNamedObject
{
    static constexpr std::uint32_t LongestName = 260;  ///< Bytes.

    /// 0 while the entry belongs to nobody or is being written; the rest counts only when it is not.
    std::atomic<std::uint32_t> used;
    nxNamedObjectKind kind;
    std::uint32_t nameLength;
    char name[LongestName];
    union
    {
        pthread_mutex_t mutex;
        nxNamedSemaphore semaphore;
    };
};

#endif
