// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_OFFGRIDLISTING_H
#define NXTICK_OFFGRIDLISTING_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "Request.h"
#include "RowPrices.h"
#include "RowWork.h"
#include "TextBlock.h"
#include "core/numeric/nxDecimal.h"

namespace nxtick
{
/// A price that is off the grid, and where it is.
struct OffGridPrice
{
    const std::string& file;
    std::uint64_t line;
    const std::string& column;
    nxDecimal price;
    nxDecimal below;
    nxDecimal above;
};

/// The text of a list of prices off the grid: lines for people, CSV with a header, or an array of JSON with one object a
/// line. Numbers have a point and all their digits; prices in a notation are texts.
class OffGridListing
{
public:
    /// @param hasColumns whether a line for people names the column.
    OffGridListing(Request::Format format, const PriceNotation& notation, bool hasColumns)
        : _format(format), _notation(notation), _hasColumns(hasColumns)
    {
    }

    void Begin(std::string& text) const;
    /// Several threads may call it.
    void Add(const OffGridPrice& price, std::string& text) const;
    /// What has to be written of a text that Add() made, where texts are written in this order.
    std::string_view Join(std::string_view text);
    void End(std::string& text) const;

    /// The counts instead of the prices, whole.
    static std::string GetCounts(Request::Format format, const SnapCounts& counts);

private:
    std::string _GetText(const nxDecimal& price) const;

    Request::Format _format;
    PriceNotation _notation;
    bool _hasColumns;
    bool _isEmpty = true;
};

/// Finds the prices of rows that are off their grids.
class PriceChecker : public RowWork
{
public:
    /// @param listing null if the prices are only counted. All but @p complaint must outlive the object.
    PriceChecker(const SnapPlan& plan, RowGrids& grids, RowPrices::Complaint complaint, const std::string& file,
                 OffGridListing* listing)
        : _plan(plan), _prices(plan, grids, std::move(complaint)), _file(file), _listing(listing)
    {
    }

    /// Appends what the listing says of the row.
    void Row(const nxCSVRow& row, TextBlock& out) override;
    void Rows(nxCSVRows& rows, TextBlock& out) override;
    std::string_view Join(std::string_view text) override { return _listing == nullptr ? text : _listing->Join(text); }
    SnapCounts TakeCounts() override { return _prices.TakeCounts(); }

private:
    void _Check(const nxCSVRow& row, std::size_t column, PriceGrid& grid);

    const SnapPlan& _plan;
    RowPrices _prices;
    const std::string& _file;
    OffGridListing* _listing;
    std::string _text;  // of the row
};
}  // namespace nxtick

#endif
