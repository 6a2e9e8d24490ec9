// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXTICKTABLECURSOR_H
#define CORE_PRICE_NXTICKTABLECURSOR_H

#include <cstddef>
#include <cstdint>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/price/inline/nxTickPlace.h"
#include "core/price/nxVariableTickTable.h"

/// One thread's own place in a tick table. It answers without the table's lock, to the last place as a table that keeps
/// the constraints does. It remembers the band of the last price itself, so that neighbouring prices cost a nanosecond.
/// @code
/// nxTickTableCursor cursor(*table);              // one for each thread, and one for each instrument
/// for (nxDecimal& quote : quotes)
///     cursor.RoundToValidTick(nxRoundingMethodEnum(NX_ROUNDING_METHOD_NEAREST), quote);
/// @endcode
///
/// - Null, negative prices, prices without a band, limits: as nxVariableTickTable.
/// - Threads: used by one thread at a time. Any number of cursors, and the table's own operations, work side by side.
/// - Ownership: does not own the table, which outlives it and has all its bands before the first use. Copyable. Memory is
///   allocated only by the table, see nxVariableTickTable.
class NX_CORE_API nxTickTableCursor
{
public:
    /// A cursor that remembers no band yet.
    explicit nxTickTableCursor(const nxVariableTickTable& table) : _table(&table) {}
    nxTickTableCursor(const nxVariableTickTable&&) = delete;  ///< Of a table that is gone before the cursor.

    /// @return the tick at @p price, which lives as long as the table; a null decimal when the price has no band.
    const nxDecimal& GetTickIncrement(const nxDecimal& price)
    {
        return _place.zone.Contains(price) ? *_place.zone.increment : _FindTick(price);
    }

    /// Moves the price up by one tick.
    void Increment(nxDecimal& price)
    {
        if (_place.zone.Step(true, 1, price) == 0) [[unlikely]]
            price = _Step(true, 1, price);
    }
    /// Moves the price down by one tick.
    void Decrement(nxDecimal& price)
    {
        if (_place.zone.Step(false, 1, price) == 0) [[unlikely]]
            price = _Step(false, 1, price);
    }
    /// Moves the price up by @p ticks single steps, down when they are negative; 0 does nothing.
    void Increment(nxDecimal& price, int ticks)
    {
        const bool isUp = ticks > 0;
        const std::uint64_t count = nxTickPlace::CountSteps(ticks);
        const std::uint64_t done = ticks != 0 ? _place.zone.Step(isUp, count, price) : 0;
        if (done != count)
            price = _Step(isUp, count - done, price);
    }

    /// Rounds the price to a multiple of the tick at it.
    void RoundToValidTick(const nxRoundingMethodEnum& method, nxDecimal& price)
    {
        if (!_place.zone.Round(method, price)) [[unlikely]]
            price = _Round(method, price);
    }

    /// Rounds the price to a multiple of the tick at it; see nxVariableTickTable::RoundToValidTickExact().
    [[nodiscard]] nxErrorEnum RoundToValidTickExact(const nxRoundingMethodEnum& method, nxDecimal& price)
    {
        return _place.zone.Round(method, price) ? nxErrorEnum() : _RoundExact(method, price);
    }
    /// Moves the price up by @p ticks single steps, down when they are negative; see nxVariableTickTable::IncrementExact().
    [[nodiscard]] nxErrorEnum IncrementExact(nxDecimal& price, int ticks = 1) { return _StepExact(ticks, price); }
    /// Moves the price down by one step; see nxVariableTickTable::IncrementExact().
    [[nodiscard]] nxErrorEnum DecrementExact(nxDecimal& price) { return _StepExact(-1, price); }

    /// @return whether the price is valid; see nxVariableTickTable::IsValidTick().
    bool IsValidTick(const nxDecimal& price)
    {
        bool isMultiple = false;
        return _place.zone.CheckMultiple(price, isMultiple) ? isMultiple : _IsValidTick(price);
    }
    /// Sets @p next to the closest valid price strictly below @p price; see nxVariableTickTable::GetNextBelow().
    [[nodiscard]] nxErrorEnum GetNextBelow(const nxDecimal& price, nxDecimal& next)
    {
        return _place.zone.FindNext(false, price, next) ? nxErrorEnum() : _GetNext(false, price, next);
    }
    /// Sets @p next to the closest valid price strictly above @p price; see nxVariableTickTable::GetNextBelow().
    [[nodiscard]] nxErrorEnum GetNextAbove(const nxDecimal& price, nxDecimal& next)
    {
        return _place.zone.FindNext(true, price, next) ? nxErrorEnum() : _GetNext(true, price, next);
    }

    /// Counts the ticks between two valid prices; see nxVariableTickTable::GetTicksBetween().
    [[nodiscard]] nxErrorEnum GetTicksBetween(const nxDecimal& from, const nxDecimal& to, long long& ticks)
    {
        return _place.zone.CountTicks(from, to, ticks) ? nxErrorEnum() : _GetTicksBetween(from, to, ticks);
    }

    /// @return the decimal places of the increment of the price's band; 0 when there is no band.
    unsigned char NumberOfDecimalPlaces(const nxDecimal& price);

    /// @return the table that the cursor was made for.
    const nxVariableTickTable& GetTable() const { return *_table; }

private:
    // What the zone declines; by value, so that the caller's price can stay in registers.
    const nxDecimal& _FindTick(nxDecimal price);
    nxDecimal _Step(bool up, std::uint64_t ticks, nxDecimal price);
    nxDecimal _Round(const nxRoundingMethodEnum& method, nxDecimal price);
    nxErrorEnum _StepExact(int ticks, nxDecimal& price);
    nxErrorEnum _RoundExact(const nxRoundingMethodEnum& method, nxDecimal& price);
    bool _IsValidTick(nxDecimal price);
    nxErrorEnum _GetNext(bool up, nxDecimal price, nxDecimal& next);
    nxErrorEnum _GetTicksBetween(nxDecimal from, nxDecimal to, long long& ticks);

    const nxVariableTickTable* _table;
    nxTickPlace _place;
};

#endif
