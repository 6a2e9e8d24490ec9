// SPDX-License-Identifier: Apache-2.0
#include <bit>
#include <random>

#include "Gateway.h"

namespace
{
class Digest
{
public:
    void Add(std::uint64_t value) { _state = (_state ^ value) * 0xD6E8FEB86659FD93 + (_state >> 29); }
    void Add(double value) { Add(std::bit_cast<std::uint64_t>(value)); }
    void Add(const nxDecimal& value)
    {
        Add(static_cast<std::uint64_t>(value.GetValue()));
        Add(value.GetScale());
    }
    std::string GetText() const { return ' ' + std::to_string(_state); }

private:
    std::uint64_t _state = 1;
};

using Random = std::mt19937_64;

nxDecimal AnyDecimal(Random& random, unsigned places)
{
    const auto mantissa = static_cast<long long>(random() % 2'000'000) - 700'000;
    return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, static_cast<unsigned char>(places));
}

constexpr unsigned rounds = 20'000;

// First with places that are known only now, then with places that the compiler knows and calculates with.
std::string Decimals(Random random)
{
    Digest digest;
    const nxDecimal half = nxDecimal::ConstructFromValueAndDecimalPlaces(15, 1), third(3, 2);
    nxDecimal sum(0, 2);
    for (unsigned n = 0; n < rounds; ++n)
    {
        const nxDecimal a = AnyDecimal(random, n % 4), b = AnyDecimal(random, n / 4 % 4), price = AnyDecimal(random, 2);
        digest.Add(a.GetAsDouble());
        for (const nxDecimal& result : {a * b, a / b, a + b, nxDecimal(a.GetValue(), static_cast<long long>(n + 1), 2),
                                        nxDecimal(a.GetAsDouble(), static_cast<unsigned char>(n % 3))})
            digest.Add(result);
        sum += price * half - price / third + nxDecimal(price.GetAsDouble(), 1) + nxDecimal(n, 8, 2);
        digest.Add(sum);
    }
    return digest.GetText();
}

// Numbers that are none, infinities and marks, each with each.
std::string Extremes()
{
    Digest digest;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double null = nxDoubleValueWrapper::NullValue, noChange = nxDoubleValueWrapper::NoChangeValue;
    const volatile double numbers[] = {0,
                                       -1,
                                       1e308,
                                       -1e308,
                                       5e-324,
                                       1.5,
                                       1.500000001,
                                       infinity,
                                       -infinity,
                                       none,
                                       null,
                                       noChange,
                                       9223372036854775808.0};
    for (const double first : numbers)
        for (const double second : numbers)
        {
            const nxDoubleValueWrapper a(first), b(second);
            for (const bool result : {a == b, a<b, a> b, a <= b, a >= second, a.IsNull(), a.IsNoChange(), a.IsValid()})
                digest.Add(std::uint64_t{result});
            digest.Add(nxDoubleValueWrapper::GetMax(a, b));
            digest.Add(nxDecimal(first, 3));
            digest.Add(static_cast<std::uint64_t>(nxDoubleHelper::ToInteger(second)));
        }
    for (const double number : numbers)
        for (const char c : nxStringHelper::GetAsString(number) + nxDoubleValueWrapper(number).GetAsLogString())
            digest.Add(static_cast<std::uint64_t>(c));
    return digest.GetText();
}

std::string Wrappers(Random random)
{
    Digest digest;
    nxDoubleValueWrapper turnover = 0.0;
    for (unsigned n = 0; n < rounds; ++n)
    {
        const auto seconds = static_cast<long long>(random() % 2'000'000'000);
        turnover += nxTimeStamp(seconds, static_cast<unsigned>(random() % 1'000'000'000)).GetTotalSecondsAsDouble();
        turnover *= 1.1;
        turnover -= 0.3;
        turnover /= 10;
        digest.Add(turnover);
    }
    return digest.GetText();
}
}  // namespace

std::string SumUpNumbers() { return "numbers" + Decimals(Random()) + Extremes() + Wrappers(Random()); }
