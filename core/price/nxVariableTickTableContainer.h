#ifndef CORE_PRICE_NXVARIABLETICKTABLECONTAINER_H
#define CORE_PRICE_NXVARIABLETICKTABLECONTAINER_H

#include <map>
#include <string>
#include <vector>

#include "core/nxExport.h"
#include "core/thread/nxMutex.h"

class nxVariableTickTable;

/// The catalogue of tick tables: 150 regimes of exchanges, each found by its identifier, "VTT_" and the regime's name.
/// @code
/// const nxVariableTickTable* table = nxVariableTickTableContainer::GetVariableTickTable("VTT_CHIX_CPH1");
/// if (table == nullptr)
///     return;  // a mistyped identifier
/// @endcode
///
/// - Lookups are case-sensitive: "VTT_CHIX_lse1" and "VTT_CXE_mifid_1" keep their lower case.
/// - Not every regime's bands are published. nxTickTableSource names the source of each table, and
///   nxCustomVariableTickTable replaces one that an exchange defines otherwise.
/// - Threads: any, at any time, static constructors included. The catalogue is built by the first call and written to
///   the log once, at the debug level; later calls take a lock and look up.
/// - Ownership: the tables live as long as the process.
class NX_CORE_API nxVariableTickTableContainer
{
public:
    /// @return the table registered under @p id; null when there is none. A name without "VTT_" is not an identifier.
    static const nxVariableTickTable* GetVariableTickTable(const std::string& id);
    /// @return the identifier of the table called @p name; empty when there is none.
    static std::string GetVariableTickTableID(const std::string& name);
    /// @return the identifiers of all tables, in the order of the catalogue.
    static std::vector<std::string> GetVariableTickTableIDs();

    nxVariableTickTableContainer(const nxVariableTickTableContainer&) = delete;
    nxVariableTickTableContainer& operator=(const nxVariableTickTableContainer&) = delete;

private:
    friend struct nxVariableTickTableContainerTest;

    nxVariableTickTableContainer();
    ~nxVariableTickTableContainer();

    static nxVariableTickTableContainer& _GetInstance();

    // Takes ownership of the table. One that fails its constraints, or whose name or identifier is taken, is deleted.
    void _Register(const std::string& name, const std::string& id, nxVariableTickTable* table);
    void _LogRegisteredEntries();

    std::map<std::string, std::string> _names;
    std::map<std::string, nxVariableTickTable*> _tables;
    nxMutex _lock;
};

#endif
