// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXTICKVIEWS_H
#define CORE_PRICE_INTERNAL_NXTICKVIEWS_H

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxTickGrid.h"
#include "core/price/inline/nxTickZone.h"

/// All stretches of a tick table as finished zones, for prices of one number of places and one sign.
///
/// A search begins with the leading bits of the magnitude, the exponent and three bits of the fraction of its double. A table
/// of bytes has the first stretch that is possible for them. The right one is at most a few stretches further.
/// - Threads: constant after Make(). Ownership: owns its zones, which point into the bands of the table.
class nxTickView
{
public:
    /// Tables with more stretches have no views.
    static constexpr std::size_t MaxStretches = 255;

    /// @return the view; a null pointer when there is no memory for it.
    static const nxTickView* Make(const nxTickGrid& grid, unsigned char places, bool isNegative);

    /// @return the zone of a magnitude, 2^63 at most; a null pointer when it is beyond all zones.
    const nxTickZone* Find(std::uint64_t magnitude) const
    {
        const std::size_t first = _first[_GetLeadingBits(magnitude)];
        // Without a branch, because prices that miss the remembered zone are unpredictable.
        std::size_t found = first + std::size_t{_lasts[first] < magnitude} + std::size_t{_lasts[first + 1] < magnitude};
        while (_lasts[found] < magnitude)
            ++found;
        return found < _count ? &_zones[found] : nullptr;
    }

private:
    static constexpr unsigned _shift = 49;  // leaves sign, exponent and three bits of the fraction
    static constexpr std::size_t _leadingBits = 512;

    static std::uint64_t _GetDoubleBits(std::uint64_t magnitude)
    {
        return std::bit_cast<std::uint64_t>(static_cast<double>(static_cast<std::int64_t>(magnitude | 1)));
    }
    // The exponents of magnitudes are 64 consecutive numbers, so the remainder tells them apart.
    static std::size_t _GetLeadingBits(std::uint64_t magnitude)
    {
        return (_GetDoubleBits(magnitude) >> _shift) % _leadingBits;
    }

    void _SetFirst();

    std::array<unsigned char, _leadingBits> _first;
    std::size_t _count = 0;
    std::unique_ptr<nxTickZone[]> _zones;
    std::unique_ptr<std::uint64_t[]> _lasts;  // of each stretch its last magnitude, and two that are never exceeded
};

/// The views of one tick table. A view is made by the first search with a price of its kind, without a lock, and stays
/// until the table ends. Two threads may make the same one; the first counts.
/// - Threads: any number. Ownership: owns the views; belongs to the grid.
class nxTickViews
{
public:
    /// @return the views of a grid; a null pointer when that is empty or has too many stretches.
    static std::shared_ptr<const nxTickViews> Make(const nxTickGrid& grid);

    /// Views of a grid that has stretches, but not too many.
    explicit nxTickViews(const nxTickGrid& grid) : _grid(grid) {}
    nxTickViews(const nxTickViews&) = delete;
    nxTickViews& operator=(const nxTickViews&) = delete;
    ~nxTickViews();

    /// @return the zone that holds the price, which lives as long as the views. A null pointer for a price without a value or
    ///         one that needs the rules of the grid or those by decimals, and where the view is not made yet.
    static const nxTickZone* Find(const nxTickGrid& grid, const nxDecimal& price)
    {
        const nxTickViews* const views = grid.GetViews();
        const std::uint64_t scale = price.GetScale();
        if (views == nullptr || scale > nxTickGrid::MaxPlaces)
            return nullptr;
        const std::int64_t value = price.GetValue();
        // Pairs with the release in _Make().
        const nxTickView* const view = views->_views[_GetIndex(scale, value)].load(std::memory_order_acquire);
        return view == nullptr ? nullptr : view->Find(nxTickZone::Magnitude(value));
    }
    /// The same, but makes the view if that is missing.
    /// @return a null pointer also while there is no memory for the view.
    static const nxTickZone* FindOrMake(const nxTickGrid& grid, const nxDecimal& price);

private:
    static std::size_t _GetIndex(std::uint64_t scale, std::int64_t value) { return 2 * scale + (value < 0 ? 1 : 0); }
    const nxTickView* _Make(std::size_t index) const;

    const nxTickGrid& _grid;
    // Of each scale the view of positive and of negative prices. _Make() publishes one (release) and takes that of a thread
    // which was first (acquire); searches load it (acquire). Relaxed in the destructor, which runs alone.
    mutable std::array<std::atomic<const nxTickView*>, 2 * (nxTickGrid::MaxPlaces + 1)> _views{};
};

#endif
