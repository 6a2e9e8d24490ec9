// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceBacklog.h"

#include <utility>

template <class Item>
bool nxLogDeviceBacklog::_Append(const Item& item) noexcept
try
{
    if (_items.empty() || _items.back().IsFull())
        _items.emplace_back();
    nxLogDeviceItems& last = _items.back();
    const std::size_t before = last.GetSize();
    const bool isAppended = last.Append(item);
    _bytes += last.GetSize() - before;
    if (last.GetSize() == 0)
        _items.pop_back();
    return isAppended;
}
catch (...)
{
    return false;
}

template bool nxLogDeviceBacklog::_Append(const nxLogRecord& item) noexcept;
template bool nxLogDeviceBacklog::_Append(const nxLogLineBatch& item) noexcept;

void nxLogDeviceBacklog::Lose(std::uint64_t records, const nxClockTime& first, const nxClockTime& last) noexcept
{
    if (_losses.records == 0)
        _losses.first = first;
    _losses.records += records;
    _losses.last = last;
}

bool nxLogDeviceBacklog::TellLosses() noexcept
{
    if (_losses.records == 0)
        return true;
    if (!_Append(_losses))
        return false;
    _losses = nxLogLosses();
    ++_added;
    return true;
}

std::uint32_t nxLogDeviceBacklog::AddFlush() noexcept
{
    if (_added != _flushTicket && _Append(nxLogFlushRequest{_added}))
        _flushTicket = _added;
    return _added;
}

nxLogDeviceItems nxLogDeviceBacklog::Take() noexcept
{
    if (_items.empty())
        return {};
    nxLogDeviceItems taken = std::move(_items.front());
    _items.pop_front();
    _bytes -= taken.GetSize();
    return taken;
}

void nxLogDeviceBacklog::Clear() noexcept
{
    _items.clear();
    _bytes = 0;
    _flushTicket = _added;
}

void nxLogDeviceBacklog::ForgetInChild() noexcept
{
    _items.clear();
    _bytes = 0;
    _losses = nxLogLosses();
    _added = 0;
    _flushTicket = 0;
}
