// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PRICESNAPPER_H
#define NXTICK_PRICESNAPPER_H

#include <string>
#include <utility>

#include "RowPrices.h"

namespace nxtick
{
/// Snaps the prices of rows to their grids: every row is copied byte for byte, with columns added at its end.
///
/// For each column of prices these can be added: `tick`, `snapped`, `moved` (the snapped price less the price), `below`
/// and `above`, the next prices of the grid on both sides of the price. They are empty if the price is, if it cannot be
/// read, if the row is rejected, or if the distance has more digits than a decimal. A rejected row that is too short
/// first gets the fields that it lacks, empty, so that the added ones are below their names; one that is too long stays
/// too long by as many fields. Empty lines are copied and do not count as rows.
///
/// Nothing depends on the rows before, so each thread can work on other rows with an object of its own.
class PriceSnapper
{
public:
    /// @param plan and @p grids must outlive the object.
    PriceSnapper(const SnapPlan& plan, RowGrids& grids, RowPrices::Complaint complaint)
        : _plan(plan), _prices(plan, grids, std::move(complaint))
    {
    }

    /// Appends the row with its new columns, and its line end.
    void Row(const CsvRow& row, std::string& out);

    const SnapCounts& GetCounts() const { return _prices.GetCounts(); }

private:
    void _AddColumns(const CsvRow& row, std::size_t column, PriceGrid& grid, std::string& out);
    void _AddEmpty(std::size_t count, std::string& out) const { out.append(count, _plan.GetDialect().separator); }
    void _AddTick(const nxDecimal& tick, std::string& out);
    void _Add(const nxDecimal& value, std::string& out) const;

    const SnapPlan& _plan;
    RowPrices _prices;
    nxDecimal _tick;
    std::string _tickText;  // with the separator before it
};
}  // namespace nxtick

#endif
