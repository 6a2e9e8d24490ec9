// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVBLOCK_H
#define NXTICK_CSVBLOCK_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ByteMarks.h"
#include "CsvRow.h"

namespace nxtick
{
/// Whole rows that follow each other in a CSV file. Only the last row of the file may lack its line end.
struct CsvBlock
{
    /// Where a row ends whose place was sought byte by byte.
    struct RowEnd
    {
        std::uint32_t at;  ///< The end in the bytes, line end included.
        bool hasQuotes;
    };

    std::vector<char> bytes;  ///< The rows, then at least ByteMarks::readableAfter bytes of any value.
    std::size_t size = 0;     ///< Of the rows.
    std::uint64_t line = 1;   ///< On which the first row begins, from 1.
    /// Empty if the block has no quotes: then every line is a row.
    std::vector<RowEnd> ends;
};

/// The rows of a block, one after the other.
class CsvRows
{
public:
    explicit CsvRows(const CsvDialect& dialect) : _lineEnds('\n'), _dialect(dialect) {}

    /// Begins with a block, which must outlive the rows.
    void Begin(const CsvBlock& block)
    {
        _begin = _marked = block.bytes.data();
        _end = _begin + block.size;
        _line = block.line;
        _ends = block.ends.empty() ? nullptr : block.ends.data();
        _marks = 0;
        if (_begin != _end)
            _Mark();
    }

    /// @return false after the last row. Empty lines are rows with empty content.
    bool Next(CsvRow& row)
    {
        if (_begin == _end)
            return false;
        row.hasQuotes = _ends != nullptr && _ends->hasQuotes;
        row.dialect = _dialect;
        row.line = _line++;
        const char* const end = _ends != nullptr ? _TakeEnd(row.hasQuotes) : _FindEnd();
        const auto size = static_cast<std::size_t>(end - _begin);
        std::size_t terminator = end[-1] == '\n' ? 1 : 0;
        if (size > terminator && end[-1 - static_cast<std::ptrdiff_t>(terminator)] == '\r')
            ++terminator;
        row.content = {_begin, size - terminator};
        row.terminator = {end - terminator, terminator};
        _begin = end;
        return true;
    }

private:
    // The line ends of the 64 bytes at _marked, of which the block may have fewer.
    void _Mark()
    {
        const auto rest = static_cast<std::size_t>(_end - _marked);
        _marks = _lineEnds.Find64(_marked);
        if (rest < 64)
            _marks &= (std::uint64_t{1} << rest) - 1;
    }

    const char* _FindEnd()
    {
        while (_marks == 0)
        {
            if (_end - _marked <= 64)
                return _end;
            _marked += 64;
            _Mark();
        }
        const char* const end = _marked + std::countr_zero(_marks) + 1;
        _marks &= _marks - 1;
        return end;
    }

    // A row with quotes may hold line ends.
    const char* _TakeEnd(bool hasQuotes)
    {
        const char* const end = _marked + _ends->at;
        if (hasQuotes)
            _line += _lineEnds.Count({_begin, static_cast<std::size_t>(end - _begin)}) - (end[-1] == '\n' ? 1 : 0);
        ++_ends;
        return end;
    }

    ByteMarks _lineEnds;
    CsvDialect _dialect;
    const char* _begin = nullptr;  // of the next row
    const char* _end = nullptr;
    const char* _marked = nullptr;  // what _marks tells of; with _ends the begin of the block
    std::uint64_t _marks = 0;       // line ends that are still to come
    std::uint64_t _line = 1;
    const CsvBlock::RowEnd* _ends = nullptr;
};
}  // namespace nxtick

#endif
