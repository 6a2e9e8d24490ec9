// SPDX-License-Identifier: Apache-2.0
#include "RowPrices.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Text.h"

namespace nxtick
{
namespace
{
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
std::string WrongNumberOfFields(const nxCSVRow& row, std::size_t count, const SnapPlan& plan)
{
    return "the row has " + std::to_string(count) + (count == 1 ? " field, the " : " fields, the ") +
           (plan.HasHeader() ? "header " : "first row ") + std::to_string(plan.GetFieldCount()) +
           (count > plan.GetFieldCount() && row.dialect.separator == ',' && MayHaveDecimalComma(row.GetFields())
                ? "; a decimal comma?"
                : "");
}
}  // namespace

RowPrices::RowPrices(const SnapPlan& plan, RowGrids& grids, Complaint complaint)
    : _plan(plan), _grids(grids), _only(grids.GetOnly()), _complaint(std::move(complaint)), _fields(plan.GetWanted())
{
}

PriceGrid* RowPrices::Begin(const nxCSVRow& row)
{
    ++_counts.rows;
    _isRejected = false;
    _count = row.GetFieldCount();
    _fields.Take(row);
    if (_count != _plan.GetFieldCount())
    {
        _Reject(row, WrongNumberOfFields(row, _count, _plan));
        return nullptr;
    }
    if (_only != nullptr)
        return _only;
    PriceGrid* const grid =
        _grids.Find(_fields[*_plan.GetKey()], _plan.GetDate() ? _fields[*_plan.GetDate()] : std::string_view());
    if (grid == nullptr)
        _Reject(row, _grids.GetReason());
    return grid;
}

bool RowPrices::Read(const nxCSVRow& row, std::size_t column, const PriceGrid& grid, nxDecimal& price)
{
    const std::string_view field = GetText(column);
    if (field.empty())
    {
        ++_counts.empty;
        return false;
    }
    const char* const reason = _plan.GetNotation().Read(grid, field, price, _plan.GetNumberForm());
    if (reason != nullptr)
        Reject(row, column, reason);
    return reason == nullptr;
}

void RowPrices::Reject(const nxCSVRow& row, std::size_t column, const char* reason)
{
    const SnapPlan::PriceColumn& price = _plan.GetPrices()[column];
    const std::string place = _plan.GetPrices().size() > 1 ? "column " + Quoted(price.name) + ": " : "";
    _Reject(row, place + Quoted(_fields[price.position]) + " " + reason);
}

void RowPrices::_Reject(const nxCSVRow& row, const std::string& reason)
{
    _counts.rejected += _isRejected ? 0 : 1;  // once, however many of its prices are wrong
    _isRejected = true;
    _complaint(row.line, reason);
}
}  // namespace nxtick
