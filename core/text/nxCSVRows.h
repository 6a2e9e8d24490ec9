// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXCSVROWS_H
#define CORE_TEXT_NXCSVROWS_H

#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/nxExport.h"
#include "core/text/nxCSVBlock.h"
#include "core/text/nxCSVRow.h"

/// The rows of a block, one after the other.
///
/// Use nxCSVParser::Next() to read rows with one thread. This class is for several threads, each of which works on blocks
/// of its own: NextBlock() costs little beside the rows.
/// - The places of all fields are found in one pass over a few KiB of rows at a time.
/// - Threads: an object serves one thread at a time.
/// @code
/// nxCSVBlock block;                 // one for each thread
/// nxCSVRows rows(parser.GetDialect());
/// bool hasBlock = false;            // NextBlock() is called under a lock
/// while (parser.NextBlock(block, hasBlock).IsOK() && hasBlock)
/// {
///     rows.Begin(block);
///     for (nxCSVRow row; rows.Next(row);)
///         Handle(row);
/// }
/// @endcode
class NX_CORE_API nxCSVRows
{
public:
    /// @param dialect that with which the blocks were read.
    explicit nxCSVRows(const nxCSVDialect& dialect = {});

    /// Begins with a block, which must outlive its rows and not change.
    void Begin(const nxCSVBlock& block);

    /// Takes the next row, empty lines and comments too.
    /// @return false after the last row.
    bool Next(nxCSVRow& row)
    {
        if (_row == _lastRow && !_Index())
            return false;
        const RowMark mark = *_row++;
        const std::uint32_t* const lastEnd = _ends.get() + mark.lastEnd;
        const char* const lineEnd = _text + *lastEnd;
        const std::size_t feed = lineEnd != _textEnd ? 1 : 0;
        const std::size_t terminator = feed + (lineEnd != _begin && lineEnd[-1] == '\r' ? 1 : 0);
        const char* const end = lineEnd + feed;
        row.content = {_begin, static_cast<std::size_t>(end - _begin) - terminator};
        row.terminator = {end - terminator, terminator};
        row.line = _line;
        row.hasQuotes = mark.quotedLines != 0;
        row.dialect = _dialect;
        row._text = _text;
        row._ends = _rowEnds;
        row._count = static_cast<std::size_t>(lastEnd + 1 - _rowEnds);
        _line += row.hasQuotes ? mark.quotedLines : 1;
        _rowEnds = lastEnd + 1;
        _begin = end;
        return true;
    }

private:
    // A row in the list of the fields' ends.
    struct RowMark
    {
        std::uint32_t lastEnd;      // the index of the end of its last field, which is the line end
        std::uint32_t quotedLines;  // how many lines a row with quotes has; 0 for a row without quotes
    };

    bool _Index();
    void _Reserve(std::size_t bytes);
    void _IndexPlain(std::uint32_t end);
    void _IndexWithQuotes();
    void _IndexQuoted(std::uint32_t end);
    void _EndRow(std::uint32_t end, std::uint32_t quotedLines);

    nxCSVDialect _dialect;
    const nxCSVBlock* _block = nullptr;
    const char* _text = nullptr;  // of the block
    const char* _textEnd = nullptr;
    const char* _begin = nullptr;  // of the next row
    unsigned long long _line = 1;  // of the next row
    const RowMark* _row = nullptr;
    const RowMark* _lastRow = nullptr;
    const std::uint32_t* _rowEnds = nullptr;  // of the fields of the next row

    // What has been indexed; the places are those in the block.
    std::unique_ptr<std::uint32_t[]> _ends;
    std::unique_ptr<RowMark[]> _rows;
    std::size_t _endCapacity = 0;
    std::size_t _endCount = 0;
    std::size_t _rowCount = 0;
    std::uint32_t _indexed = 0;
    std::size_t _nextRowEnd = 0;  // in the block's list of row ends
};

#endif
