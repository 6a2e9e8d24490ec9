// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXTHREADATTRIBUTES_H
#define CORE_PLATFORM_NXTHREADATTRIBUTES_H

#include <cstddef>
#include <span>

#include "core/platform/inline/nxNative.h"

/// Sets the attributes of a new thread. Each function returns 0 or an error number of the system, EINVAL for a value that
/// no thread can have.
class nxThreadAttributes
{
public:
    nxThreadAttributes() = delete;

    /// The queues of the system's scheduler.
    enum class Queue
    {
        Ordinary,
        RealTimeFirstIn,
        RealTimeRoundRobin
    };

    /// @param priority 1 to 99 in the real-time queues, 0 in the ordinary one.
    static int SetScheduling(nxNative::ThreadAttributes& attributes, Queue queue, unsigned priority) noexcept;

    /// @param processors their numbers, at least one.
    static int SetProcessors(nxNative::ThreadAttributes& attributes, std::span<const unsigned> processors) noexcept;
    static int SetProcessors(nxNative::ThreadAttributes& attributes, const nxNative::ProcessorSet& processors) noexcept;

    static int SetStackBytes(nxNative::ThreadAttributes& attributes, std::size_t bytes) noexcept;
};

#endif
