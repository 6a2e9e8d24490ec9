// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXVARIABLETICKTABLE_H
#define CORE_PRICE_NXVARIABLETICKTABLE_H

#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/price/inline/nxTickGrid.h"
#include "core/price/inline/nxTickMemory.h"
#include "core/price/inline/nxTickPlace.h"
#include "core/price/inline/nxTickRules.h"
#include "core/thread/nxMutex.h"

/// The ticks of an instrument whose smallest price step depends on the price: below one price the tick is one size, up
/// to the next price another, and so on.
///
/// A band (upper bound U, increment I) covers every price P with previous U < P <= U; the last band's bound is the
/// maximum decimal. Take a table from nxVariableTickTableContainer, make one with nxCustomVariableTickTable, or derive
/// a class whose constructor calls _AddRange() for each band and ends with _AddTopRange().
/// @code
/// const nxVariableTickTable* table = nullptr;
/// std::string reason;
/// if (!nxVariableTickTableContainer::FindVariableTickTable("VTT_CHIX_FESE1", table, reason).IsOK())
///     return;  // a mistyped identifier
/// nxDecimal price("9.9985", '.');
/// if (!table->IsValidTick(price))
///     table->RoundToValidTick(nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP), price);  // 9.999
/// table->Increment(price);                                                      // 10.000, now by ticks of 0.005
/// @endcode
///
/// - Tick at a price: the increment of its band, except that a price less than one lower tick above a band's lower
///   bound still takes the lower tick. With bands (10, 0.01) and (100, 0.05) the tick at 10.005 is 0.01, at 10.01 0.05.
/// - Valid prices: a price is valid when it is a multiple of the tick at it. With bands (10, 0.01) and (100, 0.05) the prices
///   9.99, 10.00 and 10.05 are valid. 10.01 is not, because the tick there is 0.05. With bands (9.985, 0.01) and
///   (100, 0.05) the price 9.99 is valid, because the tick there is still 0.01. Bands and multiples are compared as exact
///   integers, whatever the number of places. A gateway asks IsValidTick() before anything else.
/// - Steps: up by the increment of the price's own band, bound included; down by that of the band below when such a
///   step lands on its bound or lower.
/// - Places: a step away from zero gives the places of the increment of the band in which the result lies. A step
///   towards zero gives those of the increment that was subtracted: with bands (10, 0.01) and (MAX, 0.5) one step down
///   from 10.5 is 10.0. Zeros are added or dropped, and no other digit is.
/// - Exactness: steps are exact sums for every number of places, while price and sum fit 64 bits at the larger one.
/// - Negative prices are the exact mirror of their magnitude: the tick at -10.5 is that at 10.5, and one step up from
///   -10.05 is -10.00 because one step down from 10.05 is 10.00.
/// - Null: a price that is not valid is left alone by steps and rounding, and counts as 0 where a tick is asked for.
/// - A price without a band (any in an empty table; the most negative mantissa, whose magnitude exceeds every bound)
///   has a null tick and is left alone; a fatal record is written to the log. No operation throws.
/// - Limits: comparisons are those of nxDecimal, except for valid prices. A mantissa that does not fit 64 bits wraps, after
///   a step and after rounding: 922337203685477580.7 rounded up by a tick of 0.500 is 0.200. A price that does not fit 64
///   bits at the tick's places is garbage after a step. The operations whose names end in Exact return an error instead;
///   use them for prices from outside. Where a bound or an increment has more than 19 places no price near it is valid,
///   and the next one is NX_ERR_VALUE_OUT_OF_RANGE.
/// - Constraints: bands ascend, and bounds and increments are positive. Otherwise answers depend on earlier questions,
///   and those of cursors differ. _AddTopRange() then writes an error record to the log. The constructor of a derived
///   class tests _CheckConstraints() at its end and tells its user.
/// - Threads: any number of threads share a finished table. A thread remembers where it was in each of sixteen tables, so
///   prices near its last one cost a nanosecond or two, and no thread waits for another in tables of the catalogue and in
///   nxCustomVariableTickTable. In a table of another class the lock is taken whenever a search leaves the band that the
///   table remembers, see _SetCache() and Unwatched. It is taken in all tables for prices of more than 15 places, for prices
///   without a value, and in tables of more than 128 bands or with numbers of more than 15 digits. A thread with many prices
///   in more than sixteen tables keeps an nxTickTableCursor for each. Bands are added before the table is shared.
/// - Memory: the first price of a number of places and a sign makes the table allocate up to 340 bytes a band, and they stay.
///   Without memory the lock is taken and the answer is the same.
/// - Ownership: not copyable; returned references live as long as the table.
class NX_CORE_API nxVariableTickTable
{
public:
    /// A table without bands.
    nxVariableTickTable() : _cache(_ranges.begin()) {}

    nxVariableTickTable(const nxVariableTickTable&) = delete;
    nxVariableTickTable& operator=(const nxVariableTickTable&) = delete;

    /// @return the tick at @p price; a null decimal when the price has no band.
    const nxDecimal& GetTickIncrement(const nxDecimal& price) const
    {
        const std::uint64_t key = _grid.GetKey().Get();
        const nxTickMemory::Place& place = nxTickMemory::Get(key);
        if (place.IsOf(key, price.GetScale()) && place.zone->prices.Contains(price.GetValue())) [[likely]]
            return *place.zone->increment;
        return _LookUpTick(price);
    }
    /// Writes the tick at each price to the same place of @p increments, as far as both spans reach. Takes the lock
    /// once for all, if at all.
    void GetTickIncrement(std::span<const nxDecimal> prices, std::span<nxDecimal> increments) const;

    /// Moves the price up by one tick.
    void Increment(nxDecimal& price) const
    {
        const std::uint64_t key = _grid.GetKey().Get();
        const nxTickMemory::Place& place = nxTickMemory::Get(key);
        if (!place.IsOf(key, price.GetScale()) || place.zone->StepOfItsPlaces(true, 1, price) == 0) [[unlikely]]
            price = _LookUpAndStep(true, price);
    }
    /// Moves the price down by one tick.
    void Decrement(nxDecimal& price) const
    {
        const std::uint64_t key = _grid.GetKey().Get();
        const nxTickMemory::Place& place = nxTickMemory::Get(key);
        if (!place.IsOf(key, price.GetScale()) || place.zone->StepOfItsPlaces(false, 1, price) == 0) [[unlikely]]
            price = _LookUpAndStep(false, price);
    }
    /// Moves the price up by @p ticks single steps, down when they are negative; 0 does nothing. Takes the lock once, if
    /// at all.
    ///
    /// The cost is that of some steps for each band on the way and does not grow with the number of ticks. Only steps that
    /// wrap cost more: a price with very many places, of which few ticks fit 64 bits, wraps again and again, at some five
    /// nanoseconds a step: ten seconds for two billion.
    void Increment(nxDecimal& price, int ticks) const;
    /// Moves each price by @p ticks single steps. Takes the lock once, if at all.
    void Increment(std::span<nxDecimal> prices, int ticks) const;

    /// Rounds the price to a multiple of the tick at it. The multiple has the tick's number of places; it may lie in
    /// the next band. Nothing happens when @p method is none of the four.
    void RoundToValidTick(const nxRoundingMethodEnum& method, nxDecimal& price) const
    {
        const std::uint64_t key = _grid.GetKey().Get();
        const nxTickMemory::Place& place = nxTickMemory::Get(key);
        if (!place.IsOf(key, price.GetScale()) || !place.zone->RoundOfItsPlaces(method, price)) [[unlikely]]
            price = _LookUpAndRound(method, price);
    }
    /// Rounds each price. Takes the lock once, if at all.
    void RoundToValidTick(const nxRoundingMethodEnum& method, std::span<nxDecimal> prices) const;

    /// Rounds the price to a multiple of the tick at it, as RoundToValidTick() does, but returns an error where that would
    /// do nothing or wrap. @p price is then untouched, and nothing is logged.
    /// @return NX_ERR_OBJECT_IS_NULL for a price without a value, NX_ERR_NO_MATCH for one without a band,
    ///         NX_ERR_INVALID_PARAMETER when @p method is none of the four, NX_ERR_VALUE_OUT_OF_RANGE when 64 bits do not
    ///         hold the multiple at the tick's places, or when price or tick have more than nxDecimal::MaxExactPlaces
    ///         places.
    [[nodiscard]] nxErrorEnum RoundToValidTickExact(const nxRoundingMethodEnum& method, nxDecimal& price) const
    {
        const std::uint64_t key = _grid.GetKey().Get();
        const nxTickMemory::Place& place = nxTickMemory::Get(key);
        if (place.IsOf(key, price.GetScale()) && place.zone->RoundOfItsPlaces(method, price)) [[likely]]
            return nxErrorEnum();
        return _LookUpAndRoundExactly(method, price);
    }
    /// Moves the price up by @p ticks single steps, down when they are negative, as Increment() does, but returns an error
    /// where a step would do nothing, wrap or lose a digit. @p price is then untouched, and nothing is logged. A count of 0
    /// does nothing to a price with a value. The cost does not grow with the number of ticks, as that of Increment().
    ///
    /// A step fits when 64 bits hold the price, the tick and their sum at the larger number of places, and the result at
    /// the places that it gets. These are nxDecimal::MaxExactPlaces at most. The most negative mantissa does not fit,
    /// because it has no band.
    /// @return NX_ERR_OBJECT_IS_NULL for a price without a value, NX_ERR_NO_MATCH when the price, or one on the way, has no
    ///         band, NX_ERR_VALUE_OUT_OF_RANGE when one of the steps does not fit.
    [[nodiscard]] nxErrorEnum IncrementExact(nxDecimal& price, int ticks = 1) const;
    /// Moves the price down by one step, with the errors of IncrementExact().
    [[nodiscard]] nxErrorEnum DecrementExact(nxDecimal& price) const { return IncrementExact(price, -1); }

    /// @return whether the price is valid: a multiple of the tick at it, so that RoundToValidTick() keeps its value. The
    ///         places that it is written with do not matter. False for a price without a value or without a band.
    bool IsValidTick(const nxDecimal& price) const;
    /// Sets @p next to the closest valid price strictly below @p price, in its own band or in another one. The price
    /// itself need not be valid. The result has the places of the tick at it, and is the same object as the price if the
    /// caller wishes.
    /// @return NX_ERR_OBJECT_IS_NULL for a price without a value, NX_ERR_NO_MATCH for one without a band,
    ///         NX_ERR_VALUE_OUT_OF_RANGE when 64 bits do not hold the result; @p next is then untouched, and nothing is
    ///         logged.
    [[nodiscard]] nxErrorEnum GetNextBelow(const nxDecimal& price, nxDecimal& next) const
    {
        return _GetNext(false, price, next);
    }
    /// Sets @p next to the closest valid price strictly above @p price, in its own band or in another one, with the errors
    /// of GetNextBelow().
    [[nodiscard]] nxErrorEnum GetNextAbove(const nxDecimal& price, nxDecimal& next) const
    {
        return _GetNext(true, price, next);
    }
    /// Sets @p ticks to the number of steps from one valid price to another, negative downwards. A step leads to the next
    /// valid price, as GetNextAbove() finds it; so do the steps of Increment(), upwards and in a table whose bounds are the
    /// last prices of their ticks. The count is summed up by bands, not by prices.
    /// @return NX_ERR_OBJECT_IS_NULL when one price has no value, NX_ERR_NO_MATCH when one is not valid,
    ///         NX_ERR_VALUE_OUT_OF_RANGE when 64 bits do not hold the count; @p ticks is then untouched.
    [[nodiscard]] nxErrorEnum GetTicksBetween(const nxDecimal& from, const nxDecimal& to, long long& ticks) const;

    /// @return the decimal places of the increment of the price's band; 0 when there is no band.
    unsigned char NumberOfDecimalPlaces(const nxDecimal& price) const;

    /// @return the bands in ascending order, each an inclusive upper bound and an increment.
    const std::vector<std::pair<nxDecimal, nxDecimal>>& GetRangeData() const { return _ranges; }
    /// @return the smallest increment; a null decimal when there are no bands.
    nxDecimal GetMinimumTickIncrement() const;

    /// @return the rules by which the table and its cursors answer; they refer to this table.
    nxTickRules _GetRules() const { return nxTickRules(_ranges, _grid, _isAscending); }

protected:
    /// A band of the table.
    typedef std::vector<std::pair<nxDecimal, nxDecimal>>::const_iterator iterator;

    /// Says that a class does not override _SetCache().
    struct Unwatched
    {
    };
    /// A table without bands, of a class that does not override _SetCache(): threads whose prices lie in different bands
    /// then do not wait for each other. An override is not called for most prices.
    explicit nxVariableTickTable(Unwatched) : nxVariableTickTable() { _grid.GetKey().SetAnyBand(); }

    /// Remembers the band that a search found, which is another one than the table remembers. The table holds its lock
    /// around the call. An override that does not call this function switches the memory off, and is asked by each search.
    virtual void _SetCache(iterator range) const;

public:
    virtual ~nxVariableTickTable();

protected:
    /// Adds a band above the present ones.
    void _AddRange(const nxDecimal& upperBound, const nxDecimal& increment);
    /// Adds the last band, which has no upper bound: its bound is the maximum decimal. Writes an error record to the log
    /// when the bands then fail the constraints.
    void _AddTopRange(const nxDecimal& increment);
    /// Adds the bands that a text lists, "4.990 0.010; 9.950 0.050; 0.100": bounds and increments, at the end the top
    /// increment alone. A text that is not a number becomes null and fails the constraints.
    void _AddRanges(std::string_view bands);

    /// @return whether the table is usable: it has bands, the last bound is the maximum decimal, the bounds are
    ///         positive and strictly ascending, and every increment is positive.
    bool _CheckConstraints() const;

    /// @return the band of the price's magnitude, a price without a value counting as 0; the end when there is none.
    iterator _FindRange(const nxDecimal& price) const;
    /// @return the tick at @p price; a null decimal, after a fatal record in the log, when the price has no band.
    const nxDecimal& _GetIncrementForPrice(const nxDecimal& price) const;
    /// Adds the band's increment; the places are then those of the band that the result lies in, this or the next.
    void _IncreasePrice(nxDecimal& price, iterator band) const;
    /// Subtracts the band's increment; the places are then those of the band that the result lies in, this or, for a
    /// negative result, the next.
    void _DecreasePrice(nxDecimal& price, iterator band) const;

private:
    // The zone of the price: the remembered one, or that of the views, which the thread remembers from then on. Null when
    // the price needs the lock.
    const nxTickZone* _GetZone(const nxDecimal& price) const;
    // That of the views where it needs no more than a look; null otherwise.
    const nxTickZone* _FindZone(const nxDecimal& price) const;
    // That of the views, for which views are made and the band is changed.
    const nxTickZone* _FindZoneSlowly(const nxDecimal& price) const;
    // Makes a band the remembered one, and returns the key then.
    std::uint64_t _ChangeBand(std::uint32_t band) const;

    // What the remembered zone declines; by value, so that the caller's price can stay in registers.
    const nxDecimal& _LookUpTick(nxDecimal price) const;
    nxDecimal _LookUpAndStep(bool up, nxDecimal price) const;
    nxDecimal _LookUpAndRound(const nxRoundingMethodEnum& method, nxDecimal price) const;
    const nxDecimal& _LookUpTickSlowly(const nxDecimal& price) const;
    nxDecimal _LookUpAndRoundSlowly(const nxRoundingMethodEnum& method, nxDecimal price) const;
    nxErrorEnum _LookUpAndRoundExactly(const nxRoundingMethodEnum& method, nxDecimal& price) const;
    nxErrorEnum _GetNext(bool up, const nxDecimal& price, nxDecimal& next) const;

    // What needs the lock. Inline functions of programs that were built before call some of these for every price that is not
    // in the zone of _place.

    // Finds the stretch of a price that is not in the zone, and makes its band the remembered one; NotFound when the
    // price needs the decimal rules.
    std::size_t _Search(const nxDecimal& price) const NX_REQUIRES(_lock);
    // The tick at a price that is not in the zone; null when the price needs the decimal rules.
    const nxDecimal* _SearchTick(nxDecimal price) const NX_REQUIRES(_lock);
    // Makes the zone one that holds the price, for steps; false when the price needs the decimal rules.
    bool _Relocate(const nxDecimal& price) const NX_REQUIRES(_lock);
    // A place near the price.
    nxTickPlace _StartPlace(const nxDecimal& price) const;
    nxDecimal _StepSlowly(bool up, nxDecimal price) const;
    // By the tick, or by the decimal rules where it is null.
    nxDecimal _RoundBy(const nxDecimal* tick, const nxRoundingMethodEnum& method, nxDecimal price) const;
    nxErrorEnum _RoundExactlyBy(const nxDecimal* tick, const nxRoundingMethodEnum& method, nxDecimal& price) const;

    // Inline functions of programs that were built before use these members: their order and their meaning stay.
    std::vector<std::pair<nxDecimal, nxDecimal>> _ranges;
    mutable nxMutex _lock;
    mutable iterator _cache NX_GUARDED_BY(_lock);
    // The remembered band again, as integers: empty, or within the band at _cache.
    mutable nxTickPlace _place NX_GUARDED_BY(_lock);
    nxTickGrid _grid;
    bool _isAscending = true;  // each bound above the one before it
};

#endif
