// SPDX-License-Identifier: Apache-2.0
// Volumes, read and written, beside the same digits as a plain integer (the limit: no library converts such volumes).
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <random>
#include <string>

#include "core/numeric/nxPowersOfTen.h"
#include "core/price/nxAbbreviatedVolumeConverter.h"
#include "core/price/nxLotVolumeConverter.h"
#include "core/price/nxScaledVolumeConverter.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"

namespace
{
typedef nxVolumeConverter::Units Units;
constexpr std::size_t ringSize = 1024;

const nxVolumeConverter plain;
const nxLotVolumeConverter lots(100);
const nxScaledVolumeConverter coins(8);
const nxAbbreviatedVolumeConverter screen(plain, nxAbbreviatedVolumeConverter::Suffixes::KMBT);

// Volumes of one to seven digits.
std::array<Units, ringSize> MakeUnits()
{
    std::mt19937_64 random(1);
    std::array<Units, ringSize> volumes;
    for (Units& units : volumes)
        units = random() % nxPowersOfTen::GetInteger(1 + random() % 7);
    return volumes;
}

template <class MakeText, class ReadText>
void RunRead(benchmark::State& state, MakeText makeText, ReadText readText)
{
    std::array<std::string, ringSize> texts;
    const std::array<Units, ringSize> volumes = MakeUnits();
    for (std::size_t i = 0; i < ringSize; ++i)
        texts[i] = makeText(volumes[i]);
    std::size_t i = 0;
    for (auto _ : state)
    {
        Units units;
        if (!readText(texts[i++ % ringSize], units).IsOK())
            std::abort();
        benchmark::DoNotOptimize(units);
    }
}

void Read(benchmark::State& state, const nxVolumeConverter& converter)
{
    RunRead(
        state, [&](const Units& units) { return converter.GetAsString(units, '.'); },
        [&](const std::string& text, Units& units) { return converter.SetFromString(text, units, '.'); });
}

void ReadInteger(benchmark::State& state, const nxVolumeConverter& converter)
{
    // Its digits and separator alone, so that both texts are equally long.
    RunRead(
        state,
        [&](const Units& units)
        {
            std::string text = converter.GetAsString(units, '.');
            for (char& character : text)
                character = character >= '0' && character <= '9' ? character : '1';
            return text;
        },
        [](const std::string& text, Units& units) { return units.SetFromStringExact(text); });
}

template <class WriteText>
void RunWrite(benchmark::State& state, WriteText writeText)
{
    const std::array<Units, ringSize> volumes = MakeUnits();
    char buffer[nxVolumeConverter::MaxTextSize];
    std::size_t i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(writeText(buffer, volumes[i++ % ringSize]));
        benchmark::DoNotOptimize(&buffer);
        benchmark::ClobberMemory();
    }
}

void Write(benchmark::State& state, const nxVolumeConverter& converter)
{
    RunWrite(state, [&](char* buffer, const Units& units) { return converter.GetAsString(buffer, units, '.'); });
}

void WriteInteger(benchmark::State& state, const nxVolumeConverter&)
{
    RunWrite(state,
             [](char* buffer, const Units& units)
             {
                 char* const end = nxDigits::Write(buffer, static_cast<unsigned long long>(units));
                 *end = '\0';
                 return static_cast<std::size_t>(end - buffer);
             });
}

#define NX_VOLUMES(name, converter)                                                               \
    BENCHMARK_CAPTURE(Read, name, converter)->Name("volume_read_" #name "/ours");                 \
    BENCHMARK_CAPTURE(ReadInteger, name, converter)->Name("volume_read_" #name "/limit_integer"); \
    BENCHMARK_CAPTURE(Write, name, converter)->Name("volume_write_" #name "/ours");               \
    BENCHMARK_CAPTURE(WriteInteger, name, converter)->Name("volume_write_" #name "/limit_integer")

NX_VOLUMES(units, plain);
NX_VOLUMES(lots, lots);
NX_VOLUMES(scaled, coins);
NX_VOLUMES(abbreviated, screen);
#undef NX_VOLUMES
}  // namespace
