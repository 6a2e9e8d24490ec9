// SPDX-License-Identifier: Apache-2.0
// Prices in fractions, read and written, beside the same prices as the texts of nxDecimal (the limit: no library converts
// such prices); and the distance of two prices in ticks beside one rounding.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <random>
#include <string>

#include "core/price/nxPriceConverterHelper.h"
#include "core/price/nxPriceManipulator.h"
#include "core/price/nxTickTableCursor.h"
#include "core/price/nxVariableTickTableContainer.h"

namespace
{
constexpr std::size_t ringSize = 1024;

const nxPriceConverter& GetConverter(const char* notation)
{
    const nxPriceConverter* const converter = nxPriceConverterHelper::Get(notation);
    if (converter == nullptr)
        std::abort();
    return *converter;
}

// Prices of bonds on the grid of a notation, as they are read from it.
std::array<nxDecimal, ringSize> MakePrices(const nxPriceConverter& converter)
{
    std::mt19937_64 random(1);
    const nxDecimal tick = converter.GetTickIncrement();
    std::array<nxDecimal, ringSize> prices;
    for (nxDecimal& price : prices)
    {
        const auto ticks = static_cast<long long>(90 / tick.GetAsDouble()) +
                           static_cast<long long>(random() % static_cast<unsigned long long>(40 / tick.GetAsDouble()));
        price = nxDecimal::ConstructFromValueAndDecimalPlaces(tick.GetValue() * ticks, tick.GetDecimalPlaces());
    }
    return prices;
}

template <class MakeText>
std::array<std::string, ringSize> MakeTexts(const nxPriceConverter& converter, MakeText makeText)
{
    std::array<std::string, ringSize> texts;
    const std::array<nxDecimal, ringSize> prices = MakePrices(converter);
    for (std::size_t i = 0; i < ringSize; ++i)
        texts[i] = makeText(prices[i]);
    return texts;
}

template <class ReadText>
void RunRead(benchmark::State& state, const std::array<std::string, ringSize>& texts, ReadText readText)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        nxDecimal price;
        if (!readText(texts[i++ % ringSize], price).IsOK())
            std::abort();
        benchmark::DoNotOptimize(price.GetValue());
        benchmark::DoNotOptimize(price.GetScale());
    }
}

void Read(benchmark::State& state, const char* notation)
{
    const nxPriceConverter& converter = GetConverter(notation);
    RunRead(state, MakeTexts(converter, [&](const nxDecimal& price) { return converter.GetAsString(price, '.'); }),
            [&](const std::string& text, nxDecimal& price) { return converter.SetFromString(text, price, '.'); });
}

void ReadDecimal(benchmark::State& state, const char* notation)
{
    RunRead(state, MakeTexts(GetConverter(notation), [](const nxDecimal& price) { return price.GetAsString('.'); }),
            [](const std::string& text, nxDecimal& price) { return price.SetFromString(text, '.'); });
}

template <class WriteText>
void RunWrite(benchmark::State& state, const char* notation, WriteText writeText)
{
    const nxPriceConverter& converter = GetConverter(notation);
    const std::array<nxDecimal, ringSize> prices = MakePrices(converter);
    char buffer[nxPriceConverter::MaxTextSize];
    std::size_t i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(writeText(converter, buffer, prices[i++ % ringSize]));
        benchmark::DoNotOptimize(&buffer);
        benchmark::ClobberMemory();
    }
}

void Write(benchmark::State& state, const char* notation)
{
    RunWrite(state, notation,
             [](const nxPriceConverter& converter, char* buffer, const nxDecimal& price)
             { return converter.GetAsString(buffer, price, '.'); });
}

void WriteDecimal(benchmark::State& state, const char* notation)
{
    RunWrite(state, notation,
             [](const nxPriceConverter&, char* buffer, const nxDecimal& price)
             { return price.GetAsString(buffer, '.'); });
}

#define NX_NOTATION(name, notation)                                                             \
    BENCHMARK_CAPTURE(Read, name, notation)->Name("price_read_" #name "/ours");                 \
    BENCHMARK_CAPTURE(ReadDecimal, name, notation)->Name("price_read_" #name "/limit_decimal"); \
    BENCHMARK_CAPTURE(Write, name, notation)->Name("price_write_" #name "/ours");               \
    BENCHMARK_CAPTURE(WriteDecimal, name, notation)->Name("price_write_" #name "/limit_decimal")

NX_NOTATION(32nds, "FRACTION:32");
NX_NOTATION(quarters_of_32nds, "MODIFIED:32/4");
NX_NOTATION(eighths_as_numerals, "MODIFIED:32/8+-");
#undef NX_NOTATION

// --- Ticks between two prices ---

const nxVariableTickTable& GetTable()
{
    const nxVariableTickTable* const table = nxVariableTickTableContainer::GetVariableTickTable("VTT_EURONEXT_07");
    if (table == nullptr)
        std::abort();
    return *table;
}

// Valid prices within a hundred ticks above a number that is one.
std::array<nxDecimal, ringSize> MakeNeighbours(const char* lowest)
{
    std::mt19937_64 random(2);
    std::array<nxDecimal, ringSize> prices;
    for (nxDecimal& price : prices)
    {
        price = nxDecimal(lowest, '.');
        GetTable().Increment(price, static_cast<int>(random() % 100));
    }
    return prices;
}

template <class Way>
void RunCount(benchmark::State& state, Way& way, const char* lowest)
{
    const std::array<nxDecimal, ringSize> prices = MakeNeighbours(lowest);
    std::size_t i = 0;
    for (auto _ : state)
    {
        long long ticks = 0;
        if (!way.GetTicksBetween(prices[i % ringSize], prices[(i + 1) % ringSize], ticks).IsOK())
            std::abort();
        ++i;
        benchmark::DoNotOptimize(ticks);
    }
}

void CountByCursor(benchmark::State& state, const char* lowest)
{
    nxTickTableCursor cursor(GetTable());
    RunCount(state, cursor, lowest);
}

void CountByManipulator(benchmark::State& state, const char* lowest)
{
    const nxPriceManipulator manipulator(&GetTable());
    RunCount(state, manipulator, lowest);
}

void CountByFixedTick(benchmark::State& state, const char* lowest)
{
    const nxPriceManipulator manipulator(GetTable().GetTickIncrement(nxDecimal(lowest, '.')));
    RunCount(state, manipulator, lowest);
}

void RoundByCursor(benchmark::State& state, const char* lowest)
{
    nxTickTableCursor cursor(GetTable());
    const nxRoundingMethodEnum method(NX_ROUNDING_METHOD_NEAREST);
    const std::array<nxDecimal, ringSize> prices = MakeNeighbours(lowest);
    std::size_t i = 0;
    for (auto _ : state)
    {
        nxDecimal price = prices[i++ % ringSize];
        cursor.RoundToValidTick(method, price);
        benchmark::DoNotOptimize(price.GetValue());
        benchmark::DoNotOptimize(price.GetScale());
    }
}

#define NX_COUNT(name, lowest)                                                                        \
    BENCHMARK_CAPTURE(CountByCursor, name, lowest)->Name("ticks_between_" #name "/ours_cursor");      \
    BENCHMARK_CAPTURE(CountByManipulator, name, lowest)->Name("ticks_between_" #name "/ours_locked"); \
    BENCHMARK_CAPTURE(RoundByCursor, name, lowest)->Name("ticks_between_" #name "/limit_round")

NX_COUNT(same_band, "10.500");
NX_COUNT(two_bands, "9.950");
#undef NX_COUNT
BENCHMARK_CAPTURE(CountByFixedTick, fixed, "10.500")->Name("ticks_between_same_band/ours_fixed_tick");
}  // namespace
