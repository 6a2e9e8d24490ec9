// SPDX-License-Identifier: Apache-2.0
#include "RowGrids.h"

#include "Failure.h"
#include "Text.h"

namespace nxtick
{
namespace
{
constexpr std::size_t mostUnknown = 1000;  // reasons that are kept
}  // namespace

GridSource::GridSource(const Request& request) : _request(request)
{
    if (!request.csv.HasTableForEachRow())
    {
        _only.emplace(request);
        return;
    }
    _tables.emplace(request);
    if (!request.csv.mappingFile.empty())
        _mapping.emplace(request.csv.mappingFile, *_tables);
    if (NeedsDay() && request.csv.dateColumn.empty())
        throw Failure("option -date-column is missing, because the mapping has days");
}

const TableEntry* GridSource::Find(std::string_view key, unsigned day, std::string& reason) const
{
    if (_mapping)
        return _mapping->Find(key, day, reason);
    try
    {
        return &_tables->Find(std::string(key));
    }
    catch (const Failure& failure)
    {
        reason = failure.what();
        return nullptr;
    }
}

RowGrids::RowGrids(const GridSource& source) : _source(source)
{
    if (source.IsOne())
        _only = source.MakeOnly();
}

PriceGrid* RowGrids::_Search(std::string_view key, std::string_view date)
{
    _lastKey = key;
    _lastDate = date;
    const std::string_view name = WithoutBlanks(key);
    if (name.empty())
    {
        _reason = "there is no name of a table or symbol";
        return nullptr;
    }
    if (!_source.NeedsDay())
    {
        if (const auto known = _known.find(name); known != _known.end())
            return known->second;
        if (PriceGrid* const grid = _SearchTable(name, 0); grid != nullptr)
            return _known.emplace(name, grid).first->second;
        return nullptr;
    }
    const unsigned day = ReadDay(WithoutBlanks(date));
    if (day != 0)
        return _SearchTable(name, day);
    _reason = Quoted(date) + " is not a day such as 2026-11-22";
    return nullptr;
}

PriceGrid* RowGrids::_SearchTable(std::string_view key, unsigned day)
{
    if (const auto unknown = _unknown.find(key); unknown != _unknown.end())
    {
        _reason = unknown->second;
        return nullptr;
    }
    if (const TableEntry* const entry = _source.Find(key, day, _reason); entry != nullptr)
        return &_GetGrid(*entry);
    if (day == 0 && _unknown.size() < mostUnknown)
        _unknown.emplace(key, _reason);
    return nullptr;
}

PriceGrid& RowGrids::_GetGrid(const TableEntry& entry)
{
    std::unique_ptr<TableGrid>& grid = _grids[&entry];
    if (grid == nullptr)
    {
        grid = std::make_unique<TableGrid>(*entry.table);
        _new.push_back(&entry);
    }
    return *grid;
}
}  // namespace nxtick
