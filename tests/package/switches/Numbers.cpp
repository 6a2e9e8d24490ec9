#include <bit>
#include <cstdio>
#include <limits>

#include "Gateway.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/text/nxStringHelper.h"
#include "core/time/nxTimeStamp.h"

namespace
{
class Digest
{
public:
    explicit Digest(const char* title) : _title(title) {}

    void Add(std::uint64_t value) { _state = (_state ^ value) * 0xD6E8FEB86659FD93 + (_state >> 29); }
    void Add(double value) { Add(std::bit_cast<std::uint64_t>(value)); }
    void Add(const nxDecimal& value)
    {
        Add(static_cast<std::uint64_t>(value.GetValue()));
        Add(value.GetScale());
    }
    std::string GetText() const
    {
        char text[100];
        std::snprintf(text, sizeof text, "%s %016llx", _title, static_cast<unsigned long long>(_state));
        return text;
    }

private:
    const char* _title;
    std::uint64_t _state = 1;
};

class Random
{
public:
    std::uint64_t Below(std::uint64_t limit)
    {
        _state = _state * 6364136223846793005 + 1442695040888963407;
        return (_state >> 20) % limit;
    }
    nxDecimal Decimal(unsigned places)
    {
        const auto mantissa = static_cast<long long>(Below(2'000'000)) - 700'000;
        return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, static_cast<unsigned char>(places));
    }

private:
    std::uint64_t _state = 1;
};

constexpr unsigned rounds = 20'000;

// Places that are known only now, and in the second loop places that the compiler knows, which it then calculates with.
std::string Decimals(Random random)
{
    Digest digest("decimals");
    const nxDecimal half = nxDecimal::ConstructFromValueAndDecimalPlaces(15, 1), third(3, 2);
    for (unsigned n = 0; n < rounds; ++n)
    {
        const nxDecimal a = random.Decimal(n % 4), b = random.Decimal(n / 4 % 4);
        digest.Add(a.GetAsDouble());
        digest.Add(a * b);
        digest.Add(a / b);
        digest.Add(a + b);
        digest.Add(nxDecimal(a.GetAsDouble(), static_cast<unsigned char>(n % 3)));
        digest.Add(nxDecimal(a.GetValue(), static_cast<long long>(n + 1), 2));
    }
    nxDecimal sum(0, 2);
    for (unsigned n = 0; n < rounds; ++n)
    {
        const nxDecimal price = random.Decimal(2);
        sum += price * half - price / third + nxDecimal(price.GetAsDouble(), 1) + nxDecimal(n, 8, 2);
        digest.Add(sum);
    }
    return digest.GetText();
}

// Numbers that are none, infinities and marks, each with each.
std::string Extremes()
{
    Digest digest("extremes");
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const volatile double numbers[] = {0,
                                       -1,
                                       1e308,
                                       -1e308,
                                       5e-324,
                                       1.5,
                                       1.500000001,
                                       infinity,
                                       -infinity,
                                       std::numeric_limits<double>::quiet_NaN(),
                                       nxDoubleValueWrapper::NullValue,
                                       nxDoubleValueWrapper::NoChangeValue,
                                       9223372036854775808.0};
    for (const double first : numbers)
        for (const double second : numbers)
        {
            const nxDoubleValueWrapper a(first), b(second);
            const bool results[] = {a == b, a<b, a> b, a <= b, a >= second, a.IsNull(), a.IsNoChange(), a.IsValid()};
            for (const bool result : results)
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
    Digest digest("wrappers");
    nxDoubleValueWrapper turnover = 0.0;
    for (unsigned n = 0; n < rounds; ++n)
    {
        const auto seconds = static_cast<long long>(random.Below(2'000'000'000));
        const nxTimeStamp time(seconds, static_cast<unsigned>(random.Below(1'000'000'000)));
        turnover += time.GetTotalSecondsAsDouble();
        turnover *= 1.1;
        turnover -= 0.3;
        turnover /= 10;
        digest.Add(turnover);
    }
    return digest.GetText();
}
}  // namespace

std::vector<std::string> SumUpNumbers() { return {Decimals(Random()), Extremes(), Wrappers(Random())}; }
