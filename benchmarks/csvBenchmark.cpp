// SPDX-License-Identifier: Apache-2.0
// Reading the rows of a CSV file, and values from them.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "benchmarks/support/tradesFile.h"
#include "core/app/nxCSVFileReader.h"
#include "core/numeric/nxDecimal.h"

#if defined(NX_BENCHMARK_HAS_LIBCSV)
    #include <csv.h>
#endif

namespace
{
constexpr std::int64_t rowCount = TradesFile::RowCount;
constexpr std::size_t symbolColumn = 1;
constexpr std::size_t priceColumn = TradesFile::PriceColumn;
constexpr std::size_t volumeColumn = 3;

const std::string& File() { return TradesFile::Get(); }

// Gives the file in blocks, as the system would.
nxErrorEnum ReadBlock(void* context, char* buffer, std::size_t size, std::size_t& read)
{
    auto& rest = *static_cast<std::string_view*>(context);
    read = rest.copy(buffer, size);
    rest.remove_prefix(read);
    return nxErrorEnum();
}

// Finds the rows, and a field in each.
void ReadOurs(benchmark::State& state)
{
    for (auto _ : state)
    {
        std::string_view rest = File();
        nxCSVParser parser(&ReadBlock, &rest);
        nxCSVRow row;
        std::string scratch;
        std::string_view price;
        for (bool hasRow = true; parser.Next(row, hasRow).IsOK() && hasRow;)
            if (row.GetField(priceColumn, scratch, price).IsOK())
                benchmark::DoNotOptimize(price);
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

// Reads three columns of each row.
template <class Price, class Volume>
void ReadColumns(benchmark::State& state)
{
    for (auto _ : state)
    {
        nxCSVFileReader reader;
        bool hasRow = reader.SetFromText(File()).IsOK();
        std::string_view symbol;
        Price price{};
        Volume volume{};
        while (hasRow && reader.Next(hasRow).IsOK() && hasRow)
            if (reader.GetField(symbolColumn, symbol).IsOK() && reader.GetField(priceColumn, price).IsOK() &&
                reader.GetField(volumeColumn, volume).IsOK())
            {
                benchmark::DoNotOptimize(symbol);
                benchmark::DoNotOptimize(price);
                benchmark::DoNotOptimize(volume);
            }
    }
    state.SetItemsProcessed(state.iterations() * rowCount);
}
// A decimal and an integer, beside the same columns as texts.
BENCHMARK(ReadColumns<nxDecimal, unsigned>)->Name("csv_columns/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(ReadColumns<std::string_view, std::string_view>)
    ->Name("csv_columns/limit_texts")
    ->Unit(benchmark::kMillisecond);
}  // namespace
