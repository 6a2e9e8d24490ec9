// SPDX-License-Identifier: Apache-2.0
#include "GridChoice.h"

#include "Text.h"

namespace nxtick
{
GridChoice::GridChoice(const Request& request)
{
    if (request.table.empty())
    {
        _grid = std::make_unique<FixedGrid>(request.increment);
        _name = "ticks of " + DecimalText(request.increment);
        return;
    }
    _tables.emplace(request);
    const TableEntry& entry = _tables->Find(request.table);
    _grid = std::make_unique<TableGrid>(*entry.table);
    _name = entry.id;
}
}  // namespace nxtick
