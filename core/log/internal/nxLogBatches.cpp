// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogBatches.h"

#include <algorithm>
#include <new>

#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogSwitches.h"
#include "core/log/nxLogDevice.h"

namespace
{
constexpr std::size_t batchCapacity = nxLogLimits::BatchSize + (std::size_t{1} << 16);
// With this much at least a round goes on when memory is short, in smaller pieces.
constexpr std::size_t leastBatchCapacity = std::size_t{1} << 14;
}  // namespace

void nxLogBatches::Prepare()
{
    _devices = nxLogDeviceList::GetInstance().Get();
    _thread = {nxLogSwitches::IsThreadIndexLogged(), nxLogSwitches::IsProcessorLogged()};
    _gravestLevel = NX_ENUM_UNDEFINED;
    _time.Forget();
    _batchOfDevice.assign(_devices->size(), nullptr);
    _hasDevices = _hasRecordDevices = false;
    _onlyBatch = nullptr;
    for (const auto& batch : _batches)
        batch->isWanted = false;
    for (std::size_t index = 0; index < _devices->size(); ++index)
        // A removed entry is in the list when there was no memory for a list without it.
        if (!(*_devices)[index]->IsRemoved())
            _PrepareDevice(index);
    const auto isOther = [this](const Batch* batch) { return batch != _onlyBatch; };
    _mustSift = nxLogLevelState::HasRules() && nxLogSourceTable::GetInstance().HasOldPrograms();
    if (_mustSift || std::any_of(_batchOfDevice.begin(), _batchOfDevice.end(), isOther))
        _onlyBatch = nullptr;
}

void nxLogBatches::_PrepareDevice(std::size_t index)
{
    nxLogDeviceEntry& entry = *(*_devices)[index];
    _hasDevices = true;
    if (entry.GetLineSink() == nullptr)
    {
        _hasRecordDevices = true;
        return;
    }
    nxLogLineStyle style;
    entry.Call([&](nxLogDevice&) { style = entry.GetLineSink()->GetLineStyle(); });
    _batchOfDevice[index] = _onlyBatch = &_GetBatch(style);
    _onlyBatch->lines.SetStyle(style, _thread);
}

// The batch of lines in this style. A batch that no device has asked for yet changes its style, so that there are no more
// batches than styles at a time.
nxLogBatches::Batch& nxLogBatches::_GetBatch(const nxLogLineStyle& style)
{
    const auto found = [&](const auto& isRight) -> Batch*
    {
        const auto at = std::find_if(_batches.begin(), _batches.end(), isRight);
        return at == _batches.end() ? nullptr : at->get();
    };
    Batch* kept = found([&](const auto& batch) { return batch->style == style; });
    if (kept == nullptr)
        kept = found([](const auto& batch) { return !batch->isWanted; });
    if (kept != nullptr)
    {
        kept->style = style;
        kept->isWanted = true;
        return *kept;
    }
    auto batch = std::make_unique<Batch>();
    batch->style = style;
    batch->isWanted = true;
    if (!batch->lines.Reserve(batchCapacity) && !batch->lines.Reserve(leastBatchCapacity))
        throw std::bad_alloc();
    _batches.push_back(std::move(batch));
    return *_batches.back();
}

bool nxLogBatches::_BeginDay() noexcept
{
    std::memcpy(_date, _time.GetBytes(), sizeof _date);
    return Send();
}

// When memory is short, a batch takes no more than it has room for, and gets room by being sent.
[[gnu::noinline]] bool nxLogBatches::_AppendToEmptied(Batch& batch, const nxLogRecord& record) noexcept
{
    if (!Send())
        return false;
    if (batch.lines.AppendLine(record, _time))
        return true;
    nxLogCounters::CountDropped(1, nxLogCounters::Reason::NoMemory);
    return false;
}

bool nxLogBatches::_DeliverToAll(const nxLogRecord& record) noexcept
{
    if (_mustSift && nxLogLevelState::IsUnwanted(static_cast<nxEnumValue>(record.level), record.source))
    {
        nxLogCounters::CountUnwanted();
        return true;
    }
    if (!_hasDevices)
        return false;
    bool isForLines = false, isInLines = false;
    for (const auto& batch : _batches)
        if (batch->isWanted)
        {
            isForLines = true;
            isInLines |= _AppendToBatch(*batch, record);
        }
    const bool isTaken = _hasRecordDevices && _DeliverAsRecord(record);
    if (_isOfParent)
        return false;
    // A record that found no room in the lines has been counted as dropped.
    if (isTaken || !isForLines)
        _Count(1, isTaken);
    else if (isInLines)
        ++_inLinesAlone;
    _gravestLevel = std::max(_gravestLevel, static_cast<nxEnumValue>(record.level));
    return true;
}

// Counts each record once, when it is clear whether a device has been given it.
void nxLogBatches::_Count(unsigned records, bool isTaken) noexcept
{
    _hasWritten = _hasWritten || (isTaken && records != 0);
    if (isTaken)
        nxLogCounters::CountWritten(records);
    else
        nxLogCounters::CountUndelivered(records);
}

// To the devices that take records instead of lines. @return whether one was given it.
bool nxLogBatches::_DeliverAsRecord(const nxLogRecord& record) noexcept
{
    bool isTaken = false;
    for (std::size_t index = 0; index < _batchOfDevice.size() && !_isOfParent; ++index)
    {
        if (_batchOfDevice[index] != nullptr)
            continue;
        const nxLog borrowed = nxLogConversion::Borrow(record);
        isTaken |= (*_devices)[index]->CallToWrite(1, 0, [&](nxLogDevice& device) { device.Write(borrowed); });
        nxLogCounters::CountProgress();
    }
    return isTaken;
}

bool nxLogBatches::Send() noexcept
{
    bool isTaken = false;
    for (std::size_t index = 0; index < _batchOfDevice.size() && !_isOfParent; ++index)
    {
        const Batch* const batch = _batchOfDevice[index];
        if (batch == nullptr || batch->count == 0)
            continue;
        nxLogDeviceEntry& entry = *(*_devices)[index];
        const nxLogLineBatch lines{batch->lines.GetText(), batch->lines.GetSize(), batch->count, batch->gravestLevel,
                                   batch->seconds};
        isTaken |=
            entry.CallToWrite(lines.lines, lines.size, [&](nxLogDevice&) { entry.GetLineSink()->WriteLines(lines); });
        nxLogCounters::CountProgress();
    }
    if (_isOfParent)
        return false;
    _Count(_onlyBatch != nullptr ? _onlyBatch->count : std::exchange(_inLinesAlone, 0), isTaken);
    for (const auto& batch : _batches)
    {
        batch->lines.Clear();
        batch->lines.ShrinkTo(batchCapacity);
        batch->count = 0;
        _gravestLevel = std::max(_gravestLevel, batch->gravestLevel);
        batch->gravestLevel = NX_ENUM_UNDEFINED;
    }
    return true;
}
