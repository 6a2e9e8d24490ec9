// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVROW_H
#define NXTICK_CSVROW_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CsvDialect.h"

namespace nxtick
{
/// The fields of a row that are wanted, without their quotes.
class WantedFields
{
public:
    WantedFields() = default;
    /// @param indices from 0, ascending, each once.
    explicit WantedFields(std::vector<std::size_t> indices)
        : _indices(std::move(indices)), _texts(_indices.size()), _unquoted(_indices.size())
    {
    }

    /// @param at counts the indices that were given. The text is valid until the next row is read.
    std::string_view operator[](std::size_t at) const { return _texts[at]; }

private:
    friend struct CsvRow;

    std::vector<std::size_t> _indices;
    std::vector<std::string_view> _texts;
    std::vector<std::string> _unquoted;  // texts from which quotes had to be removed
};

/// One row of a CSV file, byte for byte. Valid until the reader is asked for the next row. ByteMarks::readableAfter bytes
/// can be read behind it.
struct CsvRow
{
    std::string_view content;     ///< Everything but the line end; may hold line ends inside quotes.
    std::string_view terminator;  ///< "\n", "\r\n", or empty where the file ends without one.
    std::uint64_t line = 0;       ///< The line on which the row begins, from 1.
    bool hasQuotes = false;       ///< Whether any byte of the row is a quote.
    CsvDialect dialect;

    /// Finds the wanted fields; those that the row does not have keep their texts.
    /// @return how many fields the row has.
    std::size_t Find(WantedFields& wanted) const;

    /// All fields, without quotes.
    std::vector<std::string> GetFields() const;

private:
    std::size_t _FindQuoted(WantedFields& wanted) const;
    std::string_view _GetFirst(std::string_view rest) const;
    std::string _Unquote(std::string_view raw) const;
    bool _IsQuoted(std::string_view raw) const { return hasQuotes && !raw.empty() && raw.front() == dialect.quote; }
};
}  // namespace nxtick

#endif
