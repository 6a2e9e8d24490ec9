// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVREQUEST_H
#define NXTICK_CSVREQUEST_H

#include <string>
#include <string_view>
#include <vector>

#include "CsvDialect.h"
#include "core/enum/nxRoundingMethodEnum.h"

namespace nxtick
{
/// What the columns that are added to a row say.
enum class AddedColumn
{
    Tick,
    Snapped,
    Moved,
    Below,
    Above
};

std::string_view GetName(AddedColumn column);

/// What the command line says about the CSV files.
struct CsvRequest
{
    enum class Check
    {
        None,
        List,  ///< the prices off the grid
        Count  ///< how many there are
    };

    std::vector<std::string> files;  ///< Not empty; "-" is standard input.
    std::string outFile;             ///< "-": standard output.
    bool isInPlace = false;
    std::vector<std::string> columns;  ///< As given: names, numbers, or lists of them.
    nxCSVDialect dialect;
    NumberForm numbers;
    bool hasHeader = true;
    std::vector<AddedColumn> added;  ///< Empty: those that the grid calls for.
    std::vector<std::string> names;  ///< Of the added columns; empty: made from the kind of column.
    std::string prefix;              ///< Of the made names.
    std::string tableColumn;         ///< Holds the table's identifier; empty: none does.
    std::string mappingFile;         ///< Says which symbol has which table; empty: none.
    std::string symbolColumn;
    std::string dateColumn;
    nxRoundingMethodEnum method = nxRoundingMethodEnum(NX_ROUNDING_METHOD_NEAREST);
    Check check = Check::None;
    unsigned workers = 1;  ///< The most threads that work on one file.

    /// Whether the row itself says which table it needs.
    bool HasTableForEachRow() const { return !tableColumn.empty() || !mappingFile.empty(); }
};
}  // namespace nxtick

#endif
