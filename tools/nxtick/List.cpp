// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <vector>

#include "Commands.h"
#include "Failure.h"
#include "OutputFile.h"
#include "Terminal.h"
#include "Text.h"
#include "TickTables.h"
#include "core/text/nxStringHelper.h"

namespace nxtick
{
namespace
{
std::string LowerCase(std::string text)
{
    nxStringHelper::ToLower(text);
    return text;
}

nxDecimal LargestTick(const nxVariableTickTable& table)
{
    nxDecimal largest = nxDecimal::GetNullDecimal();
    for (const auto& [bound, increment] : table.GetRangeData())
        largest = nxDecimal::GetMax(largest, increment);
    return largest;
}
}  // namespace

int List(const Request& request)
{
    const TickTables tables(request.tablesFile);
    const std::string filter = LowerCase(request.filter);
    std::vector<std::vector<std::string>> rows = {{"identifier", "bands", "smallest tick", "largest tick", "source"}};
    for (const TableEntry& entry : tables.GetAll())
        if (LowerCase(entry.id).find(filter) != std::string::npos)
            rows.push_back({entry.id, std::to_string(entry.table->GetRangeData().size()),
                            DecimalText(entry.table->GetMinimumTickIncrement()), DecimalText(LargestTick(*entry.table)),
                            entry.status});
    if (rows.size() == 1)
        throw Failure("no tick table has " + Quoted(request.filter) + " in its identifier");
    OutputFile::Print(Terminal().WithHeading(Columns(rows, {1}, {2, 3})));
    return 0;
}

int Bands(const Request& request)
{
    const TickTables tables(request.tablesFile);
    const TableEntry& entry = tables.Find(request.table);
    std::vector<std::vector<std::string>> rows = {{"band", "above", "up to", "tick"}};
    std::string lowerBound;
    for (const auto& [bound, increment] : entry.table->GetRangeData())
    {
        const bool isTop = rows.size() == entry.table->GetRangeData().size();
        rows.push_back(
            {std::to_string(rows.size()), lowerBound, isTop ? "" : DecimalText(bound), DecimalText(increment)});
        lowerBound = rows.back()[2];
    }
    const Terminal terminal;
    OutputFile::Print(terminal.Styled(Terminal::Style::Bold, entry.id) + "\n" +
                      Wrapped(entry.status + ": " + nxPrintableText::GetEscaped(entry.source)) + Wrapped(entry.note) +
                      "\n" + terminal.WithHeading(Columns(rows, {0}, {1, 2, 3})));
    return 0;
}
}  // namespace nxtick
