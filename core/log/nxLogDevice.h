// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGDEVICE_H
#define CORE_LOG_NXLOGDEVICE_H

#include <atomic>

#include "core/nxExport.h"

class nxLog;
class nxLogLineSink;

/// Where log records end up: a file, the console, a test's memory. Derive from it, register with
/// nxLogManager::RegisterLogDevice().
///
/// - Invariant: one thread at a time is inside a device: the deferred-write thread, or a thread that writes immediately,
///   flushes or registers. So a device needs no lock of its own against the manager.
/// - The deferred-write thread has a stack of 256 KiB, so a device keeps large buffers elsewhere.
/// - A device may log and may unregister itself while it is being written to; records that it writes immediately
///   meanwhile go to the other devices only.
/// - A device does not fork meanwhile, but to call exec or _exit in the child at once. Where its call returns in the child, the
///   records at hand are the parent's, and no device of the child is given them. A thread of the application goes on. A
///   thread of the library ends, and with it a child that has no other threads, with status 0.
/// - A device that does not return holds up the queue; after a second of that the manager drops records and counts them.
///   An nxSeparateLogDevice keeps it from holding up others.
/// - Ownership: the application owns its devices. Unregister one before it is destroyed; that waits until the manager
///   has left it.
///
/// A device that takes finished lines instead of records gives the manager an nxLogLineSink. The library's own devices do
/// so, because one call for a mebibyte of lines costs far less than a call for every record.
/// @code
/// class Counter : public nxLogDevice
/// {
///     void Write(const nxLog& record) override { _count += record.GetLogLevel() == NX_LOG_LEVEL_ERROR; }
///     void Flush() override {}
///     void Destroy() override {}
///     int _count = 0;
/// };
/// @endcode
class NX_CORE_API nxLogDevice
{
public:
    virtual ~nxLogDevice();

    /// Writes one record. @p record is valid during the call only; copy it to keep it.
    virtual void Write(const nxLog& record) = 0;
    /// Hands everything written so far to the operating system.
    virtual void Flush() = 0;
    /// Ends the device's work. The manager's Destroy() calls it for every device that is still registered, after it has
    /// unregistered and flushed the device. The device may be deleted here.
    virtual void Destroy() = 0;

    /// Whether lines carry everything they can (the default) or a short form. May be changed at any time.
    void SetVerboseOutput(bool verbose) { _verbose.store(verbose, std::memory_order_relaxed); }
    /// Whether lines carry everything they can.
    bool IsVerboseOutput() const { return _verbose.load(std::memory_order_relaxed); }

    /// @return what takes this device's lines in batches; null for a device that takes records.
    nxLogLineSink* GetLineSink() const { return _lineSink; }

protected:
    nxLogDevice() = default;
    /// A device that takes lines in batches. @p lineSink lives as long as the device; usually it is a member or a base.
    explicit nxLogDevice(nxLogLineSink* lineSink) : _lineSink(lineSink) {}
    nxLogDevice(const nxLogDevice&) = delete;
    nxLogDevice& operator=(const nxLogDevice&) = delete;

private:
    // Relaxed: a setting, which orders no other memory.
    std::atomic<bool> _verbose{true};
    nxLogLineSink* _lineSink = nullptr;
};

#endif
