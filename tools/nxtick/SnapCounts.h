// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_SNAPCOUNTS_H
#define NXTICK_SNAPCOUNTS_H

#include <cstdint>

namespace nxtick
{
/// What became of the rows and of their prices. Of a rejected row no price counts.
struct SnapCounts
{
    std::uint64_t rows = 0;
    std::uint64_t onGrid = 0;
    std::uint64_t moved = 0;  ///< Off the grid.
    std::uint64_t empty = 0;
    std::uint64_t rejected = 0;  ///< Rows, for whatever reason.

    SnapCounts& operator+=(const SnapCounts& other)
    {
        rows += other.rows;
        onGrid += other.onGrid;
        moved += other.moved;
        empty += other.empty;
        rejected += other.rejected;
        return *this;
    }
};
}  // namespace nxtick

#endif
