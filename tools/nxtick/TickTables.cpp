// SPDX-License-Identifier: Apache-2.0
#include "TickTables.h"

#include <algorithm>
#include <set>
#include <utility>

#include "Failure.h"
#include "Terminal.h"
#include "Text.h"
#include "core/price/nxTickTableSource.h"
#include "core/price/nxVariableTickTableContainer.h"

namespace nxtick
{
namespace
{
std::vector<TableEntry> CatalogueEntries()
{
    std::vector<TableEntry> entries;
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
    {
        TableFacts facts;
        facts.list = "catalogue";
        facts.status = source.GetStatus();
        facts.source = source.GetSource();
        facts.note = source.GetNote();
        const std::string id = source.GetID();
        if (const auto* const table = nxVariableTickTableContainer::GetVariableTickTable(id); table != nullptr)
            entries.push_back({id, table, facts, ""});
    }
    return entries;
}

// Writes a line to standard error the first time.
void TellOnce(const std::string& text)
{
    static std::set<std::string> told;
    if (told.insert(text).second)
        WriteError("nxtick: " + text + "\n");
}
}  // namespace

TickTables::TickTables(const Request& request) : _isQuiet(request.isQuiet), _today(request.todayFile)
{
    if (!request.tablesFile.empty())
        _AddCustom(request.tablesFile);
    std::set<std::string> replaced;
    for (const TableEntry& custom : _entries)
        replaced.insert(custom.id);
    const auto add = [&](TableEntry entry)
    {
        if (replaced.count(entry.id) == 0)
            _entries.push_back(std::move(entry));
    };
    for (TableEntry& entry : CatalogueEntries())
        add(std::move(entry));
    for (TableEntry& entry : _today.GetEntries(request.today))
        add(std::move(entry));
}

void TickTables::_AddCustom(const std::string& fileName)
{
    std::string reason;
    if (!nxCustomVariableTickTable::ReadFile(fileName, _custom, reason).IsOK())
        throw Failure(reason);
    TableFacts facts;
    facts.list = "own";
    facts.status = "custom";
    facts.source = fileName;
    for (const auto& table : _custom)
        _entries.push_back({table->GetID(), table.get(), facts, table->GetGridWarning()});
}

void TickTables::Warn(const TableEntry& entry) const
{
    if (_isQuiet)
        return;
    if (!entry.gridWarning.empty())
        TellOnce(nxPrintableText::GetEscaped(entry.facts.source) + ": " + entry.gridWarning);
    if (const std::string doubt = GetDoubt(entry.facts); !doubt.empty())
        TellOnce(entry.id + ": " + nxPrintableText::GetEscaped(doubt));
}

const TableEntry& TickTables::Find(const std::string& nameOrID) const
{
    const std::string prefix(nxTickTableSource::IDPrefix);
    const std::string id = nameOrID.compare(0, prefix.size(), prefix) == 0 ? nameOrID : prefix + nameOrID;
    const auto found =
        std::find_if(_entries.begin(), _entries.end(), [&id](const TableEntry& entry) { return entry.id == id; });
    if (found != _entries.end())
        return *found;
    std::set<std::string> known;
    for (const TableEntry& entry : _entries)
        known.insert(entry.id);
    const std::string suggestion = Suggestion(id, known);
    throw Failure("there is no tick table " + Quoted(nameOrID) +
                  (suggestion.empty() ? "; nxtick -list shows all" : suggestion) +
                  (_today.IsEmpty() ? " (the tables of today are not installed)" : ""));
}

TableGrid::TableGrid(const nxVariableTickTable& table) : PriceGrid(table.GetRangeData()), _cursor(table) {}
}  // namespace nxtick
