// SPDX-License-Identifier: Apache-2.0
// Volumes, read and written, beside plain integers of the same digits by the standard library.
#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <random>
#include <string>
#include <system_error>

#include "core/numeric/nxPowersOfTen.h"
#include "core/price/nxAbbreviatedVolumeConverter.h"
#include "core/price/nxLotVolumeConverter.h"
#include "core/price/nxScaledVolumeConverter.h"

namespace
{
typedef nxVolumeConverter::Units Units;
constexpr std::size_t ringSize = 1024;

const nxVolumeConverter plain;
const nxLotVolumeConverter lots(100);
const nxScaledVolumeConverter coins(8);
const nxAbbreviatedVolumeConverter screen(plain, nxAbbreviatedVolumeConverter::Suffixes::KMBT);

// Volumes of one to seven digits; of units of 10^-8 of eight to fourteen.
std::array<Units, ringSize> MakeUnits(const nxVolumeConverter& converter)
{
    const std::size_t leastDigits = &converter == &coins ? 8 : 1;
    std::mt19937_64 random(1);
    std::array<Units, ringSize> volumes;
    for (Units& units : volumes)
        units = random() % nxPowersOfTen::GetInteger(leastDigits + random() % 7);
    return volumes;
}

template <class MakeText, class ReadText>
void RunRead(benchmark::State& state, const nxVolumeConverter& converter, MakeText makeText, ReadText readText)
{
    std::array<std::string, ringSize> texts;
    const std::array<Units, ringSize> volumes = MakeUnits(converter);
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
        state, converter, [&](const Units& units) { return converter.GetAsString(units, '.'); },
        [&](const std::string& text, Units& units) { return converter.SetFromString(text, units, '.'); });
}

void ReadInteger(benchmark::State& state, const nxVolumeConverter& converter)
{
    // Its digits and separator alone, so that both texts are equally long.
    RunRead(
        state, converter,
        [&](const Units& units)
        {
            std::string text = converter.GetAsString(units, '.');
            for (char& character : text)
                character = character >= '0' && character <= '9' ? character : '1';
            return text;
        },
        [](const std::string& text, Units& units)
        {
            unsigned long long number = 0;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
            units = number;
            return error == std::errc() && *end == '\0' ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        });
}

template <class WriteText>
void RunWrite(benchmark::State& state, const nxVolumeConverter& converter, WriteText writeText)
{
    const std::array<Units, ringSize> volumes = MakeUnits(converter);
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
    RunWrite(state, converter,
             [&](char* buffer, const Units& units) { return converter.GetAsString(buffer, units, '.'); });
}

void WriteInteger(benchmark::State& state, const nxVolumeConverter& converter)
{
    RunWrite(state, converter,
             [](char* buffer, const Units& units)
             {
                 char* const end = std::to_chars(buffer, buffer + nxVolumeConverter::MaxTextSize,
                                                 static_cast<unsigned long long>(units))
                                       .ptr;
                 *end = '\0';
                 return static_cast<std::size_t>(end - buffer);
             });
}

#define NX_VOLUMES(name, converter)                                                          \
    BENCHMARK_CAPTURE(Read, name, converter)->Name("volume_read_" #name "/ours");            \
    BENCHMARK_CAPTURE(ReadInteger, name, converter)->Name("volume_read_" #name "/peer_std"); \
    BENCHMARK_CAPTURE(Write, name, converter)->Name("volume_write_" #name "/ours");          \
    BENCHMARK_CAPTURE(WriteInteger, name, converter)->Name("volume_write_" #name "/peer_std")

NX_VOLUMES(units, plain);
NX_VOLUMES(lots, lots);
NX_VOLUMES(scaled, coins);
NX_VOLUMES(abbreviated, screen);
#undef NX_VOLUMES
}  // namespace
