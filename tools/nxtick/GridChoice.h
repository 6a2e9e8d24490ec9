// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_GRIDCHOICE_H
#define NXTICK_GRIDCHOICE_H

#include <memory>
#include <optional>
#include <string>

#include "PriceGrid.h"
#include "Request.h"
#include "TickTables.h"

namespace nxtick
{
/// The grid that the user asked for, by -table or -increment, and what it is called.
class GridChoice
{
public:
    /// @throws Failure when there is no such table.
    explicit GridChoice(const Request& request);

    /// A grid for another thread, which the choice must outlive.
    std::unique_ptr<PriceGrid> MakeGrid() const;
    PriceGrid& GetGrid() const { return *_grid; }
    /// The table's identifier, or "ticks of 0.05".
    const std::string& GetName() const { return _name; }

private:
    std::optional<TickTables> _tables;  // own what the grid refers to
    nxDecimal _increment;
    const nxVariableTickTable* _table = nullptr;  // null: the increment
    std::unique_ptr<PriceGrid> _grid;
    std::string _name;
};
}  // namespace nxtick

#endif
