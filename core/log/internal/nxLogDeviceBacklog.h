// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICEBACKLOG_H
#define CORE_LOG_INTERNAL_NXLOGDEVICEBACKLOG_H

#include <cstddef>
#include <cstdint>
#include <deque>

#include "core/log/internal/nxLogDeviceItems.h"

/// The items that wait for the thread of one device, and the losses that no item tells yet.
///
/// Invariant: the loss of records is told by an item between what was added before it and what was added after it. A ticket
/// is the number of items added so far; a flush is an item as well, but not counted.
///
/// Errors: without memory items are refused. Threads: under the lock of nxLogDeviceQueue.
class nxLogDeviceBacklog
{
public:
    /// Adds an item if there is room, and first what tells the losses before it.
    /// @param bytesInHand what the device's thread has taken and not delivered. @param maximumBytes the bound of both. Where
    ///        nothing waits an item of any size is taken.
    /// @return whether it was added.
    template <class Item>
    bool Add(const Item& item, std::size_t bytesInHand, std::uint64_t maximumBytes) noexcept
    {
        const std::size_t waiting = _bytes + bytesInHand;
        if (waiting != 0 && waiting + nxLogDeviceItems::GetSizeOf(item) > maximumBytes)
            return false;
        if (!TellLosses() || !_Append(item))
            return false;
        ++_added;
        return true;
    }
    /// Remembers records that were lost from @p first to @p last.
    void Lose(std::uint64_t records, const nxClockTime& first, const nxClockTime& last) noexcept;
    /// Adds an item that tells the losses. @return false, if there are some and there is no memory.
    bool TellLosses() noexcept;
    /// Adds a flush, if anything was added since the last one. @return the ticket of all that was added before.
    std::uint32_t AddFlush() noexcept;

    bool IsEmpty() const { return _items.empty(); }
    /// @return the first items, or none.
    nxLogDeviceItems Take() noexcept;
    /// Drops all items. Nothing is left to be flushed.
    void Clear() noexcept;
    /// Begins again, in a forked child.
    void ForgetInChild() noexcept;
    /// The last ticket.
    std::uint32_t GetTicket() const { return _added; }

private:
    template <class Item>
    bool _Append(const Item& item) noexcept;

    std::deque<nxLogDeviceItems> _items;
    std::size_t _bytes = 0;
    nxLogLosses _losses;
    std::uint32_t _added = 0;
    std::uint32_t _flushTicket = 0;  // of the last flush
};

#endif
