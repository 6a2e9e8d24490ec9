// SPDX-License-Identifier: Apache-2.0
#include "PriceSnapper.h"

#include <algorithm>

#include "Text.h"
#include "WideMantissa.h"

namespace nxtick
{
namespace
{
// The snapped price less the price, exactly; false when a decimal does not hold it.
bool GetDistance(const nxDecimal& snapped, const nxDecimal& price, nxDecimal& distance)
{
    const unsigned char places = std::max(snapped.GetDecimalPlaces(), price.GetDecimalPlaces());
    return MakeDecimal(GetWideMantissa(snapped, places) - GetWideMantissa(price, places), places, distance);
}
}  // namespace

void PriceSnapper::Row(const CsvRow& row, std::string& out)
{
    out += row.content;
    if (!row.content.empty())
    {
        PriceGrid* const grid = _prices.Begin(row);
        const std::size_t columns = _plan.GetPrices().size();
        if (grid == nullptr)
            _AddEmpty(_prices.GetMissing() + columns * _plan.GetAdded().size(), out);
        else
            for (std::size_t column = 0; column < columns; ++column)
                _AddColumns(row, column, *grid, out);
    }
    out += row.terminator;
}

void PriceSnapper::_AddColumns(const CsvRow& row, std::size_t column, PriceGrid& grid, std::string& out)
{
    const std::vector<AddedColumn>& added = _plan.GetAdded();
    nxDecimal price;
    if (!_prices.Read(row, column, grid, price))
        return _AddEmpty(added.size(), out);
    nxDecimal snapped = price;
    grid.Round(_plan.GetMethod(), snapped);
    nxDecimal distance;
    if (!GetDistance(snapped, price, distance))
    {
        _prices.Reject(row, column, "has too many decimals for so large a move");
        return _AddEmpty(added.size(), out);
    }
    ++(distance.IsZero() ? _prices.GetCounts().onGrid : _prices.GetCounts().moved);
    for (const AddedColumn each : added)
        switch (each)
        {
            case AddedColumn::Tick:
                _AddTick(grid.GetTick(price), out);
                break;
            case AddedColumn::Snapped:
                _Add(snapped, out);
                break;
            case AddedColumn::Moved:
                _Add(distance, out);
                break;
            case AddedColumn::Below:
                _Add(grid.GetBelow(price), out);
                break;
            case AddedColumn::Above:
                _Add(grid.GetAbove(price), out);
                break;
        }
}

// Ticks change seldom, so the text of the last one is kept.
void PriceSnapper::_AddTick(const nxDecimal& tick, std::string& out)
{
    if (tick.GetValue() != _tick.GetValue() || tick.GetDecimalPlaces() != _tick.GetDecimalPlaces() || _tickText.empty())
    {
        _tick = tick;
        _tickText.clear();
        _Add(tick, _tickText);
    }
    out += _tickText;
}

void PriceSnapper::_Add(const nxDecimal& value, std::string& out) const
{
    const CsvDialect& dialect = _plan.GetDialect();
    const char point = _plan.GetNumberForm().point;
    out += dialect.separator;
    const bool isQuoted = point == dialect.separator && value.GetDecimalPlaces() != 0;
    if (isQuoted)
        out += dialect.quote;
    if (value.GetDecimalPlaces() <= nxDecimal::MaxTextPlaces)
        value.AppendAsString(out, point);
    else
        out += DecimalText(value, point);
    if (isQuoted)
        out += dialect.quote;
}
}  // namespace nxtick
