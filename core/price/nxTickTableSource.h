// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXTICKTABLESOURCE_H
#define CORE_PRICE_NXTICKTABLESOURCE_H

#include <span>
#include <string>
#include <string_view>

#include "core/nxExport.h"

/// The source of the bands of one catalogue table, for readers that decide whether to trust them.
///
/// The status is one word:
/// - "given": reference data of the library, taken unchanged;
/// - "published": found in a source that names the regime;
/// - "derived": follows from another table or from the table's name;
/// - "assumed": values from a source, or from a sibling, whose link to the regime is an assumption.
/// @code
/// if (const nxTickTableSource* source = nxTickTableSource::Find("VTT_CHIX_FESE1"))
///     std::cout << source->GetStatus() << ": " << source->GetSource() << '\n';
/// @endcode
///
/// - Threads: constants, from any thread at any time, static constructors included. Ownership: owns nothing; the
///   objects and their texts live as long as the process.
class NX_CORE_API nxTickTableSource
{
public:
    /// The beginning of every identifier; the table's name follows.
    static constexpr std::string_view IDPrefix = "VTT_";

    /// @return one object for each table of the catalogue, in the catalogue's order.
    static std::span<const nxTickTableSource> GetAll();
    /// @param nameOrID a table's name, "CHIX_FESE1", or identifier, "VTT_CHIX_FESE1"; case-sensitive.
    /// @return null when the catalogue has no such table.
    static const nxTickTableSource* Find(std::string_view nameOrID);

    std::string_view GetName() const { return _name; }      ///< "CHIX_FESE1"
    std::string GetID() const;                              ///< "VTT_CHIX_FESE1"
    std::string_view GetStatus() const { return _status; }  ///< One of the four words.
    std::string_view GetSource() const { return _source; }  ///< A document or site, or the sibling table.
    std::string_view GetNote() const { return _note; }      ///< Values that were assumed, left out or not found.

private:
    constexpr nxTickTableSource(std::string_view name, std::string_view status, std::string_view source,
                                std::string_view note)
        : _name(name), _status(status), _source(source), _note(note)
    {
    }

    std::string_view _name;
    std::string_view _status;
    std::string_view _source;
    std::string_view _note;
};

#endif
