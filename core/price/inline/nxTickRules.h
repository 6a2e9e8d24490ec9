// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXTICKRULES_H
#define CORE_PRICE_INLINE_NXTICKRULES_H

#include <cstddef>
#include <iterator>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxTickGrid.h"

/// The rules of one tick table, without lock and without memory of earlier prices. Table, cursor and run ask them.
///
/// Four words name an interval of prices, from the outside to the inside:
/// - band: an inclusive upper bound and an increment, as an exchange publishes them. The operations of
///   nxVariableTickTable call it a range.
/// - stretch: the part of a band in which prices have one tick. Two make a band: the prices less than one lower tick
///   above the lower bound, which still take the lower tick, and the rest. The first band has one.
/// - zone: a stretch for prices of one number of places, as plain integers; see nxTickZone.
/// - run: many steps in one call, which nxTickRun cuts short.
///
/// A price is looked up by its magnitude, because negative prices are the exact mirror of positive ones.
/// - Threads: any number, as long as no band is added.
/// - Ownership: a view of the bands and of the grid made from them; both outlive it.
class nxTickRules
{
public:
    /// All bands, ascending.
    typedef nxTickGrid::Bands Bands;
    /// One band; End() where a price has none.
    typedef Bands::const_iterator Band;

    /// @param isAscending whether each bound is above the one before it; the search then halves the bands.
    nxTickRules(const Bands& bands, const nxTickGrid& grid, bool isAscending)
        : _bands(bands), _grid(grid), _isAscending(isAscending)
    {
    }

    /// @return the magnitude by which a price is looked up: 0 for a price without a value, and negative for the most
    ///         negative mantissa, which has no magnitude and no band.
    static nxDecimal GetMagnitude(const nxDecimal& price)
    {
        return price.IsValid() ? nxDecimal::Abs(price) : nxDecimal();
    }

    /// @return all bands.
    const Bands& GetBands() const { return _bands; }

    /// @return what is found for a price that has no band.
    Band End() const { return _bands.end(); }

    /// @return whether the band begins at 0 and so lies on both sides of it.
    bool IsFirst(Band band) const { return band == _bands.begin(); }

    /// @name By integers
    /// @{

    /// @return the stretch that holds the price; nxTickGrid::NotFound when the price needs the decimal rules.
    std::size_t FindStretch(const nxDecimal& price) const { return _grid.Find(price); }
    /// @return the band of a stretch that was found.
    Band GetBand(std::size_t stretch) const
    {
        return _bands.begin() + static_cast<std::ptrdiff_t>(_grid.GetBand(stretch));
    }
    /// @return the band of a zone that holds prices.
    Band GetBand(const nxTickZone& zone) const { return _bands.begin() + zone.band; }
    /// @return the tick of a stretch that was found; it lives as long as the bands.
    const nxDecimal& GetTick(std::size_t stretch) const { return _grid.GetIncrement(stretch); }
    /// Makes @p zone the stretch that FindStretch() gave for @p price.
    void FillZone(std::size_t stretch, const nxDecimal& price, nxTickZone& zone) const
    {
        _grid.Fill(stretch, price.GetDecimalPlaces(), price.IsNegative(), zone);
    }
    /// @return the bands as integers.
    const nxTickGrid& GetGrid() const { return _grid; }
    /// @}

    /// @name By decimals
    /// @{

    /// @return the band of the price, by integers where they take it.
    Band FindBand(const nxDecimal& price) const;
    /// @return the band of a magnitude.
    Band FindBandByDecimals(const nxDecimal& magnitude) const;
    /// @return the tick at a price; a null pointer when the price has no band.
    const nxDecimal* LookUpTickByDecimals(const nxDecimal& price) const;
    /// @return the tick at a price; a null decimal, after a fatal record in the log, when the price has no band.
    const nxDecimal& FindTickByDecimals(const nxDecimal& price) const;
    /// @return the tick at a magnitude that lies in @p band.
    const nxDecimal& GetTickIn(Band band, const nxDecimal& magnitude) const;
    /// @return the decimal places of the band's increment; 0 for End().
    unsigned char GetPlaces(Band band) const
    {
        return band == End() ? static_cast<unsigned char>(0) : band->second.GetDecimalPlaces();
    }
    /// @return the band whose increment a step from a magnitude in @p band uses; @p isOutwards means away from zero.
    Band GetBandOfStep(Band band, bool isOutwards, const nxDecimal& magnitude) const;
    /// @return the band whose places the price gets after a step by the increment of @p band: this or the next.
    Band GetBandAfterStep(Band band, bool isIncrease, const nxDecimal& price) const
    {
        const bool isOutwards = isIncrease ? price.IsPositive() : price.IsNegative();
        if (!isOutwards || std::next(band) == End())
            return band;
        const nxDecimal magnitude = nxDecimal::Abs(price);
        return magnitude.IsNegative() || magnitude > band->first ? std::next(band) : band;
    }
    /// Adds the band's increment (or subtracts it) and sets the places; End() leaves the price as it is.
    void Move(bool isIncrease, nxDecimal& price, Band band) const;
    /// Moves a price that lies in @p band by one step.
    void StepFrom(Band band, bool isUp, nxDecimal& price) const;
    /// Moves a price that lies in @p band by one step, as StepFrom() does where that is exact.
    /// @return NX_ERR_NO_MATCH for End() or a band whose increment is not positive, NX_ERR_VALUE_OUT_OF_RANGE when the
    ///         sum does not fit 64 bits or has too many places; the price is then unchanged.
    [[nodiscard]] nxErrorEnum StepExactlyFrom(Band band, bool isUp, nxDecimal& price) const;
    /// Rounds a price with the errors of nxVariableTickTable::RoundToValidTickExact().
    /// @param tick at the price, if integers found it; a null pointer asks for the decimal rules.
    [[nodiscard]] nxErrorEnum RoundExactly(const nxDecimal* tick, const nxRoundingMethodEnum& method,
                                           nxDecimal& price) const;
    /// Writes the fatal record about a price without a band.
    /// @return a null decimal that lives as long as the process.
    static const nxDecimal& ReportUnknownBand();

    /// @return whether the bands make a usable table: there are some, the last bound is the maximum decimal, the bounds
    ///         are positive and strictly ascending, and every increment is positive.
    bool KeepConstraints() const;
    /// @}

private:
    const Bands& _bands;
    const nxTickGrid& _grid;
    bool _isAscending;
};

#endif
