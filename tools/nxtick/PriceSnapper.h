// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PRICESNAPPER_H
#define NXTICK_PRICESNAPPER_H

#include <cstddef>
#include <utility>

#include "PriceMemory.h"
#include "RowPrices.h"
#include "RowWork.h"
#include "TextBlock.h"

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
class PriceSnapper : public RowWork
{
public:
    /// @param plan and @p grids must outlive the object.
    PriceSnapper(const SnapPlan& plan, RowGrids& grids, RowPrices::Complaint complaint)
        : _plan(plan), _prices(plan, grids, std::move(complaint))
    {
    }

    /// Appends the row with its new columns, and its line end.
    void Row(const nxCSVRow& row, TextBlock& out) override;
    void Rows(nxCSVRows& rows, TextBlock& out) override;
    SnapCounts TakeCounts() override { return _prices.TakeCounts(); }

private:
    char* _AddColumns(const nxCSVRow& row, std::size_t column, PriceGrid& grid, char* out);
    bool _Compute(const nxCSVRow& row, std::size_t column, PriceGrid& grid, char*& out);
    char* _AddEmpty(std::size_t count, char* out) const;
    char* _AddTick(const nxDecimal& tick, char* out);
    char* _Add(const nxDecimal& number, char* out) const;
    char* _AddPrice(const nxDecimal& price, char* out) const;

    const SnapPlan& _plan;
    RowPrices _prices;
    PriceMemory _memory;
    // The last tick and its text with the separator before it.
    nxDecimal _tick;
    std::size_t _tickSize = 0;  // 0: there is none
    char _tickText[64] = {};
};
}  // namespace nxtick

#endif
