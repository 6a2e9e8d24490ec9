// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INTERNAL_NXCSVBLOCKS_H
#define CORE_TEXT_INTERNAL_NXCSVBLOCKS_H

#include <cstddef>
#include <string>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/text/nxCSVBlock.h"
#include "core/text/nxCSVDialect.h"

/// Cuts a CSV text into blocks of whole rows, in bounded memory.
///
/// A block without a quote is cut at its last line end, at the speed of memory. From the first quote of a block on, every
/// byte counts, because a quote decides whether a line end is one. A block ends where the input pauses, with the rows
/// that are whole until then.
class nxCSVBlocks
{
public:
    /// See nxCSVParser::Source.
    typedef nxErrorEnum (*Source)(void* context, char* buffer, std::size_t size, std::size_t& read);

    /// @copydoc nxCSVParser::nxCSVParser
    nxCSVBlocks(Source source, void* context, const nxCSVDialect& dialect, std::size_t maximumRowSize,
                std::size_t blockSize);

    /// @copydoc nxCSVParser::NextBlock
    [[nodiscard]] nxErrorEnum Next(nxCSVBlock& block, bool& hasBlock);

    const nxCSVDialect& GetDialect() const { return _dialect; }
    unsigned long long GetErrorLine() const { return _errorLine; }
    const std::string& GetErrorText() const { return _errorText; }
    bool HasByteOrderMark() const { return _hasByteOrderMark; }

private:
    enum class State
    {
        FieldStart,
        Plain,
        Quoted,
        QuoteInQuoted
    };

    void _Begin(nxCSVBlock& block);
    nxErrorEnum _Cut(nxCSVBlock& block);
    nxErrorEnum _TakeMark(nxCSVBlock& block);
    nxErrorEnum _Fill(nxCSVBlock& block);
    nxErrorEnum _MakeRoom(nxCSVBlock& block);
    bool _FindRows(nxCSVBlock& block);
    void _FindRowsWithQuotes(nxCSVBlock& block);
    const char* _FindLineEnd(const char* at, const char* end);
    State _GetNext(State state, char c) const;
    nxErrorEnum _TakeLast(nxCSVBlock& block);
    void _KeepRest(const nxCSVBlock& block);
    nxErrorEnum _Fail(const nxErrorEnum& error, std::string text);

    Source _source;
    void* _context;
    nxCSVDialect _dialect;
    std::size_t _maximumRowSize;
    std::size_t _blockSize;
    std::vector<char> _rest;  // the beginning of a row that the block before did not have whole
    unsigned long long _line = 1;
    bool _isAtStart = true;
    bool _isAtEnd = false;
    bool _hasByteOrderMark = false;
    nxErrorEnum _error;  // that ended reading
    unsigned long long _errorLine = 0;
    std::string _errorText;

    // Of the block at hand.
    std::size_t _end = 0;  // of the bytes read
    // Input that trickles in is searched only once.
    std::size_t _seen = 0;
    std::size_t _row = 0;  // the begin of the row that is being searched, once a quote was seen
    bool _hasQuotes = false;
    bool _rowHasQuotes = false;
    State _state = State::FieldStart;
};

#endif
