// SPDX-License-Identifier: Apache-2.0
#include "Records.h"

#include "Json.h"

namespace nxtick
{
namespace
{
void AppendCsv(std::string_view field, std::string& text)
{
    if (field.find_first_of(",\"\r\n") == std::string_view::npos)
    {
        text += field;
        return;
    }
    text += '"';
    for (const char c : field)
        text.append(c == '"' ? 2 : 1, c);
    text += '"';
}
}  // namespace

std::string Records::GetText(Request::Format format) const
{
    return format == Request::Format::Csv ? _GetCsv() : _GetJson();
}

std::string Records::_GetCsv() const
{
    std::string text;
    for (const Column& column : _columns)
        (text += text.empty() ? "" : ",") += column.name;
    text += '\n';
    for (const auto& row : _rows)
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            AppendCsv(row[i], text);
            text += i + 1 == row.size() ? '\n' : ',';
        }
    return text;
}

std::string Records::_GetJson() const
{
    std::string text = "[";
    for (const auto& row : _rows)
    {
        text += &row == &_rows.front() ? "\n{" : ",\n{";
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            AppendJson(_columns[i].name, text += i == 0 ? "" : ",");
            text += ':';
            if (row[i].empty())
                text += "null";
            else if (_columns[i].kind == Kind::Text)
                AppendJson(row[i], text);
            else
                text += row[i];
        }
        text += '}';
    }
    return text += "\n]\n";
}
}  // namespace nxtick
