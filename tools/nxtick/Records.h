// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_RECORDS_H
#define NXTICK_RECORDS_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Request.h"

namespace nxtick
{
/// A listing for programs: rows of named values, as CSV or JSON.
///
/// - CSV: a line with the names, then one row for each record. Texts are byte for byte, in quotes where necessary.
/// - JSON: an array with one object for each record, each on a line of its own. The text is always valid: bytes that are
///   not UTF-8 become U+FFFD. Numbers are JSON numbers with all their digits.
/// - An empty value is an empty field, or null.
class Records
{
public:
    enum class Kind
    {
        Text,
        Number,
        Truth  ///< "true" or "false".
    };

    struct Column
    {
        std::string_view name;  ///< Lives as long as the records; letters and '_'.
        Kind kind = Kind::Text;
    };

    explicit Records(std::vector<Column> columns) : _columns(std::move(columns)) {}

    /// @param cells one for each column; a number as JSON writes it.
    void Add(std::vector<std::string> cells) { _rows.push_back(std::move(cells)); }

    /// @param format Csv or Json.
    std::string GetText(Request::Format format) const;

private:
    std::string _GetCsv() const;
    std::string _GetJson() const;

    std::vector<Column> _columns;
    std::vector<std::vector<std::string>> _rows;
};

/// "true" or "false", as Records has them.
inline std::string TruthText(bool isTrue) { return isTrue ? "true" : "false"; }
}  // namespace nxtick

#endif
