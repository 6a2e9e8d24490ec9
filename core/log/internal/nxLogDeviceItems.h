// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICEITEMS_H
#define CORE_LOG_INTERNAL_NXLOGDEVICEITEMS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <variant>
#include <vector>

#include "core/log/internal/nxLogRecord.h"
#include "core/log/nxLogLineSink.h"
#include "core/platform/inline/nxClock.h"

/// Records that one device has lost, one after the other.
struct nxLogLosses
{
    std::uint64_t records = 0;
    nxClockTime first{};  ///< The time of the first one,
    nxClockTime last{};   ///< and of the last one.
};

/// A flush that was asked for after all items before it.
struct nxLogFlushRequest
{
    std::uint32_t ticket = 0;  ///< See nxLogDeviceQueue.
};

/// What waits for a device that has a thread of its own.
using nxLogDeviceItem = std::variant<nxLogRecord, nxLogLineBatch, nxLogLosses, nxLogFlushRequest>;

/// Some items one after the other in memory: what a device's thread takes at once.
///
/// Invariant: each item is followed by copies of the texts that it points to. Places of statements are not copied, because
/// the log keeps them.
///
/// Errors: without memory nothing is appended. Threads: none.
class nxLogDeviceItems
{
public:
    /// Where Append() says no, unless there is nothing yet.
    static constexpr std::size_t FullSize = std::size_t{1} << 18;

    /// @return whether the item was appended.
    bool Append(const nxLogRecord& record) noexcept;
    bool Append(const nxLogLineBatch& lines) noexcept;
    bool Append(const nxLogLosses& losses) noexcept { return _Append({losses}, {}, {}); }
    bool Append(const nxLogFlushRequest& request) noexcept { return _Append({request}, {}, {}); }

    /// Bytes of memory that an item takes here.
    static std::size_t GetSizeOf(const nxLogRecord& record) noexcept;
    static std::size_t GetSizeOf(const nxLogLineBatch& lines) noexcept { return sizeof(Header) + lines.size; }

    /// Records in an item; 0 of one that the log itself has added.
    static std::uint64_t CountRecords(const nxLogDeviceItem& item) noexcept;

    bool IsFull() const { return _bytes.size() >= FullSize; }
    std::size_t GetSize() const { return _bytes.size(); }

    /// @param item gets the first item that was not passed. It is valid as long as the items are kept.
    /// @return whether there is one.
    bool Look(nxLogDeviceItem& item) const noexcept;
    /// Passes the item that Look() gives.
    void Pass() noexcept;
    /// Whether none is left.
    bool IsPassed() const { return _passed == _bytes.size(); }

private:
    struct Bytes
    {
        const char* begin = nullptr;
        std::size_t size = 0;
    };
    struct Header
    {
        nxLogDeviceItem item;
        std::size_t fileSize;  // of a place that the record has brought, its NUL included
        std::size_t textSize;  // of values or lines
    };
    static_assert(std::is_trivially_copyable_v<Header>);

    bool _Append(const nxLogDeviceItem& item, Bytes file, Bytes text) noexcept;
    bool _Read(Header& header) const noexcept;

    std::vector<char> _bytes;
    std::size_t _passed = 0;
};

#endif
