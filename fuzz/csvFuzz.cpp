// SPDX-License-Identifier: Apache-2.0
// Rows of CSV: those of a plain model, in whichever pieces the text arrives, by the parser and by the reader of values.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/app/nxCSVFileReader.h"
#include "core/numeric/nxDecimal.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

using Fields = std::vector<std::string>;

struct Rows
{
    std::vector<Fields> rows;  // without empty lines and comments
    bool isWhole = true;

    friend bool operator==(const Rows&, const Rows&) = default;
};

// Reads one byte after the other.
class Model
{
public:
    Model(std::string_view text, const nxCSVDialect& dialect) : _text(text), _dialect(dialect) {}

    Rows Read()
    {
        Rows rows;
        if (_text.starts_with("\xFF\xFE") || _text.starts_with("\xFE\xFF"))
            return {{}, false};
        if (_text.starts_with("\xEF\xBB\xBF"))
            _text.remove_prefix(3);
        while (!_text.empty())
        {
            const bool isComment = _dialect.comment != '\0' && _text.front() == _dialect.comment;
            _quote = isComment ? '\0' : _dialect.quote;
            const std::string_view before = _text;
            Fields fields;
            do
                fields.push_back(_ReadField());
            while (_isRowOpen);
            if (_isQuoteOpen)
                return {rows.rows, false};
            std::string_view line = before.substr(0, before.size() - _text.size());
            if (line.ends_with('\n'))
                line.remove_suffix(1);
            if (line.ends_with('\r'))
                line.remove_suffix(1);
            const auto isBlank = [&](char c) { return _dialect.trimBlanks && _dialect.IsBlank(c); };
            if (!isComment && !std::all_of(line.begin(), line.end(), isBlank))
                rows.rows.push_back(fields);
        }
        return rows;
    }

private:
    bool _IsBlank(char c) const { return _dialect.trimBlanks && _dialect.IsBlank(c); }

    std::string _ReadField()
    {
        std::string inside, outside;
        while (!_text.empty() && _IsBlank(_text.front()))
            _text.remove_prefix(1);
        if (_quote != '\0' && _text.starts_with(_quote))
            inside = _ReadQuoted();
        std::size_t end = 0;
        while (end < _text.size() && _text[end] != _dialect.separator && _text[end] != '\n')
            ++end;
        outside = _text.substr(0, end);
        _isRowOpen = end < _text.size() && _text[end] == _dialect.separator;
        _text.remove_prefix(std::min(end + 1, _text.size()));
        if (!_isRowOpen && outside.ends_with('\r'))
            outside.pop_back();
        while (!outside.empty() && _IsBlank(outside.back()))
            outside.pop_back();
        return inside + outside;
    }

    std::string _ReadQuoted()
    {
        std::string field;
        for (_isQuoteOpen = true, _text.remove_prefix(1); !_text.empty(); _text.remove_prefix(1))
        {
            if (_text.front() != _quote)
                field += _text.front();
            else if (_text.size() > 1 && _text[1] == _quote)
            {
                field += _quote;
                _text.remove_prefix(1);
            }
            else
            {
                _isQuoteOpen = false;
                _text.remove_prefix(1);
                break;
            }
        }
        return field;
    }

    std::string_view _text;
    nxCSVDialect _dialect;
    char _quote = '\0';  // of the row
    bool _isRowOpen = false;
    bool _isQuoteOpen = false;
};

nxErrorEnum ReadPiece(void* context, char* buffer, std::size_t size, std::size_t& read)
{
    auto& text = *static_cast<std::string_view*>(context);
    read = text.copy(buffer, size);
    text.remove_prefix(read);
    return nxErrorEnum();
}

Rows Parse(std::string_view text, const nxCSVDialect& dialect, std::size_t blockSize)
{
    nxCSVParser parser(&ReadPiece, &text, dialect, nxCSVParser::UsualMaximumRowSize, blockSize);
    Rows rows;
    nxCSVRow row;
    bool hasRow = false;
    while ((rows.isWhole = parser.Next(row, hasRow).IsOK()) && hasRow)
    {
        const Fields fields = row.GetFields();
        Require(row.GetFieldCount() == fields.size());
        if (row.HasFields())
            rows.rows.push_back(fields);
    }
    return rows;
}

Rows ReadValues(std::string_view text, nxCSVDialect dialect)
{
    dialect.hasHeader = false;
    nxCSVFileReader reader;
    Rows rows;
    bool hasRow = false;
    rows.isWhole = reader.SetFromText(text, dialect).IsOK();
    while (rows.isWhole && (rows.isWhole = reader.Next(hasRow).IsOK()) && hasRow)
    {
        std::vector<std::string_view> fields(reader.GetFieldCount());
        for (std::size_t i = 0; i < fields.size(); ++i)
            Require(reader.GetField(i, fields[i]).IsOK());
        rows.rows.emplace_back(fields.begin(), fields.end());
        nxDecimal number;
        static_cast<void>(reader.GetField(fields.size() / 2, number));
    }
    return rows;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    nxCSVDialect dialect;
    dialect.separator = ",; \t"[data[0] % 4];
    dialect.quote = "\"'\0\""[data[0] / 4 % 4];
    dialect.comment = data[0] / 16 % 2 != 0 ? '#' : '\0';
    dialect.trimBlanks = data[0] / 32 % 2 != 0;
    const std::string_view text(reinterpret_cast<const char*>(data + 2), size - 2);
    const Rows expected = Model(text, dialect).Read();
    Require(Parse(text, dialect, text.size() + 1) == expected);
    Require(Parse(text, dialect, 1U + data[1]) == expected);
    Require(ReadValues(text, dialect) == expected);
    return 0;
}
