// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXCSVBLOCK_H
#define CORE_TEXT_NXCSVBLOCK_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "core/nxExport.h"

/// Whole rows that follow each other in a CSV text, as nxCSVParser::NextBlock() reads them. Only the last row of the text
/// may lack its line end.
///
/// - Ownership: a block owns its bytes, which move with it. It keeps its memory when it is used for the next rows.
/// - Threads: one fills a block, then several may read it.
class nxCSVBlock
{
public:
    /// After the rows this many bytes of any value can be read, so that the last row can be copied in steps.
    static constexpr std::size_t ReadableAfter = 64;

    /// @return the rows, line ends included.
    std::string_view GetText() const { return {_bytes.data(), _size}; }
    /// @return the line on which the first row begins, from 1.
    unsigned long long GetLine() const { return _line; }

private:
    friend class nxCSVBlocks;
    friend class nxCSVRows;

    // Where a row ends whose place was sought byte by byte.
    struct _RowEnd
    {
        std::uint32_t at;  // the end in the bytes, line end included
        bool hasQuotes;
    };

    std::vector<char> _bytes;  // the rows, then at least ReadableAfter bytes
    std::size_t _size = 0;     // of the rows
    unsigned long long _line = 1;
    std::vector<_RowEnd> _ends;  // empty if the block has no quotes: then every line is a row
};

#endif
