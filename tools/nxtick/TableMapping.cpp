// SPDX-License-Identifier: Apache-2.0
#include "TableMapping.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

#include "CsvHeader.h"
#include "Failure.h"
#include "InputFile.h"
#include "Text.h"
#include "core/time/nxDate.h"

namespace nxtick
{
namespace
{
constexpr unsigned firstDay = 0;
constexpr unsigned lastDay = std::numeric_limits<unsigned>::max();

// The columns of the file; from and to are optional.
struct MappingColumns
{
    std::size_t symbol;
    std::size_t table;
    std::optional<std::size_t> from;
    std::optional<std::size_t> to;

    explicit MappingColumns(const CsvHeader& header) : symbol(header.Find("symbol")), table(header.Find("table"))
    {
        const std::vector<std::string>& names = header.GetNames();
        if (std::find(names.begin(), names.end(), "from") != names.end())
            from = header.Find("from");
        if (std::find(names.begin(), names.end(), "to") != names.end())
            to = header.Find("to");
    }
};

unsigned ReadBound(const std::vector<std::string>& fields, std::optional<std::size_t> column, unsigned open)
{
    if (!column || fields[*column].empty())
        return open;
    const unsigned day = ReadDay(fields[*column]);
    if (day == 0)
        throw Failure(Quoted(fields[*column]) + " is not a day such as 2026-11-22");
    return day;
}
}  // namespace

unsigned ReadDay(std::string_view text)
{
    constexpr std::size_t size = std::string_view("2026-11-22").size();
    if (text.size() < size || text[4] != '-' || text[7] != '-' ||
        (text.size() > size && text[size] != ' ' && text[size] != 'T'))
        return 0;
    unsigned number = 0;
    for (std::size_t i = 0; i < size; ++i)
        if ('0' <= text[i] && text[i] <= '9')
            number = number * 10 + static_cast<unsigned>(text[i] - '0');
        else if (i != 4 && i != 7)
            return 0;
    nxDate date;
    return date.SetFromISODate(number).IsOK() ? number : 0;
}

TableMapping::TableMapping(const std::string& fileName, const TickTables& tables)
{
    InputFile input(fileName);
    CsvReader reader([&input](char* buffer, std::size_t size) { return input.Read(buffer, size); });
    try
    {
        _Read(reader, tables);
    }
    catch (const FileFailure& failure)
    {
        throw Failure(input.GetName() + ":" + failure.what());
    }
}

void TableMapping::_Read(CsvReader& reader, const TickTables& tables)
{
    nxCSVRow row;
    if (!reader.Next(row))
        throw FileFailure("1: there is no header line");
    const CsvHeader header(row, true);
    const MappingColumns columns(header);
    _hasDays = columns.from || columns.to;
    TextMap<const TableEntry*> known;  // each table is looked up once
    while (reader.Next(row))
    {
        const std::vector<std::string> fields = row.GetFields();
        if (row.content.empty())
            continue;
        try
        {
            if (fields.size() != header.GetSize())
                throw Failure("the row has another number of fields than the header");
            const TableEntry*& table = known[fields[columns.table]];
            if (table == nullptr)
            {
                table = &tables.Find(fields[columns.table]);
                tables.Warn(*table);
            }
            _Add(fields[columns.symbol],
                 {ReadBound(fields, columns.from, firstDay), ReadBound(fields, columns.to, lastDay), table});
        }
        catch (const Failure& failure)
        {
            throw FileFailure(std::to_string(row.line) + ": " + failure.what());
        }
    }
}

void TableMapping::_Add(const std::string& symbol, const Period& period)
{
    if (period.to < period.from)
        throw Failure("the last day is before the first");
    std::vector<Period>& periods = _symbols[symbol];
    for (const Period& other : periods)
        if (period.from <= other.to && other.from <= period.to)
            throw Failure("symbol " + Quoted(symbol) + " has two tables on one day");
    periods.push_back(period);
}

const TableEntry* TableMapping::Find(std::string_view symbol, unsigned day, std::string& reason) const
{
    const auto found = _symbols.find(symbol);
    if (found == _symbols.end())
    {
        std::set<std::string> known;
        for (const auto& [name, periods] : _symbols)
            known.insert(name);
        reason = "the mapping has no symbol " + Quoted(symbol) + Suggestion(std::string(symbol), known);
        return nullptr;
    }
    for (const Period& period : found->second)
        if (period.from <= day && day <= period.to)
            return period.table;
    reason = "the mapping has no table for symbol " + Quoted(symbol) + " on that day";
    return nullptr;
}
}  // namespace nxtick
