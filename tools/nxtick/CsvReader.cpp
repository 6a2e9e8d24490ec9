// SPDX-License-Identifier: Apache-2.0
#include "CsvReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "Failure.h"

namespace nxtick
{
namespace
{
constexpr std::size_t usualBufferSize = std::size_t{1} << 20;
}  // namespace

CsvReader::CsvReader(Source source, const CsvDialect& dialect, std::size_t maximumRowSize)
    : _source(std::move(source)),
      _dialect(dialect),
      _maximumRowSize(maximumRowSize),
      _buffer(std::min(usualBufferSize, maximumRowSize))
{
}

bool CsvReader::Next(CsvRow& row)
{
    while (!_FindLineEnd())
    {
        if (_Refill())
            continue;
        if (_begin == _end)
            return false;
        if (_rowHasQuotes && _state == State::Quoted)
            throw FileFailure(std::to_string(_line) + ": a quote is opened in this row and never closed");
        _TakeRow(row, _seen, 0);
        return true;
    }
    _TakeRow(row, _seen, 1);
    return true;
}

// Moves _seen to the end of the current row. @return false when that end has not been read yet.
bool CsvReader::_FindLineEnd()
{
    if (!_rowHasQuotes)
    {
        const char* const begin = _buffer.data() + _begin;
        const std::string_view rest(begin + _seen, _end - _begin - _seen);
        const std::size_t size = std::min(rest.find('\n'), rest.size());
        if (_NextQuote() >= rest.data() + size)
        {
            _seen += size;
            return size != rest.size();
        }
        _rowHasQuotes = true;
        _state = State::FieldStart;
        _seen = 0;
    }
    return _FindLineEndOutsideQuotes();
}

// Where the row has quotes every byte counts: a line end inside quotes is part of a field.
bool CsvReader::_FindLineEndOutsideQuotes()
{
    for (; _begin + _seen < _end; ++_seen)
    {
        const char c = _buffer[_begin + _seen];
        if (c == '\n' && _state != State::Quoted)
            return true;
        _state = _GetNext(_state, c);
    }
    return false;
}

CsvReader::State CsvReader::_GetNext(State state, char c) const
{
    const bool isQuote = c == _dialect.quote;
    if (state == State::Quoted)
        return isQuote ? State::QuoteInQuoted : State::Quoted;
    if (c == _dialect.separator)
        return State::FieldStart;
    return isQuote && state != State::Plain ? State::Quoted : State::Plain;
}

// The first quote in the bytes that were read and not yet searched, or the end of those bytes.
const char* CsvReader::_NextQuote()
{
    const char* const from = _buffer.data() + _begin + _seen;
    if (_quote == nullptr || _quote < from)
    {
        const char* const end = _buffer.data() + _end;
        const void* const found =
            _dialect.hasQuotes ? std::memchr(from, _dialect.quote, static_cast<std::size_t>(end - from)) : nullptr;
        _quote = found == nullptr ? end : static_cast<const char*>(found);
    }
    return _quote;
}

// Appends another block to what has been read of the current row. @return false at the end of the input.
bool CsvReader::_Refill()
{
    if (_atEnd)
        return false;
    if (_begin != 0)
    {
        std::memmove(_buffer.data(), _buffer.data() + _begin, _end - _begin);
        _end -= _begin;
        _begin = 0;
    }
    if (_end == _buffer.size())
        _MakeRoom();
    const std::size_t size = _source(_buffer.data() + _end, _buffer.size() - _end);
    _atEnd = size == 0;
    _end += size;
    _quote = nullptr;
    return !_atEnd;
}

void CsvReader::_MakeRoom()
{
    if (_buffer.size() >= _maximumRowSize)
        throw FileFailure(std::to_string(_line) + ": the row that begins here is longer than " +
                          std::to_string(_maximumRowSize) + " bytes, the most that is read" +
                          (_rowHasQuotes && _state == State::Quoted ? "; is a quote never closed?" : ""));
    _buffer.resize(std::min(2 * _buffer.size(), _maximumRowSize));
}

void CsvReader::_TakeRow(CsvRow& row, std::size_t size, std::size_t terminatorSize)
{
    const char* const begin = _buffer.data() + _begin;
    row.line = _line;
    row.hasQuotes = _rowHasQuotes;
    row.dialect = _dialect;
    _line += terminatorSize + (_rowHasQuotes ? static_cast<std::uint64_t>(std::count(begin, begin + size, '\n')) : 0);
    _begin += size + terminatorSize;
    if (size != 0 && begin[size - 1] == '\r')
    {
        --size;
        ++terminatorSize;
    }
    row.content = {begin, size};
    row.terminator = {begin + size, terminatorSize};
    _seen = 0;
    _rowHasQuotes = false;
}
}  // namespace nxtick
