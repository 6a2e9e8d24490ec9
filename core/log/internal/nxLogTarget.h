// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGTARGET_H
#define CORE_LOG_INTERNAL_NXLOGTARGET_H

#include "core/log/internal/nxLogDeviceItems.h"
#include "core/log/nxLogLineSink.h"

class nxLog;

/// What the thread of one device writes to: another device, or the socket of a service.
///
/// Invariant: one thread at a time is in an operation, but GetLineStyle() and WaitForRoom(). None throws.
class nxLogTarget
{
public:
    /// What became of an item.
    enum class Outcome
    {
        Taken,
        Lost,  ///< It cannot be delivered; the next one may be.
        Full,  ///< There is no room for it at the moment: see WaitForRoom().
        Away   ///< The service is not there. It is looked for from time to time.
    };

    virtual ~nxLogTarget() = default;
    nxLogTarget(const nxLogTarget&) = delete;
    nxLogTarget& operator=(const nxLogTarget&) = delete;

    /// After Full and Away the call is repeated with the same item.
    Outcome Write(const nxLog& record) noexcept { return _Write(record, nullptr); }
    /// Tells the losses in a record at the warning level.
    Outcome Write(const nxLogLosses& losses) noexcept;
    virtual Outcome WriteLines(const nxLogLineBatch& lines) noexcept = 0;
    /// Waits until there may be room, 50 ms at most.
    virtual void WaitForRoom() const noexcept {}

    virtual void Flush() noexcept {}
    virtual void Maintain() noexcept {}
    virtual void Destroy() noexcept {}

    /// The lines that it wants, as it was when it was asked last. Any thread at any time.
    virtual nxLogLineStyle GetLineStyle() const noexcept { return {}; }

    /// Called only if no other thread is in an operation.
    virtual void BeforeFork() noexcept {}
    virtual void AfterForkInParent() noexcept {}
    /// @param isWhole whether BeforeFork() was called; if not, a thread of the parent was in an operation.
    virtual void AfterForkInChild(bool isWhole) noexcept = 0;

protected:
    nxLogTarget() = default;

private:
    /// @param losses what the record tells; null for any other record.
    virtual Outcome _Write(const nxLog& record, const nxLogLosses* losses) noexcept = 0;
};

#endif
