// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_CSVREADER_H
#define NXTICK_CSVREADER_H

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

#include "Failure.h"
#include "core/text/nxCSVParser.h"

namespace nxtick
{
/// Fills a buffer of the given size. @return the number of bytes read, 0 at the end. @throws Failure
using CsvSource = std::function<std::size_t(char*, std::size_t)>;

/// The library's parser with failures as exceptions. A row may have 16 MiB.
class CsvReader
{
public:
    static constexpr std::size_t usualMaximumRowSize = std::size_t{1} << 24;

    explicit CsvReader(CsvSource source, const nxCSVDialect& dialect = {},
                       std::size_t maximumRowSize = usualMaximumRowSize)
        : _source(std::move(source)), _parser(&_Read, this, dialect, maximumRowSize)
    {
    }
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    /// Reads the next row; empty lines are rows with empty content.
    /// @return false at the end of the input.
    /// @throws FileFailure "LINE: reason" for a row that is too long or a quote that is never closed.
    bool Next(nxCSVRow& row)
    {
        bool hasRow = false;
        _Check(_parser.Next(row, hasRow));
        return hasRow;
    }
    /// The same for a block of rows.
    bool NextBlock(nxCSVBlock& block)
    {
        bool hasBlock = false;
        _Check(_parser.NextBlock(block, hasBlock));
        return hasBlock;
    }

    bool HasByteOrderMark() const { return _parser.HasByteOrderMark(); }

private:
    static nxErrorEnum _Read(void* self, char* buffer, std::size_t size, std::size_t& read)
    {
        read = static_cast<CsvReader*>(self)->_source(buffer, size);
        return nxErrorEnum();
    }

    void _Check(const nxErrorEnum& error) const
    {
        if (!error.IsOK())
            throw FileFailure(std::to_string(_parser.GetErrorLine()) + ": " + _parser.GetErrorText());
    }

    CsvSource _source;
    nxCSVParser _parser;
};
}  // namespace nxtick

#endif
