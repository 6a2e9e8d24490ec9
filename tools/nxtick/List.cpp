// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Commands.h"
#include "Failure.h"
#include "OutputFile.h"
#include "Records.h"
#include "Terminal.h"
#include "Text.h"
#include "TickTables.h"
#include "core/text/nxStringHelper.h"

namespace nxtick
{
namespace
{
constexpr std::size_t sourceWidth = 40;

std::string LowerCase(std::string text)
{
    nxStringHelper::ToLower(text);
    return text;
}

// Without regard to case.
bool IsIn(const std::string& text, const std::string& part)
{
    return LowerCase(text).find(LowerCase(part)) != std::string::npos;
}

// One of the codes, or a part of the venue's name.
bool IsAt(const TableFacts& facts, const std::string& venue)
{
    std::istringstream codes(facts.markets);
    for (std::string code; codes >> code;)
        if (LowerCase(code) == LowerCase(venue))
            return true;
    return !facts.venue.empty() && IsIn(facts.venue, venue);
}

bool IsWanted(const TableEntry& entry, const Request& request)
{
    return IsIn(entry.id, request.filter) && (request.venue.empty() || IsAt(entry.facts, request.venue)) &&
           (request.status.empty() || request.status == entry.facts.status ||
            (request.status == "expired" && entry.facts.isExpired));
}

std::vector<TableEntry> WantedEntries(const TickTables& tables, const Request& request)
{
    std::vector<TableEntry> wanted;
    std::copy_if(tables.GetAll().begin(), tables.GetAll().end(), std::back_inserter(wanted),
                 [&request](const TableEntry& entry) { return IsWanted(entry, request); });
    return wanted;
}

[[noreturn]] void FailForNone(const Request& request)
{
    std::string text = "no tick table";
    const char* joint = " has ";
    if (!request.filter.empty())
    {
        text += joint + Quoted(request.filter) + " in its identifier";
        joint = " and ";
    }
    if (!request.status.empty())
    {
        text += joint + ("the status " + request.status);
        joint = " and ";
    }
    if (!request.venue.empty())
        text += joint + ("the venue " + Quoted(request.venue));
    throw Failure(text);
}

nxDecimal LargestTick(const nxVariableTickTable& table)
{
    nxDecimal largest = nxDecimal::GetNullDecimal();
    for (const auto& [bound, increment] : table.GetRangeData())
        largest = nxDecimal::GetMax(largest, increment);
    return largest;
}

std::string ShortText(const std::string& text)
{
    const std::string_view cut = nxPrintableText::Cut(text, sourceWidth);
    return nxPrintableText::GetEscaped(cut) + (cut.size() < text.size() ? "..." : "");
}

std::string TextOf(const std::vector<TableEntry>& entries)
{
    std::vector<std::vector<std::string>> rows = {
        {"identifier", "bands", "smallest tick", "largest tick", "status", "list", "looked up", "expires", "source"}};
    for (const auto& [id, table, facts, warning] : entries)
        rows.push_back({id, std::to_string(table->GetRangeData().size()), DecimalText(table->GetMinimumTickIncrement()),
                        DecimalText(LargestTick(*table)), nxPrintableText::GetEscaped(facts.status), facts.list,
                        nxPrintableText::GetEscaped(facts.lookedUp),
                        facts.expires + (facts.isExpired ? " expired" : ""), ShortText(facts.source)});
    return Terminal().WithHeading(Columns(rows, {1}, {2, 3}));
}

std::string RecordsOf(const std::vector<TableEntry>& entries, Request::Format format)
{
    using Kind = Records::Kind;
    Records records({{"identifier"},
                     {"list"},
                     {"status"},
                     {"expired", Kind::Truth},
                     {"bands", Kind::Number},
                     {"smallest_tick", Kind::Number},
                     {"largest_tick", Kind::Number},
                     {"mic"},
                     {"venue"},
                     {"instruments"},
                     {"currency"},
                     {"unit"},
                     {"valid_from"},
                     {"evidence_date"},
                     {"looked_up"},
                     {"expires"},
                     {"source"},
                     {"note"}});
    for (const auto& [id, table, facts, warning] : entries)
        records.Add({id, facts.list, facts.status, TruthText(facts.isExpired),
                     std::to_string(table->GetRangeData().size()), DecimalText(table->GetMinimumTickIncrement()),
                     DecimalText(LargestTick(*table)), facts.markets, facts.venue, facts.instruments, facts.currency,
                     facts.unit, facts.validFrom, facts.evidence, facts.lookedUp, facts.expires, facts.source,
                     facts.note});
    return records.GetText(format);
}
}  // namespace

int List(const Request& request)
{
    const TickTables tables(request);
    const std::vector<TableEntry> entries = WantedEntries(tables, request);
    if (entries.empty())
        FailForNone(request);
    OutputFile::Print(request.format == Request::Format::Text ? TextOf(entries) : RecordsOf(entries, request.format));
    return 0;
}
}  // namespace nxtick
