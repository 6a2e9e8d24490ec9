// SPDX-License-Identifier: Apache-2.0
#include "TickTables.h"

#include <algorithm>
#include <set>

#include "Failure.h"
#include "Terminal.h"
#include "Text.h"
#include "core/price/nxTickTableSource.h"
#include "core/price/nxVariableTickTableContainer.h"

namespace nxtick
{
TickTables::TickTables(const std::string& fileName)
{
    if (!fileName.empty())
        _AddCustom(fileName);
    _AddCatalogue();
}

void TickTables::_AddCustom(const std::string& fileName)
{
    std::string reason;
    if (!nxCustomVariableTickTable::ReadFile(fileName, _custom, reason).IsOK())
        throw Failure(reason);
    for (const auto& table : _custom)
        _entries.push_back({table->GetID(), table.get(), "custom", fileName, "", table->GetGridWarning()});
}

void TickTables::_AddCatalogue()
{
    std::set<std::string> replaced;
    for (const TableEntry& custom : _entries)
        replaced.insert(custom.id);
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
    {
        const std::string id = source.GetID();
        const nxVariableTickTable* const table = nxVariableTickTableContainer::GetVariableTickTable(id);
        if (table != nullptr && replaced.count(id) == 0)
            _entries.push_back({id, table, std::string(source.GetStatus()), std::string(source.GetSource()),
                                std::string(source.GetNote()), ""});
    }
}

const TableEntry& TickTables::Find(const std::string& nameOrID) const
{
    const std::string prefix(nxTickTableSource::IDPrefix);
    const std::string id = nameOrID.compare(0, prefix.size(), prefix) == 0 ? nameOrID : prefix + nameOrID;
    const auto found =
        std::find_if(_entries.begin(), _entries.end(), [&id](const TableEntry& entry) { return entry.id == id; });
    if (found != _entries.end())
    {
        if (!found->warning.empty())
            WriteError("nxtick: " + nxPrintableText::GetEscaped(found->source) + ": " + found->warning + "\n");
        return *found;
    }
    std::set<std::string> known;
    for (const TableEntry& entry : _entries)
        known.insert(entry.id);
    const std::string suggestion = Suggestion(id, known);
    throw Failure("there is no tick table " + Quoted(nameOrID) +
                  (suggestion.empty() ? "; nxtick -list shows all" : suggestion));
}

TableGrid::TableGrid(const nxVariableTickTable& table) : PriceGrid(table.GetRangeData()), _cursor(table) {}
}  // namespace nxtick
