// SPDX-License-Identifier: Apache-2.0
#include "SnapPlan.h"

#include <algorithm>

#include "Failure.h"
#include "Text.h"

namespace nxtick
{
namespace
{
std::vector<AddedColumn> UsualColumns(bool hasBands)
{
    std::vector<AddedColumn> columns = {AddedColumn::Tick, AddedColumn::Snapped, AddedColumn::Moved};
    if (hasBands)
        columns.insert(columns.end(), {AddedColumn::Below, AddedColumn::Above});
    return columns;
}

bool Contains(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// "snapped", then "Ask_snapped", then "Ask_snapped_2".
std::string MakeName(const std::string& column, AddedColumn added, std::size_t attempt)
{
    std::string name = attempt == 0 ? std::string() : column + "_";
    name += GetName(added);
    return attempt < 2 ? name : name + "_" + std::to_string(attempt);
}

// The names of the columns that are added for one column of prices.
std::vector<std::string> MakeNames(const std::string& column, const std::vector<AddedColumn>& added,
                                   std::size_t attempt, const std::vector<std::string>& taken)
{
    for (;; ++attempt)
    {
        std::vector<std::string> names;
        for (const AddedColumn each : added)
            names.push_back(MakeName(column, each, attempt));
        if (std::none_of(names.begin(), names.end(), [&](const std::string& name) { return Contains(taken, name); }))
            return names;
    }
}
}  // namespace

SnapPlan::SnapPlan(const CsvRequest& request, const PriceNotation& notation, const CsvHeader& header, bool hasBands)
    : _dialect(request.dialect),
      _numbers(request.numbers),
      _notation(notation),
      _method(request.method),
      _fieldCount(header.GetSize()),
      _hasHeader(request.hasHeader),
      _added(request.added.empty() ? UsualColumns(hasBands) : request.added)
{
    const std::vector<std::size_t> prices = header.FindAll(request.columns);
    const std::string& keyName = request.tableColumn.empty() ? request.symbolColumn : request.tableColumn;
    const std::size_t key = keyName.empty() ? 0 : header.Find(keyName);
    const std::size_t date = request.dateColumn.empty() ? 0 : header.Find(request.dateColumn);
    _wanted = prices;
    if (!keyName.empty())
        _wanted.push_back(key);
    if (!request.dateColumn.empty())
        _wanted.push_back(date);
    std::sort(_wanted.begin(), _wanted.end());
    _wanted.erase(std::unique(_wanted.begin(), _wanted.end()), _wanted.end());
    for (const std::size_t index : prices)
        _prices.push_back({_GetPosition(index), header.GetNames()[index]});
    if (!keyName.empty())
        _key = _GetPosition(key);
    if (!request.dateColumn.empty())
        _date = _GetPosition(date);
    if (_hasHeader && request.check == CsvRequest::Check::None)
        _NameAdded(request, header);
}

std::size_t SnapPlan::_GetPosition(std::size_t index) const
{
    return static_cast<std::size_t>(std::find(_wanted.begin(), _wanted.end(), index) - _wanted.begin());
}

void SnapPlan::_NameAdded(const CsvRequest& request, const CsvHeader& header)
{
    std::vector<std::string> names = request.names;
    const std::size_t count = _prices.size() * _added.size();
    const bool isAutomatic = names.empty() && request.prefix.empty();
    if (!names.empty() && names.size() != count)
        throw Failure("-names has " + CountText(names.size()) + " names for " + CountText(count) + " new columns");
    if (names.empty())
        for (const PriceColumn& price : _prices)
            for (const std::string& name : MakeNames(price.name, _added, _prices.size() > 1 ? 1 : 0,
                                                     isAutomatic ? header.GetNames() : std::vector<std::string>()))
                names.push_back(request.prefix + name);
    std::vector<std::string> taken = header.GetNames();
    for (const std::string& name : names)
    {
        if (!isAutomatic && Contains(taken, name))
            throw Failure("a new column cannot be called " + Quoted(name) + ", because another one is");
        taken.push_back(name);
        (_headerAddition += _dialect.separator) += GetField(name, _dialect);
    }
}
}  // namespace nxtick
