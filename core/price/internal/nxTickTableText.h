// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXTICKTABLETEXT_H
#define CORE_PRICE_INTERNAL_NXTICKTABLETEXT_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/price/internal/nxBandRules.h"

/// Reads the tick tables of a text line by line, in the form that nxCustomVariableTickTable documents.
/// - Threads: one at a time.
class nxTickTableText
{
public:
    /// Reads a text, once for each object.
    /// @return the fault after its line number, as a sentence for the user; empty when there is none.
    std::string Read(std::string_view text);

    /// @return names and bands, in the order of the text.
    const std::vector<std::pair<std::string, nxBandRules::Bands>>& GetTables() const { return _tables; }

private:
    std::string _ReadHeader(std::string_view line);
    std::string _ReadBand(std::string_view line);
    std::string _EndBand(std::string_view lowerBound);
    std::string _StartTable(std::string_view name);
    std::string _CheckComplete() const;

    std::vector<std::pair<std::string, nxBandRules::Bands>> _tables;
    std::set<std::string, std::less<>> _names;
    std::size_t _line = 0;
    std::size_t _lastLine = 0;
    bool _hasLowerBounds = false;  // the column of bounds; a table's last band is then complete at any time
};

#endif
