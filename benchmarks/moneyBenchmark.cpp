// SPDX-License-Identifier: Apache-2.0
// Money, ratios and exchange rates beside unchecked decimals and doubles (inexact), Boost's rational, whose products wrap,
// and conversions with Boost's integers of 256 bits.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "benchmarks/support/ring.h"
#include "core/numeric/nxCurrencyList.h"
#include "core/numeric/nxExchangeRateConverter.h"

#ifdef NX_BENCHMARK_HAS_BOOST
    #include <boost/multiprecision/cpp_int.hpp>
    #include <boost/rational.hpp>
#endif

namespace
{
const nxRoundingMethodEnum& Nearest()
{
    static const nxRoundingMethodEnum nearest(NX_ROUNDING_METHOD_NEAREST);
    return nearest;
}

void Require(const nxErrorEnum& error)
{
    if (!error.IsOK())
        std::abort();
}

// One element of a ring after the other.
template <class T, class Operation>
void Measure(benchmark::State& state, const Ring<T>& inputs, Operation operation)
{
    std::size_t at = 0;
    for (auto _ : state)
    {
        auto result = operation(inputs[at++ % ringSize]);
        benchmark::DoNotOptimize(result);
    }
}

// --- Sums and splits ---

const Ring<nxMoney>& Amounts()
{
    static const auto amounts = MakeRing(
        [](auto& random)
        {
            const auto cents = static_cast<long long>(random() % 2'000'000) - 1'000'000;
            return nxMoney(nxDecimal::ConstructFromValueAndDecimalPlaces(cents, 2), "USD");
        });
    return amounts;
}

void AddMoney(benchmark::State& state)
{
    nxMoney sum = Amounts()[0];
    Measure(state, Amounts(),
            [&sum](const nxMoney& amount)
            {
                Require(sum.Add(amount));
                return sum;
            });
}
BENCHMARK(AddMoney)->Name("money_add/ours");

void AddDecimal(benchmark::State& state)
{
    nxDecimal sum = Amounts()[0].GetAmount();
    Measure(state, Amounts(), [&sum](const nxMoney& amount) { return sum += amount.GetAmount(); });
}
BENCHMARK(AddDecimal)->Name("money_add/limit_decimal");

constexpr unsigned long long tenWeights[] = {17, 3, 11, 29, 1, 8, 23, 5, 2, 13};

void AllocateMoney(benchmark::State& state)
{
    std::vector<nxMoney> parts;
    Measure(state, Amounts(),
            [&parts](const nxMoney& amount)
            {
                Require(amount.Allocate(tenWeights, parts));
                return parts.data();
            });
}
BENCHMARK(AllocateMoney)->Name("money_allocate_10/ours");

// Loses or makes cents.
void AllocateDoubles(benchmark::State& state)
{
    std::vector<double> parts(std::size(tenWeights));
    Measure(state, Amounts(),
            [&parts](const nxMoney& amount)
            {
                double sum = 0;
                for (const unsigned long long weight : tenWeights)
                    sum += static_cast<double>(weight);
                const double whole = amount.GetAmount().GetAsDouble();
                for (std::size_t i = 0; i < parts.size(); ++i)
                    parts[i] = std::round(whole * static_cast<double>(tenWeights[i]) / sum * 100) / 100;
                return parts.data();
            });
}
BENCHMARK(AllocateDoubles)->Name("money_allocate_10/limit_double");

// --- Ratios: the product of two, and its whole part ---

struct Factors
{
    long long above, below, otherAbove, otherBelow;
};

const Ring<Factors>& Ratios()
{
    static const auto ratios = MakeRing(
        [](auto& random)
        {
            const auto number = [&random] { return static_cast<long long>(random() % 1'000'000'000) + 1; };
            return Factors{number(), number(), number(), number()};
        });
    return ratios;
}

void MultiplyRatios(benchmark::State& state)
{
    static const auto pairs = []
    {
        Ring<std::pair<nxRatio, nxRatio>> made;
        for (std::size_t i = 0; i < ringSize; ++i)
            made[i] = {nxRatio(Ratios()[i].above, Ratios()[i].below),
                       nxRatio(Ratios()[i].otherAbove, Ratios()[i].otherBelow)};
        return made;
    }();
    Measure(state, pairs,
            [](const auto& pair)
            {
                nxRatio product = pair.first;
                Require(product.Multiply(pair.second));
                return product.GetNumerator() / product.GetDenominator();
            });
}
BENCHMARK(MultiplyRatios)->Name("ratio_multiply/ours");

#ifdef NX_BENCHMARK_HAS_BOOST
void MultiplyBoostRationals(benchmark::State& state)
{
    using Rational = boost::rational<long long>;
    static const auto pairs = []
    {
        Ring<std::pair<Rational, Rational>> made;
        for (std::size_t i = 0; i < ringSize; ++i)
            made[i] = {Rational(Ratios()[i].above, Ratios()[i].below),
                       Rational(Ratios()[i].otherAbove, Ratios()[i].otherBelow)};
        return made;
    }();
    Measure(state, pairs, [](const auto& pair) { return boost::rational_cast<long long>(pair.first * pair.second); });
}
BENCHMARK(MultiplyBoostRationals)->Name("ratio_multiply/peer_boost");
#endif

// --- Conversions; all of them look the rates up in one list ---

const nxTimeStamp& Now()
{
    static const nxTimeStamp now(1'700'000'000, 0);
    return now;
}

// A hundred pairs, two of them with all the digits that a decimal has.
std::shared_ptr<const nxExchangeRateList> Rates()
{
    static const auto rates = []
    {
        auto list = std::make_shared<nxExchangeRateList>();
        const auto add = [&list](nxCurrency base, nxCurrency quote, long long bid, unsigned char places)
        {
            nxExchangeRate rate;
            Require(rate.Set(base, quote, nxDecimal::ConstructFromValueAndDecimalPlaces(bid, places),
                             nxDecimal::ConstructFromValueAndDecimalPlaces(bid + 2, places), Now()));
            Require(list->Set(rate));
        };
        const auto& known = nxCurrencyList::GetBuiltIn().GetRows();
        for (std::size_t i = 0; i < 100; ++i)
            add(nxCurrency("QQQ"), known[i].currency, 10'850 + static_cast<long long>(i), 4);
        add(nxCurrency("EUR"), nxCurrency("USD"), 10'850, 4);
        add(nxCurrency("USD"), nxCurrency("JPY"), 11'925, 2);
        add(nxCurrency("XXA"), nxCurrency("USD"), 1'085'012'345'678'901'234, 18);
        add(nxCurrency("USD"), nxCurrency("XXB"), 1'192'512'345'678'901'234, 18);
        return list;
    }();
    return rates;
}

Ring<nxMoney> AmountsIn(const char* currency, long long largest)
{
    return MakeRing(
        [&](auto& random)
        {
            const auto mantissa =
                static_cast<long long>(random() % static_cast<unsigned long long>(largest)) + largest / 2;
            return nxMoney(nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, 2), currency);
        });
}

void Convert(benchmark::State& state, const char* source, const char* target, long long largest)
{
    const auto amounts = AmountsIn(source, largest);
    const nxExchangeRateConverter converter(Rates(), {nxCurrency("USD")}, nxDateTimeSpan(1, 0));
    const nxCurrency currency(target);
    Measure(state, amounts,
            [&](const nxMoney& amount)
            {
                nxMoney result;
                Require(converter.Convert(amount, currency, nxExchangeRateConverter::At::Dealing, Nearest(), Now(),
                                          result));
                return result;
            });
}

// The bid of a pair whose base is the first currency, or else the inverse of its ask.
double GetFactor(nxCurrency from, nxCurrency to)
{
    const nxExchangeRate* const rate = Rates()->Find(from, to);
    return rate->GetBase() == from ? rate->GetBid().GetAsDouble() : 1 / rate->GetAsk().GetAsDouble();
}

void ConvertDouble(benchmark::State& state, const char* source, const char* target, long long largest)
{
    const auto amounts = AmountsIn(source, largest);
    const nxCurrency common("USD"), from(source), to(target);
    Measure(state, amounts,
            [&](const nxMoney& amount)
            {
                double value = amount.GetAmount().GetAsDouble();
                if (from != common)
                    value *= GetFactor(from, common);
                if (to != common)
                    value *= GetFactor(common, to);
                return std::round(value * 100) / 100;
            });
}

constexpr long long usual = 100'000'000'000, large = 1LL << 61;

BENCHMARK_CAPTURE(Convert, direct, "EUR", "USD", usual)->Name("money_convert_direct/ours");
BENCHMARK_CAPTURE(ConvertDouble, direct, "EUR", "USD", usual)->Name("money_convert_direct/limit_double");
BENCHMARK_CAPTURE(Convert, inverse, "JPY", "USD", usual)->Name("money_convert_inverse/ours");
BENCHMARK_CAPTURE(ConvertDouble, inverse, "JPY", "USD", usual)->Name("money_convert_inverse/limit_double");
BENCHMARK_CAPTURE(Convert, cross, "EUR", "JPY", usual)->Name("money_convert_cross/ours");
BENCHMARK_CAPTURE(ConvertDouble, cross, "EUR", "JPY", usual)->Name("money_convert_cross/limit_double");
BENCHMARK_CAPTURE(Convert, wide, "XXA", "XXB", large)->Name("money_convert_wide/ours");

#ifdef NX_BENCHMARK_HAS_BOOST
using Wide = boost::multiprecision::uint256_t;

// Amounts above 0, over two rates whose base is sold, rounded once.
void ConvertBoost(benchmark::State& state, const char* source, const char* target, long long largest)
{
    const auto amounts = AmountsIn(source, largest);
    const nxCurrency common("USD"), from(source), to(target);
    std::array<Wide, 40> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    Measure(
        state, amounts,
        [&](const nxMoney& amount)
        {
            const nxDecimal& first = Rates()->Find(from, common)->GetBid();
            const nxDecimal& second = Rates()->Find(common, to)->GetBid();
            unsigned char places = 2;
            static_cast<void>(to.GetMinorUnits(places));
            const int cut =
                amount.GetAmount().GetDecimalPlaces() + first.GetDecimalPlaces() + second.GetDecimalPlaces() - places;
            const Wide product = Wide(amount.GetAmount().GetValue()) * first.GetValue() * second.GetValue();
            const Wide& divisor = powers[static_cast<std::size_t>(cut)];
            const Wide rounded = (product + divisor / 2) / divisor;
            if (rounded > INT64_MAX)
                std::abort();
            return nxMoney(nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<long long>(rounded), places), to);
        });
}
BENCHMARK_CAPTURE(ConvertBoost, wide, "XXA", "XXB", large)->Name("money_convert_wide/peer_boost_uint256");
BENCHMARK_CAPTURE(ConvertBoost, cross, "EUR", "JPY", usual)->Name("money_convert_cross/peer_boost_uint256");
#endif
}  // namespace
