#ifndef CORE_PRICE_NXTICKZONE_H
#define CORE_PRICE_NXTICKZONE_H

#include <cstdint>

#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"

/// A stretch of prices of one number of decimal places that lie in one band and share one tick, as plain integers: what
/// a tick table or a cursor remembers of its last search. Not for applications; nxTickGrid makes it.
///
/// Prices are told by their magnitude, the mantissa without its sign. Every operation either gives to the last place
/// what the slow decimal rules give, or declines and touches nothing.
/// - Threads: none of its own; the owner guards it. Ownership: nothing; points into its table's bands.
struct nxTickZone
{
    /// The magnitudes from first to first + span; empty as it is made.
    struct Range
    {
        std::uint64_t first = UINT64_MAX;  // no magnitude is that large
        std::uint64_t span = 0;

        bool Contains(std::uint64_t magnitude) const { return magnitude - first <= span; }
        std::uint64_t Last() const { return first + span; }
    };

    Range prices;                          ///< The stretch.
    Range rounding;                        ///< Where Round() may work.
    Range outwards;                        ///< From where one step away from zero stays in the band.
    Range inwards;                         ///< From where one step towards zero uses this band's tick.
    std::uint64_t factor = 0;              ///< Brings a magnitude to the scale of divisor.
    std::uint64_t divisor = 1;             ///< One tick.
    std::uint64_t reciprocal = 0;          ///< ceil(2^(63 + shift) / divisor).
    std::int64_t tick = 0;                 ///< The mantissa of the increment.
    std::int64_t step = 0;                 ///< One tick at the places of the stretch.
    const nxDecimal* increment = nullptr;  ///< The tick, in the table's own band.
    std::uint32_t band = 0;                ///< Index of the band that holds the stretch.
    unsigned char places = 0;              ///< Decimal places of the prices.
    unsigned char tickPlaces = 0;          ///< Decimal places of the increment.
    unsigned char shift = 0;

    /// Magnitudes below this divide exactly by the reciprocal.
    static constexpr std::uint64_t MaxScaled = (std::uint64_t{1} << 49) - 1;

    static std::uint64_t Magnitude(std::int64_t mantissa)
    {
        const auto sign = static_cast<std::uint64_t>(mantissa >> 63);
        return (static_cast<std::uint64_t>(mantissa) ^ sign) - sign;
    }

    /// A price without a value counts as 0.
    bool Contains(const nxDecimal& price) const
    {
        return price.GetDecimalPlaces() == places && prices.Contains(Magnitude(price.GetValue()));
    }

    /// Rounds a valid price to a multiple of the tick.
    /// @return false, with the price unchanged, when the price is outside or the method is none of the four.
    bool Round(const nxRoundingMethodEnum& method, nxDecimal& price) const
    {
        const std::int64_t value = price.GetValue();
        const std::uint64_t magnitude = Magnitude(value);
        if (price.GetDecimalPlaces() != places || !rounding.Contains(magnitude))
            return false;
        const std::uint64_t roundsUp = _LeastRestThatRoundsOutwards(method, value < 0);
        if (roundsUp == 0)
            return false;
        const std::uint64_t scaled = magnitude * factor;
        const std::uint64_t whole = _MultiplyHigh(2 * scaled, reciprocal) >> shift;
        const std::uint64_t rest = scaled - whole * divisor;
        const std::int64_t rounded = static_cast<std::int64_t>(whole + (rest >= roundsUp ? 1 : 0)) * tick;
        price = nxDecimal::ConstructFromValueAndDecimalPlaces(value < 0 ? -rounded : rounded, tickPlaces);
        return true;
    }

    /// Moves a valid price up (or down) by as many of @p wanted ticks as provably stay by the rules of this band.
    /// @return the ticks moved, 0 when even the first one needs the slow rules.
    std::uint64_t Step(bool up, std::uint64_t wanted, nxDecimal& price) const
    {
        const std::int64_t value = price.GetValue();
        const std::uint64_t magnitude = Magnitude(value);
        const bool isOutwards = up == (value >= 0);
        const Range& range = isOutwards ? outwards : inwards;
        if (price.GetDecimalPlaces() != places || !range.Contains(magnitude))
            return 0;
        // Places beyond the tick's are dropped after a step while the last digit is 0.
        if (places != tickPlaces && magnitude % 10 == 0)
            return 0;
        std::uint64_t ticks = 1;
        if (wanted > 1)
        {
            const std::uint64_t room = isOutwards ? range.Last() - magnitude : magnitude - range.first;
            const std::uint64_t possible = room / static_cast<std::uint64_t>(step) + 1;
            ticks = wanted < possible ? wanted : possible;
        }
        const std::int64_t distance = static_cast<std::int64_t>(ticks) * step;
        price = nxDecimal::ConstructFromValueAndDecimalPlaces(up ? value + distance : value - distance, places);
        return ticks;
    }

private:
    // The least remainder of a division by the tick that goes to the multiple away from zero; 0 for an unknown method.
    std::uint64_t _LeastRestThatRoundsOutwards(const nxRoundingMethodEnum& method, bool isNegative) const
    {
        switch (method.GetValue())
        {
            case NX_ROUNDING_METHOD_DOWN:
                return isNegative ? 1 : divisor;
            case NX_ROUNDING_METHOD_UP:
                return isNegative ? divisor : 1;
            case NX_ROUNDING_METHOD_NEAREST:
                return divisor - divisor / 2;
            case NX_ROUNDING_METHOD_MODIFIED_NEAREST:
                return divisor / 2 + 1;
            default:
                return 0;
        }
    }

    static std::uint64_t _MultiplyHigh(std::uint64_t a, std::uint64_t b)
    {
        __extension__ typedef unsigned __int128 Product;
        return static_cast<std::uint64_t>(static_cast<Product>(a) * b >> 64);
    }
};

#endif
