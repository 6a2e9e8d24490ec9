// SPDX-License-Identifier: Apache-2.0
#include "CsvBlocks.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "Failure.h"

namespace nxtick
{
namespace
{
constexpr std::size_t usualBlockSize = std::size_t{1} << 18;

void Resize(CsvBlock& block, std::size_t size) { block.bytes.resize(size + ByteMarks::readableAfter); }
std::size_t GetCapacity(const CsvBlock& block) { return block.bytes.size() - ByteMarks::readableAfter; }
}  // namespace

CsvBlocks::CsvBlocks(Source source, const CsvDialect& dialect, std::size_t maximumRowSize)
    : _source(std::move(source)), _dialect(dialect), _maximumRowSize(maximumRowSize)
{
}

bool CsvBlocks::Next(CsvBlock& block)
{
    _Begin(block);
    bool isWhole = _FindRows(block);
    while (!isWhole && _Fill(block))
        isWhole = _FindRows(block);
    if (!isWhole)
        _TakeLast(block);
    _Cut(block);
    return block.size != 0;
}

// A row that is too long or never ends is found only after the rows before it were taken, so the rest holds no row.
void CsvBlocks::_Begin(CsvBlock& block)
{
    if (const std::size_t least = std::max(std::min(usualBlockSize, _maximumRowSize), _rest.size());
        block.bytes.size() < least + ByteMarks::readableAfter)
        Resize(block, least);
    std::copy(_rest.begin(), _rest.end(), block.bytes.begin());
    _end = _rest.size();
    block.size = 0;
    block.line = _line;
    block.ends.clear();
    _seen = 0;
    _row = 0;
    _hasQuotes = false;
    _rowHasQuotes = false;
    _state = State::FieldStart;
}

// Adds what the source has now. @return false at the end of the input.
bool CsvBlocks::_Fill(CsvBlock& block)
{
    if (_isAtEnd)
        return false;
    if (_end == std::min(GetCapacity(block), _maximumRowSize))
        _MakeRoom(block);
    const std::size_t size = _source(block.bytes.data() + _end, std::min(GetCapacity(block), _maximumRowSize) - _end);
    _isAtEnd = size == 0;
    _end += size;
    return !_isAtEnd;
}

void CsvBlocks::_MakeRoom(CsvBlock& block) const
{
    if (_end >= _maximumRowSize)
        throw FileFailure(std::to_string(_line) + ": the row that begins here is longer than " +
                          std::to_string(_maximumRowSize) + " bytes, the most that is read" +
                          (_rowHasQuotes && _state == State::Quoted ? "; is a quote never closed?" : ""));
    Resize(block, std::min(2 * _end, _maximumRowSize));
}

// Looks for row ends in the bytes that came. @return whether the block has a whole row.
bool CsvBlocks::_FindRows(CsvBlock& block)
{
    const char* const fresh = block.bytes.data() + _seen;
    const std::size_t size = _end - _seen;
    if (!_hasQuotes)
        _hasQuotes = _dialect.hasQuotes && std::memchr(fresh, _dialect.quote, size) != nullptr;
    if (_hasQuotes)
        _FindRowsWithQuotes(block);
    else if (const void* const last = ::memrchr(fresh, '\n', size); last != nullptr)
        block.size = static_cast<std::size_t>(static_cast<const char*>(last) - block.bytes.data()) + 1;
    _seen = _end;
    return block.size != 0;
}

void CsvBlocks::_FindRowsWithQuotes(CsvBlock& block)
{
    const char* const begin = block.bytes.data();
    const char* const end = begin + _end;
    const char* at = begin + (_rowHasQuotes ? _seen : _row);
    const char* quote = at;  // the first one at or after the place of the search
    while (at != end)
    {
        if (!_rowHasQuotes)
        {
            const void* const lineEnd = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
            const char* const rowEnd = lineEnd == nullptr ? end : static_cast<const char*>(lineEnd);
            if (quote <= at)
            {
                const void* const found = std::memchr(at, _dialect.quote, static_cast<std::size_t>(end - at));
                quote = found == nullptr ? end : static_cast<const char*>(found);
            }
            _rowHasQuotes = quote < rowEnd;
            _state = State::FieldStart;
            if (!_rowHasQuotes && lineEnd == nullptr)
                return;
            if (!_rowHasQuotes)
                at = rowEnd;
        }
        if (_rowHasQuotes)
            at = _FindLineEnd(at, end);
        if (at == end)
            return;
        ++at;
        _row = block.size = static_cast<std::size_t>(at - begin);
        block.ends.push_back({static_cast<std::uint32_t>(_row), _rowHasQuotes});
        _rowHasQuotes = false;
    }
}

// The end of a row with quotes: a line end inside quotes is part of a field. @return end when it has not been read yet.
const char* CsvBlocks::_FindLineEnd(const char* at, const char* end)
{
    State state = _state;
    for (; at != end; ++at)
    {
        if (*at == '\n' && state != State::Quoted)
            break;
        state = _GetNext(state, *at);
    }
    _state = state;
    return at;
}

CsvBlocks::State CsvBlocks::_GetNext(State state, char c) const
{
    const bool isQuote = c == _dialect.quote;
    if (state == State::Quoted)
        return isQuote ? State::QuoteInQuoted : State::Quoted;
    if (c == _dialect.separator)
        return State::FieldStart;
    return isQuote && state != State::Plain ? State::Quoted : State::Plain;
}

// At the end of the input: what is left is a row without a line end.
void CsvBlocks::_TakeLast(CsvBlock& block)
{
    if (_rowHasQuotes && _state == State::Quoted)
        throw FileFailure(std::to_string(_line) + ": a quote is opened in this row and never closed");
    block.size = _end;
    if (_end != 0 && _hasQuotes)
        block.ends.push_back({static_cast<std::uint32_t>(_end), _rowHasQuotes});
}

// Keeps what follows the whole rows for the next block.
void CsvBlocks::_Cut(CsvBlock& block)
{
    const char* const begin = block.bytes.data();
    _rest.assign(begin + block.size, begin + _end);
    _line += ByteMarks('\n').Count({begin, block.size});
    if (block.size != 0)
        _endsInLine = begin[block.size - 1] != '\n' && begin[block.size - 1] != '\r';
}
}  // namespace nxtick
