// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PRICEGRID_H
#define NXTICK_PRICEGRID_H

#include <string_view>
#include <utility>
#include <vector>

#include "CsvDialect.h"
#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/price/nxPriceManipulator.h"

namespace nxtick
{
/// Reads a number of at most 18 digits and 18 decimals, leading zeros aside.
/// @return null on success, else what is wrong with the text, to follow it in a sentence; @p number is then untouched.
const char* ReadNumber(std::string_view text, nxDecimal& number, const NumberForm& form = {});

/// A copy by parts. A decimal that was just computed is stored in parts, and a copy as a whole would wait for them.
inline nxDecimal CopyFresh(const nxDecimal& number)
{
    return nxDecimal::ConstructFromValueAndDecimalPlaces(number.GetValue(), number.GetDecimalPlaces());
}

/// The prices that an instrument may have: the multiples of one increment, or the grid of a tick table.
class PriceGrid
{
public:
    virtual ~PriceGrid() = default;
    PriceGrid(const PriceGrid&) = delete;
    PriceGrid& operator=(const PriceGrid&) = delete;

    /// Reads a price, blanks around it allowed.
    /// @return null on success, else what is wrong with the text, to follow it in a sentence: the number has to leave
    ///         room in 64 bits for its neighbours at the grid's number of decimals.
    const char* ReadPrice(std::string_view text, nxDecimal& price, const NumberForm& form = {}) const;

    /// @return whether there is room in 64 bits for the neighbours of a price.
    bool HasRoomAt(const nxDecimal& price) const;

    /// @return whether the two neighbours are worth columns of their own.
    virtual bool HasBands() const = 0;
    virtual nxDecimal GetTick(const nxDecimal& price) = 0;
    virtual void Round(const nxRoundingMethodEnum& method, nxDecimal& price) = 0;

    /// @throws Failure when the price that many ticks away might not fit 64 bits; one tick away from a price that
    ///         ReadPrice() accepted always fits.
    void CheckReach(const nxDecimal& price, int ticks) const;
    /// Moves a price by ticks that CheckReach() accepts, each of them the tick where it begins.
    virtual void Step(nxDecimal& price, int ticks) = 0;

    virtual bool IsOnGrid(const nxDecimal& price) = 0;
    /// The next price of the grid below, whether or not the price itself is on the grid.
    /// @throws Failure when it does not fit 64 bits; of a price that ReadPrice() accepted it does.
    nxDecimal GetBelow(const nxDecimal& price) { return _GetNext(false, price); }
    /// The next price of the grid above, in the same manner.
    nxDecimal GetAbove(const nxDecimal& price) { return _GetNext(true, price); }

protected:
    /// Inclusive upper bounds and ticks, ascending; the last bound is the maximum decimal.
    using Bands = std::vector<std::pair<nxDecimal, nxDecimal>>;

    /// @throws Failure when a tick has more digits than can be worked with.
    explicit PriceGrid(const Bands& bands);

    virtual nxErrorEnum FindNext(bool isUp, const nxDecimal& price, nxDecimal& next) = 0;

private:
    void _AddTick(const nxDecimal& tick);
    nxDecimal _GetNext(bool isUp, const nxDecimal& price);

    unsigned char _places = 0;  // the most that a tick has
    double _largestTick = 0;
};

/// The multiples of one increment.
class FixedGrid : public PriceGrid
{
public:
    /// @param increment positive. @throws Failure when it has more digits than can be worked with.
    explicit FixedGrid(const nxDecimal& increment);

    bool HasBands() const override { return false; }
    nxDecimal GetTick(const nxDecimal&) override { return _manipulator.GetTickIncrement(); }
    void Round(const nxRoundingMethodEnum& method, nxDecimal& price) override
    {
        _manipulator.RoundToValidTick(method, price);
    }
    bool IsOnGrid(const nxDecimal& price) override { return _manipulator.IsValidTick(price); }
    void Step(nxDecimal& price, int ticks) override { _manipulator.Increment(price, ticks); }

protected:
    nxErrorEnum FindNext(bool isUp, const nxDecimal& price, nxDecimal& next) override
    {
        return isUp ? _manipulator.GetNextAbove(price, next) : _manipulator.GetNextBelow(price, next);
    }

private:
    nxPriceManipulator _manipulator;
};
}  // namespace nxtick

#endif
