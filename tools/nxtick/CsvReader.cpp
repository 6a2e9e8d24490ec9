// SPDX-License-Identifier: Apache-2.0
#include "CsvReader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "Failure.h"

namespace nxtick
{
namespace
{
constexpr std::size_t usualBufferSize = std::size_t{1} << 20;

// Takes the quotes off one raw field. Text after the closing quote is kept as it is.
std::string Unquote(std::string_view raw)
{
    std::string text;
    text.reserve(raw.size());
    bool isQuoted = true;
    for (std::size_t i = 1; i < raw.size(); ++i)
    {
        if (isQuoted && raw[i] == '"')
        {
            if (i + 1 == raw.size() || raw[i + 1] != '"')
            {
                isQuoted = false;
                continue;
            }
            ++i;
        }
        text += raw[i];
    }
    return text;
}

// The raw field that begins at the start of rest.
std::string_view FirstField(std::string_view rest)
{
    std::size_t from = 0;
    if (!rest.empty() && rest.front() == '"')
    {
        for (from = rest.find('"', 1); from != std::string_view::npos; from = rest.find('"', from + 2))
            if (from + 1 == rest.size() || rest[from + 1] != '"')
                break;
        if (from == std::string_view::npos)
            return rest;
    }
    return rest.substr(0, rest.find(',', from));
}

// Bit 7 of each of eight bytes that is a comma.
std::uint64_t CommasOf(const char* bytes)
{
    static_assert(std::endian::native == std::endian::little, "the first byte has the lowest bits");
    constexpr std::uint64_t low7 = 0x7F7F7F7F7F7F7F7F;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    word ^= 0x2C2C2C2C2C2C2C2C;
    return ~(((word & low7) + low7) | word | low7);
}

std::size_t CountBytes(std::uint64_t marks) { return ((marks >> 7) * 0x0101010101010101) >> 56; }

// Counts the commas of a row without quotes, eight bytes at a time, and finds one field.
struct CommaSearch
{
    std::size_t before;  // this many commas are before the field
    std::size_t count = 0;
    std::size_t begin = 0;
    std::size_t end = std::string_view::npos;

    void Add(std::size_t at)
    {
        if (++count == before)
            begin = at + 1;
        else if (count == before + 1)
            end = at;
    }

    void AddAll(std::size_t at, std::uint64_t commas)
    {
        if (count > before)
            count += CountBytes(commas);
        else
            for (; commas != 0; commas &= commas - 1)
                Add(at + static_cast<std::size_t>(std::countr_zero(commas)) / 8);
    }

    void Search(std::string_view row)
    {
        std::size_t at = 0;
        for (; at + 8 <= row.size(); at += 8)
            AddAll(at, CommasOf(row.data() + at));
        if (const std::size_t seen = at + 8 - row.size(); at != 0 && seen < 8)  // of the last eight bytes
            AddAll(row.size() - 8, CommasOf(row.data() + row.size() - 8) & (~std::uint64_t{0} << (8 * seen)));
        else
            for (; at < row.size(); ++at)
                if (row[at] == ',')
                    Add(at);
    }
};
}  // namespace

std::size_t CsvRow::FindField(std::size_t index, std::string& scratch, std::string_view& field) const
{
    if (hasQuotes)
        return _FindQuoted(index, scratch, field);
    CommaSearch commas{index};
    commas.Search(content);
    if (commas.count >= index)
        field = content.substr(commas.begin, commas.end - commas.begin);
    return commas.count + 1;
}

std::size_t CsvRow::_FindQuoted(std::size_t index, std::string& scratch, std::string_view& field) const
{
    std::string_view rest = content;
    for (std::size_t count = 1;; ++count)
    {
        const std::string_view raw = FirstField(rest);
        if (count == index + 1)
            field = !raw.empty() && raw.front() == '"' ? std::string_view(scratch = Unquote(raw)) : raw;
        if (raw.size() == rest.size())
            return count;
        rest.remove_prefix(raw.size() + 1);
    }
}

std::vector<std::string> CsvRow::GetFields() const
{
    std::vector<std::string> fields;
    std::string_view rest = content;
    for (;;)
    {
        const std::string_view raw = FirstField(rest);
        fields.push_back(!raw.empty() && raw.front() == '"' ? Unquote(raw) : std::string(raw));
        if (raw.size() == rest.size())
            return fields;
        rest.remove_prefix(raw.size() + 1);
    }
}

CsvReader::CsvReader(Source source, std::size_t maximumRowSize)
    : _source(std::move(source)), _maximumRowSize(maximumRowSize), _buffer(std::min(usualBufferSize, maximumRowSize))
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

CsvReader::State CsvReader::_GetNext(State state, char c)
{
    const bool isQuote = c == '"';
    if (state == State::Quoted)
        return isQuote ? State::QuoteInQuoted : State::Quoted;
    if (c == ',')
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
        const void* const found = std::memchr(from, '"', static_cast<std::size_t>(end - from));
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
