// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxThreadAttributes.h"

#include <cerrno>

int nxThreadAttributes::SetScheduling(pthread_attr_t& attributes, Queue queue, unsigned priority) noexcept
{
    sched_param parameters{};
    parameters.sched_priority = static_cast<int>(priority);
    const int policy = queue == Queue::Ordinary ? SCHED_OTHER : queue == Queue::RealTimeFirstIn ? SCHED_FIFO : SCHED_RR;
    int error = pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED);
    if (error == 0)
        error = pthread_attr_setschedpolicy(&attributes, policy);
    if (error == 0)
        error = pthread_attr_setschedparam(&attributes, &parameters);
    return error;
}

int nxThreadAttributes::SetProcessors(pthread_attr_t& attributes, std::span<const unsigned> processors) noexcept
{
    cpu_set_t set;
    CPU_ZERO(&set);
    for (const unsigned processor : processors)
    {
        if (processor >= CPU_SETSIZE)
            return EINVAL;
        CPU_SET(processor, &set);
    }
    return SetProcessors(attributes, set);
}

int nxThreadAttributes::SetProcessors(pthread_attr_t& attributes, const cpu_set_t& processors) noexcept
{
    return pthread_attr_setaffinity_np(&attributes, sizeof processors, &processors);
}

int nxThreadAttributes::SetStackBytes(pthread_attr_t& attributes, std::size_t bytes) noexcept
{
    return pthread_attr_setstacksize(&attributes, bytes);
}
