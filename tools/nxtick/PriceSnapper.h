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

/// Snaps one column of a CSV file to a grid: every row goes through byte for byte, with columns added at its end.
///
/// Added are `tick`, `snapped` and `moved` (the snapped price less the price), and, for a grid with bands, `below` and
/// `above`, the next prices of the grid on both sides of the price. They stay empty where the row is rejected: the price
/// does not parse, or the distance has more digits than a decimal.
/// Empty lines go through as they are and count as no rows.
class PriceSnapper
{
public:
    using Sink = std::function<void(std::string_view)>;
    /// Takes the line of a rejected row and what is wrong with it.
    using Complaint = std::function<void(std::uint64_t, const std::string&)>;

    /// @param grid lives at least as long as the snapper.
    PriceSnapper(PriceGrid& grid, const nxRoundingMethodEnum& method, Sink sink, Complaint complaint);

    /// Takes the row that names the columns; the first row that is not an empty line.
    /// @throws FileFailure "LINE: reason" when the column is missing or there twice.
    void Header(const CsvRow& row, const std::string& column);

    /// Takes any further row.
    void Row(const CsvRow& row);

    const SnapCounts& GetCounts() const { return _counts; }

private:
    const char* _ReadPrice(const CsvRow& row, std::string_view& field, nxDecimal& price);
    const char* _Snap(const nxDecimal& price);
    void _Add(const nxDecimal& value);
    void _Pass(const CsvRow& row);

    PriceGrid& _grid;
    nxRoundingMethodEnum _method;
    Sink _sink;
    Complaint _complaint;
    std::string _column;
    std::size_t _index = 0;
    SnapCounts _counts;
    std::string _added;    // the columns of the row at hand
    std::string _scratch;  // its price field without quotes
};
}  // namespace nxtick

#endif
