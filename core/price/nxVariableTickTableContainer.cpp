// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxVariableTickTableContainer.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <set>

#include "core/log/nxLogMacros.h"
#include "core/price/nxCatalogueTickTables.h"
#include "core/price/nxCustomVariableTickTable.h"
#include "core/price/nxTickTableSource.h"
#include "core/text/nxAlgorithm.h"
#include "core/text/nxPrintableText.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
constexpr const char* logSource = "core/trunk/nxVariableTickTable";

std::string GetBandText(const nxVariableTickTable& table, std::size_t index)
{
    const auto& [bound, increment] = table.GetRangeData()[index];
    std::string text = "Entry #" + std::to_string(index + 1) + ". Upper bound: ";
    if (index + 1 == table.GetRangeData().size())
        text += "NONE";
    else
        bound.AppendAsString(text, '.');
    text += ", Delta: ";
    increment.AppendAsString(text, '.');
    return text;
}
}  // namespace

nxVariableTickTableContainer::nxVariableTickTableContainer()
{
#define NX_TICK_TABLE(name, status, source, note, bands) _Register(#name, "VTT_" #name, new nxVariableTickTable##name);
#include "core/price/nxTickTables.inc"
#undef NX_TICK_TABLE
}

nxVariableTickTableContainer::~nxVariableTickTableContainer()
{
    for (const auto& entry : _tables)
        delete entry.second;
}

nxVariableTickTableContainer& nxVariableTickTableContainer::_GetInstance()
{
    // Never destroyed, because threads that outlive main still ask. Logged after it is built, so that a log device that
    // looks up a table finds it.
    static nxVariableTickTableContainer& instance = *new nxVariableTickTableContainer;
    // The exchange, in the default order, lets one thread pass; the load before it is relaxed and spares the others the write.
    static std::atomic<bool> isLogged{false};
    if (!isLogged.load(std::memory_order_relaxed) && !isLogged.exchange(true))
        instance._LogRegisteredEntries();
    return instance;
}

void nxVariableTickTableContainer::_Register(const std::string& name, const std::string& id, nxVariableTickTable* table)
{
    std::unique_ptr<nxVariableTickTable> owned(table);
    if (_TryRegister(name, id, table).IsOK())
        static_cast<void>(owned.release());
}

nxErrorEnum nxVariableTickTableContainer::_TryRegister(const std::string& name, const std::string& id,
                                                       nxVariableTickTable* table)
{
    if (table == nullptr)
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (name.empty() || !table->_GetRules().KeepConstraints())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    // Both entries are made before either is added: merging needs no memory, so none is ever added alone.
    std::map<std::string, std::string> newName;
    std::map<std::string, nxVariableTickTable*> newTable;
    newName.emplace(name, id);
    newTable.emplace(id, table);
    const nxMutexGuard guard(_lock);
    if (_names.contains(name) || _tables.contains(id))
        return nxErrorEnum(NX_ERR_DUPLICATE_MATCH);
    _names.merge(newName);
    _tables.merge(newTable);
    return nxErrorEnum();
}

nxErrorEnum nxVariableTickTableContainer::RegisterVariableTickTable(const std::string& name,
                                                                    std::unique_ptr<nxVariableTickTable>& table)
{
    const nxErrorEnum error =
        _GetInstance()._TryRegister(name, std::string(nxTickTableSource::IDPrefix).append(name), table.get());
    if (error.IsOK())
        static_cast<void>(table.release());
    return error;
}

nxErrorEnum nxVariableTickTableContainer::RegisterVariableTickTable(std::unique_ptr<nxCustomVariableTickTable>& table)
{
    if (table == nullptr)
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const nxErrorEnum error = _GetInstance()._TryRegister(table->GetName(), table->GetID(), table.get());
    if (error.IsOK())
        static_cast<void>(table.release());
    return error;
}

void nxVariableTickTableContainer::_LogRegisteredEntries()
{
    if (!nxLogManager::ShouldLog(NX_LOG_LEVEL_DEBUG))
        return;
    // No lock is held while logging. Tables are registered meanwhile, but none is ever removed.
    std::vector<std::pair<std::string, const nxVariableTickTable*>> entries;
    {
        const nxMutexGuard guard(_lock);
        for (const auto& [name, id] : _names)
            entries.emplace_back(name, _tables.at(id));
    }
    for (const auto& [name, table] : entries)
    {
        NX_LOG_AT(NX_LOG_LEVEL_DEBUG, logSource, __LINE__) << "Registered Variable tick table. Name: " << name;
        for (std::size_t index = 0; index < table->GetRangeData().size(); ++index)
            NX_LOG_AT(NX_LOG_LEVEL_DEBUG, logSource, __LINE__) << GetBandText(*table, index);
    }
}

nxErrorEnum nxVariableTickTableContainer::FindVariableTickTable(const std::string& id,
                                                                const nxVariableTickTable*& table, std::string& reason)
{
    if (const nxVariableTickTable* const found = GetVariableTickTable(id); found != nullptr)
    {
        table = found;
        return nxErrorEnum();
    }
    const std::vector<std::string> all = GetVariableTickTableIDs();
    const std::string_view prefix = nxTickTableSource::IDPrefix;
    const std::vector<std::string> near = nxAlgorithm::GetNearMatches(
        std::set<std::string>(all.begin(), all.end()), id.starts_with(prefix) ? id : std::string(prefix).append(id));
    reason.assign("there is no tick table ").append(nxPrintableText::GetQuoted(id));
    if (!near.empty())
        reason.append("; did you mean ").append(nxPrintableText::GetQuoted(near.front())).append("?");
    return nxErrorEnum(NX_ERR_NOT_FOUND);
}

const nxVariableTickTable* nxVariableTickTableContainer::GetVariableTickTable(const std::string& id)
{
    nxVariableTickTableContainer& container = _GetInstance();
    const nxMutexGuard guard(container._lock);
    const auto found = container._tables.find(id);
    return found == container._tables.end() ? nullptr : found->second;
}

std::string nxVariableTickTableContainer::GetVariableTickTableID(const std::string& name)
{
    nxVariableTickTableContainer& container = _GetInstance();
    const nxMutexGuard guard(container._lock);
    const auto found = container._names.find(name);
    return found == container._names.end() ? std::string() : found->second;
}

std::vector<std::string> nxVariableTickTableContainer::GetVariableTickTableIDs()
{
    std::vector<std::string> ids;
    std::set<std::string> listed;
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
        if (std::string id = GetVariableTickTableID(std::string(source.GetName())); !id.empty())
        {
            listed.insert(id);
            ids.push_back(std::move(id));
        }
    nxVariableTickTableContainer& container = _GetInstance();
    const nxMutexGuard guard(container._lock);
    for (const auto& [id, table] : container._tables)
        if (!listed.contains(id))
            ids.push_back(id);
    return ids;
}
