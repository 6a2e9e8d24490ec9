// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_NXCSVFILEREADER_H
#define CORE_APP_NXCSVFILEREADER_H

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/app/inline/nxCSVValue.h"
#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/nxCSVDialect.h"
#include "core/text/nxCSVParser.h"
#include "core/text/nxCSVRow.h"

class nxCSVInput;

/// Reads the rows of a CSV file, or of a text in memory, and the values in their columns.
///
/// - Rules: those of nxCSVParser; empty lines and comments are left out. Every character of a field counts: blanks around a
///   number make it unreadable unless nxCSVDialect::trimBlanks is set.
/// - Values: the field must be wholly a value of the variable's type and fit into it; see nxStringHelper::SetFromStringExact().
///   An empty field makes a type that can be null null, and is an error for every other type but a text.
/// - Errors: returned; GetErrorText() tells the line. A field that cannot be read leaves its variable untouched and does not
///   end reading. After a row that cannot be read there are no more.
/// - Ownership: owns the file that it has opened. Threads: an object serves one thread at a time.
/// @code
/// nxCSVFileReader reader;
/// std::size_t symbolColumn = 0, priceColumn = 0;
/// nxErrorEnum error = reader.Open("prices.csv");
/// if (error.IsOK())
///     error = reader.GetColumn("symbol", symbolColumn);
/// if (error.IsOK())
///     error = reader.GetColumn("price", priceColumn);
/// for (bool hasRow = true; error.IsOK() && (error = reader.Next(hasRow)).IsOK() && hasRow;)
/// {
///     std::string symbol;
///     nxDecimal price;
///     if ((error = reader.GetField(symbolColumn, symbol)).IsOK() && (error = reader.GetField(priceColumn, price)).IsOK())
///         prices[symbol] = price;
/// }
/// if (!error.IsOK())
///     std::cerr << reader.GetErrorText() << '\n';  // line 17: column 'price': '1O.5' is no such value
/// @endcode
class NX_CORE_API nxCSVFileReader
{
public:
    nxCSVFileReader();
    ~nxCSVFileReader();
    nxCSVFileReader(const nxCSVFileReader&) = delete;
    nxCSVFileReader& operator=(const nxCSVFileReader&) = delete;

    /// Opens a file and reads its header line. What was read before is given up.
    /// @param path a file, or a pipe: reading one that brings nothing for a minute fails.
    /// @param maximumRowSize the longest row in bytes, its line end included, and below 4 GiB.
    /// @return NX_ERR_FAILED_TO_OPEN_FILE; NX_ERR_FILE_READ_ERR when the system cannot read it; NX_ERR_CSV_FILE_READ_ERROR
    ///         for a header line that is missing, longer than a row may be or with a quote that is never closed, for a file
    ///         in UTF-16, and for a dialect in which two of the four characters are the same or one is a line end.
    [[nodiscard]] nxErrorEnum Open(const std::string& path, const nxCSVDialect& dialect = {},
                                   std::size_t maximumRowSize = nxCSVParser::UsualMaximumRowSize);

    /// Begins with a text in memory, which must outlive the reading. Rows have at most nxCSVParser::UsualMaximumRowSize bytes.
    /// @return NX_ERR_CSV_FILE_READ_ERROR as Open().
    [[nodiscard]] nxErrorEnum SetFromText(std::string_view text, const nxCSVDialect& dialect = {});

    /// Finds a column by its name in the header line.
    /// @param index receives the column, from 0.
    /// @return NX_ERR_NOT_FOUND when no column has the name, NX_ERR_DUPLICATE_MATCH when several have it; @p index is then
    ///         untouched.
    [[nodiscard]] nxErrorEnum GetColumn(const std::string& name, std::size_t& index) const;
    /// @return the names of the columns; none without a header line.
    const std::vector<std::string>& GetColumnNames() const { return _names; }

    /// Reads the next row.
    /// @param hasRow receives false at the end, which is a success, and after an error.
    /// @return NX_ERR_CSV_FILE_READ_ERROR for a row that is too long or whose quote is never closed, NX_ERR_FILE_READ_ERR,
    ///         NX_ERR_NOT_INITIALISED when nothing is open. Further calls return the same error.
    [[nodiscard]] nxErrorEnum Next(bool& hasRow);

    /// Finds a field of the row.
    /// @param text receives the field without its quotes, valid until the next call of Next(), Open() or SetFromText().
    /// @return NX_ERR_INSUFFICIENT_DATA when the row has no such field; @p text is then untouched.
    [[nodiscard]] nxErrorEnum GetField(std::size_t column, std::string_view& text) const
    {
        const std::string_view found = _Find(column);
        if (found.data() == nullptr)
            return _Check(column, nxErrorEnum(NX_ERR_INSUFFICIENT_DATA));
        text = found;
        return nxErrorEnum();
    }

    /// Reads a field of the row: integers, `bool`, `double`, `std::string`, nxDecimal and nxMoney with the dialect's decimal
    /// separator, nxTime, the wrappers, nxStringValue, the enumerations by their identifiers, and every type with a member
    /// `nxErrorEnum SetFromString(const std::string&)`. An nxDate is "20240305" or "2024-03-05", an nxDateTime
    /// "2024-03-05T09:07:03".
    /// @return NX_ERR_INSUFFICIENT_DATA when the row has no such field, NX_ERR_INVALID_PARAMETER for a text that is no value
    ///         of the type, NX_ERR_VALUE_OUT_OF_RANGE for one that does not fit; @p value is then untouched.
    template <class Value>
    [[nodiscard]] nxErrorEnum GetField(std::size_t column, Value& value) const
    {
        const std::string_view text = _Find(column);
        if (text.data() == nullptr)
            return _Check(column, nxErrorEnum(NX_ERR_INSUFFICIENT_DATA));
        return _Check(column, nxCSVValue::Read(text, value, _row.dialect.decimalSeparator));
    }

    /// @return the line on which the row begins, from 1; 0 before the first row and after the last one.
    unsigned long long GetLine() const { return _row.line; }
    /// @return the number of fields of the row, which may be another than that of the columns.
    std::size_t GetFieldCount() const { return _row.GetFieldCount(); }
    /// @return the row, byte for byte; without content before the first row and after the last one.
    const nxCSVRow& GetRow() const { return _row; }

    /// @return what the operation that failed last says, in one line that is safe to show: "line 17: column 'price': 'abc'
    ///         is no such value"; empty if none has failed since Open(), SetFromText() or Next() was called last.
    std::string GetErrorText() const;

private:
    void _Close();
    nxErrorEnum _Begin(std::unique_ptr<nxCSVInput> input, const nxCSVDialect& dialect, std::size_t maximumRowSize,
                       std::size_t blockSize = nxCSVParser::UsualBlockSize);
    nxErrorEnum _ReadHeader();
    nxErrorEnum _Fail(const nxErrorEnum& error, std::string text);
    std::string_view _Find(std::size_t column) const
    {
        return _row.hasQuotes ? _FindQuoted(column) : _row.Find(column, _unquoted);
    }
    std::string_view _FindQuoted(std::size_t column) const;
    // Keeps an error of a field for its text.
    nxErrorEnum _Check(std::size_t column, const nxErrorEnum& error) const
    {
        if (!error.IsOK())
            _KeepError(column, error);
        return error;
    }
    void _KeepError(std::size_t column, const nxErrorEnum& error) const;

    std::unique_ptr<nxCSVInput> _input;
    std::unique_ptr<nxCSVParser> _parser;
    std::vector<std::string> _names;
    nxCSVRow _row;
    mutable std::string _unquoted;
    mutable std::deque<std::string> _quotedTexts;  // of the row's fields, where quotes were removed
    mutable std::string _errorText;
};

#endif
