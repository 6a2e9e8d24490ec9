#ifndef NXTICK_CSVREADER_H
#define NXTICK_CSVREADER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nxtick
{
/// One row of a CSV file, as the bytes that stand in the file. Valid until the reader is asked for the next row.
struct CsvRow
{
    std::string_view content;     ///< Everything but the line end; may hold line ends inside quotes.
    std::string_view terminator;  ///< "\n", "\r\n", or empty where the file ends without one.
    std::uint64_t line = 0;       ///< The line on which the row begins, from 1.
    bool hasQuotes = false;       ///< Whether any byte of the row is a quote.

    /// Finds a field, takes its quotes off, and counts the fields.
    /// @param index from 0.
    /// @param scratch holds the text where quotes had to be taken out of it.
    /// @param field the text; untouched when the row has no such field.
    /// @return how many fields the row has.
    std::size_t FindField(std::size_t index, std::string& scratch, std::string_view& field) const;

    /// All fields, without quotes.
    std::vector<std::string> GetFields() const;

private:
    std::size_t _FindQuoted(std::size_t index, std::string& scratch, std::string_view& field) const;
};

/// Reads CSV row by row in bounded memory: fields divided by commas, a field in double quotes may hold commas, line
/// ends and doubled quotes, lines end with LF or CRLF. A quote inside an unquoted field is an ordinary character.
///
/// Why not a library: the rows have to go through byte for byte, so the reader must say where each row begins and ends
/// in the input. The CSV libraries at hand hand over fields whose quotes, blanks and line ends are already taken off,
/// skip empty lines without a word, or split a row at a line end inside quotes, and the ones that stream look at every
/// byte through a callback. This reader looks for line ends and quotes a block at a time and copies nothing.
class CsvReader
{
public:
    /// Fills a buffer of the given size: @return how many bytes came, 0 at the end. Reports failures by throwing
    /// Failure.
    using Source = std::function<std::size_t(char*, std::size_t)>;

    static constexpr std::size_t usualMaximumRowSize = std::size_t{1} << 24;

    /// @param source is called once for each block and lives at least as long as the reader.
    /// @param maximumRowSize a row may be this long, its line end included. The memory that the reader takes is 1 MiB,
    ///        and this much at most once rows are longer.
    explicit CsvReader(Source source, std::size_t maximumRowSize = usualMaximumRowSize);

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
    const char* _NextQuote();
    bool _Refill();
    void _MakeRoom();
    void _TakeRow(CsvRow& row, std::size_t size, std::size_t terminatorSize);

    Source _source;
    std::size_t _maximumRowSize;
    std::vector<char> _buffer;
    std::size_t _begin = 0;  // the current row in _buffer
    std::size_t _end = 0;    // of the bytes read
    // How far the search for the current row's end has come, so that input which trickles in is looked at once.
    std::size_t _seen = 0;
    bool _rowHasQuotes = false;
    State _state = State::FieldStart;
    const char* _quote = nullptr;  // the first quote at or behind the place already searched; null: not known
    std::uint64_t _line = 1;
    bool _atEnd = false;
};
}  // namespace nxtick

#endif
