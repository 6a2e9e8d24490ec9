// SPDX-License-Identifier: Apache-2.0
#include "CsvHeader.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "Failure.h"
#include "Text.h"
#include "core/numeric/nxDecimal.h"

namespace nxtick
{
namespace
{
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t mostNamesShown = 20;

std::string Trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool IsUtf16(std::string_view text)
{
    const std::string_view start = text.substr(0, 2);
    return start == "\xFF\xFE" || start == "\xFE\xFF" || text.find('\0') != std::string_view::npos;
}

// Whether a line continues after a CR outside quotes.
bool HasCarriageReturn(std::string_view text)
{
    bool isQuoted = false;
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
    {
        isQuoted = isQuoted != (text[i] == '"');
        if (text[i] == '\r' && !isQuoted && text[i + 1] != '\r')
            return true;
    }
    return false;
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

CsvHeader::CsvHeader(const CsvRow& row) : _line(row.line)
{
    CsvRow withoutMark = row;
    if (IsUtf16(row.content))
        throw FileFailure(std::to_string(_line) +
                          ": this looks like UTF-16; convert the file first: iconv -f UTF-16 -t UTF-8");
    if (HasCarriageReturn(row.content))
        throw FileFailure(std::to_string(_line) + ": a line ends in CR alone; convert the file first: tr '\\r' '\\n'");
    if (row.content.substr(0, byteOrderMark.size()) == byteOrderMark)
        withoutMark.content.remove_prefix(byteOrderMark.size());
    _names = withoutMark.GetFields();
    std::transform(_names.begin(), _names.end(), _names.begin(), &Trimmed);
}

std::size_t CsvHeader::Find(const std::string& column) const
{
    const std::string place = std::to_string(_line) + ": ";
    const auto found = std::find(_names.begin(), _names.end(), column);
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
        for (const char separator : {';', '\t', '|'})
            if (_names.front().find(separator) != std::string::npos)
                return "; are the fields divided by " + Quoted({&separator, 1}) + " instead of commas?";
    const std::string suggestion = Suggestion(column, std::set<std::string>(_names.begin(), _names.end()));
    if (suggestion.empty() && std::any_of(_names.begin(), _names.end(), &IsNumber))
        return "; is the header line missing?";
    return suggestion;
}

std::vector<std::string> CsvHeader::GetNewNames(const std::string& column, const std::vector<std::string>& names) const
{
    std::vector<std::string> free = names;
    for (std::size_t attempt = 1; _HasAny(free); ++attempt)
        for (std::size_t i = 0; i < names.size(); ++i)
        {
            free[i] = column + "_" + names[i];
            if (attempt > 1)
                (free[i] += '_') += std::to_string(attempt);
        }
    return free;
}

bool CsvHeader::_HasAny(const std::vector<std::string>& names) const
{
    return std::find_first_of(_names.begin(), _names.end(), names.begin(), names.end()) != _names.end();
}
}  // namespace nxtick
