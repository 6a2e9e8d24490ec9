// SPDX-License-Identifier: Apache-2.0
// Writes docs/tick-tables.md, the catalogue of tick tables for people to read, from what the library holds:
//
//     tick_table_page > docs/tick-tables.md        after a change to core/price/nxTickTables.inc
//     tick_table_page --check docs/tick-tables.md  fails when the page is not what the library holds (a test does this)

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include "core/price/nxTickTableSource.h"
#include "core/price/nxVariableTickTable.h"
#include "core/price/nxVariableTickTableContainer.h"

namespace
{
constexpr const char* introduction = R"(# The catalogue of tick tables

<!-- Made by tick_table_page from core/price/nxTickTables.inc; change it there. -->

The catalogue: every table with its bands and their source. A band includes its upper bound; the last band has none. Bounds
and ticks are shown with the decimal places that prices get.

Not every exchange publishes its regimes, and names outlive rules. Look at the status before you trade on a table:

| Status | Meaning |
|---|---|
| given | reference data of the library, taken as it is |
| published | found in a source that names the regime |
| derived | follows from another table or from the table's name |
| assumed | values from a source, or from a sibling table, whose link to the regime is our assumption |

The data does not record the day on which a source was read. Where a source has a year, the text of the source names it.
[The tables of today](tick-tables-today.md) have such days.

If your exchange says otherwise, use a table of your own: `nxCustomVariableTickTable` reads it from a file, and
`nxtick -tables FILE` uses it. Programs ask for a status with `nxTickTableSource::Find(id)`.
)";

const nxVariableTickTable& GetTable(const nxTickTableSource& source)
{
    const nxVariableTickTable* table = nxVariableTickTableContainer::GetVariableTickTable(source.GetID());
    if (table == nullptr)
    {
        std::cerr << source.GetID() << " is not in the catalogue\n";
        std::exit(1);
    }
    return *table;
}

void WriteCounts(std::ostream& page)
{
    std::map<std::string_view, int> counts;
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
        ++counts[source.GetStatus()];
    page << "Of " << nxTickTableSource::GetAll().size() << " tables";
    const char* separator = " ";
    for (const auto& [status, count] : counts)
    {
        page << separator << count << " are " << status;
        separator = ", ";
    }
    page << ".\n";
}

void WriteIndex(std::ostream& page)
{
    page << "## Index\n\n| Table | Bands | Ticks | Status |\n|---|---:|---|---|\n";
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
    {
        const nxVariableTickTable& table = GetTable(source);
        const std::size_t bands = table.GetRangeData().size();
        nxDecimal largest = table.GetMinimumTickIncrement();
        for (const auto& band : table.GetRangeData())
            largest = nxDecimal::GetMax(largest, band.second);
        std::string anchor = source.GetID();
        for (char& c : anchor)
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        page << "| [" << source.GetID() << "](#" << anchor << ") | " << bands << " | "
             << table.GetMinimumTickIncrement();
        if (bands > 1)
            page << " to " << largest;
        page << " | " << source.GetStatus() << " |\n";
    }
}

void WriteTable(std::ostream& page, const nxTickTableSource& source)
{
    page << "### " << source.GetID() << "\n\n"
         << source.GetStatus() << ": " << source.GetSource() << ".  \n"
         << source.GetNote() << "\n\n| Up to | Tick |\n|---:|---:|\n";
    const auto& bands = GetTable(source).GetRangeData();
    for (const auto& [bound, increment] : bands)
    {
        if (&bound == &bands.back().first)
            page << "| no bound";
        else
            page << "| " << bound;
        page << " | " << increment << " |\n";
    }
}

std::string MakePage()
{
    std::ostringstream page;
    page << introduction << "\n";
    WriteCounts(page);
    page << "\n";
    WriteIndex(page);
    page << "\n## Tables\n";
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
    {
        page << "\n";
        WriteTable(page, source);
    }
    return page.str();
}
}  // namespace

int main(int argc, char** argv)
{
    const std::string page = MakePage();
    if (argc == 1)
    {
        std::cout << page;
        return 0;
    }
    if (argc != 3 || std::string(argv[1]) != "--check")
    {
        std::cerr << "usage: tick_table_page [--check FILE]\n";
        return 2;
    }
    std::ifstream file(argv[2], std::ios::binary);
    if (std::string(std::istreambuf_iterator<char>(file), {}) == page)
        return 0;
    std::cerr << argv[2] << " differs from the library; run tick_table_page to renew it\n";
    return 1;
}
