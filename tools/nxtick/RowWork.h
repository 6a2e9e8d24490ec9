// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_ROWWORK_H
#define NXTICK_ROWWORK_H

#include <string_view>

#include "SnapCounts.h"
#include "TextBlock.h"
#include "core/text/nxCSVRows.h"

namespace nxtick
{
/// What one thread does with rows. Nothing depends on the rows before.
class RowWork
{
public:
    virtual ~RowWork() = default;
    RowWork() = default;
    RowWork(const RowWork&) = delete;
    RowWork& operator=(const RowWork&) = delete;

    /// Appends what becomes of a row.
    virtual void Row(const nxCSVRow& row, TextBlock& out) = 0;
    /// The same for all rows that are left.
    virtual void Rows(nxCSVRows& rows, TextBlock& out) = 0;

    /// What has to be written of a text that was appended. Called in the order of the rows, by one thread at a time.
    virtual std::string_view Join(std::string_view text) { return text; }
    /// The counts of the rows since the last call.
    virtual SnapCounts TakeCounts() = 0;
};
}  // namespace nxtick

#endif
