// SPDX-License-Identifier: Apache-2.0
// The rows of a price file: snapping the price of each.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

#include "CsvHeader.h"
#include "CsvReader.h"
#include "PriceSnapper.h"
#include "Request.h"
#include "RowGrids.h"
#include "SnapPlan.h"
#include "benchmarks/support/tradesFile.h"

namespace
{
// The file in blocks, as the system would give it.
nxtick::CsvSource Blocks()
{
    return [done = std::size_t{0}](char* buffer, std::size_t size) mutable
    {
        const std::size_t count = std::min(size, TradesFile::Get().size() - done);
        std::memcpy(buffer, TradesFile::Get().data() + done, count);
        done += count;
        return count;
    };
}

void SnapOurs(benchmark::State& state)
{
    nxtick::TextBlock out;
    nxtick::Request request;
    request.increment = nxDecimal("0.05", '.');
    request.csv.columns = {"Price"};
    const nxtick::GridSource source(request);
    for (auto _ : state)
    {
        out.Clear();
        nxtick::RowGrids grids(source);
        nxtick::CsvReader reader(Blocks());
        nxCSVRow row;
        reader.Next(row);
        const nxtick::SnapPlan plan(request.csv, request.notation, nxtick::CsvHeader(row, true), source.HasBands());
        nxtick::PriceSnapper snapper(plan, grids, [](std::uint64_t, const std::string&) {});
        while (reader.Next(row))
            snapper.Row(row, out);
        benchmark::DoNotOptimize(out.GetText().data());
    }
    state.SetItemsProcessed(state.iterations() * TradesFile::RowCount);
}
BENCHMARK(SnapOurs)->Name("csv_snap/ours")->Unit(benchmark::kMillisecond);

// What one would write by hand with doubles, inexact as they are: the same reader, the same columns.
void SnapDouble(benchmark::State& state)
{
    constexpr double increment = 0.05;
    std::string out;
    out.reserve(2 * TradesFile::Get().size());
    for (auto _ : state)
    {
        out.clear();
        nxtick::CsvReader reader(Blocks());
        nxCSVRow row;
        nxtick::WantedFields fields({TradesFile::PriceColumn});
        const auto add = [&out](double value)
        {
            char text[32];
            const auto result = std::to_chars(text, text + sizeof(text), value, std::chars_format::fixed, 2);
            out += ',';
            out.append(text, result.ptr);
        };
        while (reader.Next(row))
        {
            double price = 0;
            out.append(row.content);
            fields.Take(row);
            if (row.GetFieldCount() > TradesFile::PriceColumn &&
                std::from_chars(fields[0].data(), fields[0].data() + fields[0].size(), price).ec == std::errc())
            {
                const double snapped = std::floor(price / increment + 0.5) * increment;
                add(increment);
                add(snapped);
                add(snapped - price);
            }
            out.append(row.terminator);
        }
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * TradesFile::RowCount);
}
BENCHMARK(SnapDouble)->Name("csv_snap/peer_double")->Unit(benchmark::kMillisecond);
}  // namespace
