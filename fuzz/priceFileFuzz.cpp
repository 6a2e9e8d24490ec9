// SPDX-License-Identifier: Apache-2.0
// The price file that nxtick reads: whatever it holds, the rows come out byte for byte, and it makes no difference in
// which pieces they arrive.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "CsvHeader.h"
#include "CsvReader.h"
#include "Failure.h"
#include "PriceSnapper.h"
#include "Request.h"
#include "RowGrids.h"
#include "SnapPlan.h"
#include "TickTables.h"
#include "core/enum/nxRoundingMethodEnum.h"

namespace
{
using namespace nxtick;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

constexpr std::size_t maximumRowSize = 1024;

struct Outcome
{
    TextBlock text;        // the rows with what was added
    std::string messages;  // and the failure that ended the run
    bool isWhole = true;
};

// A grid that many files share.
struct SharedGrid
{
    explicit SharedGrid(unsigned char choice)
    {
        static const TickTables tables{Request()};
        static const nxDecimal increments[] = {nxDecimal("0.05", '.'), nxDecimal("3", '.'),
                                               nxDecimal("0.000000000000001", '.'), nxDecimal("1000000000000000", '.')};
        request.isQuiet = true;
        if (choice < std::size(increments))
            request.increment = increments[choice];
        else
            request.table = tables.GetAll()[choice % tables.GetAll().size()].id;
        source.emplace(request);
        grids.emplace(*source);
    }

    Request request;
    std::optional<GridSource> source;
    std::optional<RowGrids> grids;
};

Outcome Run(std::string_view file, const CsvRequest& request, SharedGrid& grid, std::size_t pieceSize)
{
    Outcome outcome;
    std::size_t done = 0;
    CsvReader reader(
        [&](char* buffer, std::size_t size)
        {
            const std::size_t count = std::min({size, pieceSize, file.size() - done});
            std::memcpy(buffer, file.data() + done, count);
            done += count;
            return count;
        },
        request.dialect, maximumRowSize);
    std::optional<SnapPlan> plan;
    std::optional<PriceSnapper> snapper;
    try
    {
        nxCSVRow row;
        while (reader.Next(row))
        {
            const std::size_t start = outcome.text.GetSize();
            if (snapper)
                snapper->Row(row, outcome.text);
            else if (row.content.empty())
                outcome.text.Append(row.terminator);
            else
            {
                plan.emplace(request, grid.request.notation, CsvHeader(row, true), grid.source->HasBands());
                snapper.emplace(*plan, *grid.grids,
                                [&](std::uint64_t line, const std::string& reason)
                                { outcome.messages += std::to_string(line) + ": " + reason + "\n"; });
                for (const std::string_view part :
                     {row.content, std::string_view(plan->GetHeaderAddition()), row.terminator})
                    outcome.text.Append(part);
            }
            const std::string_view written = outcome.text.GetText().substr(start);
            Require(written.substr(0, row.content.size()) == row.content && written.ends_with(row.terminator));
        }
    }
    catch (const Failure& failure)
    {
        outcome.messages += failure.what();
        outcome.isWhole = false;
    }
    const SnapCounts counts = snapper ? snapper->TakeCounts() : SnapCounts();
    Require(counts.rows == counts.onGrid + counts.moved + counts.empty + counts.rejected);
    return outcome;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    static std::map<unsigned char, SharedGrid> grids;
    SharedGrid& grid = grids.try_emplace(data[0], data[0]).first->second;
    CsvRequest request;
    request.columns = {"P"};
    request.method = nxRoundingMethodEnum(static_cast<nxEnumValue>(NX_ROUNDING_METHOD_DOWN + data[1] % 4));
    request.numbers.hasExponents = data[1] / 4 % 2 != 0;
    request.numbers.point = data[1] / 8 % 2 != 0 ? ',' : '.';
    request.dialect.separator = data[1] / 16 % 2 != 0 ? ';' : ',';
    const std::string_view file(reinterpret_cast<const char*>(data + 2), size - 2);

    const Outcome atOnce = Run(file, request, grid, file.size() + 1);
    const Outcome inPieces = Run(file, request, grid, 1U + data[1] / 4U);
    Require(atOnce.text.GetText() == inPieces.text.GetText() && atOnce.messages == inPieces.messages &&
            atOnce.isWhole == inPieces.isWhole);
    return 0;
}
