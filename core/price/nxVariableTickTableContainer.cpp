#include "core/price/nxVariableTickTableContainer.h"

#include <atomic>
#include <memory>

#include "core/log/nxLogMacros.h"
#include "core/price/nxCatalogueTickTables.h"
#include "core/price/nxTickTableSource.h"
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
    static std::atomic<bool> isLogged{false};
    if (!isLogged.load(std::memory_order_relaxed) && !isLogged.exchange(true))
        instance._LogRegisteredEntries();
    return instance;
}

void nxVariableTickTableContainer::_Register(const std::string& name, const std::string& id, nxVariableTickTable* table)
{
    std::unique_ptr<nxVariableTickTable> owned(table);
    if (owned == nullptr || !owned->_GetRules().KeepConstraints())
        return;
    const nxMutexGuard guard(_lock);
    if (_names.contains(name) || _tables.contains(id))
        return;
    _names.emplace(name, id);
    _tables.emplace(id, owned.get());
    static_cast<void>(owned.release());
}

void nxVariableTickTableContainer::_LogRegisteredEntries()
{
    if (!nxLogManager::ShouldLog(NX_LOG_LEVEL_DEBUG))
        return;
    // The maps no longer change, and no lock is held while logging.
    for (const auto& [name, id] : _names)
    {
        const nxVariableTickTable& table = *_tables.at(id);
        NX_LOG_AT(NX_LOG_LEVEL_DEBUG, logSource, __LINE__) << "Registered Variable tick table. Name: " << name;
        for (std::size_t index = 0; index < table.GetRangeData().size(); ++index)
            NX_LOG_AT(NX_LOG_LEVEL_DEBUG, logSource, __LINE__) << GetBandText(table, index);
    }
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
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
        if (std::string id = GetVariableTickTableID(std::string(source.GetName())); !id.empty())
            ids.push_back(std::move(id));
    return ids;
}
