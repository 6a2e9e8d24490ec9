// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxCSVFileReader.h"

#include <algorithm>
#include <utility>

#include "core/app/internal/nxCSVInput.h"
#include "core/text/nxPrintableText.h"

namespace
{
nxErrorEnum BadCSV() { return nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR); }

// Whether the reader can tell fields and numbers apart.
bool IsUsable(const nxCSVDialect& dialect)
{
    const char point = dialect.decimalSeparator;
    return dialect.CanDivide() && point != dialect.separator && point != dialect.quote && point != dialect.comment &&
           point != '\n' && point != '\r';
}
}  // namespace

nxCSVFileReader::nxCSVFileReader() = default;

nxCSVFileReader::~nxCSVFileReader() = default;

nxErrorEnum nxCSVFileReader::Open(const std::string& path, const nxCSVDialect& dialect, std::size_t maximumRowSize)
{
    auto file = std::make_unique<nxCSVInput>();
    if (file->Open(path))
        return _Begin(std::move(file), dialect, maximumRowSize);
    _Close();
    return _Fail(nxErrorEnum(NX_ERR_FAILED_TO_OPEN_FILE),
                 nxPrintableText::GetQuoted(path, 200) + " cannot be opened" + file->GetReason());
}

nxErrorEnum nxCSVFileReader::SetFromText(std::string_view text, const nxCSVDialect& dialect)
{
    // A short text needs no large block.
    return _Begin(std::make_unique<nxCSVInput>(text), dialect, nxCSVParser::UsualMaximumRowSize,
                  std::min(text.size() + 1, nxCSVParser::UsualBlockSize));
}

void nxCSVFileReader::_Close()
{
    _parser.reset();
    _input.reset();
    _names.clear();
    _row = nxCSVRow();
    _errorText.clear();
}

nxErrorEnum nxCSVFileReader::_Begin(std::unique_ptr<nxCSVInput> input, const nxCSVDialect& dialect,
                                    std::size_t maximumRowSize, std::size_t blockSize)
{
    _Close();
    if (!IsUsable(dialect))
        return _Fail(BadCSV(),
                     "separator, quote, decimal separator and comment must be different characters and no line ends");
    _input = std::move(input);
    _parser = std::make_unique<nxCSVParser>(&nxCSVInput::Read, _input.get(), dialect, maximumRowSize, blockSize);
    const nxErrorEnum error = dialect.hasHeader ? _ReadHeader() : nxErrorEnum();
    if (!error.IsOK())
        _parser.reset();
    return error;
}

nxErrorEnum nxCSVFileReader::_ReadHeader()
{
    bool hasRow = false;
    if (const nxErrorEnum error = Next(hasRow); !error.IsOK())
        return error;
    if (!hasRow)
        return _Fail(BadCSV(), "line 1: there is no header line");
    _names = _row.GetFields();
    _row = nxCSVRow();
    return nxErrorEnum();
}

nxErrorEnum nxCSVFileReader::GetColumn(const std::string& name, std::size_t& index) const
{
    const auto found = std::find(_names.begin(), _names.end(), name);
    const bool isThere = found != _names.end();
    if (isThere && std::find(found + 1, _names.end(), name) == _names.end())
    {
        index = static_cast<std::size_t>(found - _names.begin());
        return nxErrorEnum();
    }
    _errorText = (isThere ? "there are several columns " : "there is no column ") + nxPrintableText::GetQuoted(name);
    return nxErrorEnum(isThere ? NX_ERR_DUPLICATE_MATCH : NX_ERR_NOT_FOUND);
}

nxErrorEnum nxCSVFileReader::Next(bool& hasRow)
{
    hasRow = false;
    if (_parser == nullptr)
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    _errorText.clear();
    do
        if (const nxErrorEnum error = _parser->Next(_row, hasRow); !error.IsOK())
        {
            _row = nxCSVRow();
            return _Fail(error, "line " + std::to_string(_parser->GetErrorLine()) + ": " + _parser->GetErrorText() +
                                    _input->GetReason());
        }
    while (hasRow && !_row.HasFields());
    if (!hasRow)
        _row = nxCSVRow();
    return nxErrorEnum();
}

nxErrorEnum nxCSVFileReader::_Fail(const nxErrorEnum& error, std::string text)
{
    _errorText = std::move(text);
    return error;
}

// Each field has a text of its own, because the caller may look at several of them.
std::string_view nxCSVFileReader::_FindQuoted(std::size_t column) const
{
    if (column < _row.GetFieldCount() && column >= _quotedTexts.size())
        _quotedTexts.resize(column + 1);
    return _row.Find(column, column < _quotedTexts.size() ? _quotedTexts[column] : _unquoted);
}

void nxCSVFileReader::_KeepError(std::size_t column, const nxErrorEnum& error) const
{
    const std::string name =
        column < _names.size() ? nxPrintableText::GetQuoted(_names[column]) : std::to_string(column + 1);
    _errorText = "line " + std::to_string(_row.line) + ": column " + name + ": ";
    const std::string_view text = _row.Find(column, _unquoted);
    if (text.data() == nullptr)
    {
        _errorText += "the row has " + std::to_string(_row.GetFieldCount()) + " fields";
        return;
    }
    _errorText += nxPrintableText::GetQuoted(text);
    _errorText += error == nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE) ? " does not fit" : " is no such value";
}

std::string nxCSVFileReader::GetErrorText() const { return _errorText; }
