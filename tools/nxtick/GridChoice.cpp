// SPDX-License-Identifier: Apache-2.0
#include "GridChoice.h"

#include "Text.h"

namespace nxtick
{
GridChoice::GridChoice(const Request& request)
    : _increment(request.increment), _name("ticks of " + DecimalText(request.increment))
{
    if (!request.table.empty())
    {
        _tables.emplace(request);
        const TableEntry& entry = _tables->Find(request.table);
        _tables->Warn(entry);
        _table = entry.table;
        _name = entry.id;
    }
    _grid = MakeGrid();
}

std::unique_ptr<PriceGrid> GridChoice::MakeGrid() const
{
    if (_table != nullptr)
        return std::make_unique<TableGrid>(*_table);
    return std::make_unique<FixedGrid>(_increment);
}
}  // namespace nxtick
