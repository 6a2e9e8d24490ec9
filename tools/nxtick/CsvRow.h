// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVROW_H
#define NXTICK_CSVROW_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nxtick
{
/// One row of a CSV file, byte for byte. Valid until the reader is asked for the next row.
struct CsvRow
{
    std::string_view content;     ///< Everything but the line end; may hold line ends inside quotes.
    std::string_view terminator;  ///< "\n", "\r\n", or empty where the file ends without one.
    std::uint64_t line = 0;       ///< The line on which the row begins, from 1.
    bool hasQuotes = false;       ///< Whether any byte of the row is a quote.

    /// Finds a field, removes its quotes, and counts the fields.
    /// @param index from 0.
    /// @param scratch holds the text if quotes had to be removed from it.
    /// @param field the text; untouched when the row has no such field.
    /// @return how many fields the row has.
    std::size_t FindField(std::size_t index, std::string& scratch, std::string_view& field) const;

    /// All fields, without quotes.
    std::vector<std::string> GetFields() const;

private:
    std::size_t _FindQuoted(std::size_t index, std::string& scratch, std::string_view& field) const;
};
}  // namespace nxtick

#endif
