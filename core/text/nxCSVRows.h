// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXCSVROWS_H
#define CORE_TEXT_NXCSVROWS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/nxExport.h"
#include "core/text/inline/nxCSVMarks.h"
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
        const std::uint64_t ends = _Get(&nxCSVMarks::rowEnds);
        const char* const lineEnd = ends != 0 ? _begin + std::countr_zero(ends) : _FindFarEnd();
        if (lineEnd == nullptr)
            return false;
        const std::size_t feed = lineEnd != _textEnd ? 1 : 0;
        const std::size_t turn = lineEnd != _begin && lineEnd[-1] == '\r' ? 1 : 0;
        const auto size = static_cast<std::size_t>(lineEnd - _begin) - turn;
        row.content = {_begin, size};
        row.terminator = {lineEnd - turn, turn + feed};
        row.line = _line++;
        row.dialect = _dialect;
        // The end of the row is that of its last field.
        const std::uint64_t end = std::uint64_t{1} << (size % 64);
        row._ends = (_Get(&nxCSVMarks::separators) & (end - 1)) | end;
        row._marks = _GetMarks();
        row._shift = _GetShift();
        row.hasQuotes = false;
        _begin = lineEnd + 1;
        if (_rowEnd != nullptr)
            _TakeQuotes(row);
        return true;
    }

private:
    std::size_t _GetOffset() const { return static_cast<std::size_t>(_begin - _marked); }
    const nxCSVMarks* _GetMarks() const { return _marks + _GetOffset() / 64; }
    unsigned _GetShift() const { return static_cast<unsigned>(_GetOffset() % 64); }
    // Marks of the 64 bytes at _begin.
    std::uint64_t _Get(std::uint64_t nxCSVMarks::*marks) const
    {
        const nxCSVMarks* const words = _GetMarks();
        return nxCSVMarks::Join(words[0].*marks, words[1].*marks, _GetShift());
    }

    const char* _FindFarEnd();
    std::size_t _Mark();
    void _MarkPlain(const char* text, std::size_t size, nxCSVMarks* words, std::size_t count) const;
    void _MarkQuoted();
    void _TakeQuotes(nxCSVRow& row);

    nxCSVDialect _dialect;
    const nxCSVBlock* _block = nullptr;
    const char* _textEnd = nullptr;
    const char* _begin = nullptr;   // of the next row
    unsigned long long _line = 1;   // of the next row
    const char* _marked = nullptr;  // the text that has the first mark
    const nxCSVMarks* _marks;       // of whole words of text, and two without marks
    std::vector<nxCSVMarks> _words;
    std::size_t _wordCount = 0;                    // of those with marks
    const nxCSVBlock::_RowEnd* _rowEnd = nullptr;  // of the next row, in a block with quotes
};

#endif
