// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TICKTABLES_H
#define NXTICK_TICKTABLES_H

#include <memory>
#include <string>
#include <vector>

#include "PriceGrid.h"
#include "Request.h"
#include "TableEntry.h"
#include "TodayTables.h"
#include "core/price/nxCustomVariableTickTable.h"
#include "core/price/nxTickTableCursor.h"

namespace nxtick
{
/// The tick tables that a run knows: those of the user's file, then those of the catalogue and those of today that the
/// file does not replace.
class TickTables
{
public:
    /// @throws Failure naming the file that is wrong, with the line if one is.
    explicit TickTables(const Request& request);

    const std::vector<TableEntry>& GetAll() const { return _entries; }

    /// Finds a table. Several threads may call it.
    /// @param nameOrID with or without "VTT_". @throws Failure with the closest identifiers.
    const TableEntry& Find(const std::string& nameOrID) const;

    /// Writes to standard error what the user should know before using the table, if anything: the bound that leaves the
    /// grid, an assumed table, an expired one. The whole run says it once, and quiet requests say nothing. One thread at a
    /// time may call it.
    void Warn(const TableEntry& entry) const;

private:
    void _AddCustom(const std::string& fileName);

    bool _isQuiet;
    TodayTables _today;
    nxCustomVariableTickTable::Tables _custom;
    std::vector<TableEntry> _entries;
};

/// The grid of a tick table.
class TableGrid : public PriceGrid
{
public:
    /// @param table lives at least as long. @throws Failure when its ticks have more digits than can be worked with.
    explicit TableGrid(const nxVariableTickTable& table);

    bool HasBands() const override { return true; }
    nxDecimal GetTick(const nxDecimal& price) override { return _cursor.GetTickIncrement(price); }
    void Round(const nxRoundingMethodEnum& method, nxDecimal& price) override
    {
        _cursor.RoundToValidTick(method, price);
    }
    bool IsOnGrid(const nxDecimal& price) override { return _cursor.IsValidTick(price); }
    void Step(nxDecimal& price, int ticks) override { _cursor.Increment(price, ticks); }

protected:
    nxErrorEnum FindNext(bool isUp, const nxDecimal& price, nxDecimal& next) override
    {
        return isUp ? _cursor.GetNextAbove(price, next) : _cursor.GetNextBelow(price, next);
    }

private:
    nxTickTableCursor _cursor;
};
}  // namespace nxtick

#endif
