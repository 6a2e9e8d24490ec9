// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGBATCHES_H
#define CORE_LOG_INTERNAL_NXLOGBATCHES_H

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "core/enum/nxEnumValue.h"
#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogLineBuffer.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogTimeText.h"

/// Delivers the records of a round to the devices: as lines in batches to those that take lines, one by one to the others.
///
/// Invariant: a batch holds lines of one style and of one local day. A record for which Deliver() returned true is in a
/// batch, was given to a device, or was counted as dropped or undelivered; after Send() no batch holds a line. In a child that
/// a device has forked no device is given anything more.
///
/// Errors: without memory Prepare() throws std::bad_alloc; a line that finds no memory is counted as dropped. Threads: the
/// one that holds the round.
class nxLogBatches
{
public:
    /// Begins a round: looks which devices there are, and which lines they want.
    void Prepare();
    /// Whether a device is registered.
    bool HasDevices() const noexcept { return _hasDevices; }

    /// Delivers one record. Inlined into the loop over the records.
    /// @return false when no device is registered, with nothing done; and where IsOfParent().
    [[gnu::always_inline]] bool Deliver(const nxLogRecord& record) noexcept
    {
        // No batch holds lines of two days.
        if (_time.Set(record.time) && std::memcmp(_date, _time.GetBytes(), sizeof _date) != 0 && !_BeginDay())
            return false;
        if (_onlyBatch == nullptr) [[unlikely]]
            return _DeliverToAll(record);
        return _AppendToBatch(*_onlyBatch, record) || !_isOfParent;
    }

    /// Hands all lines to the devices. @return false where IsOfParent().
    bool Send() noexcept;

    /// Called in a forked child, which makes a round of its own.
    void LeaveToParent() noexcept { _isOfParent = true; }
    /// Whether a device has forked during the round, and this is the child.
    bool IsOfParent() const noexcept { return _isOfParent; }

    /// The gravest level among the records of the round, as far as they were sent.
    nxEnumValue GetGravestLevel() const noexcept { return _gravestLevel; }
    /// @return whether a device was given a record since the last call.
    bool TakeHasWritten() noexcept { return std::exchange(_hasWritten, false); }

private:
    // The lines of one style that wait for the devices that want it.
    struct Batch
    {
        nxLogLineStyle style;
        nxLogLineBuffer lines;
        unsigned count = 0;
        nxEnumValue gravestLevel = NX_ENUM_UNDEFINED;
        long long seconds = 0;  // the time of the first line
        bool isWanted = false;  // in this round
    };

    [[gnu::always_inline]] bool _AppendToBatch(Batch& batch, const nxLogRecord& record) noexcept
    {
        if (!batch.lines.AppendLine(record, _time)) [[unlikely]]
            if (!_AppendToEmptied(batch, record))
                return false;
        if (batch.count++ == 0)
            batch.seconds = record.time.seconds;
        if (static_cast<nxEnumValue>(record.level) > batch.gravestLevel) [[unlikely]]
            batch.gravestLevel = static_cast<nxEnumValue>(record.level);
        if (batch.lines.GetSize() >= nxLogLimits::BatchSize) [[unlikely]]
            return Send();
        return true;
    }

    void _PrepareDevice(std::size_t index);
    Batch& _GetBatch(const nxLogLineStyle& style);
    bool _BeginDay() noexcept;
    bool _AppendToEmptied(Batch& batch, const nxLogRecord& record) noexcept;
    bool _DeliverToAll(const nxLogRecord& record) noexcept;
    bool _DeliverAsRecord(const nxLogRecord& record) noexcept;
    void _Count(unsigned records, bool isTaken) noexcept;

    std::shared_ptr<const nxLogDeviceList::Entries> _devices;
    std::vector<std::unique_ptr<Batch>> _batches;  // empty, but in a round
    std::vector<Batch*> _batchOfDevice;            // null for a device that takes records
    bool _hasDevices = false;                      // that are still registered
    bool _hasRecordDevices = false;
    bool _mustSift = false;       // records may be in the queue that the rules do not want
    Batch* _onlyBatch = nullptr;  // when records go into this one and nowhere else
    unsigned _inLinesAlone = 0;   // records in batches that no device has been given yet; unused with _onlyBatch
    nxLogTimeText _time;          // of the record at hand
    char _date[7] = {};           // of the lines in the batches: how their times begin
    nxLogLineThread _thread{};
    nxEnumValue _gravestLevel = NX_ENUM_UNDEFINED;
    bool _hasWritten = false;
    bool _isOfParent = false;
};

#endif
