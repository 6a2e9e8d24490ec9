// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFORK_H
#define CORE_LOG_INTERNAL_NXLOGFORK_H

/// What the log does around a fork.
///
/// Invariant: a fork takes the locks of the log in the order queues of devices that have a thread, devices, list of
/// devices, list of channels, memory of the rings, table of places, items in those queues; in the child each part starts again with what it needs to serve the only thread there.
class nxLogFork
{
public:
    nxLogFork() = delete;

    /// Called once, while the library is loaded.
    static void Register() noexcept;
};

#endif
