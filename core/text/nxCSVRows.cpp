// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxCSVRows.h"

#include <algorithm>
#include <bit>

#include "core/text/internal/nxByteMarks.h"
#include "core/text/internal/nxCSVFieldText.h"

namespace
{
// The bytes that are indexed at a time: their index stays in the processor's nearest cache.
constexpr std::uint32_t indexStep = 4096;
}  // namespace

nxCSVRows::nxCSVRows(const nxCSVDialect& dialect) : _dialect(dialect) {}

void nxCSVRows::Begin(const nxCSVBlock& block)
{
    _block = &block;
    _text = _begin = block._bytes.data();
    _textEnd = _text + block._size;
    _line = block._line;
    _row = _lastRow = nullptr;
    _rowEnds = _ends.get();
    _endCount = 0;
    _indexed = 0;
    _nextRowEnd = 0;
}

// Finds the next rows, some KiB of them or one that is longer. @return false at the end of the block.
bool nxCSVRows::_Index()
{
    if (_begin == _textEnd)
        return false;
    if (_rows == nullptr)
        _rows = std::make_unique_for_overwrite<RowMark[]>(indexStep + 2);
    // The ends of a row that was not whole are kept.
    const auto given = static_cast<std::size_t>(_rowEnds - _ends.get());
    std::copy(_ends.get() + given, _ends.get() + _endCount, _ends.get());
    _endCount -= given;
    _rowCount = 0;
    const auto size = static_cast<std::uint32_t>(_block->_size);
    while (_rowCount == 0)
        if (_block->_ends.empty())
        {
            _IndexPlain(std::min(size - _indexed, indexStep) + _indexed);
            if (_indexed == size && _textEnd[-1] != '\n')
                _EndRow(size, 0);
        }
        else
            _IndexWithQuotes();
    _row = _rows.get();
    _lastRow = _row + _rowCount;
    _rowEnds = _ends.get();
    return true;
}

// Makes room for all ends that some bytes can hold.
void nxCSVRows::_Reserve(std::size_t bytes)
{
    const std::size_t needed = _endCount + bytes + 1;
    if (needed <= _endCapacity)
        return;
    const std::size_t capacity = std::max(2 * _endCapacity, needed);
    auto ends = std::make_unique_for_overwrite<std::uint32_t[]>(capacity);
    std::copy_n(_ends.get(), _endCount, ends.get());
    _ends = std::move(ends);
    _endCapacity = capacity;
}

// Indexes bytes in which every separator and every line end counts.
void nxCSVRows::_IndexPlain(std::uint32_t end)
{
    _Reserve(end - _indexed);
    const nxByteMarks lineEnds('\n');
    const nxByteMarks separators(_dialect.separator);
    std::uint32_t count = static_cast<std::uint32_t>(_endCount);
    RowMark* row = _rows.get() + _rowCount;
    std::uint32_t* const ends = _ends.get();
    for (std::uint32_t at = _indexed; at < end; at += 64)
    {
        const std::uint64_t feeds = lineEnds.Find64(_text + at);
        std::uint64_t marks = feeds | separators.Find64(_text + at);
        if (end - at < 64)
            marks &= (std::uint64_t{1} << (end - at)) - 1;
        for (; marks != 0; marks &= marks - 1)
        {
            const auto bit = static_cast<std::uint32_t>(std::countr_zero(marks));
            ends[count] = at + bit;
            *row = {count++, 0};
            row += feeds >> bit & 1;
        }
    }
    _endCount = count;
    _rowCount = static_cast<std::size_t>(row - _rows.get());
    _indexed = end;
}

// The same for a block of which the row ends are known.
void nxCSVRows::_IndexWithQuotes()
{
    for (const std::uint32_t begin = _indexed; _indexed < _block->_size && _indexed - begin < indexStep; ++_nextRowEnd)
    {
        const nxCSVBlock::RowEnd& row = _block->_ends[_nextRowEnd];
        const bool hasFeed = _text[row.at - 1] == '\n';
        if (row.hasQuotes)
            _IndexQuoted(row.at);
        else
            _IndexPlain(row.at);
        if (!row.hasQuotes && !hasFeed)
            _EndRow(row.at, 0);
    }
}

// Indexes one row with quotes.
void nxCSVRows::_IndexQuoted(std::uint32_t end)
{
    const std::string_view row(_text + _indexed, end - _indexed);
    const std::uint32_t feeds = row.back() == '\n' ? 1 : 0;
    const std::string_view content = row.substr(0, row.size() - feeds);
    _Reserve(row.size());
    const nxCSVFieldText text(_dialect);
    for (std::string_view rest = content;;)
    {
        const std::size_t size = text.GetFirst(rest).size();
        if (size == rest.size())
            break;
        rest.remove_prefix(size + 1);
        _ends[_endCount++] = static_cast<std::uint32_t>(rest.data() - 1 - _text);
    }
    _EndRow(end - feeds, static_cast<std::uint32_t>(nxByteMarks('\n').Count(content)) + 1);
    _indexed = end;
}

void nxCSVRows::_EndRow(std::uint32_t end, std::uint32_t quotedLines)
{
    _rows[_rowCount++] = {static_cast<std::uint32_t>(_endCount), quotedLines};
    _ends[_endCount++] = end;
}
