// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVBLOCKS_H
#define NXTICK_CSVBLOCKS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "CsvBlock.h"

namespace nxtick
{
/// Reads CSV in blocks of whole rows and in bounded memory. A field in quotes may hold separators, line ends and doubled
/// quotes; lines end with LF or CRLF. A quote inside an unquoted field is an ordinary character.
///
/// A block without a quote is cut at its last line end, at the speed of memory. From the first quote of a block on, every
/// byte counts, because a quote decides whether a line end is one. A block ends where the input pauses, with the rows
/// that are whole until then.
class CsvBlocks
{
public:
    /// Fills a buffer of the given size. @return the number of bytes read, 0 at the end. @throws Failure
    using Source = std::function<std::size_t(char*, std::size_t)>;

    static constexpr std::size_t usualMaximumRowSize = std::size_t{1} << 24;

    /// @param source is called once for each block, more often if a row is longer than what came. It lives at least as
    ///        long as the object.
    /// @param maximumRowSize the longest row in bytes, its line end included, and below 4 GiB. A block has 256 KiB, and
    ///        up to this size when rows are longer.
    explicit CsvBlocks(Source source, const CsvDialect& dialect = {}, std::size_t maximumRowSize = usualMaximumRowSize);

    /// Reads the next block, which may have any content before.
    /// @return false at the end of the input.
    /// @throws FileFailure "LINE: reason" for a row that is too long or a quote that is never closed. The rows before it
    ///         have been returned.
    bool Next(CsvBlock& block);

    /// Whether the last row so far has no line end.
    bool EndsInLine() const { return _endsInLine; }

private:
    enum class State
    {
        FieldStart,
        Plain,
        Quoted,
        QuoteInQuoted
    };

    void _Begin(CsvBlock& block);
    bool _Fill(CsvBlock& block);
    void _MakeRoom(CsvBlock& block) const;
    bool _FindRows(CsvBlock& block);
    void _FindRowsWithQuotes(CsvBlock& block);
    const char* _FindLineEnd(const char* at, const char* end);
    State _GetNext(State state, char c) const;
    void _TakeLast(CsvBlock& block);
    void _Cut(CsvBlock& block);

    Source _source;
    CsvDialect _dialect;
    std::size_t _maximumRowSize;
    std::vector<char> _rest;  // the beginning of a row that the block before did not have whole
    std::uint64_t _line = 1;
    bool _isAtEnd = false;
    bool _endsInLine = false;

    // Of the block at hand.
    std::size_t _end = 0;  // of the bytes read
    // Input that trickles in is searched only once.
    std::size_t _seen = 0;
    std::size_t _row = 0;  // the begin of the row that is being searched, once a quote was seen
    bool _hasQuotes = false;
    bool _rowHasQuotes = false;
    State _state = State::FieldStart;
};
}  // namespace nxtick

#endif
