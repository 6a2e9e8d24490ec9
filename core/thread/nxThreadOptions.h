// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXTHREADOPTIONS_H
#define CORE_THREAD_NXTHREADOPTIONS_H

#include <cstddef>
#include <string>
#include <vector>

/// How a thread is started: its name, its processors, its scheduling and its stack. nxThread::Create() takes it.
///
/// - Defaults: what the system gives a thread, which inherits the name, the processors and the scheduling of the thread
///   that starts it.
/// - Threads: a plain value. Create() keeps nothing of it.
/// @code
/// nxThreadOptions options;
/// options.name = "feed";
/// options.processors = {2, 3};
/// if (const nxErrorEnum error = poller.Create(options); !error.IsOK())
///     return error;
/// @endcode
struct nxThreadOptions
{
    /// Which queue of the system's scheduler the thread is in.
    enum class Scheduling
    {
        Inherited,          ///< That of the thread that starts it, with its priority.
        Ordinary,           ///< Shares the processors fairly with other programs (SCHED_OTHER). Has no priority.
        RealTimeFirstIn,    ///< Runs until it waits (SCHED_FIFO). Needs a privilege.
        RealTimeRoundRobin  ///< Takes turns with threads of its priority (SCHED_RR). Needs a privilege.
    };

    /// Largest number of a processor that can be asked for.
    static constexpr unsigned LargestProcessor = 1023;
    static constexpr unsigned SmallestPriority = 1;  ///< The least urgent priority of a real-time thread.
    static constexpr unsigned LargestPriority = 99;  ///< The most urgent one; above most of the kernel's own threads.

    /// The name that top, ps and debuggers show. It is cut to 15 bytes. Empty: the name of the thread that starts it.
    std::string name = {};
    /// Numbers of the processors on which the thread may run, from 0. Empty: those of the thread that starts it. Those
    /// that the machine does not have, or that the process may not use, are left out unless there is no other.
    std::vector<unsigned> processors = {};
    /// The queue.
    Scheduling scheduling = Scheduling::Inherited;
    /// 1 to 99 for the real-time queues, otherwise 0.
    unsigned priority = 0;
    /// Bytes of the stack; 0 for the system's default, usually 8 MiB. The system rounds it to pages and takes
    /// thread-local data from it.
    std::size_t stackBytes = 0;
};

#endif
