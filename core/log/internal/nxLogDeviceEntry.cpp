// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceEntry.h"

#include <new>
#include <utility>

#include "core/log/internal/nxLogBell.h"
#include "core/log/internal/nxLogCounters.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogTimedLock.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLineSink.h"

constinit thread_local const nxLogDeviceEntry::Visit* nxLogDeviceEntry::_innermost = nullptr;

nxLogDeviceEntry::nxLogDeviceEntry(nxLogDevice* registered, std::shared_ptr<nxMutex> mutex,
                                   nxLogDeviceBook::Counts counts) noexcept
    : _device(registered), _lineSink(registered->GetLineSink()), _mutex(std::move(mutex)), _counts(std::move(counts))
{
}

// Threads leave by dropping their reference, and the last one destroys the lock.
nxLogDeviceEntry::~nxLogDeviceEntry() { nxThreadSanitizer::Acquire(_mutex.get()); }

nxLogDeviceEntry::Visit::Visit(nxLogDeviceEntry& entry, std::int64_t limit) noexcept
    : _entry(entry), _outer(_innermost), _inside(!entry._IsThreadInside() && nxLogTimedLock::Take(*entry._mutex, limit))
{
    if (!_inside)
        return;
    _innermost = this;
    nxLogBell::SetCallerInsideDevice(true);
}

nxLogDeviceEntry::Visit::~Visit()
{
    if (!_inside)
        return;
    _innermost = _outer;
    nxLogBell::SetCallerInsideDevice(_outer != nullptr);
    static_cast<void>(_entry._mutex->Unlock());
    nxThreadSanitizer::Release(_entry._mutex.get());
}

bool nxLogDeviceEntry::_IsThreadInside() const noexcept
{
    for (const Visit* visit = _innermost; visit != nullptr; visit = visit->GetOuter())
        if (visit->GetMutex() == _mutex.get())
            return true;
    return false;
}

std::int64_t nxLogDeviceEntry::GetLongestWait() noexcept
{
    return nxLogBell::IsCallerInsideDevice() ? nxLogLimits::DeviceInsideDevice : nxLogTimedLock::Forever;
}

// A record that a device writes immediately while it is called is not meant for the device itself: that is no loss.
void nxLogDeviceEntry::_CountMissed() const noexcept
{
    if (_IsThreadInside())
        return;
    nxLogCounters::CountDropped(1, nxLogCounters::Reason::DeviceBusy);
    _counts->missed.fetch_add(1, std::memory_order_relaxed);
}

void nxLogDeviceEntry::End(bool wait) noexcept
{
    const Visit visit(*this, wait ? GetLongestWait() : 0);
    if (!visit.IsInside() || _ended.exchange(true, std::memory_order_relaxed))
        return;
    _CallGuarded([this] { _device->Flush(); });
    // The device may delete itself here; the entry lives on.
    _CallGuarded([this] { _device->Destroy(); });
}

void nxLogDeviceEntry::BeforeFork(std::int64_t deadline) noexcept
{
    _lockedForFork = false;
    if (_IsThreadInside() || !nxLogTimedLock::TakeUntil(*_mutex, deadline))
        return;
    _lockedForFork = true;
    if (_lineSink != nullptr && !IsRemoved())
        _lineSink->BeforeFork();
}

void nxLogDeviceEntry::AfterForkInParent() noexcept
{
    if (!_lockedForFork)
        return;
    if (_lineSink != nullptr && !IsRemoved())
        _lineSink->AfterForkInParent();
    static_cast<void>(_mutex->Unlock());
}

void nxLogDeviceEntry::AfterForkInChild() noexcept
{
    ::new (_mutex.get()) nxMutex;
    if (_lineSink != nullptr && !IsRemoved())
        _lineSink->AfterForkInChild();
}
