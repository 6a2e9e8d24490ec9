// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXTICKGRID_H
#define CORE_PRICE_INLINE_NXTICKGRID_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxTickKey.h"
#include "core/price/inline/nxTickZone.h"

class nxTickViews;

/// The bands of one tick table as plain integers at one common scale, so that a search compares integers. A table keeps
/// one beside its bands.
///
/// The rules of a table are made of decimal comparisons and additions, which go through doubles across scales. For
/// operands of at most 15 places and less than 2^49 units those are exact, and integers decide the same. Find()
/// declines everything else.
///
/// The words band, stretch and zone are explained in nxTickRules.
/// - Threads: Build() excludes everything; the rest may run in any number of threads.
/// - Ownership: points into the bands it was built from; owns the views. Not copyable.
class nxTickGrid
{
public:
    /// Inclusive upper bounds and increments, ascending, the last bound the maximum decimal.
    typedef std::vector<std::pair<nxDecimal, nxDecimal>> Bands;

    /// A position on the common scale: on one of its points, or in the gap between two. Ends of stretches and magnitudes
    /// of any number of places become codes, which compare as their positions do.
    class Code
    {
    public:
        /// On the point @p x, which is less than 2^63.
        static constexpr Code At(std::uint64_t x) { return Code(2 * x); }
        /// In the gap before @p x, which is positive.
        static constexpr Code Before(std::uint64_t x) { return Code(2 * x - 1); }
        /// In the gap after @p x, which is the one before x + 1.
        static constexpr Code After(std::uint64_t x) { return Code(2 * x + 1); }
        /// After everything.
        static constexpr Code Last() { return Code(UINT64_MAX); }

        /// @return the position after this one: from a gap to a point, from a point to a gap. Last() has none.
        constexpr Code GetNext() const { return Code(_code + 1); }
        /// @return whether this is a gap.
        constexpr bool IsGap() const { return _code % 2 != 0; }
        /// @return the last point that is not after this position.
        constexpr std::uint64_t GetPointBelow() const { return _code / 2; }
        /// @return the first point that is not before this position.
        constexpr std::uint64_t GetPointAbove() const { return _code / 2 + _code % 2; }

        friend constexpr bool operator<(Code a, Code b) { return a._code < b._code; }    ///< By position.
        friend constexpr bool operator==(Code a, Code b) { return a._code == b._code; }  ///< The same position.

    private:
        constexpr explicit Code(std::uint64_t code) : _code(code) {}

        std::uint64_t _code;  // 2x on the point x, and the odd numbers between in the gaps
    };

    /// A grid without bands.
    nxTickGrid() = default;
    nxTickGrid(const nxTickGrid&) = delete;
    nxTickGrid& operator=(const nxTickGrid&) = delete;

    /// Replaces the grid, with a new key and without views. It stays empty, and declines every price, for bands that lack a
    /// top band, are out of order, or have numbers beyond the limits.
    /// @param bands at least one; they outlive the grid, and after a change it needs another Build().
    void Build(const Bands& bands);

    /// What Find() returns for a price that needs the decimal rules.
    static constexpr std::size_t NotFound = SIZE_MAX;
    /// It finds no price with more places.
    static constexpr unsigned char MaxPlaces = 15;

    /// @return the stretch that holds the price, or NotFound; a price without a value counts as 0.
    std::size_t Find(const nxDecimal& price) const;
    /// @return the index of the band that a found stretch lies in.
    std::size_t GetBand(std::size_t stretch) const { return _stretches[stretch].band; }
    /// @return the tick of a found stretch, in the table's own band.
    const nxDecimal& GetIncrement(std::size_t stretch) const { return *_stretches[stretch].increment; }
    /// @return the number of stretches.
    std::size_t GetCount() const { return _stretches.size(); }
    /// @return the largest magnitude of @p places decimals, 15 at most, that lies in the stretch or in one before it.
    std::uint64_t GetLast(std::size_t stretch, unsigned char places) const;
    /// Makes @p zone the stretch, which holds prices of these places and this sign.
    void Fill(std::size_t stretch, unsigned char places, bool isNegative, nxTickZone& zone) const;

    /// @return the finished zones; a null pointer when the grid is empty or has too many stretches for them.
    const nxTickViews* GetViews() const { return _views.get(); }
    /// Takes the zones of this grid, which live as long as it.
    void SetViews(std::shared_ptr<const nxTickViews> views) { _views = std::move(views); }
    /// @return the key under which threads remember zones of the views; the table changes it under its lock.
    nxTickKey& GetKey() const { return _key; }

private:
    // One stretch at the common scale.
    struct _Stretch
    {
        Code end;  // belongs to the stretch
        const nxDecimal* increment = nullptr;
        std::uint64_t divisor = 0;     // the increment
        std::uint64_t reciprocal = 0;  // of the divisor, as in a zone
        std::uint32_t band = 0;
        unsigned char shift = 0;
        bool isUpperPart = true;  // has its band's own tick, not the lower one
    };

    bool _AddBand(const Bands& bands, std::size_t band);
    void _AddStretch(Code end, std::size_t band, const nxDecimal& increment, bool isUpperPart);
    bool _ScaleUp(const nxDecimal& number, std::uint64_t& scaled) const;

    // The constructor of tables is inline. Programs that were built before set 48 bytes to 0 and after them the places, so
    // an empty grid has to be just that.
    std::vector<_Stretch> _stretches;  // ascending
    mutable nxTickKey _key;
    std::shared_ptr<const nxTickViews> _views;
    unsigned char _places = 0;  // of the common scale
};

#endif
