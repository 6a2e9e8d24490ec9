// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXTICKZONE_H
#define CORE_PRICE_INLINE_NXTICKZONE_H

#include <cstddef>
#include <cstdint>

#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxDecimal.h"

/// A stretch of prices of one number of decimal places that lie in one band and share one tick, as plain integers: what
/// a tick table or a cursor remembers of its last search. nxTickGrid makes it, and nxTickRules explains the words.
///
/// Every operation either gives to the last place what the decimal rules give, or declines and touches nothing.
///
/// Rounding counts ticks upwards from `base`, a multiple of the tick that is not above the first price:
///
///     ticks   = floor((distance * factor + start[method]) / (2 * divisor))
///     rounded = base + ticks * tick
///
/// where `distance` is how far the price lies above the first one, `factor` takes it to twice the units in which the
/// division works, the finer of the price's places and the table's, and `divisor` is one tick in these units.
/// `start[method]` is twice the distance from the base to the first price, plus twice what the method adds before the
/// cut: nothing for DOWN, a unit less than a tick for UP, half a tick or a little less for the other two, whose ties
/// differ. The division is a multiplication by `reciprocal` and a shift. Both sides are doubled so that the reciprocal
/// fits 64 bits for every tick.
/// - Threads: none of its own; the owner guards it. Ownership: nothing; points into its table's bands.
struct nxTickZone
{
    /// Mantissas from a first to a last one, both included.
    struct Range
    {
        std::uint64_t first = 0;  ///< As unsigned, so that one comparison tests both ends.
        std::uint64_t span = 0;   ///< Last minus first.

        /// @return whether the mantissa is one of them.
        bool Contains(std::int64_t mantissa) const { return static_cast<std::uint64_t>(mantissa) - first <= span; }
        /// @return the number of mantissas of the range above @p mantissa, which is in it.
        std::uint64_t CountAbove(std::int64_t mantissa) const
        {
            return first + span - static_cast<std::uint64_t>(mantissa);
        }
        /// @return the number of mantissas of the range below @p mantissa, which is in it.
        std::uint64_t CountBelow(std::int64_t mantissa) const { return static_cast<std::uint64_t>(mantissa) - first; }
    };

    /// No decimal has this scale: what the zone cannot do, it does for no price.
    static constexpr std::uint16_t NoPlaces = UINT16_MAX;
    /// Larger scaled magnitudes are not divided by the reciprocal.
    static constexpr std::uint64_t MaxScaled = (std::uint64_t{1} << 49) - 1;

    Range prices;                             ///< The stretch.
    Range rounding;                           ///< Where Round() works.
    Range up;                                 ///< From where a step up goes by this zone's tick and stays in its band.
    Range down;                               ///< The same for a step down.
    std::uint16_t places = NoPlaces;          ///< Decimal places of the prices.
    std::uint16_t roundingPlaces = NoPlaces;  ///< The same, or NoPlaces when Round() declines.
    std::uint16_t steppingPlaces = NoPlaces;  ///< The same, or NoPlaces when Step() declines.
    unsigned char tickPlaces = 0;             ///< Decimal places of the increment.
    unsigned char shift = 0;                  ///< Of the division by one tick, at most 49.
    std::uint32_t band = 0;                   ///< Index of the band.
    std::uint32_t stretch = 0;                ///< Index of the stretch in its grid.
    const nxDecimal* increment = nullptr;     ///< The tick, in the table's own band.
    std::int64_t step = 0;                    ///< One tick at the places of the prices.
    std::uint64_t reciprocal = 0;             ///< ceil(2^(63 + shift) / one tick at the scale of the division).

    // The parts of the formula.
    std::uint64_t factor = 0;     ///< Takes a distance in prices to twice that in the units of the division.
    std::uint64_t start[4] = {};  ///< Twice the dividend of the first price, for each rounding method.
    std::int64_t base = 0;        ///< The multiple from which ticks are counted.
    std::int64_t tick = 0;        ///< The increment's mantissa.

    /// Makes the zone one that holds no price.
    void Clear() { places = roundingPlaces = steppingPlaces = NoPlaces; }

    /// @return the number without its sign, 2^63 for the most negative one.
    static std::uint64_t Magnitude(std::int64_t mantissa)
    {
        const auto sign = static_cast<std::uint64_t>(mantissa >> 63);
        return (static_cast<std::uint64_t>(mantissa) ^ sign) - sign;
    }

    /// @return false for a price without a value.
    bool Contains(const nxDecimal& price) const
    {
        return price.GetScale() == places && prices.Contains(price.GetValue());
    }

    /// Rounds a price to a multiple of the tick.
    /// @return false, with the price unchanged, when it is outside or not valid, or the method is none of the four.
    bool Round(const nxRoundingMethodEnum& method, nxDecimal& price) const
    {
        return price.GetScale() == roundingPlaces && RoundOfItsPlaces(method, price);
    }
    /// The same for a price that has the places of the zone, where the zone rounds.
    bool RoundOfItsPlaces(const nxRoundingMethodEnum& method, nxDecimal& price) const
    {
        const std::int64_t value = price.GetValue();
        const std::size_t index = method.GetValue() - std::size_t{NX_ROUNDING_METHOD_DOWN};
        const std::uint64_t distance = static_cast<std::uint64_t>(value) - rounding.first;
        if (distance > rounding.span || index > 3)
            return false;
        const std::uint64_t ticks = _CountTicks(distance, index);
        price =
            nxDecimal::ConstructFromValueAndDecimalPlaces(base + static_cast<std::int64_t>(ticks) * tick, tickPlaces);
        return true;
    }

    /// Tells whether a price is a multiple of the tick.
    /// @return false, with @p isMultiple unchanged, when the price is outside or not valid.
    bool CheckMultiple(const nxDecimal& price, bool& isMultiple) const
    {
        const std::uint64_t distance = static_cast<std::uint64_t>(price.GetValue()) - rounding.first;
        if (price.GetScale() != roundingPlaces || distance > rounding.span)
            return false;
        isMultiple = _CountTicks(distance, _down) == _CountTicks(distance, _up);
        return true;
    }

    /// Finds the closest multiple of the tick above a price, or below it, that lies in the stretch too.
    /// @return false, with @p next unchanged, when there is none, or the price is outside or not valid.
    bool FindNext(bool isUp, const nxDecimal& price, nxDecimal& next) const
    {
        const std::uint64_t distance = static_cast<std::uint64_t>(price.GetValue()) - rounding.first;
        if (price.GetScale() != roundingPlaces || distance > rounding.span)
            return false;
        const std::uint64_t ticks = isUp ? _CountTicks(distance, _down) + 1 : _CountTicks(distance, _up) - 1;
        // The dividend of the multiple, compared with those of the first and the last price. One tick below the base
        // wraps and is beyond both.
        const std::uint64_t oneTick = start[_up] - start[_down] + 2;
        if (ticks * oneTick - start[_down] > rounding.span * factor)
            return false;
        next =
            nxDecimal::ConstructFromValueAndDecimalPlaces(base + static_cast<std::int64_t>(ticks) * tick, tickPlaces);
        return true;
    }

    /// Counts the steps from one multiple of the tick to another, negative downwards.
    /// @return false, with @p ticks unchanged, when one of the prices is outside, not valid or no multiple.
    bool CountTicks(const nxDecimal& from, const nxDecimal& to, long long& ticks) const
    {
        const std::uint64_t first = static_cast<std::uint64_t>(from.GetValue()) - rounding.first;
        const std::uint64_t last = static_cast<std::uint64_t>(to.GetValue()) - rounding.first;
        if (from.GetScale() != roundingPlaces || to.GetScale() != roundingPlaces || first > rounding.span ||
            last > rounding.span)
            return false;
        const std::uint64_t firstTicks = _CountTicks(first, _down);
        const std::uint64_t lastTicks = _CountTicks(last, _down);
        if (firstTicks != _CountTicks(first, _up) || lastTicks != _CountTicks(last, _up))
            return false;
        ticks = static_cast<long long>(lastTicks) - static_cast<long long>(firstTicks);
        return true;
    }

    /// Moves a price up (or down) by as many of @p wanted ticks as provably stay by the rules of this band.
    /// @return the ticks moved, 0 when even the first one needs the decimal rules.
    std::uint64_t Step(bool isUp, std::uint64_t wanted, nxDecimal& price) const
    {
        if (price.GetScale() != steppingPlaces || !(isUp ? up : down).Contains(price.GetValue()))
            return 0;
        return _StepInRange(isUp, wanted, price);
    }
    /// The same for a price that has the places of the zone. A zone of a view that does not step declines: its ranges hold
    /// only 0, whose last digit is 0.
    std::uint64_t StepOfItsPlaces(bool isUp, std::uint64_t wanted, nxDecimal& price) const
    {
        return (isUp ? up : down).Contains(price.GetValue()) ? _StepInRange(isUp, wanted, price) : 0;
    }

private:
    // The step from a price in the range of that direction.
    std::uint64_t _StepInRange(bool isUp, std::uint64_t wanted, nxDecimal& price) const
    {
        const std::int64_t value = price.GetValue();
        // Places beyond the tick's are dropped after a step while the last digit is 0.
        if (steppingPlaces != tickPlaces && value % 10 == 0)
            return 0;
        std::uint64_t ticks = 1;
        if (wanted > 1)
        {
            const Range& range = isUp ? up : down;
            const std::uint64_t room = isUp ? range.CountAbove(value) : range.CountBelow(value);
            const std::uint64_t possible = room / static_cast<std::uint64_t>(step) + 1;
            ticks = wanted < possible ? wanted : possible;
        }
        const std::int64_t distance = static_cast<std::int64_t>(ticks) * step;
        price = nxDecimal::ConstructFromValueAndDecimalPlaces(isUp ? value + distance : value - distance,
                                                              static_cast<unsigned char>(steppingPlaces));
        return ticks;
    }

    // Indices of `start`.
    static constexpr std::size_t _down = 0;
    static constexpr std::size_t _up = 1;

    // The ticks from the base to a price that lies @p distance above the first one, rounded by the method of that index.
    std::uint64_t _CountTicks(std::uint64_t distance, std::size_t method) const
    {
        return _MultiplyHigh(distance * factor + start[method], reciprocal) >> shift;
    }

    static std::uint64_t _MultiplyHigh(std::uint64_t a, std::uint64_t b)
    {
        return static_cast<std::uint64_t>(static_cast<nxUnsignedWide>(a) * b >> 64);
    }
};

#endif
