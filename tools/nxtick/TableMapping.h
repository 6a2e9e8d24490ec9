// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TABLEMAPPING_H
#define NXTICK_TABLEMAPPING_H

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "CsvReader.h"
#include "TickTables.h"

namespace nxtick
{
/// Lets a map of strings be searched by a part of another text without a copy.
struct TextHash
{
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

template <class Value>
using TextMap = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

/// Reads a day, "2026-11-22", alone or before a time of day that a blank or "T" separates.
/// @return the day as 20261122; 0 when the text is none.
unsigned ReadDay(std::string_view text);

/// Which tick table a symbol has on which day: a CSV file with the columns symbol and table and, if tables change, from
/// and to, which are the first and the last day and may be empty. Constant once it is read.
class TableMapping
{
public:
    /// @param tables must outlive the mapping. @throws Failure naming file and line that are wrong.
    TableMapping(const std::string& fileName, const TickTables& tables);

    /// Whether a symbol's table depends on the day.
    bool HasDays() const { return _hasDays; }

    /// @param day as ReadDay() returns it; any number if the mapping has no days.
    /// @param reason why there is none, if null is returned.
    const TableEntry* Find(std::string_view symbol, unsigned day, std::string& reason) const;

private:
    struct Period
    {
        unsigned from;
        unsigned to;  // inclusive
        const TableEntry* table;
    };

    void _Read(CsvReader& reader, const TickTables& tables);
    void _Add(const std::string& symbol, const Period& period);

    TextMap<std::vector<Period>> _symbols;
    bool _hasDays = false;
};
}  // namespace nxtick

#endif
