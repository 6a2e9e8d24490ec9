// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INTERNAL_NXLISTEDROWS_H
#define CORE_NUMERIC_INTERNAL_NXLISTEDROWS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "core/enum/nxErrorEnum.h"
#include "core/text/nxCSVParser.h"
#include "core/text/nxCSVRow.h"

/// The rows of a list in CSV, with their fields in a fixed order. A header, empty lines and comments are skipped.
///
/// Errors: those of the parser and of the fields. Threads: like an int. Ownership: refers to the parser.
class nxListedRows
{
public:
    /// Replaces a list by the rows of a parser, or leaves it as it is when a row is at fault.
    /// @param readRow adds the current row to a list, and returns an error for one that is at fault.
    /// @param failedLine receives the line of that row, from 1, or 0.
    template <class List, class ReadRow>
    static nxErrorEnum ReadAll(nxCSVParser& parser, std::size_t minimum, std::size_t maximum, ReadRow readRow,
                               List& list, unsigned long long& failedLine)
    {
        nxListedRows rows(parser);
        List read;
        nxErrorEnum error;
        for (bool hasRow = true; error.IsOK();)
        {
            error = rows._Next(minimum, maximum, hasRow);
            if (error.IsOK() && !hasRow)
                break;
            if (error.IsOK())
                error = readRow(rows, read);
        }
        failedLine = error.IsOK() ? 0 : rows._GetLine();
        if (error.IsOK())
            list = std::move(read);
        return error;
    }

    /// @return a field's text, empty when the row has no such field; valid until the next call.
    std::string_view GetField(std::size_t index)
    {
        std::string_view field;
        return _row.GetField(index, _scratch, field).IsOK() ? field : std::string_view();
    }
    /// @return the character before the decimals of a number.
    char GetDecimalSeparator() const { return _parser.GetDialect().decimalSeparator; }

private:
    explicit nxListedRows(nxCSVParser& parser) : _parser(parser), _isHeaderNext(parser.GetDialect().hasHeader) {}

    // Reads the next row.
    // @param hasRow receives false after the last one.
    // @return the parser's error; NX_ERR_INSUFFICIENT_DATA for fewer fields than @p minimum; NX_ERR_INVALID_PARAMETER for
    //         more than @p maximum.
    nxErrorEnum _Next(std::size_t minimum, std::size_t maximum, bool& hasRow)
    {
        do
        {
            const nxErrorEnum error = _parser.Next(_row, hasRow);
            if (!error.IsOK() || !hasRow)
                return error;
        } while (!_row.HasFields() || _TakeHeader());
        const std::size_t count = _row.GetFieldCount();
        if (count < minimum)
            return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
        return count <= maximum ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
    // @return the line of the parser's error, or else that of the last row.
    unsigned long long _GetLine() const
    {
        const unsigned long long line = _parser.GetErrorLine();
        return line != 0 ? line : _row.line;
    }
    bool _TakeHeader()
    {
        const bool isHeader = _isHeaderNext;
        _isHeaderNext = false;
        return isHeader;
    }

    nxCSVParser& _parser;
    bool _isHeaderNext;
    nxCSVRow _row;
    std::string _scratch;
};

#endif
