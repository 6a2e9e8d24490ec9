// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXVALIDPRICES_H
#define CORE_PRICE_INTERNAL_NXVALIDPRICES_H

#include <cstddef>
#include <span>
#include <utility>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxDecimal.h"

/// The valid prices of a list of bands: the prices that are a multiple of the tick at them. Everything is compared and
/// divided as integers of 128 bits at one number of places, so that no price is too large or too fine for it.
///
/// The prices with one tick are an interval, from one lower tick above the lower bound of its band to one tick above its
/// own bound. Such an interval with the multiples in it is called a lattice here. Lattices ascend and do not overlap; one
/// has no price when its band is narrower than the lower tick, or its tick is too large for the interval.
/// - Negative prices are the mirror image of positive ones.
/// - Limits: bounds and ticks with more places than MostPlaces, and ticks that are not positive, have no valid price.
/// - Threads and ownership: a view of the bands, which outlive it.
class nxValidPrices
{
public:
    /// An inclusive upper bound and an increment.
    typedef std::pair<nxDecimal, nxDecimal> Band;

    /// At this many places every mantissa fits 127 bits.
    static constexpr unsigned char MostPlaces = 19;

    /// @param bands ascending.
    /// @param places of the integers, MostPlaces at most and as many as the bands need. Fewer make the divisions cheaper.
    explicit nxValidPrices(std::span<const Band> bands, unsigned char places = MostPlaces)
        : _bands(bands), _places(places)
    {
    }

    /// @return whether a price is a multiple of a tick that is positive. Their places differ by MostPlaces at most.
    static bool IsMultiple(const nxDecimal& price, const nxDecimal& tick);

    /// @return whether the price is valid; false for one without a value or without a band.
    bool Contains(const nxDecimal& price) const;

    /// Finds the closest valid price strictly above @p price, or below it. @p next has the places of the tick at it.
    /// @return NX_ERR_OBJECT_IS_NULL for a price without a value, NX_ERR_NO_MATCH for one without a band,
    ///         NX_ERR_VALUE_OUT_OF_RANGE when 64 bits do not hold the next one; @p next is then untouched.
    [[nodiscard]] nxErrorEnum GetNext(bool isUp, const nxDecimal& price, nxDecimal& next) const;
    /// Counts the steps from one valid price to another, negative downwards, where a step leads to the next valid price.
    /// @param bands ascending.
    /// @return NX_ERR_OBJECT_IS_NULL when one of the prices has no value, NX_ERR_NO_MATCH when one is not valid,
    ///         NX_ERR_VALUE_OUT_OF_RANGE when 64 bits do not hold the number; @p ticks is then untouched.
    [[nodiscard]] static nxErrorEnum CountTicks(std::span<const Band> bands, const nxDecimal& from, const nxDecimal& to,
                                                long long& ticks);

private:
    // A magnitude in units of the common places.
    struct _Position
    {
        nxUnsignedWide units = 0;
        bool hasRest = false;  // the number has digits below the units, which were cut off
    };

    // The interval of one tick, or the valid prices in it, in units.
    struct _Lattice
    {
        nxUnsignedWide first = 0;
        nxUnsignedWide last = 0;  // below the first when there is none
        nxUnsignedWide tick = 0;
    };

    _Position _GetPosition(const nxDecimal& magnitude) const;
    std::size_t _FindBand(const nxDecimal& price, const _Position& position) const;
    bool _GetUnits(const nxDecimal& number, nxUnsignedWide& units) const;
    bool _MakeInterval(std::size_t band, _Lattice& interval) const;
    bool _MakeLattice(std::size_t band, _Lattice& lattice) const;
    // The number of valid magnitudes above the lower and up to the upper price; false where a band has none at all.
    bool _CountOutwards(const nxDecimal& lower, const nxDecimal& upper, nxUnsignedWide& count) const;
    nxErrorEnum _GetOutwards(std::size_t band, const _Position& position, nxDecimal& next) const;
    nxErrorEnum _GetInwards(std::size_t band, const _Position& position, nxDecimal& next) const;
    nxErrorEnum _Store(nxUnsignedWide units, std::size_t band, nxDecimal& next) const;

    std::span<const Band> _bands;
    unsigned char _places;
};

#endif
