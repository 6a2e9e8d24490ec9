// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGDEFERREDWRITETHREAD_H
#define CORE_LOG_NXLOGDEFERREDWRITETHREAD_H

#include "core/thread/nxThread.h"

/// The log's thread: it takes queued records and writes them to the devices. The library starts no other thread but those
/// of an nxSeparateLogDevice.
///
/// It starts with the first device or record. Applications do not control it; see nxLogManager. While records come it
/// looks every one or two milliseconds. After a tenth of a second without any it sleeps until the next record, whose thread
/// calls it, and wakes once a second to look after its devices. Where the system has no membarrier(), and in a process
/// with modules that were built with version 1.0, it looks ten times a second instead. A warning, a large ring that is a
/// quarter full, or a thread that waits makes it look at once. It blocks all signals but those of faults and profilers. Its stack, on which
/// it calls the devices, has 256 KiB.
class nxLogDeferredWriteThread final : public nxThread
{
public:
    /// Writes until it is told to stop.
    nxErrorEnum Run() override;

private:
    friend class nxLogWriterThread;

    // Used instead of Create(). The thread runs as `service` says, or like any thread where the system refuses that.
    nxErrorEnum _Start(const nxServiceThread& service);
    // Applies `service` to the thread if it runs.
    void _Apply(const nxServiceThread& service) noexcept;
};

#endif
