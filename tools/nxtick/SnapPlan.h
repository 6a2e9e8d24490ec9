// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_SNAPPLAN_H
#define NXTICK_SNAPPLAN_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CsvHeader.h"
#include "CsvRequest.h"
#include "PriceNotation.h"

namespace nxtick
{
/// What is done with each row of one file: where the row has its prices and what is added. Constant once it is made, so
/// that several threads can work by it.
class SnapPlan
{
public:
    /// @param hasBands whether the grids have ticks that change.
    /// @throws FileFailure "LINE: reason" when a column is missing or is there twice, or a new name is taken.
    SnapPlan(const CsvRequest& request, const PriceNotation& notation, const CsvHeader& header, bool hasBands);

    const nxCSVDialect& GetDialect() const { return _dialect; }
    const NumberForm& GetNumberForm() const { return _numbers; }
    const PriceNotation& GetNotation() const { return _notation; }
    const nxRoundingMethodEnum& GetMethod() const { return _method; }
    /// How many fields each row has.
    std::size_t GetFieldCount() const { return _fieldCount; }
    bool HasHeader() const { return _hasHeader; }
    const std::vector<AddedColumn>& GetAdded() const { return _added; }

    /// The fields that are needed. The positions below count them.
    const std::vector<std::size_t>& GetWanted() const { return _wanted; }
    struct PriceColumn
    {
        std::size_t position;
        std::string name;
    };
    const std::vector<PriceColumn>& GetPrices() const { return _prices; }
    /// The table's identifier, or the symbol that the mapping has.
    std::optional<std::size_t> GetKey() const { return _key; }
    std::optional<std::size_t> GetDate() const { return _date; }

    /// What is appended to the header row: the names of the added columns, with a separator before each.
    const std::string& GetHeaderAddition() const { return _headerAddition; }

private:
    std::size_t _GetPosition(std::size_t index) const;
    void _NameAdded(const CsvRequest& request, const CsvHeader& header);

    nxCSVDialect _dialect;
    NumberForm _numbers;
    PriceNotation _notation;
    nxRoundingMethodEnum _method;
    std::size_t _fieldCount;
    bool _hasHeader;
    std::vector<AddedColumn> _added;
    std::vector<std::size_t> _wanted;
    std::vector<PriceColumn> _prices;
    std::optional<std::size_t> _key;
    std::optional<std::size_t> _date;
    std::string _headerAddition;
};
}  // namespace nxtick

#endif
