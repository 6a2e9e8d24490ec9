// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <utility>
#include <vector>

#include "Commands.h"
#include "OutputFile.h"
#include "Records.h"
#include "Terminal.h"
#include "Text.h"
#include "TickTables.h"

namespace nxtick
{
namespace
{
// Number, the prices above which and up to which it reaches, and tick, for each band.
std::vector<std::vector<std::string>> BandRows(const nxVariableTickTable& table)
{
    std::vector<std::vector<std::string>> rows;
    std::string lowerBound;
    for (const auto& [bound, increment] : table.GetRangeData())
    {
        const bool isTop = rows.size() + 1 == table.GetRangeData().size();
        rows.push_back(
            {std::to_string(rows.size() + 1), lowerBound, isTop ? "" : DecimalText(bound), DecimalText(increment)});
        lowerBound = rows.back()[2];
    }
    return rows;
}

// What is known of the table, in lines for people.
std::string FactsText(const TableFacts& facts)
{
    std::string text = Wrapped(nxPrintableText::GetEscaped(facts.status + ": " + facts.source));
    if (!facts.venue.empty())
        text += Wrapped(nxPrintableText::GetEscaped(
            facts.venue + (facts.markets.empty() ? "" : " (" + facts.markets + ")") + ": " + facts.instruments +
            "; currency " + facts.currency + (facts.unit == "1" ? "" : "; unit " + facts.unit)));
    if (!facts.expires.empty())
        text += Wrapped(nxPrintableText::GetEscaped("Looked up on " + facts.lookedUp +
                                                    (facts.isExpired ? ", expired on " : ", expires on ") +
                                                    facts.expires + "."));
    return text + Wrapped(nxPrintableText::GetEscaped(facts.note));
}

std::string TextOf(const TableEntry& entry)
{
    std::vector<std::vector<std::string>> rows = BandRows(*entry.table);
    rows.insert(rows.begin(), {"band", "above", "up to", "tick"});
    const Terminal terminal;
    return terminal.Styled(Terminal::Style::Bold, entry.id) + "\n" + FactsText(entry.facts) + "\n" +
           terminal.WithHeading(Columns(rows, {0}, {1, 2, 3}));
}

std::string RecordsOf(const TableEntry& entry, Request::Format format)
{
    constexpr auto number = Records::Kind::Number;
    Records records({{"table"}, {"band", number}, {"above", number}, {"up_to", number}, {"tick", number}});
    for (std::vector<std::string>& row : BandRows(*entry.table))
    {
        row.insert(row.begin(), entry.id);
        records.Add(std::move(row));
    }
    return records.GetText(format);
}
}  // namespace

int Bands(const Request& request)
{
    const TickTables tables(request);
    const TableEntry& entry = tables.Find(request.table);
    tables.Warn(entry);
    OutputFile::Print(request.format == Request::Format::Text ? TextOf(entry) : RecordsOf(entry, request.format));
    return 0;
}
}  // namespace nxtick
