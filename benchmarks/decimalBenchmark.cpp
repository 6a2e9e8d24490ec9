// SPDX-License-Identifier: Apache-2.0
// nxDecimal beside plain integers and doubles (the limits), a decimal floating-point library, Boost's decimal type, and
// the decimal's own rules carried out as they read, with doubles and a status object.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "benchmarks/support/ring.h"
#include "core/enum/nxValueStatusEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/text/inline/nxDigits.h"

#ifdef NX_BENCHMARK_HAS_BID
    #define DECIMAL_CALL_BY_REFERENCE 0
    #define DECIMAL_GLOBAL_ROUNDING 0
    #define DECIMAL_GLOBAL_EXCEPTION_FLAGS 0
    #include <bid_conf.h>
    #include <bid_functions.h>
#endif
#ifdef NX_BENCHMARK_HAS_BOOST
    #include <boost/multiprecision/cpp_dec_float.hpp>
#endif

namespace
{
// --- Inputs ---

struct Number
{
    long long mantissa;
    unsigned char places;

    nxDecimal AsDecimal() const { return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, places); }
    std::string AsText() const { return AsDecimal().GetAsString('.'); }
};

// What the operands of a row look like: prices of one scale, or of scales that always differ, or prices and ticks.
struct Operands
{
    Ring<Number> left;
    Ring<Number> right;
};

Operands MakeOperands(bool sameScale)
{
    std::mt19937_64 random(1);
    Operands operands{};
    for (std::size_t i = 0; i < ringSize; ++i)
    {
        const auto places = static_cast<unsigned char>(sameScale ? 2 : random() % 5);
        const auto other = static_cast<unsigned char>(sameScale ? 2 : (places + 1 + random() % 4) % 5);
        operands.left[i] = {static_cast<long long>(random() % 2'000'000) - 1'000'000, places};
        operands.right[i] = {(static_cast<long long>(random() % 2'000'000) - 1'000'000) | 1, other};
    }
    return operands;
}

Operands MakePricesAndTicks()
{
    constexpr Number ticks[] = {{1, 2}, {5, 2}, {25, 2}, {5, 1}, {1, 0}, {5, 0}, {25, 3}, {2, 1}};
    std::mt19937_64 random(2);
    Operands operands{};
    for (std::size_t i = 0; i < ringSize; ++i)
    {
        operands.left[i] = {static_cast<long long>(random() % 10'000'000),
                            static_cast<unsigned char>(2 + random() % 3)};
        operands.right[i] = ticks[random() % 8];
    }
    return operands;
}

Operands MakePricesAndQuantities()
{
    std::mt19937_64 random(5);
    Operands operands{};
    for (std::size_t i = 0; i < ringSize; ++i)
    {
        operands.left[i] = {static_cast<long long>(random() % 10'000'000),
                            static_cast<unsigned char>(2 + random() % 3)};
        operands.right[i] = {static_cast<long long>(1 + random() % 5000), 0};
    }
    return operands;
}

const Operands& SameScale()
{
    static const Operands operands = MakeOperands(true);
    return operands;
}
const Operands& OtherScale()
{
    static const Operands operands = MakeOperands(false);
    return operands;
}
const Operands& PricesAndTicks()
{
    static const Operands operands = MakePricesAndTicks();
    return operands;
}
const Operands& PricesAndQuantities()
{
    static const Operands operands = MakePricesAndQuantities();
    return operands;
}

template <class Convert>
auto Converted(const Ring<Number>& numbers, Convert convert)
{
    Ring<decltype(convert(numbers[0]))> converted{};
    for (std::size_t i = 0; i < ringSize; ++i)
        converted[i] = convert(numbers[i]);
    return converted;
}

// --- The types compared: each says how it holds a number and does an operation ---

struct Ours
{
    static nxDecimal Make(const Number& n) { return n.AsDecimal(); }
    static nxDecimal Add(const nxDecimal& a, const nxDecimal& b) { return a + b; }
    static bool Less(const nxDecimal& a, const nxDecimal& b) { return a < b; }
    static nxDecimal Multiply(const nxDecimal& a, const nxDecimal& b) { return a * b; }
    static nxDecimal MultiplyRounded(const nxDecimal& a, const nxDecimal& b) { return a * b; }
    static nxDecimal Divide(const nxDecimal& a, const nxDecimal& b) { return a / b; }
    static nxDecimal Round(nxDecimal a, const nxDecimal& b)
    {
        static const nxRoundingMethodEnum nearest(NX_ROUNDING_METHOD_NEAREST);
        a.Round(b, nearest);
        return a;
    }
};

struct PlainInteger
{
    // Everything in units of 10^-4, the largest number of places in the rings.
    static long long Make(const Number& n) { return n.mantissa * static_cast<long long>(std::pow(10.0, 4 - n.places)); }
    static long long Add(long long a, long long b) { return a + b; }
    static bool Less(long long a, long long b) { return a < b; }
    static long long Multiply(long long a, long long b) { return a * b; }
    static long long Divide(long long a, long long b) { return a / b; }
    static long long Round(long long a, long long b)
    {
        const long long rest = a % b;
        return a - rest + (2 * rest >= b ? b : 0);
    }
};

// As many bytes as a decimal has: what memory alone costs.
struct TwoWords
{
    using Value = long long __attribute__((vector_size(16)));
    static Value Make(const Number& n) { return Value{n.mantissa, n.places}; }
    static Value Add(const Value& a, const Value& b) { return a + b; }
};

struct PlainDouble
{
    static double Make(const Number& n) { return n.AsDecimal().GetAsDouble(); }
    static double Add(double a, double b) { return a + b; }
    static bool Less(double a, double b) { return a < b; }
    static double Multiply(double a, double b) { return a * b; }
    static double Divide(double a, double b) { return a / b; }
    static double Round(double a, double b) { return std::floor(a / b + 0.5) * b; }
};

// The exact operations, with their errors tested. Products and quotients are rounded to the places that Ours gives them.
struct Exact
{
    static nxDecimal Make(const Number& n) { return n.AsDecimal(); }
    static nxDecimal Add(nxDecimal a, const nxDecimal& b) { return Checked(a.AddExact(b), a); }
    static nxDecimal Multiply(nxDecimal a, const nxDecimal& b) { return Checked(a.MultiplyExact(b), a); }
    static nxDecimal MultiplyRounded(nxDecimal a, const nxDecimal& b)
    {
        return Checked(a.MultiplyExact(b, LargerScale(a, b), NX_ROUNDING_METHOD_NEAREST), a);
    }
    static nxDecimal Divide(nxDecimal a, const nxDecimal& b)
    {
        return Checked(a.DivideExact(b, LargerScale(a, b), NX_ROUNDING_METHOD_NEAREST), a);
    }

private:
    static unsigned char LargerScale(const nxDecimal& a, const nxDecimal& b)
    {
        return std::max(a.GetDecimalPlaces(), b.GetDecimalPlaces());
    }
    static nxDecimal Checked(const nxErrorEnum& error, const nxDecimal& result)
    {
        if (!error.IsOK())
            std::abort();
        return result;
    }
};

// The rules as they read: a status object in every value, powers by multiplication, every step of a conversion.
class Transcription
{
public:
    Transcription() = default;
    Transcription(long long mantissa, unsigned char places)
        : _mantissa(mantissa), _places(places), _status(NX_VALUE_STATUS_VALID)
    {
    }
    static Transcription Make(const Number& n) { return Transcription(n.mantissa, n.places); }
    static Transcription Add(Transcription a, const Transcription& b)
    {
        if (!a.IsValid() || !b.IsValid())
            return a;
        if (a._places == b._places)
            a._mantissa += b._mantissa;
        else
            a.SetFromDouble(a.AsDouble() + b.AsDouble(), std::max(a._places, b._places));
        return a;
    }
    static Transcription Subtract(Transcription a, const Transcription& b)
    {
        if (!a.IsValid() || !b.IsValid())
            return a;
        if (a._places == b._places)
            a._mantissa -= b._mantissa;
        else
            a.SetFromDouble(a.AsDouble() - b.AsDouble(), std::max(a._places, b._places));
        return a;
    }
    static bool Less(const Transcription& a, const Transcription& b)
    {
        if (!a.IsValid() || !b.IsValid())
            return !a.IsValid() && (b.IsValid() || a._status.GetValue() < b._status.GetValue());
        if (a._places == b._places)
            return a._mantissa < b._mantissa;
        const double left = a.AsDouble();
        const double right = b.AsDouble();
        return std::fabs(left - right) > 2.220446049250313e-16 && left < right;
    }
    static Transcription Multiply(Transcription a, const Transcription& b)
    {
        if (!a.IsValid() || !b.IsValid())
            return a;
        if (a._places == 0 && b._places == 0)
            a._mantissa *= b._mantissa;
        else
            a.SetFromDouble(a.AsDouble() * b.AsDouble(), std::max(a._places, b._places));
        return a;
    }
    static Transcription Divide(Transcription a, const Transcription& b)
    {
        if (a.IsValid() && b.IsValid())
            a.SetFromDouble(a.AsDouble() / b.AsDouble(), std::max(a._places, b._places));
        return a;
    }
    static Transcription Round(Transcription value, const Transcription& increment)
    {
        if (!value.IsValid() || !increment.IsValid() || increment._mantissa == 0)
            return value;
        const bool negative = value._mantissa < 0;
        if (negative)
            value._mantissa = -value._mantissa;
        long long steps;
        if (value._places == 0 && increment._places == 0)
            steps = value._mantissa / increment._mantissa;
        else
        {
            const Transcription quotient = Divide(value, increment);
            steps = quotient._mantissa / Power(quotient._places);
        }
        const Transcription base = Multiply(Transcription(steps, 0), increment);
        const Transcription rest = Subtract(value, base);
        Transcription two(2, 0);
        Transcription half = increment;
        half.SetFromDouble(half.AsDouble() / two.AsDouble(), static_cast<unsigned char>(increment._places + 1));
        Transcription result = Less(rest, half) ? base : Add(base, increment);
        if (negative)
            result._mantissa = -result._mantissa;
        return result;
    }
    long long GetValue() const { return _mantissa; }
    unsigned char GetDecimalPlaces() const { return _places; }

private:
    static long long Power(unsigned char places)
    {
        static constexpr long long first[] = {1, 10, 100, 1000, 10000, 100000};
        if (places < 6)
            return first[places];
        long long power = 1000000;
        for (unsigned char n = 6; n < places; ++n)
            power *= 10;
        return power;
    }
    bool IsValid() const { return _status == NX_VALUE_STATUS_VALID; }
    double AsDouble() const { return static_cast<double>(_mantissa) / static_cast<double>(Power(_places)); }
    void SetFromDouble(double value, unsigned char places)
    {
        const auto whole = static_cast<long long>(value);
        const double scaled = (value - static_cast<double>(whole)) * static_cast<double>(Power(places));
        double rounded = std::floor(scaled);
        if (scaled - rounded >= 0.5)
            rounded = std::ceil(scaled);
        _mantissa = whole * Power(places) + static_cast<long long>(rounded);
        _places = places;
        _status = NX_VALUE_STATUS_VALID;
    }

    long long _mantissa = 0;
    unsigned char _places = 0;
    nxValueStatusEnum _status{NX_VALUE_STATUS_VALID};
};

#ifdef NX_BENCHMARK_HAS_BID
struct Bid64
{
    static constexpr unsigned nearestEven = 0;
    static BID_UINT64 FromText(std::string& text)
    {
        unsigned flags = 0;
        return bid64_from_string(text.data(), nearestEven, &flags);
    }
    static BID_UINT64 Make(const Number& n)
    {
        std::string text = n.AsText();
        return FromText(text);
    }
    static BID_UINT64 Add(BID_UINT64 a, BID_UINT64 b)
    {
        unsigned flags = 0;
        return bid64_add(a, b, nearestEven, &flags);
    }
    static bool Less(BID_UINT64 a, BID_UINT64 b)
    {
        unsigned flags = 0;
        return bid64_quiet_less(a, b, &flags) != 0;
    }
    static BID_UINT64 Multiply(BID_UINT64 a, BID_UINT64 b)
    {
        unsigned flags = 0;
        return bid64_mul(a, b, nearestEven, &flags);
    }
    static BID_UINT64 MultiplyRounded(BID_UINT64 a, BID_UINT64 b) { return Multiply(a, b); }
    static BID_UINT64 Divide(BID_UINT64 a, BID_UINT64 b)
    {
        unsigned flags = 0;
        return bid64_div(a, b, nearestEven, &flags);
    }
    static BID_UINT64 Round(BID_UINT64 a, BID_UINT64 b)
    {
        unsigned flags = 0;
        const BID_UINT64 steps = bid64_round_integral_nearest_away(bid64_div(a, b, nearestEven, &flags), &flags);
        return bid64_mul(steps, b, nearestEven, &flags);
    }
};
#endif

#ifdef NX_BENCHMARK_HAS_BOOST
struct BoostDecimal
{
    using Value =
        boost::multiprecision::number<boost::multiprecision::cpp_dec_float<16>, boost::multiprecision::et_off>;
    static Value Make(const Number& n) { return Value(n.AsText()); }
    static Value Add(const Value& a, const Value& b) { return a + b; }
    static bool Less(const Value& a, const Value& b) { return a < b; }
    static Value Multiply(const Value& a, const Value& b) { return a * b; }
    static Value Divide(const Value& a, const Value& b) { return a / b; }
    static Value Round(const Value& a, const Value& b) { return boost::multiprecision::round(a / b) * b; }
};
#endif

// --- Two operands in, one result out ---

template <class Type, class Operation>
void RunPairs(benchmark::State& state, const Operands& operands, Operation operation)
{
    const auto left = Converted(operands.left, Type::Make);
    const auto right = Converted(operands.right, Type::Make);
    std::size_t i = 0;
    for (auto _ : state)
    {
        auto result = operation(left[i], right[i]);
        benchmark::DoNotOptimize(result);
        i = (i + 1) % ringSize;
    }
}

std::string Joined(std::string row, const char* column)
{
    row += '/';
    row += column;
    return row;
}

// Registers rows of one column.
template <class Type>
auto GetRowMaker(const char* column)
{
    return [column](const char* row, const Operands& operands, auto operation)
    {
        benchmark::RegisterBenchmark(Joined(row, column).c_str(), [&operands, operation](benchmark::State& state)
                                     { RunPairs<Type>(state, operands, operation); });
    };
}

// The exact operations beside those that check nothing.
template <class Type>
void RegisterExact(const char* column)
{
    const auto add = GetRowMaker<Type>(column);
    add("decimal_exact_add_same_scale", SameScale(), [](const auto& a, const auto& b) { return Type::Add(a, b); });
    add("decimal_exact_add_other_scale", OtherScale(), [](const auto& a, const auto& b) { return Type::Add(a, b); });
    add("decimal_exact_multiply", OtherScale(), [](const auto& a, const auto& b) { return Type::Multiply(a, b); });
    add("decimal_exact_multiply_rounded", OtherScale(),
        [](const auto& a, const auto& b) { return Type::MultiplyRounded(a, b); });
    add("decimal_exact_divide", OtherScale(), [](const auto& a, const auto& b) { return Type::Divide(a, b); });
}

template <class Type>
void RegisterPairs(const char* column)
{
    const auto add = GetRowMaker<Type>(column);
    add("decimal_add_same_scale", SameScale(), [](const auto& a, const auto& b) { return Type::Add(a, b); });
    add("decimal_add_other_scale", OtherScale(), [](const auto& a, const auto& b) { return Type::Add(a, b); });
    add("decimal_less_same_scale", SameScale(), [](const auto& a, const auto& b) { return Type::Less(a, b); });
    add("decimal_less_other_scale", OtherScale(), [](const auto& a, const auto& b) { return Type::Less(a, b); });
    add("decimal_multiply", OtherScale(), [](const auto& a, const auto& b) { return Type::Multiply(a, b); });
    add("decimal_multiply_by_quantity", PricesAndQuantities(),
        [](const auto& a, const auto& b) { return Type::Multiply(a, b); });
    add("decimal_divide", OtherScale(), [](const auto& a, const auto& b) { return Type::Divide(a, b); });
    add("decimal_round", PricesAndTicks(), [](const auto& a, const auto& b) { return Type::Round(a, b); });
}

// --- Text ---

// Prices of one to seven digits, one in eight of them negative.
const Ring<Number>& Prices()
{
    static const auto prices = MakeRing(
        [](auto& random)
        {
            const auto magnitude = static_cast<long long>(random() % 10'000'000);
            const bool isNegative = random() % 8 == 0;
            return Number{isNegative ? -magnitude : magnitude, static_cast<unsigned char>(random() % 5)};
        },
        4);
    return prices;
}
Ring<std::string> Texts()
{
    return Converted(Prices(), [](const Number& n) { return n.AsText(); });
}
// The same numbers without separator.
Ring<std::string> IntegerTexts()
{
    return Converted(Prices(), [](const Number& n) { return std::to_string(n.mantissa); });
}

template <class Parse>
void RunParse(benchmark::State& state, Ring<std::string> texts, Parse parse)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        auto result = parse(texts[i]);
        benchmark::DoNotOptimize(result);
        i = (i + 1) % ringSize;
    }
}

template <class T, class Print>
void RunPrint(benchmark::State& state, const Ring<T>& values, Print print)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        char buffer[64];
        print(buffer, values[i]);
        benchmark::DoNotOptimize(buffer);
        benchmark::ClobberMemory();
        i = (i + 1) % ringSize;
    }
}

void ParseOurs(benchmark::State& state)
{
    RunParse(state, Texts(),
             [](const std::string& text)
             {
                 nxDecimal value;
                 const bool read = value.SetFromString(text, '.').IsOK();
                 return read ? value : nxDecimal();
             });
}
BENCHMARK(ParseOurs)->Name("decimal_parse/ours");

void ParseInteger(benchmark::State& state)
{
    RunParse(state, IntegerTexts(),
             [](const std::string& text)
             {
                 const bool negative = text[0] == '-';
                 std::uint64_t value = 0;
                 const bool read = nxDigits::Parse(text.data() + negative, text.data() + text.size(), value);
                 return read ? (negative ? 0 - value : value) : 0;
             });
}
BENCHMARK(ParseInteger)->Name("decimal_parse/limit_integers_only");

void PrintOurs(benchmark::State& state)
{
    RunPrint(state, Converted(Prices(), Ours::Make),
             [](char* buffer, const nxDecimal& value) { value.GetAsString(buffer, '.'); });
}
BENCHMARK(PrintOurs)->Name("decimal_print/ours");

void PrintInteger(benchmark::State& state)
{
    RunPrint(state, Converted(Prices(), [](const Number& n) { return n.mantissa; }),
             [](char* buffer, long long value) { *nxDigits::WriteSigned(buffer, value) = '\0'; });
}
BENCHMARK(PrintInteger)->Name("decimal_print/limit_integers_only");

void PrintToString(benchmark::State& state)
{
    RunParse(state, Texts(), [](const std::string& text) { return nxDecimal(text, '.').GetAsString('.'); });
}
BENCHMARK(PrintToString)->Name("decimal_parse_and_print_string/ours");

#ifdef NX_BENCHMARK_HAS_BID
void ParseBid(benchmark::State& state)
{
    RunParse(state, Texts(), [](std::string& text) { return Bid64::FromText(text); });
}
BENCHMARK(ParseBid)->Name("decimal_parse/peer_bid64");

void PrintBid(benchmark::State& state)
{
    RunPrint(state, Converted(Prices(), Bid64::Make),
             [](char* buffer, BID_UINT64 value)
             {
                 unsigned flags = 0;
                 bid64_to_string(buffer, value, &flags);
             });
}
BENCHMARK(PrintBid)->Name("decimal_print/peer_bid64");
#endif

#ifdef NX_BENCHMARK_HAS_BOOST
void ParseBoost(benchmark::State& state)
{
    RunParse(state, Texts(), [](const std::string& text) { return BoostDecimal::Value(text); });
}
BENCHMARK(ParseBoost)->Name("decimal_parse/peer_cpp_dec_float");

void PrintBoost(benchmark::State& state)
{
    RunPrint(state, Converted(Prices(), BoostDecimal::Make),
             [](char* buffer, const BoostDecimal::Value& value)
             {
                 const std::string text = value.str();
                 std::memcpy(buffer, text.data(), text.size());
             });
}
BENCHMARK(PrintBoost)->Name("decimal_print/peer_cpp_dec_float");
#endif

// --- Arrays ---

template <class Type>
auto MakeArray(std::int64_t size)
{
    std::mt19937_64 random(3);
    std::vector<decltype(Type::Make(Number{}))> values;
    values.reserve(static_cast<std::size_t>(size));
    for (std::int64_t i = 0; i < size; ++i)
        values.push_back(Type::Make(Number{static_cast<long long>(random() % 1'000'000), 2}));
    return values;
}

// How many are below a limit.
template <class Type>
void Scan(benchmark::State& state)
{
    const auto values = MakeArray<Type>(state.range(0));
    auto limit = Type::Make(Number{500'000, 2});
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(limit);
        std::int64_t below = 0;
        for (const auto& value : values)
            below += Type::Less(value, limit) ? 1 : 0;
        benchmark::DoNotOptimize(below);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Type>
void Sum(benchmark::State& state)
{
    const auto values = MakeArray<Type>(state.range(0));
    for (auto _ : state)
    {
        auto sum = Type::Make(Number{0, 2});
        for (const auto& value : values)
            sum = Type::Add(sum, value);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void SumSpan(benchmark::State& state)
{
    const auto values = MakeArray<Ours>(state.range(0));
    for (auto _ : state)
    {
        nxDecimal sum = nxDecimal::GetSum(values);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void SumSpanExact(benchmark::State& state)
{
    const auto values = MakeArray<Ours>(state.range(0));
    for (auto _ : state)
    {
        nxDecimal sum;
        if (!sum.SetFromSumExact(values).IsOK())
            std::abort();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void RegisterArray(const char* row, const char* column, void (*run)(benchmark::State&))
{
    benchmark::RegisterBenchmark(Joined(row, column).c_str(), run)->RangeMultiplier(10)->Range(1000, 10'000'000);
}

template <class Type>
void RegisterArrays(const char* column)
{
    RegisterArray("decimal_scan", column, Scan<Type>);
    RegisterArray("decimal_sum", column, Sum<Type>);
}

const bool registered = []
{
    RegisterPairs<Ours>("ours");
    RegisterExact<Exact>("ours");
    RegisterExact<Ours>("limit_unchecked");
    RegisterPairs<PlainInteger>("limit_int64");
    RegisterPairs<PlainDouble>("limit_double");
    RegisterPairs<Transcription>("peer_transcription");
    RegisterArrays<Ours>("ours");
    RegisterArrays<PlainInteger>("limit_int64");
    RegisterArrays<PlainDouble>("limit_double");
    RegisterArrays<Transcription>("peer_transcription");
    RegisterArray("decimal_sum_of_span", "ours", SumSpan);
    RegisterArray("decimal_sum_of_span", "ours_exact", SumSpanExact);
    RegisterArray("decimal_sum_of_span", "limit_int64", Sum<PlainInteger>);
    RegisterArray("decimal_sum_of_span", "limit_two_words", Sum<TwoWords>);
#ifdef NX_BENCHMARK_HAS_BID
    RegisterPairs<Bid64>("peer_bid64");
    RegisterExact<Bid64>("peer_bid64");
#endif
#ifdef NX_BENCHMARK_HAS_BOOST
    RegisterPairs<BoostDecimal>("peer_cpp_dec_float");
#endif
    return true;
}();
}  // namespace
