// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVREADER_H
#define NXTICK_CSVREADER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "CsvRow.h"

namespace nxtick
{
/// Reads CSV row by row in bounded memory. A field in quotes may hold separators, line ends and doubled quotes; lines
/// end with LF or CRLF. A quote inside an unquoted field is an ordinary character.
///
/// Why not a library: rows are copied byte for byte, so the reader must say where each row begins and ends in the
/// input. The available CSV libraries return fields without their quotes, blanks and line ends, skip empty lines, or
/// split a row at a line end inside quotes, and the streaming ones call back for every byte. This reader searches for
/// line ends and quotes a block at a time and copies nothing.
class CsvReader
{
public:
    /// Fills a buffer of the given size. @return the number of bytes read, 0 at the end. @throws Failure
    using Source = std::function<std::size_t(char*, std::size_t)>;

    static constexpr std::size_t usualMaximumRowSize = std::size_t{1} << 24;

    /// @param source is called once for each block and lives at least as long as the reader.
    /// @param maximumRowSize the longest row in bytes, its line end included. The reader takes 1 MiB of memory, and up
    ///        to this size when rows are longer.
    explicit CsvReader(Source source, const CsvDialect& dialect = {}, std::size_t maximumRowSize = usualMaximumRowSize);

    /// Reads the next row; empty lines are rows with empty content.
    /// @return false at the end of the input.
    /// @throws FileFailure "LINE: reason" for a row that is too long or a quote that is never closed.
    bool Next(CsvRow& row);

private:
    enum class State
    {
        FieldStart,
        Plain,
        Quoted,
        QuoteInQuoted
    };

    bool _FindLineEnd();
    bool _FindLineEndOutsideQuotes();
    State _GetNext(State state, char c) const;
    const char* _NextQuote();
    bool _Refill();
    void _MakeRoom();
    void _TakeRow(CsvRow& row, std::size_t size, std::size_t terminatorSize);

    Source _source;
    CsvDialect _dialect;
    std::size_t _maximumRowSize;
    std::vector<char> _buffer;
    std::size_t _begin = 0;  // the current row in _buffer
    std::size_t _end = 0;    // of the bytes read
    // How far the search for the current row's end has come: input that trickles in is searched only once.
    std::size_t _seen = 0;
    bool _rowHasQuotes = false;
    State _state = State::FieldStart;
    const char* _quote = nullptr;  // the first quote that was not searched yet; null: not known
    std::uint64_t _line = 1;
    bool _atEnd = false;
};
}  // namespace nxtick

#endif
