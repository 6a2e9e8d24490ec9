// SPDX-License-Identifier: Apache-2.0
// Enumerations: from value to text and back, over the 600 names that are about the library's own and over 4000, as a
// process with its applications' enumerations has them.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/enum/nxTypedEnum.h"

#ifdef NX_BENCHMARK_HAS_GPERF
    #pragma GCC diagnostic push
    #pragma GCC diagnostic ignored "-Wconversion"
    #pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
    #pragma GCC diagnostic ignored "-Wmissing-field-initializers"
    #include "gperf_600.inc"
    #undef TOTAL_KEYWORDS
    #undef MIN_WORD_LENGTH
    #undef MAX_WORD_LENGTH
    #undef MIN_HASH_VALUE
    #undef MAX_HASH_VALUE
    #include "gperf_4000.inc"
    #pragma GCC diagnostic pop
#endif

namespace
{
struct Name
{
    unsigned value;
    std::string_view text;
};

constexpr Name names[] = {
#define NX_BENCHMARK_NAME(index, value, text) {value, text},
#include "names.inc"
#undef NX_BENCHMARK_NAME
};

// Spans the library's error codes and the application's values, so that one class can hold all names.
class BenchmarkEnum final : public nxTypedEnum<BenchmarkEnum, 1000000, 6000000>
{
public:
    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;
    std::string GetClassName() const override { return "BenchmarkEnum"; }

private:
    static bool _RegisterValues()
    {
        for (const Name& name : names)
            _Register(name.value, std::string(name.text), "a value of the benchmark");
        return true;
    }
    static const bool _registered;
};

const bool BenchmarkEnum::_registered = _RegisterValues();

constexpr std::size_t RingSize = 1024;

// Prepared inputs: names drawn from the first `Count`, in the form that a column takes.
template <std::size_t Count, class Input, class Make>
std::vector<Input> MakeRing(Make make)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<std::size_t> draw(0, Count - 1);
    std::vector<Input> ring;
    for (std::size_t i = 0; i != RingSize; ++i)
        ring.push_back(make(draw(random)));
    return ring;
}

template <std::size_t Count>
std::vector<std::size_t> MakeIndexRing()
{
    return MakeRing<Count, std::size_t>([](std::size_t index) { return index; });
}

template <std::size_t Count>
std::vector<BenchmarkEnum> MakeValueRing()
{
    return MakeRing<Count, BenchmarkEnum>([](std::size_t index) { return BenchmarkEnum(names[index].value); });
}

template <std::size_t Count>
std::vector<std::string> MakeTextRing()
{
    return MakeRing<Count, std::string>([](std::size_t index) { return std::string(names[index].text); });
}

// Takes a result in a register. benchmark::DoNotOptimize accepts the result's place in memory instead, which would
// leave out the last load of a look-up.
template <class Result>
void Consume(Result result)
{
    asm volatile("" : : "r"(result) : "memory");
}

// Runs `look` over the ring and consumes what it returns.
template <class Input, class Look>
void Run(benchmark::State& state, const std::vector<Input>& inputs, Look look)
{
    const Input* const ring = inputs.data();
    std::size_t i = 0;
    for (auto _ : state)
        Consume(look(ring[i++ % RingSize]));
}

// --- Value to text ---

template <std::size_t Count>
void ToTextOurs(benchmark::State& state)
{
    Run(state, MakeValueRing<Count>(), [](const BenchmarkEnum& value) { return &value.GetShortDescription(); });
}

// The least that any look-up by value can do: an array over the class's interval, in which a value that was never
// registered has no text. The values are renumbered without gaps for it.
template <std::size_t Count>
void ToTextDenseArray(benchmark::State& state)
{
    static const auto texts = []
    {
        std::array<const std::string*, Count> made{};
        for (std::size_t i = 0; i != Count; ++i)
            made[i] = new std::string(names[i].text);
        return made;
    }();
    static const std::string unknown = "NOT_REGISTERED";
    const auto ring = MakeRing<Count, BenchmarkEnum>(
        [](std::size_t index) { return BenchmarkEnum(BenchmarkEnum::MinimumValue + 1 + index); });
    Run(state, ring,
        [](const BenchmarkEnum& value)
        {
            const std::size_t index = value.GetValue() - (BenchmarkEnum::MinimumValue + 1);
            const std::string* const text = index < Count ? texts[index] : nullptr;
            return text != nullptr ? text : &unknown;
        });
}

template <std::size_t Count, template <class...> class Map>
void ToTextMap(benchmark::State& state)
{
    static const auto texts = []
    {
        Map<unsigned, std::string> made;
        for (std::size_t i = 0; i != Count; ++i)
            made.emplace(names[i].value, names[i].text);
        return made;
    }();
    static const std::string unknown = "NOT_REGISTERED";
    Run(state, MakeValueRing<Count>(),
        [](const BenchmarkEnum& value)
        {
            const auto found = texts.find(value.GetValue());
            return found != texts.end() ? &found->second : &unknown;
        });
}

template <std::size_t Count>
const char* Switch(unsigned value)
{
    switch (value)
    {
#define NX_BENCHMARK_NAME(index, number, text) \
    case number:                               \
        if (index < Count)                     \
            return text;                       \
        break;
#include "names.inc"
#undef NX_BENCHMARK_NAME
        default:
            break;
    }
    return "NOT_REGISTERED";
}

template <std::size_t Count>
void ToTextSwitch(benchmark::State& state)
{
    Run(state, MakeValueRing<Count>(), [](const BenchmarkEnum& value) { return Switch<Count>(value.GetValue()); });
}

// --- Text to value ---

template <std::size_t Count>
void ToEnumOurs(benchmark::State& state)
{
    Run(state, MakeTextRing<Count>(),
        [](const std::string& text)
        {
            BenchmarkEnum value;
            value.SetFromString(text);
            return value.GetValue();
        });
}

std::uint64_t LoadWord(const char* data)
{
    std::uint64_t word;
    std::memcpy(&word, data, sizeof word);
    return word;
}

std::uint64_t Hash(std::string_view text)
{
    return (LoadWord(text.data()) + text.size()) * 0x9E3779B97F4A7C15u ^
           LoadWord(text.data() + text.size() / 2 - 4) * 0xC2B2AE3D27D4EB4Fu ^
           LoadWord(text.data() + text.size() - 8) * 0xD6E8FEB86659FD93u;
}

// The least that any look-up by text can do: hash the text, and compare it with the one that the hash leads to. Here
// the ring knows where that is.
template <std::size_t Count>
void ToEnumHashCompare(benchmark::State& state)
{
    struct Input
    {
        std::string text;
        const Name* found;
        std::uint64_t hash;
    };
    const auto ring = MakeRing<Count, Input>(
        [](std::size_t index) {
            return Input{std::string(names[index].text), &names[index], Hash(names[index].text)};
        });
    Run(state, ring,
        [](const Input& input)
        {
            const std::string_view found = input.found->text;
            const bool isEqual = Hash(input.text) == input.hash && found.size() == input.text.size() &&
                                 std::memcmp(found.data(), input.text.data(), found.size()) == 0;
            return isEqual ? input.found->value : 0;
        });
}

template <std::size_t Count, template <class...> class Map>
void ToEnumMap(benchmark::State& state)
{
    static const auto values = []
    {
        Map<std::string, unsigned> made;
        for (std::size_t i = 0; i != Count; ++i)
            made.emplace(names[i].text, names[i].value);
        return made;
    }();
    Run(state, MakeTextRing<Count>(),
        [](const std::string& text)
        {
            const auto found = values.find(text);
            return found != values.end() ? found->second : 0;
        });
}

#ifdef NX_BENCHMARK_HAS_GPERF
template <std::size_t Count, class Table>
void ToEnumGperf(benchmark::State& state)
{
    Run(state, MakeTextRing<Count>(),
        [](const std::string& text)
        {
            const auto* const found = Table::Find(text.data(), text.size());
            return found != nullptr ? found->value : 0;
        });
}
BENCHMARK(ToEnumGperf<600, Gperf600>)->Name("text_to_enum_600/peer_gperf");
BENCHMARK(ToEnumGperf<4000, Gperf4000>)->Name("text_to_enum_4000/peer_gperf");
#endif

BENCHMARK(ToTextOurs<600>)->Name("enum_to_text_600/ours");
BENCHMARK(ToTextDenseArray<600>)->Name("enum_to_text_600/limit_dense_array");
BENCHMARK(ToTextMap<600, std::unordered_map>)->Name("enum_to_text_600/peer_unordered_map");
BENCHMARK(ToTextMap<600, std::map>)->Name("enum_to_text_600/peer_std_map");
BENCHMARK(ToTextSwitch<600>)->Name("enum_to_text_600/peer_switch");
BENCHMARK(ToTextOurs<4000>)->Name("enum_to_text_4000/ours");
BENCHMARK(ToTextDenseArray<4000>)->Name("enum_to_text_4000/limit_dense_array");
BENCHMARK(ToTextMap<4000, std::unordered_map>)->Name("enum_to_text_4000/peer_unordered_map");
BENCHMARK(ToTextMap<4000, std::map>)->Name("enum_to_text_4000/peer_std_map");
BENCHMARK(ToTextSwitch<4000>)->Name("enum_to_text_4000/peer_switch");

BENCHMARK(ToEnumOurs<600>)->Name("text_to_enum_600/ours");
BENCHMARK(ToEnumHashCompare<600>)->Name("text_to_enum_600/limit_hash_compare");
BENCHMARK(ToEnumMap<600, std::unordered_map>)->Name("text_to_enum_600/peer_unordered_map");
BENCHMARK(ToEnumMap<600, std::map>)->Name("text_to_enum_600/peer_std_map");
BENCHMARK(ToEnumOurs<4000>)->Name("text_to_enum_4000/ours");
BENCHMARK(ToEnumHashCompare<4000>)->Name("text_to_enum_4000/limit_hash_compare");
BENCHMARK(ToEnumMap<4000, std::unordered_map>)->Name("text_to_enum_4000/peer_unordered_map");
BENCHMARK(ToEnumMap<4000, std::map>)->Name("text_to_enum_4000/peer_std_map");

// --- Loading the library, and how much private memory that writes ---

void Load(benchmark::State& state, const char* library)
{
    const std::string command = std::string("'" NX_BENCHMARK_LOADER "' '") + library + "'";
    for (auto _ : state)
    {
        std::FILE* const pipe = popen(command.c_str(), "r");
        long nanoseconds = 0;
        long kilobytes = 0;
        const bool isRead = std::fscanf(pipe, "%ld %ld", &nanoseconds, &kilobytes) == 2;
        if (pclose(pipe) != 0 || !isRead)
            state.SkipWithError("the library could not be loaded");
        state.SetIterationTime(static_cast<double>(nanoseconds) * 1e-9);
        state.counters["dirty_kb"] = static_cast<double>(kilobytes);
    }
}
BENCHMARK_CAPTURE(Load, ours, NX_BENCHMARK_LIBRARY)->Name("library_load/ours")->UseManualTime();
BENCHMARK_CAPTURE(Load, empty, NX_BENCHMARK_EMPTY)->Name("library_load/limit_empty_library")->UseManualTime();

// One registry, many readers: nothing is written, so a look-up costs each thread the same.
BENCHMARK(ToTextOurs<4000>)->Name("enum_to_text_threads/ours")->ThreadRange(1, 8);
BENCHMARK(ToEnumOurs<4000>)->Name("text_to_enum_threads/ours")->ThreadRange(1, 8);
}  // namespace
