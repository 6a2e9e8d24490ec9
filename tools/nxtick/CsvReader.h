// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVREADER_H
#define NXTICK_CSVREADER_H

#include <cstddef>
#include <utility>

#include "CsvBlocks.h"

namespace nxtick
{
/// Reads CSV row by row; see CsvBlocks for the rules and the bounds.
///
/// Why not a library: rows are copied byte for byte, so the reader must say where each row begins and ends in the
/// input. The available CSV libraries return fields without their quotes, blanks and line ends, skip empty lines, or
/// split a row at a line end inside quotes, and the streaming ones call back for every byte.
class CsvReader
{
public:
    using Source = CsvBlocks::Source;

    /// @copydoc CsvBlocks::CsvBlocks
    explicit CsvReader(Source source, const CsvDialect& dialect = {},
                       std::size_t maximumRowSize = CsvBlocks::usualMaximumRowSize)
        : _blocks(std::move(source), dialect, maximumRowSize), _rows(dialect)
    {
    }

    /// Reads the next row; empty lines are rows with empty content.
    /// @return false at the end of the input.
    /// @throws FileFailure "LINE: reason" for a row that is too long or a quote that is never closed.
    bool Next(CsvRow& row)
    {
        while (!_rows.Next(row))
        {
            if (!_blocks.Next(_block))
                return false;
            _rows.Begin(_block);
        }
        return true;
    }

private:
    CsvBlocks _blocks;
    CsvBlock _block;
    CsvRows _rows;
};
}  // namespace nxtick

#endif
