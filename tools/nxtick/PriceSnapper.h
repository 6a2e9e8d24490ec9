// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PRICESNAPPER_H
#define NXTICK_PRICESNAPPER_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "CsvReader.h"
#include "PriceGrid.h"
#include "core/enum/nxRoundingMethodEnum.h"

namespace nxtick
{
/// What became of the rows.
struct SnapCounts
{
    std::uint64_t rows = 0;
    std::uint64_t onGrid = 0;
    std::uint64_t moved = 0;
    std::uint64_t rejected = 0;
};

/// Snaps one column of a CSV file to a grid: every row is copied byte for byte, with columns added at its end.
///
/// The added columns are `tick`, `snapped` and `moved` (the snapped price less the price), and, for a grid with bands,
/// `below` and `above`, the next prices of the grid on both sides of the price. CsvHeader names them if these names are
/// taken. They are empty in a rejected row: the row has more or fewer fields than the header, so that it is not certain
/// which field is the price, or the price does not parse, or the distance has more digits than a decimal. A rejected
/// row that is too short first gets the fields that it lacks, empty, so that the added ones are below their names; one
/// that is too long stays too long by as many fields. Empty lines are copied and do not count as rows.
class PriceSnapper
{
public:
    using Sink = std::function<void(std::string_view)>;
    /// Takes the line of a rejected row and what is wrong with it.
    using Complaint = std::function<void(std::uint64_t, const std::string&)>;

    /// @param grid must outlive the snapper.
    PriceSnapper(PriceGrid& grid, const nxRoundingMethodEnum& method, Sink sink, Complaint complaint);

    /// Takes the row that names the columns; the first row that is not an empty line.
    /// @throws FileFailure "LINE: reason" when the column is missing or there twice, or the file has to be converted.
    void Header(const CsvRow& row, const std::string& column);

    /// Takes any further row.
    void Row(const CsvRow& row);

    const SnapCounts& GetCounts() const { return _counts; }

private:
    const char* _SnapField(std::string_view& field);
    const char* _Snap(const nxDecimal& price);
    void _Reject(const CsvRow& row, std::size_t count, std::string_view field, const char* reason);
    void _Add(const nxDecimal& value);
    void _Pass(const CsvRow& row);

    PriceGrid& _grid;
    nxRoundingMethodEnum _method;
    Sink _sink;
    Complaint _complaint;
    std::size_t _index = 0;   // of the prices' column
    std::size_t _fields = 0;  // that the header has
    SnapCounts _counts;
    std::string _added;    // the columns of the row at hand
    std::string _scratch;  // its price field without quotes
};
}  // namespace nxtick

#endif
