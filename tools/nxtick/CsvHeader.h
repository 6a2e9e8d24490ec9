// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVHEADER_H
#define NXTICK_CSVHEADER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/nxCSVRow.h"

namespace nxtick
{
/// The names of a CSV file's columns, without quotes and blanks around them; of a file without a
/// header line, their numbers from 1.
class CsvHeader
{
public:
    /// @param row the row that names the columns, or the first row of a file without such a row.
    /// @throws FileFailure "LINE: reason" when the row shows that the whole file has to be converted first: UTF-16, or
    ///         lines that end in CR alone.
    CsvHeader(const nxCSVRow& row, bool hasNames);

    std::size_t GetSize() const { return _names.size(); }
    const std::vector<std::string>& GetNames() const { return _names; }

    /// Finds a column by its name or, when no column has that name, by its number from 1.
    /// @return the index of the column, from 0.
    /// @throws FileFailure "LINE: reason" when it is missing, with the columns that exist and a guess at the cause, or
    ///         when several columns have the name.
    std::size_t Find(const std::string& column) const;

    /// Finds columns; one that does not exist under its whole text is a list, divided at commas.
    /// @throws FileFailure as Find(), and when a column is named twice.
    std::vector<std::size_t> FindAll(const std::vector<std::string>& columns) const;

private:
    std::vector<std::size_t> _FindList(const std::string& list) const;
    bool _Has(const std::string& column) const;
    std::string _Guess(const std::string& column) const;

    std::uint64_t _line;
    bool _hasNames;
    std::vector<std::string> _names;
};

/// Whether the file has to be converted before it can be read, judging by the bytes with which it begins: compressed
/// files, UTF-16 and UTF-32.
/// @return what it is and what to do, to follow the line's number in a message; empty for text.
std::string GetConversion(std::string_view start);
}  // namespace nxtick

#endif
