// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxSeparateLogDevice.h"

#include <algorithm>
#include <utility>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogConversion.h"
#include "core/log/internal/nxLogDeviceBook.h"
#include "core/log/internal/nxLogDeviceQueue.h"
#include "core/log/internal/nxLogKeptStyle.h"
#include "core/log/nxLogManager.h"
#include "core/platform/nxNanoseconds.h"

namespace
{
// Another device as a target. What it throws is dropped, as by the manager.
class DeviceTarget final : public nxLogTarget
{
public:
    explicit DeviceTarget(std::shared_ptr<nxLogDevice> device)
        : _device(std::move(device)), _sink(_device != nullptr ? _device->GetLineSink() : nullptr)
    {
        _LookAtStyle();
    }

    Outcome WriteLines(const nxLogLineBatch& lines) noexcept override
    {
        const Outcome outcome = _Call([&] { _sink->WriteLines(lines); });
        _LookAtStyle();
        return outcome;
    }
    void Flush() noexcept override
    {
        _Call([&] { _device->Flush(); });
    }
    void Maintain() noexcept override
    {
        if (_sink == nullptr)
            return;
        _Call([&] { _sink->Maintain(); });
        _LookAtStyle();
    }
    void Destroy() noexcept override
    {
        _Call([&] { _device->Destroy(); });
    }
    nxLogLineStyle GetLineStyle() const noexcept override { return _style.Get(); }

    void BeforeFork() noexcept override
    {
        if (_sink != nullptr)
            _sink->BeforeFork();
    }
    void AfterForkInParent() noexcept override
    {
        if (_sink != nullptr)
            _sink->AfterForkInParent();
    }
    void AfterForkInChild(bool) noexcept override
    {
        if (_sink != nullptr)
            _sink->AfterForkInChild();
    }

private:
    Outcome _Write(const nxLog& record, const nxLogLosses*) noexcept override
    {
        return _Call([&] { _device->Write(record); });
    }

    template <class Action>
    Outcome _Call(const Action& action) noexcept
    {
        if (_device == nullptr)
            return Outcome::Lost;
        try
        {
            action();
        }
        catch (...)
        {
        }
        return Outcome::Taken;
    }

    void _LookAtStyle() noexcept
    {
        if (_sink != nullptr)
            _style.Set(_sink->GetLineStyle());
    }

    const std::shared_ptr<nxLogDevice> _device;
    nxLogLineSink* const _sink;
    nxLogKeptStyle _style{nxLogLineStyle{}};
};

// The figures of the log show what the device's queue has lost since they were told last.
void TellLosses(const nxLogDevice& device, nxLogDeviceQueue& queue) noexcept
{
    if (const std::uint64_t lost = queue.TakeUntoldLosses(); lost != 0)
        nxLogDeviceBook::GetInstance().CountLost(&device, lost);
}
}  // namespace

nxSeparateLogDevice::nxSeparateLogDevice(std::shared_ptr<nxLogDevice> device)
    : nxSeparateLogDevice(device, device != nullptr && device->GetLineSink() != nullptr)
{
}

nxSeparateLogDevice::nxSeparateLogDevice(const std::shared_ptr<nxLogDevice>& device, bool takesLines)
    : nxLogDevice(takesLines ? static_cast<nxLogLineSink*>(this) : nullptr),
      _queue(std::make_shared<nxLogDeviceQueue>(std::make_unique<DeviceTarget>(device)))
{
}

nxSeparateLogDevice::nxSeparateLogDevice(std::unique_ptr<nxLogTarget> target)
    : nxLogDevice(nullptr), _queue(std::make_shared<nxLogDeviceQueue>(std::move(target)))
{
}

nxSeparateLogDevice::~nxSeparateLogDevice()
{
    nxLogManager::GetInstance().UnregisterLogDevice(this);
    _queue->End(false);
}

void nxSeparateLogDevice::Write(const nxLog& record)
{
    _queue->Add(nxLogConversion::View(record));
    TellLosses(*this, *_queue);
}

void nxSeparateLogDevice::Flush()
{
    _queue->AskForFlush();
    TellLosses(*this, *_queue);
}

void nxSeparateLogDevice::Destroy() { _queue->End(true); }

bool nxSeparateLogDevice::WaitUntilWritten(double seconds)
{
    // NaN fails the comparison as well.
    if (!(seconds > 0) || !nxLogBell::CallerMayWait())
        return false;
    const auto limit = static_cast<std::int64_t>(std::min(seconds, nxLogLimits::LongestWaitSeconds) *
                                                 static_cast<double>(nxNanoseconds::PerSecond));
    nxLogAwakeTime time;
    return _queue->WaitUntilWritten({limit, nxLogLimits::End.withoutProgress}, time);
}

void nxSeparateLogDevice::SetMaximumBytes(std::uint64_t bytes)
{
    _queue->SetMaximumBytes(std::min(bytes, LargestMaximumBytes));
}

std::uint64_t nxSeparateLogDevice::GetMaximumBytes() const { return _queue->GetMaximumBytes(); }

std::uint64_t nxSeparateLogDevice::GetLostRecords() const { return _queue->GetLost(); }

std::uint64_t nxSeparateLogDevice::GetWaitingRecords() const { return _queue->GetWaiting(); }

nxLogLineStyle nxSeparateLogDevice::GetLineStyle() const { return _queue->GetLineStyle(); }

void nxSeparateLogDevice::WriteLines(const nxLogLineBatch& batch)
{
    _queue->Add(batch);
    TellLosses(*this, *_queue);
}

void nxSeparateLogDevice::Maintain()
{
    _queue->AskForMaintenance();
    TellLosses(*this, *_queue);
}
