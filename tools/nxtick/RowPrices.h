// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_ROWPRICES_H
#define NXTICK_ROWPRICES_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "PriceGrid.h"
#include "RowGrids.h"
#include "SnapCounts.h"
#include "SnapPlan.h"
#include "Text.h"
#include "WantedFields.h"
#include "core/text/nxCSVRow.h"

namespace nxtick
{
/// Reads the prices of rows, and tells of those that cannot be used.
///
/// A row is rejected as a whole when it has more or fewer fields than the header, so that it is not certain which field
/// is the price, or when its table is not known. A price that cannot be read rejects the row too, but the other prices
/// of the row are used. A price that is empty or blank is no fault.
class RowPrices
{
public:
    /// Takes the line of a rejected row and what is wrong with it.
    using Complaint = std::function<void(std::uint64_t, const std::string&)>;

    /// @param plan and @p grids must outlive the object.
    RowPrices(const SnapPlan& plan, RowGrids& grids, Complaint complaint);

    /// Begins with a row that is not an empty line. @return null if the row is rejected as a whole, else its grid.
    PriceGrid* Begin(const nxCSVRow& row);
    /// How many fields the row at hand has less than the header.
    std::size_t GetMissing() const { return _count < _plan.GetFieldCount() ? _plan.GetFieldCount() - _count : 0; }

    /// The row's text in a column of the plan, without blanks around it.
    std::string_view GetText(std::size_t column) const
    {
        return WithoutBlanks(_fields[_plan.GetPrices()[column].position]);
    }
    /// Reads the row's price in a column of the plan. @return false if it is empty or cannot be read.
    bool Read(const nxCSVRow& row, std::size_t column, const PriceGrid& grid, nxDecimal& price);
    /// Rejects the price.
    void Reject(const nxCSVRow& row, std::size_t column, const char* reason);

    SnapCounts& GetCounts() { return _counts; }
    /// The counts since the last call.
    SnapCounts TakeCounts() { return std::exchange(_counts, {}); }

private:
    void _Reject(const nxCSVRow& row, const std::string& reason);

    const SnapPlan& _plan;
    RowGrids& _grids;
    PriceGrid* _only;
    Complaint _complaint;
    WantedFields _fields;
    std::size_t _count = 0;    // of the fields of the row at hand
    bool _isRejected = false;  // the row at hand
    SnapCounts _counts;
};
}  // namespace nxtick

#endif
