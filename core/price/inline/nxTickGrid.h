#ifndef CORE_PRICE_INLINE_NXTICKGRID_H
#define CORE_PRICE_INLINE_NXTICKGRID_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxTickZone.h"

/// The bands of one tick table as plain integers at one common scale, so that a search compares integers. Not for
/// applications; a table keeps one beside its bands.
///
/// The rules of a table are made of decimal comparisons and additions, which go through doubles across scales. For
/// operands of at most 15 places and less than 2^49 units those are exact, and integers decide the same. Find()
/// declines everything else.
/// - Threads: Build() excludes everything; the rest may run in any number of threads.
/// - Ownership: points into the bands it was built from.
class nxTickGrid
{
public:
    /// Inclusive upper bounds and increments, ascending, the last bound the maximum decimal.
    typedef std::vector<std::pair<nxDecimal, nxDecimal>> Bands;

    /// Replaces the grid. It stays empty, and declines every price, for bands that lack a top band, are out of order,
    /// or have numbers beyond the limits.
    /// @param bands at least one; they outlive the grid, and after a change it needs another Build().
    void Build(const Bands& bands);

    /// What Find() returns for a price that needs the decimal rules.
    static constexpr std::size_t NotFound = SIZE_MAX;

    /// @return the stretch that holds the price; a price without a value counts as 0.
    std::size_t Find(const nxDecimal& price) const;
    /// @return the index of the band that a found stretch lies in.
    std::size_t GetBand(std::size_t stretch) const { return _stretches[stretch].band; }
    /// @return the tick of a found stretch, in the table's own band.
    const nxDecimal& GetIncrement(std::size_t stretch) const { return *_stretches[stretch].increment; }
    /// Makes @p zone the stretch that Find() gave for @p price.
    void Fill(std::size_t stretch, const nxDecimal& price, nxTickZone& zone) const;

private:
    // One stretch at the common scale. Two make a band: the prices less than one lower tick above the lower bound,
    // which still take the lower tick, and the rest.
    struct _Stretch
    {
        const nxDecimal* increment = nullptr;
        std::uint64_t divisor = 0;
        std::uint64_t reciprocal = 0;
        std::uint32_t band = 0;
        unsigned char shift = 0;
        bool hasOwnTick = true;
    };

    bool _AddBand(const Bands& bands, std::size_t band);
    void _AddStretch(std::uint64_t end, std::size_t band, const nxDecimal& increment, bool hasOwnTick);
    bool _ScaleUp(const nxDecimal& number, std::uint64_t& scaled) const;

    // Where the stretches end, ascending: 2x for an end at x that belongs to its stretch, 2x - 1 for one that does not.
    std::vector<std::uint64_t> _ends;
    std::vector<_Stretch> _stretches;
    unsigned char _places = 0;
};

#endif
