// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TICKTABLES_H
#define NXTICK_TICKTABLES_H

#include <memory>
#include <string>
#include <vector>

#include "PriceGrid.h"
#include "core/price/nxCustomVariableTickTable.h"
#include "core/price/nxTickTableCursor.h"
#include "core/price/nxVariableTickTable.h"

namespace nxtick
{
/// A table and what is known of it.
struct TableEntry
{
    std::string id;
    const nxVariableTickTable* table = nullptr;
    std::string status;  ///< One word: "given", "published", "derived", "assumed", or "custom" for the user's own.
    std::string source;
    std::string note;
    std::string warning;  ///< Of roundings that leave the grid; empty when none does.
};

/// The tick tables that a run knows: those of the user's file, then those of the catalogue that the file does not
/// replace.
class TickTables
{
public:
    /// @param fileName empty for the catalogue alone. @throws Failure naming the line of the file that is wrong.
    explicit TickTables(const std::string& fileName);

    const std::vector<TableEntry>& GetAll() const { return _entries; }

    /// Writes the table's warning, if it has one, to standard error.
    /// @param nameOrID with or without "VTT_". @throws Failure with the closest identifiers.
    const TableEntry& Find(const std::string& nameOrID) const;

private:
    void _AddCustom(const std::string& fileName);
    void _AddCatalogue();

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
