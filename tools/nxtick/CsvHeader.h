// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVHEADER_H
#define NXTICK_CSVHEADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "CsvReader.h"

namespace nxtick
{
/// The names of a CSV file's columns, without quotes, blanks around them, and a byte order mark.
class CsvHeader
{
public:
    /// @param row the row that names the columns.
    /// @throws FileFailure "LINE: reason" when the row shows that the whole file has to be converted first: UTF-16, or
    ///         lines that end in CR alone.
    explicit CsvHeader(const CsvRow& row);

    std::size_t GetSize() const { return _names.size(); }

    /// @return the index of the column, from 0.
    /// @throws FileFailure "LINE: reason" when it is missing, with the columns that exist and a guess at the cause, or
    ///         when several columns have the name.
    std::size_t Find(const std::string& column) const;

    /// The names of columns that are added for @p column: those given, or, when the header has one of them already,
    /// Column_tick, Column_snapped and so on, and after these Column_tick_2.
    std::vector<std::string> GetNewNames(const std::string& column, const std::vector<std::string>& names) const;

private:
    bool _HasAny(const std::vector<std::string>& names) const;
    std::string _Guess(const std::string& column) const;

    std::uint64_t _line;
    std::vector<std::string> _names;
};
}  // namespace nxtick

#endif
