// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXSEPARATELOGDEVICE_H
#define CORE_LOG_NXSEPARATELOGDEVICE_H

#include <cstdint>
#include <memory>

#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLineSink.h"
#include "core/nxExport.h"

class nxLogDeviceQueue;
class nxLogTarget;

/// Writes to another device in a thread of its own, so that a device that is slow, or does not return, holds up no other
/// device and no caller. Register it in the place of the other device.
///
/// - Bound: what waits for the device takes GetMaximumBytes() of memory at most, beside one batch of lines of a mebibyte.
///   Records that find no room are lost and counted. When the device is back it first gets what was kept, and then one
///   record at the warning level, "17 records were lost between 05Mar24 09:07:03.123.456 and 05Mar24 09:07:09.000.001".
/// - Order and content: the device gets the same records or lines as if it were registered, later. A change to the style of
///   its lines takes effect a batch later. Its verbose flag is its own: set it there.
/// - Waits: nxLogManager::WaitForWriteThreadToWriteQueueToDisk() waits for this device, too, as long as the device makes
///   progress, and no longer than two seconds without. A fatal record waits for it a tenth of a second at most. Flush() and
///   nxLogManager::ImmediateWrite() do not wait for it.
/// - End: Destroy(), the destructor and the end of the process wait until the device has what is queued, ten seconds at most
///   and no longer than two without progress. What is left counts as lost, and the error stream is told.
/// - Fork: a child has nothing of what the parent had queued, and starts a thread when it first reports.
/// - Thread: it starts with the first record, has ordinary scheduling, blocks all signals but those of faults and
///   profilers, and has a stack of 256 KiB. What the device itself logs in its calls does not wait for room in the log.
/// - Errors: nothing fails. While the thread cannot be started, records wait as above.
/// - Threads: every operation may be called at any time from any thread. One thread at a time is inside the other device, and
///   after UnregisterLogDevice() that may still be the thread of this one; after Destroy() it is none, unless the device
///   never returned.
/// - Ownership: the other device is shared. A device that never returns keeps itself and its thread alive after this object
///   is destroyed. It is not registered itself, and does not delete itself in its Destroy().
/// @code
/// auto slow = std::make_shared<nxSeparateLogDevice>(std::make_shared<RemoteDevice>());
/// nxLogManager::GetInstance().RegisterLogDevice(slow.get());
/// @endcode
class NX_CORE_API nxSeparateLogDevice : public nxLogDevice, private nxLogLineSink
{
public:
    /// @param device what is written to. A null pointer takes nothing: all records are lost.
    explicit nxSeparateLogDevice(std::shared_ptr<nxLogDevice> device);
    /// Unregisters the device, and ends as Destroy() does, but does not destroy the other device's work.
    ~nxSeparateLogDevice() override;

    void Write(const nxLog& record) override;  ///< Queues the record.
    void Flush() override;  ///< Has the other device flushed after all that is queued; does not wait.
    /// Waits until the other device has what is queued, with the limits named above, flushes and destroys it. The device may
    /// be used again afterwards if the other one may.
    void Destroy() override;

    /// Waits until the other device has taken and flushed what was queued before the call.
    /// @param seconds how long at most; capped at a day. 0, less and NaN do not wait. A thread inside a device does not wait.
    /// @return whether it has; false at once for a service that is away, and after two seconds without progress.
    bool WaitUntilWritten(double seconds);

    static constexpr std::uint64_t LargestMaximumBytes = std::uint64_t{1} << 30;  ///< A gibibyte.
    /// Sets the bound, 8 MiB at first; 0 to LargestMaximumBytes. With 0 one record or batch waits at a time.
    void SetMaximumBytes(std::uint64_t bytes);
    std::uint64_t GetMaximumBytes() const;  ///< The bound in bytes.

    std::uint64_t GetLostRecords() const;     ///< Records that were lost; a forked child starts again at 0.
    std::uint64_t GetWaitingRecords() const;  ///< Records that wait, or are being written at the moment.

protected:
    /// What devices of the library write to instead of another device.
    explicit nxSeparateLogDevice(std::unique_ptr<nxLogTarget> target);

private:
    nxSeparateLogDevice(const std::shared_ptr<nxLogDevice>& device, bool takesLines);

    nxLogLineStyle GetLineStyle() const override;
    void WriteLines(const nxLogLineBatch& batch) override;
    void Maintain() override;

    std::shared_ptr<nxLogDeviceQueue> _queue;
};

#endif
