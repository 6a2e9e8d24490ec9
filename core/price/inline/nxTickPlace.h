// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXTICKPLACE_H
#define CORE_PRICE_INLINE_NXTICKPLACE_H

#include <cstddef>
#include <cstdint>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxTickGrid.h"
#include "core/price/inline/nxTickRules.h"
#include "core/price/inline/nxTickZone.h"

class nxTickRun;

/// A place in a tick table: the memory of the last searches. A table has one under its lock, for prices that need the lock,
/// and every cursor and every operation on a span has one of its own.
///
/// The zone answers for prices that lie in it. The functions below take the prices that the zone declines, and these
/// alone need the rules.
/// - Threads: none of its own; the owner guards it. Ownership: nothing; points into its table's bands.
struct nxTickPlace
{
    nxTickZone zone;                         ///< Of the last price whose neighbours were likely to follow.
    std::uint32_t lastStretch = UINT32_MAX;  ///< What the last search found; the largest number for nothing.
    std::uint32_t repetitions = UINT32_MAX;  ///< How many searches in turn found it again.

    /// Takes note of a search that found @p stretch for a price outside of the zone.
    /// @return whether the zone should follow: three searches in turn have found one stretch. Prices that jump about would
    ///         gain nothing by it.
    bool Note(std::size_t stretch)
    {
        // Without a branch that depends on the prices.
        repetitions = stretch == lastStretch ? repetitions + 1 : 0;
        lastStretch = static_cast<std::uint32_t>(stretch);
        return repetitions >= 2;
    }
    /// The same for a search that found a finished zone.
    void Note(const nxTickZone& found)
    {
        if (Note(found.stretch)) [[unlikely]]
            zone = found;
    }
    /// The same for a search in the grid.
    void Note(const nxTickRules& rules, std::size_t stretch, const nxDecimal& price)
    {
        if (Note(stretch)) [[unlikely]]
            rules.FillZone(stretch, price, zone);
    }

    /// @return how many steps @p ticks are, in either direction.
    static std::uint64_t CountSteps(int ticks)
    {
        return static_cast<std::uint64_t>(ticks > 0 ? std::int64_t{ticks} : -std::int64_t{ticks});
    }

    /// Makes the zone one that holds the price.
    /// @return false when the price needs the decimal rules; the zone is then as it was.
    bool Relocate(const nxTickRules& rules, const nxDecimal& price)
    {
        return zone.Contains(price) || _Relocate(rules, price);
    }

    /// @return the tick at the price; a null decimal, after a fatal record in the log, when the price has no band.
    const nxDecimal& FindTick(const nxTickRules& rules, nxDecimal price);
    /// @return the band of the price.
    nxTickRules::Band FindBand(const nxTickRules& rules, const nxDecimal& price);
    /// @return the price moved by @p ticks single steps; one without a band is reported and returned as it is.
    nxDecimal Step(const nxTickRules& rules, bool isUp, std::uint64_t ticks, nxDecimal price);
    /// Moves the price by @p ticks single steps, down when they are negative.
    /// @return the errors of nxVariableTickTable::IncrementExact(); @p price is then untouched.
    [[nodiscard]] nxErrorEnum StepExact(const nxTickRules& rules, int ticks, nxDecimal& price);
    /// @return the price rounded to a multiple of the tick at it; one that is not valid as it is.
    nxDecimal Round(const nxTickRules& rules, const nxRoundingMethodEnum& method, nxDecimal price);
    /// Rounds the price to a multiple of the tick at it.
    /// @return the errors of nxVariableTickTable::RoundToValidTickExact(); @p price is then untouched.
    [[nodiscard]] nxErrorEnum RoundExact(const nxTickRules& rules, const nxRoundingMethodEnum& method,
                                         nxDecimal& price);
    /// @return whether the price, which is not in the zone, is a multiple of the tick at it; false for one that is not
    ///         valid or has no band.
    bool IsValidTick(const nxTickRules& rules, const nxDecimal& price);
    /// Finds the closest valid price above @p price, or below it.
    /// @return the errors of nxVariableTickTable::GetNextBelow(); @p next is then untouched.
    [[nodiscard]] nxErrorEnum GetNext(const nxTickRules& rules, bool isUp, const nxDecimal& price, nxDecimal& next);
    /// Counts the valid prices from one to the other.
    /// @return the errors of nxVariableTickTable::GetTicksBetween(); @p ticks is then untouched.
    [[nodiscard]] nxErrorEnum GetTicksBetween(const nxTickRules& rules, const nxDecimal& from, const nxDecimal& to,
                                              long long& ticks);

private:
    bool _Relocate(const nxTickRules& rules, const nxDecimal& price);
    template <class StepOnce>
    void _StepMany(const nxTickRules& rules, nxTickRun& run, bool isUp, std::uint64_t ticks, nxDecimal& price,
                   const StepOnce& stepOnce);
    bool _StepByDecimals(const nxTickRules& rules, bool isUp, nxDecimal& price);
};

#endif
