// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TODAYTABLES_H
#define NXTICK_TODAYTABLES_H

#include <string>
#include <vector>

#include "TableEntry.h"
#include "core/price/nxCustomVariableTickTable.h"

namespace nxtick
{
/// The tick tables in force on the day on which their sources were looked up: tick-tables-today.csv with the bands, and
/// beside it tick-tables-today-sources.csv with one row about each table.
class TodayTables
{
public:
    /// @param fileName of the bands; the sources' file has "-sources" before the ending ".csv". Empty: the files that are
    ///        installed with this program; without them there are no tables.
    /// @throws Failure naming the file, when one cannot be read or the two do not fit.
    explicit TodayTables(const std::string& fileName);

    bool IsEmpty() const { return _tables.empty(); }

    /// @param today the day with which the days of expiry are compared, as YYYY-MM-DD.
    /// @return one entry for each table, in the files' order. They refer to this object's tables.
    std::vector<TableEntry> GetEntries(const std::string& today) const;

private:
    void _ReadSources(const std::string& fileName);

    nxCustomVariableTickTable::Tables _tables;
    std::vector<TableFacts> _facts;  // of the table at the same place
};
}  // namespace nxtick

#endif
