// SPDX-License-Identifier: Apache-2.0
// The rows of a price file: finding them and their price field, and snapping the price.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

#include "CsvHeader.h"
#include "CsvReader.h"
#include "PriceSnapper.h"
#include "Request.h"
#include "RowGrids.h"
#include "SnapPlan.h"

#if defined(NX_BENCHMARK_HAS_LIBCSV)
    #include <csv.h>
#endif

namespace
{
constexpr std::int64_t rowCount = 100'000;
constexpr std::size_t priceColumn = 2;

// A day of trades: date, symbol, price, volume.
const std::string& File()
{
    static const std::string file = []
    {
        std::mt19937_64 random(1);
        std::string text = "Date,Symbol,Price,Volume\n";
        for (std::int64_t i = 0; i < rowCount; ++i)
        {
            const auto cents = static_cast<unsigned>(random() % 2'000'000);
            text += "2020-04-20,WTI," + std::to_string(cents / 100) + "." +
                    std::to_string(100 + cents % 100).substr(1) + "," + std::to_string(random() % 5000) + "\n";
        }
        return text;
    }();
    return file;
}

// The file in blocks, as the system would give it.
nxtick::CsvSource Blocks()
{
    return [done = std::size_t{0}](char* buffer, std::size_t size) mutable
    {
        const std::size_t count = std::min(size, File().size() - done);
        std::memcpy(buffer, File().data() + done, count);
        done += count;
        return count;
    };
}

void ReadOurs(benchmark::State& state)
{
    for (auto _ : state)
    {
        nxtick::CsvReader reader(Blocks());
        nxCSVRow row;
        nxtick::WantedFields fields({priceColumn});
        while (reader.Next(row))
            if (row.GetFieldCount() > priceColumn)
            {
                fields.Take(row);
                benchmark::DoNotOptimize(fields[0]);
            }
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(ReadOurs)->Name("csv_read/ours")->Unit(benchmark::kMillisecond);

// Line ends and nothing else.
void ReadMemchr(benchmark::State& state)
{
    std::string block(File().size(), '\0');
    for (auto _ : state)
    {
        std::memcpy(block.data(), File().data(), File().size());
        const char* from = block.data();
        const char* const end = from + block.size();
        while (const void* const found = std::memchr(from, '\n', static_cast<std::size_t>(end - from)))
        {
            benchmark::DoNotOptimize(found);
            from = static_cast<const char*>(found) + 1;
        }
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(ReadMemchr)->Name("csv_read/limit_memchr")->Unit(benchmark::kMillisecond);

#if defined(NX_BENCHMARK_HAS_LIBCSV)
struct Column
{
    std::size_t at = 0;
};

void ReadLibcsv(benchmark::State& state)
{
    const auto field = [](void* text, std::size_t, void* column)
    {
        if (static_cast<Column*>(column)->at++ == priceColumn)
            benchmark::DoNotOptimize(text);
    };
    const auto row = [](int, void* column) { static_cast<Column*>(column)->at = 0; };
    for (auto _ : state)
    {
        csv_parser parser;
        Column column;
        csv_init(&parser, 0);
        csv_parse(&parser, File().data(), File().size(), field, row, &column);
        csv_fini(&parser, field, row, &column);
        csv_free(&parser);
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(ReadLibcsv)->Name("csv_read/peer_libcsv")->Unit(benchmark::kMillisecond);
#endif

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
        const nxtick::SnapPlan plan(request.csv, nxtick::CsvHeader(row, true), source.HasBands());
        nxtick::PriceSnapper snapper(plan, grids, [](std::uint64_t, const std::string&) {});
        while (reader.Next(row))
            snapper.Row(row, out);
        benchmark::DoNotOptimize(out.GetText().data());
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(SnapOurs)->Name("csv_snap/ours")->Unit(benchmark::kMillisecond);

// What one would write by hand with doubles, inexact as they are: the same reader, the same columns.
void SnapDouble(benchmark::State& state)
{
    constexpr double increment = 0.05;
    std::string out;
    out.reserve(2 * File().size());
    for (auto _ : state)
    {
        out.clear();
        nxtick::CsvReader reader(Blocks());
        nxCSVRow row;
        nxtick::WantedFields fields({priceColumn});
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
            if (row.GetFieldCount() > priceColumn &&
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
    state.SetItemsProcessed(state.iterations() * rowCount);
}
BENCHMARK(SnapDouble)->Name("csv_snap/peer_double")->Unit(benchmark::kMillisecond);
}  // namespace
