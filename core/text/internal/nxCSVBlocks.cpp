// SPDX-License-Identifier: Apache-2.0
#include "core/text/internal/nxCSVBlocks.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

#include "core/text/internal/nxByteMarks.h"

namespace
{
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};
// Places in a block are 32 bits wide.
constexpr std::size_t largestBlock = std::numeric_limits<std::uint32_t>::max() - 2 * nxCSVBlock::ReadableAfter;

static_assert(nxCSVBlock::ReadableAfter >= nxByteMarks::readableAfter);

std::size_t Clamp(std::size_t size) { return std::clamp<std::size_t>(size, 1, largestBlock); }
}  // namespace

nxCSVBlocks::nxCSVBlocks(Source source, void* context, const nxCSVDialect& dialect, std::size_t maximumRowSize,
                         std::size_t blockSize)
    : _source(source),
      _context(context),
      _dialect(dialect),
      _maximumRowSize(Clamp(maximumRowSize)),
      _blockSize(std::min(Clamp(blockSize), _maximumRowSize))
{
    if (!dialect.CanDivide())
        static_cast<void>(_Fail(nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR),
                                "separator, quote and comment must be different characters and no line ends"));
}

nxErrorEnum nxCSVBlocks::Next(nxCSVBlock& block, bool& hasBlock)
{
    hasBlock = false;
    if (!_error.IsOK())
        return _error;
    _Begin(block);
    if (const nxErrorEnum error = _Cut(block); !error.IsOK())
    {
        block._size = 0;
        block._ends.clear();
        return error;
    }
    _KeepRest(block);
    hasBlock = block._size != 0;
    return nxErrorEnum();
}

nxErrorEnum nxCSVBlocks::_Cut(nxCSVBlock& block)
{
    if (std::exchange(_isAtStart, false))
        if (const nxErrorEnum error = _TakeMark(block); !error.IsOK())
            return error;
    while (!_FindRows(block))
    {
        if (_isAtEnd)
            return _TakeLast(block);
        if (const nxErrorEnum error = _Fill(block); !error.IsOK())
            return error;
    }
    return nxErrorEnum();
}

// A row that is too long or never ends is found only after the rows before it were taken, so the rest holds no row.
void nxCSVBlocks::_Begin(nxCSVBlock& block)
{
    if (const std::size_t least = std::max(_blockSize, _rest.size()) + nxCSVBlock::ReadableAfter;
        block._bytes.size() < least)
        block._bytes.resize(least);
    std::copy(_rest.begin(), _rest.end(), block._bytes.begin());
    _end = _rest.size();
    block._size = 0;
    block._line = _line;
    block._ends.clear();
    _seen = 0;
    _row = 0;
    _hasQuotes = false;
    _rowHasQuotes = false;
    _state = State::FieldStart;
}

// Drops the mark with which a text in UTF-8 may begin.
nxErrorEnum nxCSVBlocks::_TakeMark(nxCSVBlock& block)
{
    const auto begins = [&](std::string_view mark)
    { return std::string_view(block._bytes.data(), std::min(_end, mark.size())) == mark.substr(0, _end); };
    while (!_isAtEnd && (_end == 0 || (_end < utf8Mark.size() && begins(utf8Mark)) ||
                         (_end < 2 && std::any_of(std::begin(utf16Marks), std::end(utf16Marks), begins))))
        if (const nxErrorEnum error = _Fill(block); !error.IsOK())
            return error;
    if (_end >= 2 && std::any_of(std::begin(utf16Marks), std::end(utf16Marks), begins))
        return _Fail(nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR), "this is UTF-16; convert it to UTF-8 first");
    _hasByteOrderMark = _end >= utf8Mark.size() && begins(utf8Mark);
    if (_hasByteOrderMark)
    {
        _end -= utf8Mark.size();
        std::memmove(block._bytes.data(), block._bytes.data() + utf8Mark.size(), _end);
    }
    return nxErrorEnum();
}

// Adds what the source has now; notes the end of the input.
nxErrorEnum nxCSVBlocks::_Fill(nxCSVBlock& block)
{
    if (const nxErrorEnum error = _MakeRoom(block); !error.IsOK())
        return error;
    const std::size_t room = std::min(block._bytes.size() - nxCSVBlock::ReadableAfter, _maximumRowSize) - _end;
    std::size_t read = 0;
    if (const nxErrorEnum error = _source(_context, block._bytes.data() + _end, room, read); !error.IsOK())
        return _Fail(error, "the text cannot be read");
    _isAtEnd = read == 0;
    _end += std::min(read, room);
    return nxErrorEnum();
}

nxErrorEnum nxCSVBlocks::_MakeRoom(nxCSVBlock& block)
{
    if (_end >= _maximumRowSize)
        return _Fail(nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR),
                     "the row that begins here is longer than " + std::to_string(_maximumRowSize) +
                         " bytes, the most that is read" +
                         (_rowHasQuotes && _state == State::Quoted ? "; is a quote never closed?" : ""));
    if (_end == block._bytes.size() - nxCSVBlock::ReadableAfter)
        block._bytes.resize(std::min(2 * _end, _maximumRowSize) + nxCSVBlock::ReadableAfter);
    return nxErrorEnum();
}

// Looks for row ends in the bytes that came. @return whether the block has a whole row.
bool nxCSVBlocks::_FindRows(nxCSVBlock& block)
{
    const char* const fresh = block._bytes.data() + _seen;
    const std::size_t size = _end - _seen;
    if (!_hasQuotes)
        _hasQuotes = _dialect.quote != '\0' && std::memchr(fresh, _dialect.quote, size) != nullptr;
    if (_hasQuotes)
        _FindRowsWithQuotes(block);
    else if (const std::size_t last = std::string_view(fresh, size).rfind('\n'); last != std::string_view::npos)
        block._size = _seen + last + 1;
    _seen = _end;
    return block._size != 0;
}

void nxCSVBlocks::_FindRowsWithQuotes(nxCSVBlock& block)
{
    const char* const begin = block._bytes.data();
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
            // A quote in a comment is a character like any other.
            const bool isComment = _dialect.comment != '\0' && *at == _dialect.comment;
            _rowHasQuotes = quote < rowEnd && !isComment;
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
        _row = block._size = static_cast<std::size_t>(at - begin);
        block._ends.push_back({static_cast<std::uint32_t>(_row), _rowHasQuotes});
        _rowHasQuotes = false;
    }
}

// The end of a row with quotes: a line end inside quotes is part of a field. @return end when it has not been read yet.
const char* nxCSVBlocks::_FindLineEnd(const char* at, const char* end)
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

nxCSVBlocks::State nxCSVBlocks::_GetNext(State state, char c) const
{
    const bool isQuote = c == _dialect.quote;
    if (state == State::Quoted)
        return isQuote ? State::QuoteInQuoted : State::Quoted;
    if (c == _dialect.separator || (state == State::FieldStart && _dialect.trimBlanks && _dialect.IsBlank(c)))
        return State::FieldStart;
    return isQuote && state != State::Plain ? State::Quoted : State::Plain;
}

// At the end of the input: what is left is a row without a line end.
nxErrorEnum nxCSVBlocks::_TakeLast(nxCSVBlock& block)
{
    if (_rowHasQuotes && _state == State::Quoted)
        return _Fail(nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR), "a quote is opened in this row and never closed");
    block._size = _end;
    if (_end != 0 && _hasQuotes)
        block._ends.push_back({static_cast<std::uint32_t>(_end), _rowHasQuotes});
    return nxErrorEnum();
}

// Keeps what follows the whole rows for the next block.
void nxCSVBlocks::_KeepRest(const nxCSVBlock& block)
{
    const char* const begin = block._bytes.data();
    _rest.assign(begin + block._size, begin + _end);
    _line += nxByteMarks('\n').Count(block.GetText());
}

nxErrorEnum nxCSVBlocks::_Fail(const nxErrorEnum& error, std::string text)
{
    _error = error;
    _errorLine = _line;
    _errorText = std::move(text);
    return error;
}
