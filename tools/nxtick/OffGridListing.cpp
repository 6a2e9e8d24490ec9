// SPDX-License-Identifier: Apache-2.0
#include "OffGridListing.h"

#include <vector>

#include "Json.h"
#include "Text.h"

namespace nxtick
{
void OffGridListing::Begin(std::string& text) const
{
    if (_format == Request::Format::Csv)
        text += "file,line,column,price,below,above\n";
    else if (_format == Request::Format::Json)
        text += "[";
}

void OffGridListing::Add(const OffGridPrice& price, std::string& text) const
{
    const std::string line = std::to_string(price.line);
    const std::string numbers[] = {_GetText(price.price), _GetText(price.below), _GetText(price.above)};
    switch (_format)
    {
        case Request::Format::Text:
            text += nxPrintableText::GetEscaped(price.file) + ":" + line + ": " +
                    (_hasColumns ? "column " + Quoted(price.column) + ": " : "") + numbers[0] +
                    " is off the grid, between " + numbers[1] + " and " + numbers[2] + "\n";
            break;
        case Request::Format::Csv:
            text += GetField(price.file) + "," + line + "," + GetField(price.column) + "," + numbers[0] + "," +
                    numbers[1] + "," + numbers[2] + "\n";
            break;
        case Request::Format::Json:
            AppendJson(price.file, text += ",\n{\"file\":");
            AppendJson(price.column, text += ",\"line\":" + line + ",\"column\":");
            text += ",\"price\":" + numbers[0] + ",\"below\":" + numbers[1] + ",\"above\":" + numbers[2] + "}";
            break;
    }
}

// As the format needs it.
std::string OffGridListing::_GetText(const nxDecimal& price) const
{
    const std::string text = _notation.GetText(price);
    if (_notation.IsPlain() || _format == Request::Format::Text)
        return text;
    if (_format == Request::Format::Csv)
        return GetField(text);
    std::string json;
    AppendJson(text, json);
    return json;
}

// No comma comes before the first object of an array.
std::string_view OffGridListing::Join(std::string_view text)
{
    if (_isEmpty && _format == Request::Format::Json && !text.empty())
        text.remove_prefix(1);
    _isEmpty = _isEmpty && text.empty();
    return text;
}

void OffGridListing::End(std::string& text) const
{
    if (_format == Request::Format::Json)
        text += "\n]\n";
}

std::string OffGridListing::GetCounts(Request::Format format, const SnapCounts& counts)
{
    const std::pair<const char*, std::uint64_t> all[] = {{"rows", counts.rows},
                                                         {"on_grid", counts.onGrid},
                                                         {"off_grid", counts.moved},
                                                         {"empty", counts.empty},
                                                         {"rejected", counts.rejected}};
    std::vector<std::vector<std::string>> lines;
    std::string names;
    std::string numbers;
    std::string members;
    for (const auto& [name, count] : all)
    {
        const char* const between = names.empty() ? "" : ",";
        lines.push_back({name, std::to_string(count)});
        names.append(between).append(name);
        numbers.append(between).append(lines.back()[1]);
        members.append(between).append("\"").append(name).append("\":").append(lines.back()[1]);
    }
    return format == Request::Format::Text  ? Columns(lines, {1}, {})
           : format == Request::Format::Csv ? names + "\n" + numbers + "\n"
                                            : "[\n{" + members + "}\n]\n";
}

void PriceChecker::Row(const nxCSVRow& row, TextBlock& out)
{
    if (row.content.empty())
        return;
    _text.clear();
    if (PriceGrid* const grid = _prices.Begin(row); grid != nullptr)
        for (std::size_t column = 0; column < _plan.GetPrices().size(); ++column)
            _Check(row, column, *grid);
    out.Append(_text);
}

void PriceChecker::Rows(nxCSVRows& rows, TextBlock& out)
{
    for (nxCSVRow row; rows.Next(row);)
        PriceChecker::Row(row, out);
}

void PriceChecker::_Check(const nxCSVRow& row, std::size_t column, PriceGrid& grid)
{
    nxDecimal price;
    if (!_prices.Read(row, column, grid, price))
        return;
    const bool isOnGrid = grid.IsOnGrid(price);
    ++(isOnGrid ? _prices.GetCounts().onGrid : _prices.GetCounts().moved);
    if (!isOnGrid && _listing != nullptr)
        _listing->Add(
            {_file, row.line, _plan.GetPrices()[column].name, price, grid.GetBelow(price), grid.GetAbove(price)},
            _text);
}
}  // namespace nxtick
