// SPDX-License-Identifier: Apache-2.0
#include "PriceSnapper.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "CsvHeader.h"
#include "Text.h"
#include "WideMantissa.h"

namespace nxtick
{
namespace
{
// How text is written in a field.
std::string AsField(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string field = "\"";
    for (const char c : text)
        field += c == '"' ? "\"\"" : std::string(1, c);
    return field += '"';
}

bool IsDigit(char c) { return '0' <= c && c <= '9'; }

// Whether a number with a decimal comma would read as these fields: digits alone after a field that ends in a digit.
bool MayHaveDecimalComma(const std::vector<std::string>& fields)
{
    for (std::size_t i = 1; i < fields.size(); ++i)
        if (!fields[i - 1].empty() && IsDigit(fields[i - 1].back()) && !fields[i].empty() &&
            std::all_of(fields[i].begin(), fields[i].end(), &IsDigit))
            return true;
    return false;
}

// What is wrong with a row whose number of fields is not the header's.
std::string WrongNumberOfFields(const CsvRow& row, std::size_t count, std::size_t expected)
{
    return "the row has " + std::to_string(count) + (count == 1 ? " field" : " fields") + ", the header " +
           std::to_string(expected) +
           (count > expected && MayHaveDecimalComma(row.GetFields()) ? "; a decimal comma?" : "");
}

// The snapped price less the price, exactly; false when a decimal does not hold it.
bool GetDistance(const nxDecimal& snapped, const nxDecimal& price, nxDecimal& distance)
{
    const unsigned char places = std::max(snapped.GetDecimalPlaces(), price.GetDecimalPlaces());
    return MakeDecimal(GetWideMantissa(snapped, places) - GetWideMantissa(price, places), places, distance);
}
}  // namespace

PriceSnapper::PriceSnapper(PriceGrid& grid, const nxRoundingMethodEnum& method, Sink sink, Complaint complaint)
    : _grid(grid), _method(method), _sink(std::move(sink)), _complaint(std::move(complaint))
{
}

void PriceSnapper::Header(const CsvRow& row, const std::string& column)
{
    const CsvHeader header(row);
    _index = header.Find(column);
    _fields = header.GetSize();
    std::vector<std::string> names = {"tick", "snapped", "moved"};
    if (_grid.HasBands())
        names.insert(names.end(), {"below", "above"});
    _added.clear();
    for (const std::string& name : header.GetNewNames(column, names))
        (_added += ',') += AsField(name);
    _Pass(row);
}

void PriceSnapper::Row(const CsvRow& row)
{
    _added.clear();
    if (!row.content.empty())
    {
        ++_counts.rows;
        std::string_view field;
        const std::size_t count = row.FindField(_index, _scratch, field);
        const char* const reason = count == _fields ? _SnapField(field) : "";
        if (reason != nullptr)
            _Reject(row, count, field, reason);
    }
    _Pass(row);
}

void PriceSnapper::_Reject(const CsvRow& row, std::size_t count, std::string_view field, const char* reason)
{
    ++_counts.rejected;
    const std::size_t missing = _fields - std::min(count, _fields);
    _added.assign(missing + (_grid.HasBands() ? 5 : 3), ',');
    _complaint(row.line, count != _fields          ? WrongNumberOfFields(row, count, _fields)
                         : field.data() == nullptr ? reason
                                                   : Quoted(field) + " " + reason);
}

// Null on success, else the reason, with a field to show unless there is none; no column is added then.
const char* PriceSnapper::_SnapField(std::string_view& field)
{
    if (field.find_first_not_of(" \t") == std::string_view::npos)
    {
        field = {};
        return "there is no price";
    }
    nxDecimal price;
    const char* const reason = _grid.ReadPrice(field, price);
    return reason == nullptr ? _Snap(price) : reason;
}

// Null on success, else the reason; no column is added then.
const char* PriceSnapper::_Snap(const nxDecimal& price)
{
    nxDecimal snapped = price;
    _grid.Round(_method, snapped);
    nxDecimal distance;
    if (!GetDistance(snapped, price, distance))
        return "has too many decimals for so large a move";
    ++(distance.IsZero() ? _counts.onGrid : _counts.moved);
    _Add(_grid.GetTick(price));
    _Add(snapped);
    _Add(distance);
    if (_grid.HasBands())
    {
        _Add(_grid.GetBelow(price));
        _Add(_grid.GetAbove(price));
    }
    return nullptr;
}

void PriceSnapper::_Add(const nxDecimal& value)
{
    _added += ',';
    if (value.GetDecimalPlaces() <= nxDecimal::MaxTextPlaces)
        value.AppendAsString(_added, '.');
    else
        _added += DecimalText(value);
}

void PriceSnapper::_Pass(const CsvRow& row)
{
    _sink(row.content);
    _sink(_added);
    _sink(row.terminator);
}
}  // namespace nxtick
