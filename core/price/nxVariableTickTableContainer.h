// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXVARIABLETICKTABLECONTAINER_H
#define CORE_PRICE_NXVARIABLETICKTABLECONTAINER_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/thread/nxMutex.h"

class nxCustomVariableTickTable;
class nxVariableTickTable;

/// The tick tables that a program finds by identifier, "VTT_" and the table's name: the catalogue of 150 regimes of
/// exchanges, and tables of the program's own.
/// @code
/// const nxVariableTickTable* table = nullptr;
/// std::string reason;
/// if (!nxVariableTickTableContainer::FindVariableTickTable(id, table, reason).IsOK())
///     std::cerr << reason << '\n';  // "there is no tick table 'CHIX_CPH1'; did you mean 'VTT_CHIX_CPH1'?"
/// @endcode
///
/// - Lookups are case-sensitive: "VTT_CHIX_lse1" and "VTT_CXE_mifid_1" keep their lower case.
/// - Not every regime's bands are published. nxTickTableSource names the source of each table, and
///   nxCustomVariableTickTable replaces one that an exchange defines otherwise.
/// - Threads: any, at any time, static constructors included. The catalogue is built by the first call and written to
///   the log once, at the debug level; later calls take a lock and look up. Tables may be registered while others are
///   looked up.
/// - Ownership: the tables live as long as the process, those of the program's own too. None is removed or replaced, so a
///   pointer that was found stays valid.
class NX_CORE_API nxVariableTickTableContainer
{
public:
    /// Finds the table registered under @p id, and tells the user when there is none.
    /// @param id the identifier, "VTT_CHIX_CPH1".
    /// @param[out] table the table; untouched when there is none.
    /// @param[out] reason a sentence with the identifier that was probably meant, if one is near; untouched on success. A
    ///             name without "VTT_" is not an identifier, but its identifier is named.
    /// @return NX_ERR_NOT_FOUND when there is none.
    [[nodiscard]] static nxErrorEnum FindVariableTickTable(const std::string& id, const nxVariableTickTable*& table,
                                                           std::string& reason);
    /// @return the table registered under @p id; null when there is none, so test it. FindVariableTickTable() returns an
    ///         error instead.
    static const nxVariableTickTable* GetVariableTickTable(const std::string& id);
    /// @return the identifier of the table called @p name; empty when there is none.
    static std::string GetVariableTickTableID(const std::string& name);
    /// @return the identifiers of all tables: first the catalogue's in its order, then the program's own, sorted.
    static std::vector<std::string> GetVariableTickTableIDs();

    /// Takes a table of the program's own, which is then found under its identifier, "VTT_" and @p name, like those of the
    /// catalogue. A table of another library's class needs that library for the rest of the process.
    /// @param name the table's name, without "VTT_".
    /// @param[in,out] table has all its bands. It is null after success, because the container owns it then; untouched on
    ///                failure.
    /// @return NX_ERR_OBJECT_IS_NULL for a null @p table, NX_ERR_INVALID_PARAMETER for an empty name or a table whose bands
    ///         break the constraints of nxVariableTickTable, NX_ERR_DUPLICATE_MATCH when the name or the identifier is
    ///         taken.
    [[nodiscard]] static nxErrorEnum RegisterVariableTickTable(const std::string& name,
                                                               std::unique_ptr<nxVariableTickTable>& table);
    /// The same for a table that was made from a list or a file, under its own name.
    [[nodiscard]] static nxErrorEnum RegisterVariableTickTable(std::unique_ptr<nxCustomVariableTickTable>& table);

    nxVariableTickTableContainer(const nxVariableTickTableContainer&) = delete;
    nxVariableTickTableContainer& operator=(const nxVariableTickTableContainer&) = delete;

private:
    friend struct nxVariableTickTableContainerTest;

    nxVariableTickTableContainer();
    ~nxVariableTickTableContainer();

    static nxVariableTickTableContainer& _GetInstance();

    // Takes ownership of the table. One that fails its constraints, or whose name or identifier is taken, is deleted.
    void _Register(const std::string& name, const std::string& id, nxVariableTickTable* table);
    // The container owns the table only after success.
    nxErrorEnum _TryRegister(const std::string& name, const std::string& id, nxVariableTickTable* table);
    void _LogRegisteredEntries();

    std::map<std::string, std::string> _names;
    std::map<std::string, nxVariableTickTable*> _tables;
    nxMutex _lock;
};

#endif
