// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXTICKKEY_H
#define CORE_PRICE_INLINE_NXTICKKEY_H

#include <atomic>
#include <cstddef>
#include <cstdint>

/// The key of a tick table in the memories of threads: the table's number, and the band that the table remembers. With the
/// table's band all that threads have remembered for another band counts no longer.
///
/// A table whose class watches no search (nxVariableTickTable::Unwatched) has the mark of any band in place of a band.
/// - Threads: Get() in any number of threads at any time; the rest under the lock of the table. All accesses are relaxed,
///   because a key publishes nothing: a thread compares it with keys that it has written itself.
class nxTickKey
{
public:
    /// @return the key now; 0 before the first Renew().
    std::uint64_t Get() const { return _value.load(std::memory_order_relaxed); }
    /// @return whether zones of the band are remembered under the key.
    static bool HasBand(std::uint64_t key, std::uint32_t band)
    {
        const std::uint64_t remembered = key >> _bandShift;
        return remembered == band || remembered == _anyBand;
    }

    /// @return where the table's place lies among the sixteen of a thread, in bytes.
    static std::size_t GetOffset(std::uint64_t key) { return key >> 8 & 0xFF; }
    /// Above all offsets.
    static constexpr std::size_t OffsetEnd = 256;

    /// Takes a number that no table of the process has had, and the first band.
    void Renew();
    /// Marks the table as one that need not be asked before a band is remembered.
    void SetAnyBand() { _value.store(_GetNumber(Get()) | _anyBand << _bandShift, std::memory_order_relaxed); }
    /// Takes another band, but not in place of the mark of any band.
    void SetBand(std::size_t band)
    {
        if (const std::uint64_t key = Get(); key >> _bandShift != _anyBand)
            _value.store(_GetNumber(key) | std::uint64_t{band < _lastBand ? band : _lastBand} << _bandShift,
                         std::memory_order_relaxed);
    }

private:
    // From the lowest bit: twelve that stay 0, to which the scale of a price is added; 44 of the number, whose last four tell
    // the place of sixteen bytes; eight of the band.
    static constexpr std::uint64_t _distance = 1 << 12;
    static constexpr int _bandShift = 56;
    static constexpr std::uint64_t _anyBand = 255;
    static constexpr std::uint64_t _lastBand = 254;  // tables with more have no views

    static constexpr std::uint64_t _GetNumber(std::uint64_t key)
    {
        return key & ((std::uint64_t{1} << _bandShift) - 1);
    }

    // Relaxed: number and band are one word, and what they name is memory of the reading thread.
    std::atomic<std::uint64_t> _value{0};
};

#endif
