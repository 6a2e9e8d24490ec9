// SPDX-License-Identifier: Apache-2.0
// The price file that nxtick reads: whatever it holds, the rows come out byte for byte, and it makes no difference in
// which pieces they arrive.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "CsvReader.h"
#include "Failure.h"
#include "PriceSnapper.h"
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
    std::string rows;      // as they came
    std::string added;     // columns
    std::string messages;  // and the failure that ended the run
    bool isWhole = true;
};

Outcome Run(std::string_view file, PriceGrid& grid, const nxRoundingMethodEnum& method, std::size_t pieceSize)
{
    Outcome outcome;
    int part = 0;  // content, added columns, line end
    PriceSnapper snapper(
        grid, method, [&](std::string_view text) { (part++ % 3 == 1 ? outcome.added : outcome.rows).append(text); },
        [&](std::uint64_t line, const std::string& reason)
        { outcome.messages += std::to_string(line) + ": " + reason + "\n"; });
    std::size_t done = 0;
    CsvReader reader(
        [&](char* buffer, std::size_t size)
        {
            const std::size_t count = std::min({size, pieceSize, file.size() - done});
            std::memcpy(buffer, file.data() + done, count);
            done += count;
            return count;
        },
        maximumRowSize);
    try
    {
        CsvRow row;
        bool hasHeader = false;
        while (reader.Next(row))
        {
            if (!hasHeader && !row.content.empty())
            {
                snapper.Header(row, "P");
                hasHeader = true;
            }
            else
                snapper.Row(row);
        }
    }
    catch (const Failure& failure)
    {
        outcome.messages += failure.what();
        outcome.isWhole = false;
    }
    const SnapCounts& counts = snapper.GetCounts();
    Require(counts.rows == counts.onGrid + counts.moved + counts.rejected);
    return outcome;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    static const TickTables tables("");
    static const nxDecimal increments[] = {nxDecimal("0.05", '.'), nxDecimal("3", '.'),
                                           nxDecimal("0.000000000000001", '.'), nxDecimal("1000000000000000", '.')};
    std::unique_ptr<PriceGrid> grid;
    if (data[0] < 4)
        grid = std::make_unique<FixedGrid>(increments[data[0]]);
    else
        grid = std::make_unique<TableGrid>(*tables.GetAll()[data[0] % tables.GetAll().size()].table);
    const nxRoundingMethodEnum method(static_cast<nxEnumValue>(NX_ROUNDING_METHOD_DOWN + data[1] % 4));
    const std::string_view file(reinterpret_cast<const char*>(data + 2), size - 2);

    const Outcome atOnce = Run(file, *grid, method, file.size() + 1);
    const Outcome inPieces = Run(file, *grid, method, 1U + data[1] / 4U);
    Require(atOnce.rows == inPieces.rows && atOnce.added == inPieces.added && atOnce.messages == inPieces.messages);
    Require(atOnce.isWhole ? atOnce.rows == file : file.substr(0, atOnce.rows.size()) == atOnce.rows);
    return 0;
}
