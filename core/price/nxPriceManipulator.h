// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXPRICEMANIPULATOR_H
#define CORE_PRICE_NXPRICEMANIPULATOR_H

#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"

class nxVariableTickTable;

/// How the prices of one instrument are stepped and rounded: by a variable tick table, or by one fixed tick.
///
/// nxDecimal::Round() takes one, so that code which rounds prices need not know which of the two an instrument has.
/// @code
/// nxPriceManipulator manipulator(nxDecimal("0.05", '.'));
/// nxDecimal price("99.87", '.');
/// price.Round(manipulator, nxRoundingMethodEnum(NX_ROUNDING_METHOD_DOWN));  // 99.85
/// manipulator.Increment(price, 2);                                          // 99.95
/// @endcode
///
/// - Null: without a table and with an increment that is null or zero, as default-constructed, prices are left alone, and
///   none is valid. A negative one takes no steps; it rounds, and tells which prices are valid, as its magnitude does.
/// - Places: rounding gives the tick's. A table's steps do so too, but drop only zeros. Fixed steps give the larger number.
/// - Limits: a mantissa that does not fit 64 bits wraps, after steps and after rounding. The operations whose names end in
///   Exact return an error instead; use them for prices from outside.
/// - Threads: readers may share one; a writer needs the caller's lock.
/// - Ownership: a value that does not own the table, which outlives it; those of the catalogue always do.
class NX_CORE_API nxPriceManipulator
{
public:
    /// Neither a table nor an increment.
    nxPriceManipulator() = default;
    /// A fixed tick.
    explicit nxPriceManipulator(const nxDecimal& tickIncrement) : _tickIncrement(tickIncrement) {}
    /// A variable tick. Null means no table, as a lookup gives for an identifier that the catalogue lacks; every price is
    /// then left unrounded, and a warning goes to the log once in a process. SetVariableTickTable() returns an error
    /// instead.
    explicit nxPriceManipulator(const nxVariableTickTable* table) : _table(table)
    {
        if (table == nullptr) [[unlikely]]
            _WarnOfNoTable();
    }

    /// Takes the table of nxVariableTickTableContainer that has the identifier @p id, "VTT_CHIX_CPH1".
    /// @return NX_ERR_NOT_FOUND when there is none; nothing is changed then.
    [[nodiscard]] nxErrorEnum SetVariableTickTable(const std::string& id);

    /// @return whether prices go by a table and not by the fixed tick.
    bool HasVariableTickTable() const { return _table != nullptr; }
    /// @return null when there is none.
    const nxVariableTickTable* GetVariableTickTable() const { return _table; }
    /// @return the fixed tick; null when there is none.
    const nxDecimal& GetTickIncrement() const { return _tickIncrement; }
    /// @return the tick at @p price: that of the table, or else the fixed one.
    const nxDecimal& GetTickIncrement(const nxDecimal& price) const;

    /// Moves the price up by @p ticks steps, down when they are negative.
    void Increment(nxDecimal& price, int ticks = 1) const;
    /// Moves the price down by one step.
    void Decrement(nxDecimal& price) const { Increment(price, -1); }
    /// Rounds the price to a multiple of the tick at it.
    void RoundToValidTick(const nxRoundingMethodEnum& method, nxDecimal& price) const;

    /// Rounds the price as RoundToValidTick() does, but returns an error where that would do nothing or wrap.
    /// @return the errors of nxVariableTickTable::RoundToValidTickExact(); NX_ERR_NO_MATCH too without a table when the
    ///         fixed tick is null or 0. @p price is then untouched. A fixed tick takes prices of any number of places.
    [[nodiscard]] nxErrorEnum RoundToValidTickExact(const nxRoundingMethodEnum& method, nxDecimal& price) const;
    /// Moves the price up by @p ticks steps, down when they are negative, as Increment() does, but returns an error where
    /// that would do nothing, wrap or lose a digit. A count of 0 does nothing to a price with a value.
    /// @return the errors of nxVariableTickTable::IncrementExact(); NX_ERR_NO_MATCH too without a table when the fixed tick
    ///         is not positive. @p price is then untouched.
    [[nodiscard]] nxErrorEnum IncrementExact(nxDecimal& price, int ticks = 1) const;
    /// Moves the price down by one step, with the errors of IncrementExact().
    [[nodiscard]] nxErrorEnum DecrementExact(nxDecimal& price) const { return IncrementExact(price, -1); }

    /// @return whether the price is valid: with a table see nxVariableTickTable::IsValidTick(), otherwise whether it is a
    ///         multiple of the fixed tick. False without either, because nothing then says which prices are.
    bool IsValidTick(const nxDecimal& price) const;
    /// Sets @p next to the closest valid price strictly below @p price, with the places of the tick at it.
    /// @return the errors of nxVariableTickTable::GetNextBelow(); NX_ERR_NO_MATCH too without a table and a tick. @p next
    ///         is then untouched.
    [[nodiscard]] nxErrorEnum GetNextBelow(const nxDecimal& price, nxDecimal& next) const
    {
        return _GetNext(false, price, next);
    }
    /// Sets @p next to the closest valid price strictly above @p price, with the errors of GetNextBelow().
    [[nodiscard]] nxErrorEnum GetNextAbove(const nxDecimal& price, nxDecimal& next) const
    {
        return _GetNext(true, price, next);
    }
    /// Says whether a price may be sent.
    /// @return NX_ERR_OBJECT_IS_NULL for a price without a value, NX_ERR_NO_MATCH for one that IsValidTick() is false for.
    [[nodiscard]] nxErrorEnum CheckPrice(const nxDecimal& price) const
    {
        if (!price.IsValid())
            return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
        return IsValidTick(price) ? nxErrorEnum() : nxErrorEnum(NX_ERR_NO_MATCH);
    }
    /// Sets @p ticks to the number of steps from one valid price to another, negative downwards: a distance in ticks.
    /// @return the errors of nxVariableTickTable::GetTicksBetween(), whose words define the steps; NX_ERR_NO_MATCH too
    ///         without a table and a tick. @p ticks is then untouched.
    [[nodiscard]] nxErrorEnum GetTicksBetween(const nxDecimal& from, const nxDecimal& to, long long& ticks) const;

private:
    static void _WarnOfNoTable();
    nxErrorEnum _GetNext(bool up, const nxDecimal& price, nxDecimal& next) const;

    const nxVariableTickTable* _table = nullptr;
    nxDecimal _tickIncrement = nxDecimal::GetNullDecimal();
};

#endif
