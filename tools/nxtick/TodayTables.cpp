// SPDX-License-Identifier: Apache-2.0
#include "TodayTables.h"

#include <unistd.h>

#include <climits>
#include <map>

#include "CsvReader.h"
#include "Day.h"
#include "Failure.h"
#include "InputFile.h"
#include "core/text/nxPrintableText.h"

namespace nxtick
{
namespace
{
using Row = std::map<std::string, std::string>;

// The file that is installed with this program; empty when it is not there.
std::string InstalledFile()
{
    char program[PATH_MAX];
    const ssize_t size = ::readlink("/proc/self/exe", program, sizeof program);
    if (size <= 0 || static_cast<std::size_t>(size) == sizeof program)
        return "";
    std::string name(program, static_cast<std::size_t>(size));
    name.resize(name.rfind('/') + 1);
    name += NXTICK_DATA_FROM_PROGRAM "/tick-tables-today.csv";
    return ::access(name.c_str(), F_OK) == 0 ? name : "";
}

std::string SourcesOf(const std::string& fileName)
{
    constexpr std::string_view ending = ".csv";
    std::string name = fileName;
    if (name.ends_with(ending))
        name.resize(name.size() - ending.size());
    return name + "-sources.csv";
}

// The rows of a file by the names of its columns. A row that is too short lacks the last ones.
std::vector<Row> ReadRows(const std::string& fileName)
{
    InputFile file(fileName);
    CsvReader reader([&file](char* buffer, std::size_t size) { return file.Read(buffer, size); });
    nxCSVRow row;
    std::vector<std::string> names;
    std::vector<Row> rows;
    try
    {
        while (reader.Next(row))
        {
            const std::vector<std::string> fields = row.GetFields();
            if (names.empty())
            {
                names = fields;
                continue;
            }
            Row& values = rows.emplace_back();
            for (std::size_t i = 0; i < fields.size() && i < names.size(); ++i)
                values[names[i]] = fields[i];
        }
    }
    catch (const FileFailure& failure)
    {
        throw Failure(file.GetName() + ":" + failure.what());
    }
    return rows;
}

TableFacts MakeFacts(Row& row)
{
    TableFacts facts;
    facts.list = "today";
    facts.status = row["status"];
    facts.source = row["sources"];
    facts.note = row["notes"];
    facts.venue = row["venue"];
    facts.markets = row["mic"];
    facts.instruments = row["instruments"];
    facts.currency = row["currency"];
    facts.unit = row["unit"];
    facts.validFrom = row["valid_from"];
    facts.evidence = row["evidence_date"];
    facts.lookedUp = row["checked_on"];
    facts.expires = row["expires_on"];
    return facts;
}
}  // namespace

TodayTables::TodayTables(const std::string& fileName)
{
    const std::string name = fileName.empty() ? InstalledFile() : fileName;
    if (name.empty())
        return;
    std::string reason;
    if (!nxCustomVariableTickTable::ReadFile(name, _tables, reason).IsOK())
        throw Failure(reason);
    _ReadSources(SourcesOf(name));
}

void TodayTables::_ReadSources(const std::string& fileName)
{
    std::map<std::string, TableFacts> known;
    for (Row& row : ReadRows(fileName))
        known[row["name"]] = MakeFacts(row);
    for (const auto& table : _tables)
    {
        const auto found = known.find(table->GetName());
        if (found == known.end() || !IsDay(found->second.expires))
            throw Failure(nxPrintableText::GetEscaped(fileName) + ": " +
                          (found == known.end() ? "no row for table " : "no expires_on for table ") + table->GetName());
        _facts.push_back(found->second);
    }
}

std::vector<TableEntry> TodayTables::GetEntries(const std::string& today) const
{
    std::vector<TableEntry> entries;
    for (std::size_t i = 0; i < _tables.size(); ++i)
    {
        entries.push_back({_tables[i]->GetID(), _tables[i].get(), _facts[i], _tables[i]->GetGridWarning()});
        entries.back().facts.isExpired = _facts[i].expires < today;
    }
    return entries;
}
}  // namespace nxtick
