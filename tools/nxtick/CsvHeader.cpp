// SPDX-License-Identifier: Apache-2.0
#include "CsvHeader.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>

#include "Failure.h"
#include "Text.h"
#include "core/numeric/nxDecimal.h"

namespace nxtick
{
namespace
{
constexpr std::size_t mostNamesShown = 20;

// A kind of file, by the bytes at its start.
struct Foreign
{
    std::string_view start;
    const char* name;
    const char* command;  // that makes text of it
};

using namespace std::string_view_literals;

constexpr Foreign foreign[] = {
    {"\x1F\x8B"sv, "is compressed by gzip", "zcat FILE"},
    {"\x28\xB5\x2F\xFD"sv, "is compressed by zstd", "zstdcat FILE"},
    {"\xFD\x37zXZ\0"sv, "is compressed by xz", "xzcat FILE"},
    {"BZh91AY&SY"sv, "is compressed by bzip2", "bzcat FILE"},
    {"PK\x03\x04"sv, "is a zip archive", "unzip -p FILE"},
    {"\xFF\xFE\0\0"sv, "looks like UTF-32LE", "iconv -f UTF-32LE -t UTF-8 FILE"},
    {"\0\0\xFE\xFF"sv, "looks like UTF-32BE", "iconv -f UTF-32BE -t UTF-8 FILE"},
    {"\xFF\xFE"sv, "looks like UTF-16LE", "iconv -f UTF-16LE -t UTF-8 FILE"},
    {"\xFE\xFF"sv, "looks like UTF-16BE", "iconv -f UTF-16BE -t UTF-8 FILE"},
};

// Of text without a byte order mark, whose first character is one of ASCII.
constexpr Foreign unmarked[] = {
    {"x\0\0\0"sv, foreign[5].name, foreign[5].command},
    {"\0\0\0x"sv, foreign[6].name, foreign[6].command},
    {"x\0"sv, foreign[7].name, foreign[7].command},
    {"\0x"sv, foreign[8].name, foreign[8].command},
};

const Foreign* FindForeign(std::string_view start)
{
    for (const Foreign& each : foreign)
        if (start.substr(0, each.start.size()) == each.start)
            return &each;
    for (const Foreign& each : unmarked)
    {
        const auto isAlike = [](char pattern, char c) { return (pattern == '\0') == (c == '\0'); };
        if (start.size() >= each.start.size() &&
            std::equal(each.start.begin(), each.start.end(), start.begin(), isAlike))
            return &each;
    }
    return nullptr;
}

// Whether a line continues after a CR outside quotes.
bool HasCarriageReturn(std::string_view text, const nxCSVDialect& dialect)
{
    bool isQuoted = false;
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
    {
        isQuoted = isQuoted != (dialect.quote != '\0' && text[i] == dialect.quote);
        if (text[i] == '\r' && !isQuoted && text[i + 1] != '\r')
            return true;
    }
    return false;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t size = nxPrintableText::GetCharacterSize(text);
        if (size == 0)
            return false;
        text.remove_prefix(size);
    }
    return true;
}

bool IsNumber(const std::string& text)
{
    nxDecimal number;
    return number.SetFromString(text, '.').IsOK();
}

// "'A', 'B' and 3 more".
std::string List(const std::vector<std::string>& names)
{
    const std::size_t shown = names.size() > mostNamesShown + 1 ? mostNamesShown : names.size();
    std::string text;
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + Quoted(names[i]);
    return shown == names.size() ? text : text + " and " + std::to_string(names.size() - shown) + " more";
}
}  // namespace

std::string GetConversion(std::string_view start)
{
    const Foreign* const found = FindForeign(start);
    return found == nullptr ? std::string()
                            : std::string("this ") + found->name + ": " + found->command + " | nxtick ... -csv -";
}

CsvHeader::CsvHeader(const nxCSVRow& row, bool hasNames) : _line(row.line), _hasNames(hasNames)
{
    if (const std::string conversion = GetConversion(row.content); !conversion.empty())
        throw FileFailure(std::to_string(_line) + ": " + conversion);
    if (HasCarriageReturn(row.content, row.dialect))
        throw FileFailure(std::to_string(_line) +
                          ": a line ends in CR alone: tr '\\r' '\\n' <FILE | nxtick ... -csv -");
    _names = row.GetFields();
    for (std::size_t i = 0; i < _names.size(); ++i)
        _names[i] = hasNames ? std::string(WithoutBlanks(_names[i])) : std::to_string(i + 1);
}

bool CsvHeader::_Has(const std::string& column) const
{
    return std::find(_names.begin(), _names.end(), column) != _names.end();
}

std::vector<std::size_t> CsvHeader::FindAll(const std::vector<std::string>& columns) const
{
    std::vector<std::size_t> indices;
    for (const std::string& column : columns)
        for (const std::size_t index : _FindList(column))
        {
            if (std::find(indices.begin(), indices.end(), index) != indices.end())
                throw FileFailure(std::to_string(_line) + ": column " + Quoted(_names[index]) + " is named twice");
            indices.push_back(index);
        }
    return indices;
}

std::vector<std::size_t> CsvHeader::_FindList(const std::string& list) const
{
    if (_Has(list) || list.find(',') == std::string::npos)
        return {Find(list)};
    std::vector<std::size_t> indices;
    for (std::size_t from = 0; from <= list.size();)
    {
        const std::size_t end = std::min(list.find(',', from), list.size());
        indices.push_back(Find(list.substr(from, end - from)));
        from = end + 1;
    }
    return indices;
}

std::size_t CsvHeader::Find(const std::string& column) const
{
    const std::string place = std::to_string(_line) + ": ";
    const auto found = std::find(_names.begin(), _names.end(), column);
    std::size_t number = 0;
    const auto parsed = std::from_chars(column.data(), column.data() + column.size(), number);
    if (found == _names.end() && parsed.ec == std::errc() && parsed.ptr == column.data() + column.size() &&
        1 <= number && number <= _names.size())
        return number - 1;
    if (found == _names.end())
        throw FileFailure(place + "there is no column " + Quoted(column) + "; there " +
                          (_names.size() == 1 ? "is only " : "are ") + List(_names) + _Guess(column));
    if (std::find(found + 1, _names.end(), column) != _names.end())
        throw FileFailure(place + "there are several columns " + Quoted(column));
    return static_cast<std::size_t>(found - _names.begin());
}

// The likely cause of a missing column, as a question; empty if there is none.
std::string CsvHeader::_Guess(const std::string& column) const
{
    if (_names.size() == 1)
        for (const char separator : {',', ';', '\t', '|'})
            if (_names.front().find(separator) != std::string::npos)
                return std::string("; try -separator ") +
                       (separator == '\t' ? "tab" : std::string{'\'', separator, '\''});
    if (!std::all_of(_names.begin(), _names.end(), &IsUtf8))
        return "; this is not UTF-8: iconv -f WINDOWS-1252 -t UTF-8 FILE | nxtick ... -csv -";
    const std::string suggestion = Suggestion(column, std::set<std::string>(_names.begin(), _names.end()));
    if (_hasNames && suggestion.empty() && std::any_of(_names.begin(), _names.end(), &IsNumber))
        return "; if there is no header line, try -no-header";
    return suggestion;
}
}  // namespace nxtick
