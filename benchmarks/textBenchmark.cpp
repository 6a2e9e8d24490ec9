// SPDX-License-Identifier: Apache-2.0
// Numbers as text, both ways, beside what a program would otherwise call.
#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#if defined(NX_BENCHMARK_HAS_FMT)
    #include <fmt/compile.h>
    #include <fmt/format.h>
#endif
#if defined(NX_BENCHMARK_HAS_ABSL)
    #include <absl/strings/numbers.h>
#endif
#if __has_include(<fast_float/fast_float.h>)
    #include <fast_float/fast_float.h>
    #define NX_BENCHMARK_HAS_FAST_FLOAT
#endif

#include "core/text/nxStringHelper.h"

namespace
{
constexpr std::size_t ringSize = 1024;
template <class Value>
using Ring = std::array<Value, ringSize>;

template <class Value, class Make>
Ring<Value> Filled(Make make)
{
    std::mt19937_64 random(1);
    Ring<Value> ring;
    for (Value& value : ring)
        value = make(random);
    return ring;
}

// Nine digits: quantities, identifiers, prices in ticks.
const Ring<long long>& NineDigits()
{
    static const auto ring =
        Filled<long long>([](auto& random) { return static_cast<long long>(100'000'000 + random() % 900'000'000); });
    return ring;
}

// One to eighteen digits, every second number negative: nothing for a branch predictor to hold on to.
const Ring<long long>& AnyDigits()
{
    static const auto ring = Filled<long long>(
        [](auto& random)
        {
            long long power = 1;
            for (auto digits = random() % 18; digits != 0; --digits)
                power *= 10;
            const auto value = static_cast<long long>(random() % static_cast<std::uint64_t>(9 * power)) + power;
            return random() % 2 == 0 ? value : -value;
        });
    return ring;
}

// Prices and rates: six to eleven digits, two to six of them after the point.
const Ring<double>& Prices()
{
    static const auto ring = Filled<double>(
        [](auto& random)
        {
            std::uint64_t limit = 1;
            for (auto digits = 6 + random() % 6; digits != 0; --digits)
                limit *= 10;
            double power = 100;
            for (auto decimals = random() % 5; decimals != 0; --decimals)
                power *= 10;
            return static_cast<double>(random() % limit) / power;
        });
    return ring;
}

// The same numbers as text, as short as they can be.
const Ring<std::string>& Texts(const Ring<long long>& numbers)
{
    static const auto make = [](const Ring<long long>& of)
    {
        Ring<std::string> texts;
        for (std::size_t i = 0; i < ringSize; ++i)
            texts[i] = std::to_string(of[i]);
        return texts;
    };
    static const Ring<std::string> nine = make(NineDigits());
    static const Ring<std::string> any = make(AnyDigits());
    return &numbers == &NineDigits() ? nine : any;
}

const Ring<std::string>& PriceTexts()
{
    static const Ring<std::string> texts = []
    {
        Ring<std::string> made;
        for (std::size_t i = 0; i < ringSize; ++i)
        {
            char text[64];
            made[i].assign(text, std::to_chars(text, text + sizeof text, Prices()[i]).ptr);
        }
        return made;
    }();
    return texts;
}

template <class Texts, class Read>
void Reading(benchmark::State& state, const Texts& texts, Read read)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        auto value = read(texts[i++ % ringSize]);
        benchmark::DoNotOptimize(value);
    }
}

// `print` leaves its text somewhere and returns its length.
template <class Values, class Print>
void Printing(benchmark::State& state, const Values& values, Print print)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        auto size = print(values[i++ % ringSize]);
        benchmark::DoNotOptimize(size);
        benchmark::ClobberMemory();
    }
}

template <class Value, class... Separator>
Value ReadOurs(const std::string& text, Separator... separator)
{
    Value value = 0;
    if (!nxStringHelper::SetFromString(text, value, separator...).IsOK())
        std::abort();
    return value;
}

template <class Value, class... Separator>
Value ReadExact(const std::string& text, Separator... separator)
{
    Value value = 0;
    if (!nxStringHelper::SetFromStringExact(text, value, separator...).IsOK())
        std::abort();
    return value;
}

template <class Value>
Value ReadFromChars(const std::string& text)
{
    Value value = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc())
        std::abort();
    return value;
}

// Appends to a line that is reused, as a program that writes files and log lines does.
template <class Append>
auto Appending(Append append)
{
    return [append, line = std::string(64, ' ')](auto value) mutable
    {
        line.clear();
        append(line, value);
        benchmark::DoNotOptimize(line.data());
        return line.size();
    };
}

template <class Write>
auto Writing(Write write)
{
    return [write](auto value)
    {
        char text[64];
        const char* const end = write(text, value);
        benchmark::DoNotOptimize(text);
        return end - text;
    };
}

template <class Make>
auto Making(Make make)
{
    return [make](auto value)
    {
        const std::string text = make(value);
        benchmark::DoNotOptimize(text.data());
        return text.size();
    };
}

template <class Function>
void Add(const std::string& row, const char* column, Function function)
{
    benchmark::RegisterBenchmark((row + "/" + column).c_str(), function);
}

template <class Value, class Print>
void AddPrinting(const std::string& row, const char* column, const Ring<Value>& values, Print print)
{
    Add(row, column, [&values, print](benchmark::State& state) { Printing(state, values, print); });
}

template <class Read>
void AddReading(const std::string& row, const char* column, const Ring<std::string>& texts, Read read)
{
    Add(row, column, [&texts, read](benchmark::State& state) { Reading(state, texts, read); });
}

void RegisterIntegers(const std::string& suffix, const Ring<long long>& numbers)
{
    const Ring<std::string>& texts = Texts(numbers);
    const std::string parse = "int64_parse" + suffix;
    AddReading(parse, "ours", texts, ReadOurs<long long>);
    AddReading(parse, "peer_from_chars", texts, ReadFromChars<long long>);
    const std::string exact = "int64_parse_exact" + suffix;
    AddReading(exact, "ours", texts, ReadExact<long long>);
    AddReading(exact, "limit_unchecked", texts, ReadOurs<long long>);
    AddReading(exact, "peer_from_chars", texts, ReadFromChars<long long>);
    AddReading(parse, "peer_strtoll", texts, [](auto& text) { return std::strtoll(text.c_str(), nullptr, 10); });

    // Into a buffer of the caller's, onto the end of a string, and as a string of its own.
    const std::string print = "int64_print" + suffix;
    const std::string append = "int64_append" + suffix;
    const std::string make = "int64_to_string" + suffix;
    AddPrinting(print, "ours", numbers,
                Writing([](char* out, long long value) { return nxDigits::WriteSigned(out, value); }));
    AddPrinting(print, "peer_to_chars", numbers,
                Writing([](char* out, long long value) { return std::to_chars(out, out + 64, value).ptr; }));
    AddPrinting(append, "ours", numbers,
                Appending([](std::string& line, long long value) { nxStringHelper::AppendAsString(line, value); }));
    AddPrinting(append, "peer_to_string", numbers,
                Appending([](std::string& line, long long value) { line += std::to_string(value); }));
    AddPrinting(make, "ours", numbers, Making([](long long value) { return nxStringHelper::GetAsString(value); }));
    AddPrinting(make, "peer_to_string", numbers, Making([](long long value) { return std::to_string(value); }));
#if defined(NX_BENCHMARK_HAS_FMT)
    AddPrinting(print, "peer_fmt_format_int", numbers,
                [](long long value)
                {
                    const fmt::format_int text(value);
                    benchmark::DoNotOptimize(text.data());
                    return text.size();
                });
    AddPrinting(append, "peer_fmt_format_int", numbers,
                Appending(
                    [](std::string& line, long long value)
                    {
                        const fmt::format_int text(value);
                        line.append(text.data(), text.size());
                    }));
    AddPrinting(make, "peer_fmt_format_int", numbers,
                Making([](long long value) { return fmt::format_int(value).str(); }));
#endif
#if defined(NX_BENCHMARK_HAS_ABSL)
    AddReading(parse, "peer_absl", texts,
               [](auto& text)
               {
                   std::int64_t value = 0;
                   benchmark::DoNotOptimize(absl::SimpleAtoi(text, &value));
                   return value;
               });
#endif
}

void RegisterDoubles()
{
    const Ring<std::string>& texts = PriceTexts();
    const Ring<double>& numbers = Prices();
    AddReading("double_parse", "ours", texts, [](auto& text) { return ReadOurs<double>(text, '.'); });
    AddReading("double_parse", "peer_from_chars", texts, ReadFromChars<double>);
    AddReading("double_parse_exact", "ours", texts, [](auto& text) { return ReadExact<double>(text, '.'); });
    AddReading("double_parse_exact", "limit_unchecked", texts, [](auto& text) { return ReadOurs<double>(text, '.'); });
    AddReading("double_parse_exact", "peer_from_chars", texts, ReadFromChars<double>);
#if defined(NX_BENCHMARK_HAS_FAST_FLOAT)
    AddReading("double_parse_exact", "peer_fast_float", texts,
               [](auto& text)
               {
                   double value = 0;
                   if (fast_float::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc())
                       std::abort();
                   return value;
               });
#endif
    AddReading("double_parse", "peer_strtod", texts, [](auto& text) { return std::strtod(text.c_str(), nullptr); });

    // All of them onto the end of a string.
    AddPrinting("double_print", "ours", numbers,
                Appending([](std::string& line, double value) { nxStringHelper::AppendAsString(line, value); }));
    AddPrinting("double_print", "peer_to_chars", numbers,
                Appending(
                    [](std::string& line, double value)
                    {
                        char text[64];
                        line.append(text, std::to_chars(text, text + sizeof text, value).ptr);
                    }));
    AddPrinting("double_print", "peer_snprintf", numbers,
                Appending(
                    [](std::string& line, double value)
                    {
                        char text[64];
                        line.append(text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%.9g", value)));
                    }));
#if defined(NX_BENCHMARK_HAS_FMT)
    AddPrinting("double_print", "peer_fmt_compiled", numbers,
                Appending([](std::string& line, double value)
                          { fmt::format_to(std::back_inserter(line), FMT_COMPILE("{}"), value); }));
    AddPrinting("double_print", "peer_fmt_compiled_buffer", numbers,
                Writing([](char* out, double value) { return fmt::format_to(out, FMT_COMPILE("{}"), value); }));
#endif
#if defined(NX_BENCHMARK_HAS_ABSL)
    AddReading("double_parse", "peer_absl", texts,
               [](auto& text)
               {
                   double value = 0;
                   benchmark::DoNotOptimize(absl::SimpleAtod(text, &value));
                   return value;
               });
#endif
}

const bool registered = []
{
    RegisterIntegers("", NineDigits());
    RegisterIntegers("_any_length", AnyDigits());
    RegisterDoubles();
    return true;
}();
}  // namespace
