// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_ROWGRIDS_H
#define NXTICK_ROWGRIDS_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "GridChoice.h"
#include "PriceGrid.h"
#include "Request.h"
#include "TableMapping.h"
#include "TickTables.h"

namespace nxtick
{
/// Says which grid a row has: the one of the command line, or the table that a column of the row names or that the
/// mapping has for the row's symbol and day. Constant once it is made, so that several threads can ask.
class GridSource
{
public:
    /// @throws Failure when the table does not exist or the mapping is wrong.
    explicit GridSource(const Request& request);

    /// Whether ticks change with the price.
    bool HasBands() const { return !_request.table.empty() || !IsOne(); }
    /// Whether every row has the same grid.
    bool IsOne() const { return _only.has_value(); }
    bool NeedsDay() const { return _mapping && _mapping->HasDays(); }

    /// The grid of every row, for one thread. Only if IsOne().
    std::unique_ptr<PriceGrid> MakeOnly() const { return _only->MakeGrid(); }

    /// @param key the table's identifier, or the symbol. @param day as ReadDay() returns it, if NeedsDay().
    /// @param reason why there is none, if null is returned.
    const TableEntry* Find(std::string_view key, unsigned day, std::string& reason) const;

    /// Tells what the user should know before using a table that Find() returned. One thread at a time may call it.
    void Warn(const TableEntry& entry) const { _tables->Warn(entry); }

private:
    const Request& _request;
    std::optional<GridChoice> _only;
    std::optional<TickTables> _tables;
    std::optional<TableMapping> _mapping;
};

/// The grids of the rows that one thread works on, with a cursor for each table. What was found is kept, and so are the
/// reasons for what was not found, up to a limit.
class RowGrids
{
public:
    /// @param source must outlive the object.
    explicit RowGrids(const GridSource& source);

    /// The grid of every row; null if the row decides.
    PriceGrid* GetOnly() const { return _only.get(); }

    /// @param key the table's identifier, or the symbol. @param date the text of the row's day; empty if there is none.
    /// @return the grid; null if there is none, and GetReason() then says why.
    PriceGrid* Find(std::string_view key, std::string_view date)
    {
        if (key != _lastKey || date != _lastDate || _last == nullptr)
            _last = _Search(key, date);
        return _last;
    }
    const std::string& GetReason() const { return _reason; }

    /// The tables that were found for the first time since the last call.
    std::vector<const TableEntry*> TakeNew() { return std::exchange(_new, {}); }

private:
    PriceGrid* _Search(std::string_view key, std::string_view date);
    PriceGrid* _SearchTable(std::string_view key, unsigned day);
    PriceGrid& _GetGrid(const TableEntry& entry);

    const GridSource& _source;
    std::unique_ptr<PriceGrid> _only;
    std::vector<const TableEntry*> _new;
    std::unordered_map<const TableEntry*, std::unique_ptr<TableGrid>> _grids;
    TextMap<PriceGrid*> _known;     // where the day does not matter
    TextMap<std::string> _unknown;  // the same, with the reasons
    std::string _lastKey;
    std::string _lastDate;
    PriceGrid* _last = nullptr;
    std::string _reason;
};
}  // namespace nxtick

#endif
