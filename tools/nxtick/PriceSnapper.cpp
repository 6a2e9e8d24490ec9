// SPDX-License-Identifier: Apache-2.0
#include "PriceSnapper.h"

#include <algorithm>
#include <cstring>

#include "Text.h"
#include "WideMantissa.h"

namespace nxtick
{
namespace
{
// The most that a number takes with its separator and quotes, also one in a notation: its mark may be a quote that is
// doubled, and only one character is.
constexpr std::size_t widestColumn = nxPriceConverter::MaxTextSize + 4;

// The snapped price less the price, exactly; false when a decimal does not hold it.
bool GetDistance(const nxDecimal& snapped, const nxDecimal& price, nxDecimal& distance)
{
    const unsigned char places = std::max(snapped.GetDecimalPlaces(), price.GetDecimalPlaces());
    if (snapped.GetDecimalPlaces() == price.GetDecimalPlaces())
    {
        std::int64_t units = 0;
        if (__builtin_sub_overflow(std::int64_t{snapped.GetValue()}, std::int64_t{price.GetValue()}, &units))
            return false;
        distance = nxDecimal::ConstructFromValueAndDecimalPlaces(units, places);
        return true;
    }
    return MakeDecimal(GetWideMantissa(snapped, places) - GetWideMantissa(price, places), places, distance);
}

// Copies 16 bytes at a time, the last of them with what follows the text and is overwritten later.
char* CopyRow(std::string_view text, char* out)
{
    static_assert(nxCSVBlock::ReadableAfter >= 16);
    for (std::size_t at = 0; at < text.size(); at += 16)
        std::memcpy(out + at, text.data() + at, 16);
    return out + text.size();
}
}  // namespace

void PriceSnapper::Row(const nxCSVRow& row, TextBlock& out)
{
    const std::size_t columns = _plan.GetPrices().size();
    const std::size_t added = columns * _plan.GetAdded().size();
    PriceGrid* const grid = row.content.empty() ? nullptr : _prices.Begin(row);
    const std::size_t missing = grid == nullptr && !row.content.empty() ? _prices.GetMissing() : 0;
    char* const begin = out.Reserve(row.content.size() + missing + added * widestColumn + PriceMemory::Entry::longest);
    char* at = CopyRow(row.content, begin);
    if (grid != nullptr)
        for (std::size_t column = 0; column < columns; ++column)
            at = _AddColumns(row, column, *grid, at);
    else if (!row.content.empty())
        at = _AddEmpty(missing + added, at);
    at = std::copy(row.terminator.begin(), row.terminator.end(), at);
    out.SetEnd(at);
}

void PriceSnapper::Rows(nxCSVRows& rows, TextBlock& out)
{
    for (nxCSVRow row; rows.Next(row);)
        PriceSnapper::Row(row, out);
}

char* PriceSnapper::_AddColumns(const nxCSVRow& row, std::size_t column, PriceGrid& grid, char* out)
{
    if (const PriceMemory::Entry* const known = _memory.Find(_prices.GetText(column), grid); known != nullptr)
    {
        ++(known->isMoved ? _prices.GetCounts().moved : _prices.GetCounts().onGrid);
        std::memcpy(out, known->columns, sizeof known->columns);
        return out + known->size;
    }
    char* end = out;
    if (!_Compute(row, column, grid, end))
        return _AddEmpty(_plan.GetAdded().size(), out);
    return end;
}

// @return false, with nothing added, if the price is empty or cannot be used.
bool PriceSnapper::_Compute(const nxCSVRow& row, std::size_t column, PriceGrid& grid, char*& out)
{
    nxDecimal price;
    if (!_prices.Read(row, column, grid, price))
        return false;
    nxDecimal snapped = CopyFresh(price);
    grid.Round(_plan.GetMethod(), snapped);
    nxDecimal distance;
    if (!GetDistance(snapped, price, distance))
    {
        _prices.Reject(row, column, "has too many decimals for so large a move");
        return false;
    }
    const char* const begin = out;
    for (const AddedColumn each : _plan.GetAdded())
        switch (each)
        {
            case AddedColumn::Tick:
                out = _AddTick(grid.GetTick(price), out);
                break;
            case AddedColumn::Snapped:
                out = _AddPrice(snapped, out);
                break;
            case AddedColumn::Moved:
                out = _Add(distance, out);
                break;
            case AddedColumn::Below:
                out = _AddPrice(grid.GetBelow(price), out);
                break;
            case AddedColumn::Above:
                out = _AddPrice(grid.GetAbove(price), out);
                break;
        }
    const bool isMoved = !distance.IsZero();
    ++(isMoved ? _prices.GetCounts().moved : _prices.GetCounts().onGrid);
    _memory.Remember({begin, static_cast<std::size_t>(out - begin)}, isMoved);
    return true;
}

char* PriceSnapper::_AddEmpty(std::size_t count, char* out) const
{
    return std::fill_n(out, count, _plan.GetDialect().separator);
}

// Ticks change seldom, so the text of the last one is kept. All of it is copied, which is quicker than its size.
char* PriceSnapper::_AddTick(const nxDecimal& tick, char* out)
{
    if (_tickSize == 0 || tick.GetValue() != _tick.GetValue() || tick.GetDecimalPlaces() != _tick.GetDecimalPlaces())
    {
        _tick = tick;
        _tickSize = static_cast<std::size_t>(_Add(tick, _tickText) - _tickText);
    }
    std::memcpy(out, _tickText, sizeof _tickText);
    return out + _tickSize;
}

char* PriceSnapper::_AddPrice(const nxDecimal& price, char* out) const
{
    if (_plan.GetNotation().IsPlain())
        return _Add(price, out);
    const nxCSVDialect& dialect = _plan.GetDialect();
    const std::string text = GetField(_plan.GetNotation().GetText(price, _plan.GetNumberForm().point), dialect);
    *out++ = dialect.separator;
    return std::copy(text.begin(), text.end(), out);
}

char* PriceSnapper::_Add(const nxDecimal& number, char* out) const
{
    const nxCSVDialect& dialect = _plan.GetDialect();
    const char point = _plan.GetNumberForm().point;
    *out++ = dialect.separator;
    const bool isQuoted = point == dialect.separator && number.GetDecimalPlaces() != 0;
    if (isQuoted)
        *out++ = dialect.quote;
    if (number.GetDecimalPlaces() <= nxDecimal::MaxTextPlaces)
        out += number.GetAsString(out, point);
    else
    {
        const std::string text = DecimalText(number, point);
        out = std::copy(text.begin(), text.end(), out);
    }
    if (isQuoted)
        *out++ = dialect.quote;
    return out;
}
}  // namespace nxtick
