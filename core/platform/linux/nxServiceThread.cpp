// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxServiceThread.h"

#include <signal.h>

#include <cstddef>

#include "core/platform/nxThisThread.h"
#include "core/platform/nxThreadAttributes.h"

namespace
{
// Enough for lines and for the devices of applications, and far below the usual 8 MiB, which small memory limits refuse.
constexpr std::size_t stackSize = std::size_t{256} << 10;

// Empty while unknown. On a machine with more processors than fit, the thread keeps the processors of its creator.
constinit cpu_set_t processorsOfProcess{};

const cpu_set_t& OrOfProcess(const cpu_set_t& processors)
{
    return CPU_COUNT(&processors) != 0 ? processors : processorsOfProcess;
}
}  // namespace

void nxServiceThread::RememberProcessors() noexcept
{
    cpu_set_t processors;
    if (CPU_COUNT(&processorsOfProcess) == 0 && sched_getaffinity(0, sizeof processors, &processors) == 0)
        processorsOfProcess = processors;
}

void nxServiceThread::SetProcessors(std::span<const unsigned> processors) noexcept
{
    CPU_ZERO(&_processors);
    for (const unsigned processor : processors)
        if (processor < CPU_SETSIZE)
            CPU_SET(processor, &_processors);
}

int nxServiceThread::Prepare(pthread_attr_t& attributes) const noexcept
{
    using Queue = nxThreadAttributes::Queue;
    const cpu_set_t& processors = OrOfProcess(_processors);
    int error = nxThreadAttributes::SetStackBytes(attributes, stackSize);
    if (error == 0)
        error = nxThreadAttributes::SetScheduling(attributes, _priority != 0 ? Queue::RealTimeFirstIn : Queue::Ordinary,
                                                  _priority);
    if (error == 0 && CPU_COUNT(&processors) != 0)
        error = nxThreadAttributes::SetProcessors(attributes, processors);
    return error;
}

void nxServiceThread::Apply(pthread_t thread) const noexcept
{
    sched_param parameters{};
    parameters.sched_priority = static_cast<int>(_priority);
    const cpu_set_t& processors = OrOfProcess(_processors);
    if (CPU_COUNT(&processors) != 0)
        static_cast<void>(pthread_setaffinity_np(thread, sizeof processors, &processors));
    static_cast<void>(pthread_setschedparam(thread, _priority != 0 ? SCHED_FIFO : SCHED_OTHER, &parameters));
}

void nxServiceThread::Become(const char* name) noexcept
{
    sigset_t kept;
    sigfillset(&kept);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGPROF})
        sigdelset(&kept, signal);
    pthread_sigmask(SIG_SETMASK, &kept, nullptr);
    nxThisThread::SetName(name);
}

void nxServiceThread::AcceptSignals() noexcept
{
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}
