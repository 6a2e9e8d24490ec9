#ifndef NXTICK_PRICEGRID_H
#define NXTICK_PRICEGRID_H

#include <string>
#include <string_view>

#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"

namespace nxtick
{
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
    const char* ReadPrice(std::string_view text, nxDecimal& price) const;

    /// @return whether the two neighbours are worth columns of their own.
    virtual bool HasBands() const = 0;
    virtual nxDecimal GetTick(const nxDecimal& price) = 0;
    virtual void Round(const nxRoundingMethodEnum& method, nxDecimal& price) = 0;

    /// @throws Failure when the price so many ticks away might not fit 64 bits; one tick away from what ReadPrice()
    ///         accepted always fits.
    void CheckReach(const nxDecimal& price, int ticks) const;
    /// Moves a price by ticks that CheckReach() accepts.
    virtual void Step(nxDecimal& price, int ticks) = 0;

    bool IsOnGrid(const nxDecimal& price);
    /// The next price of the grid below, whether or not the price itself is on the grid.
    nxDecimal GetBelow(const nxDecimal& price);
    /// The next price of the grid above.
    nxDecimal GetAbove(const nxDecimal& price);

protected:
    PriceGrid() = default;

    /// @param tick one of the grid's. @throws Failure when it has more digits than can be worked with.
    void _AddTick(const nxDecimal& tick);

private:
    nxDecimal _Neighbour(const nxDecimal& price, nxEnumValue method, int ticks);

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
    nxDecimal GetTick(const nxDecimal&) override { return _increment; }
    void Round(const nxRoundingMethodEnum& method, nxDecimal& price) override { price.Round(_increment, method); }
    void Step(nxDecimal& price, int ticks) override;

private:
    nxDecimal _increment;
};
}  // namespace nxtick

#endif
