#include "PriceSnapper.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "Failure.h"
#include "Text.h"
#include "WideMantissa.h"

namespace nxtick
{
namespace
{
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string Trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(" \t") - first + 1);
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
    _column = column;
    CsvRow withoutMark = row;
    if (withoutMark.content.substr(0, byteOrderMark.size()) == byteOrderMark)
        withoutMark.content.remove_prefix(byteOrderMark.size());
    std::vector<std::string> names = withoutMark.GetFields();
    std::transform(names.begin(), names.end(), names.begin(), &Trimmed);

    const std::string place = std::to_string(row.line) + ": ";
    const auto found = std::find(names.begin(), names.end(), column);
    if (found == names.end())
        throw FileFailure(place + "there is no column " + Quoted(column) +
                          Suggestion(column, std::set<std::string>(names.begin(), names.end())));
    if (std::find(found + 1, names.end(), column) != names.end())
        throw FileFailure(place + "there are several columns " + Quoted(column));
    _index = static_cast<std::size_t>(found - names.begin());
    _added = _grid.HasBands() ? ",tick,snapped,moved,below,above" : ",tick,snapped,moved";
    _Pass(row);
}

void PriceSnapper::Row(const CsvRow& row)
{
    _added.clear();
    if (!row.content.empty())
    {
        ++_counts.rows;
        std::string_view field;
        nxDecimal price;
        const char* reason = _ReadPrice(row, field, price);
        if (reason == nullptr)
            reason = _Snap(price);
        if (reason != nullptr)
        {
            ++_counts.rejected;
            _added = _grid.HasBands() ? ",,,,," : ",,,";
            _complaint(row.line, field.data() == nullptr ? reason : Quoted(field) + " " + reason);
        }
    }
    _Pass(row);
}

// Null on success, else the reason; with a field to show unless there is none.
const char* PriceSnapper::_ReadPrice(const CsvRow& row, std::string_view& field, nxDecimal& price)
{
    if (!row.GetField(_index, _scratch, field))
        return "the row has too few columns";
    if (field.find_first_not_of(" \t") == std::string_view::npos)
    {
        field = {};
        return "there is no price";
    }
    return _grid.ReadPrice(field, price);
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
