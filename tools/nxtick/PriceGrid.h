#ifndef NXTICK_PRICEGRID_H
#define NXTICK_PRICEGRID_H

#include <string_view>
#include <utility>
#include <vector>

#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"

namespace nxtick
{
/// Reads a number of at most 18 digits and 18 decimals, leading zeros aside.
/// @return null on success, else what is wrong with the text, to follow it in a sentence; @p number is then untouched.
const char* ReadNumber(std::string_view text, nxDecimal& number);

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

    /// @throws Failure when the price that many ticks away might not fit 64 bits; one tick away from a price that
    ///         ReadPrice() accepted always fits.
    void CheckReach(const nxDecimal& price, int ticks) const;
    /// Moves a price by ticks that CheckReach() accepts, each of them the tick where it begins.
    virtual void Step(nxDecimal& price, int ticks) = 0;

    bool IsOnGrid(const nxDecimal& price);
    /// The next price of the grid below, whether or not the price itself is on the grid.
    nxDecimal GetBelow(const nxDecimal& price) const;
    /// The next price of the grid above.
    nxDecimal GetAbove(const nxDecimal& price) const;

protected:
    /// Inclusive upper bounds and ticks, ascending; the last bound is the maximum decimal.
    using Bands = std::vector<std::pair<nxDecimal, nxDecimal>>;

    /// @throws Failure when a tick has more digits than can be worked with.
    explicit PriceGrid(const Bands& bands);

private:
    // All prices of the grid that share a tick: multiples of it from a first to a last one. The prices from one lower
    // tick above a band's lower bound to one tick above its own bound have the band's tick.
    struct _Stretch
    {
        nxDecimal first;
        nxDecimal last;
        nxDecimal tick;
    };

    void _AddTick(const nxDecimal& tick);
    void _AddStretches(const Bands& bands);
    nxDecimal _Outwards(nxDecimal price) const;
    nxDecimal _Inwards(nxDecimal price) const;

    unsigned char _places = 0;  // the most that a tick has
    double _largestTick = 0;
    std::vector<_Stretch> _stretches;  // ascending, of the prices from 0; negative ones are their mirror image
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
