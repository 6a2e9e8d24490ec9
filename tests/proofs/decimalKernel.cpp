// SPDX-License-Identifier: Apache-2.0
// Tries the kernels of numbers on all their inputs, or on all within the bounds that each line of the output names.
//
//     proofs [--long]     --long widens the bounds; it takes some minutes
//
// Without a fault so far, on x86-64, each in less than a minute of processor time: the 400,200,025 pairs of mantissas to 2,000, the
// 1,291,008 pairs around 2^49 units and the 21,602,160 roundings of --long. All pairs up to 2^49 are too many to try: for those
// there are the proofs in nxDecimalQuick.h, which these inputs test at both ends.

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/numeric/internal/nxPriceText.h"
#include "core/numeric/nxDecimal.h"
#include "core/text/inline/nxDigits.h"
#include "tests/numeric/nxDecimalOracle.h"

namespace
{
bool isLong = false;
unsigned faults = 0;

/// Counts the inputs of one claim and says at its end how many there were.
class Claim
{
public:
    explicit Claim(const char* text) : _text(text) {}
    ~Claim()
    {
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - _start;
        std::printf("%s: %llu inputs, %u faults, %.1f s\n", _text, _inputs, _faults, seconds.count());
        std::fflush(stdout);
        faults += _faults;
    }
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;

    template <class Tell>
    void Check(bool holds, const Tell& tell)
    {
        ++_inputs;
        if (!holds && _faults++ < 5)
            tell();
    }

private:
    const char* _text;
    std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    unsigned long long _inputs = 0;
    unsigned _faults = 0;
};

/// A number as text that counts upwards without any arithmetic on the number: the oracle of all that reads and writes digits.
template <unsigned Digits>
struct Odometer
{
    char text[Digits];
    unsigned first = Digits - 1;  // of the digits without leading zeros

    Odometer() { std::memset(text, '0', Digits); }
    void Next()
    {
        unsigned at = Digits;
        while (at > 0 && text[at - 1] == '9')
            text[--at] = '0';
        if (at == 0)
            return;
        ++text[at - 1];
        if (at - 1 < first)
            first = at - 1;
    }
};

void EightDigits()
{
    Claim claim("eight digits, read and written, with and without leading zeros");
    Odometer<8> number;
    for (std::uint64_t value = 0; value < 100'000'000; ++value, number.Next())
    {
        char fixed[8], plain[nxDigits::MaxDigits];
        const std::uint64_t word = nxDigits::Load(number.text);
        const std::size_t size = 8 - number.first;
        std::uint64_t parsed = 0;
        nxDigits::WriteFixed<8>(fixed, value);
        const bool holds = nxDigits::FindNonDigit(word) == 0 && nxDigits::Gather(word) == value &&
                           nxDigits::Spread(value) == word && std::memcmp(fixed, number.text, 8) == 0 &&
                           nxDigits::Write(plain, value) == plain + size &&
                           std::memcmp(plain, number.text + number.first, size) == 0 &&
                           nxDigits::Gather(nxDigits::LoadRightAligned(number.text + number.first, size)) == value &&
                           nxDigits::Parse(plain, plain + size, parsed) && parsed == value;
        claim.Check(holds, [&] { std::printf("  %.8s\n", number.text); });
    }
}

void TenDigits()
{
    Claim claim("ten digits, written without leading zeros");
    Odometer<10> number;
    for (std::uint64_t value = 0; value < 10'000'000'000; ++value, number.Next())
    {
        char plain[nxDigits::MaxDigits];
        const std::size_t size = 10 - number.first;
        const bool holds =
            nxDigits::Write(plain, value) == plain + size && std::memcmp(plain, number.text + number.first, size) == 0;
        claim.Check(holds, [&] { std::printf("  %.10s\n", number.text); });
    }
}

/// Each of the two words of a price is gathered on its own, so each is tried with all its values.
void PriceTexts()
{
    Claim claim("prices of one digit and eight decimals, and of seven digits and one decimal");
    const auto check = [&claim](const char* text, std::size_t size, std::uint64_t wanted, std::size_t places)
    {
        std::uint64_t mantissa = 0;
        std::size_t decimals = 0;
        const bool holds =
            nxPriceText::Parse(text, size, '.', mantissa, decimals) && mantissa == wanted && decimals == places;
        claim.Check(holds, [&] { std::printf("  %.*s\n", static_cast<int>(size), text); });
    };
    Odometer<8> fraction;
    char text[10] = {'7', '.'};
    for (std::uint64_t value = 0; value < 100'000'000; ++value, fraction.Next())
    {
        std::memcpy(text + 2, fraction.text, 8);
        check(text, 10, 700'000'000 + value, 8);
    }
    Odometer<7> whole;
    char other[9] = {'0', '0', '0', '0', '0', '0', '0', '.', '3'};
    for (std::uint64_t value = 0; value < 10'000'000; ++value, whole.Next())
    {
        std::memcpy(other, whole.text, 7);
        check(other, 9, 10 * value + 3, 1);
    }
}

nxDecimal Decimal(long long mantissa, unsigned places)
{
    return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, static_cast<unsigned char>(places));
}

/// What two decimals give by the class and by the plain rules, which go through doubles.
void ComparePair(Claim& claim, long long left, unsigned leftPlaces, long long right, unsigned rightPlaces)
{
    const nxDecimal a = Decimal(left, leftPlaces);
    const nxDecimal b = Decimal(right, rightPlaces);
    const nxDecimalOracle x(left, leftPlaces), y(right, rightPlaces);
    nxDecimalOracle sum(x), difference(x), product(x), quotient(x);
    sum.Calculate('+', y);
    difference.Calculate('-', y);
    product.Calculate('*', y);
    quotient.Calculate('/', y);
    const bool holds = sum.Matches(a + b) && difference.Matches(a - b) && product.Matches(a * b) &&
                       quotient.Matches(a / b) && (a < b) == x.IsLessThan(y) && (a == b) == x.Equals(y);
    claim.Check(holds, [&] { std::printf("  %lld/%u %lld/%u\n", left, leftPlaces, right, rightPlaces); });
}

void SmallSums()
{
    const long long most = isLong ? 2'000 : 300;
    Claim claim(isLong ? "sums, differences, products, quotients and order, mantissas to 2,000, places to 4"
                       : "sums, differences, products, quotients and order, mantissas to 300, places to 4");
    for (unsigned leftPlaces = 0; leftPlaces <= 4; ++leftPlaces)
        for (unsigned rightPlaces = 0; rightPlaces <= 4; ++rightPlaces)
            for (long long left = -most; left <= most; ++left)
                for (long long right = -most; right <= most; ++right)
                    ComparePair(claim, left, leftPlaces, right, rightPlaces);
}

/// Around the largest mantissas that the integer path takes, where its proof is tightest, and just beyond.
void SumsAtTheBound()
{
    Claim claim(
        "sums, differences, products, quotients and order where a scaled mantissa is near 2^49, all places to 15");
    constexpr long long bound = (1LL << 49) - 1;
    const long long width = isLong ? 20 : 6;
    for (unsigned leftPlaces = 0; leftPlaces <= 15; ++leftPlaces)
        for (unsigned rightPlaces = 0; rightPlaces <= 15; ++rightPlaces)
        {
            const unsigned places = leftPlaces > rightPlaces ? leftPlaces : rightPlaces;
            const auto left = bound / static_cast<long long>(nxDecimalOracle::Power(places - leftPlaces));
            const auto right = bound / static_cast<long long>(nxDecimalOracle::Power(places - rightPlaces));
            for (long long i = -width; i <= width; ++i)
                for (long long j = -width; j <= width; ++j)
                {
                    ComparePair(claim, left + i, leftPlaces, right + j, rightPlaces);
                    ComparePair(claim, left + i, leftPlaces, -right + j, rightPlaces);
                    ComparePair(claim, -left + i, leftPlaces, -right + j, rightPlaces);
                }
        }
}

void Roundings()
{
    const long long most = isLong ? 5'000 : 600;
    const long long largest = isLong ? 60 : 25;
    Claim claim(isLong ? "rounding, mantissas to 5,000, increments to 60, places to 2, all methods"
                       : "rounding, mantissas to 600, increments to 25, places to 2, all methods");
    for (unsigned places = 0; places <= 2; ++places)
        for (unsigned stepPlaces = 0; stepPlaces <= 2; ++stepPlaces)
            for (long long step = 1; step <= largest; ++step)
                for (const nxEnumValue method : {NX_ROUNDING_METHOD_DOWN, NX_ROUNDING_METHOD_UP,
                                                 NX_ROUNDING_METHOD_NEAREST, NX_ROUNDING_METHOD_MODIFIED_NEAREST})
                    for (long long mantissa = -most; mantissa <= most; ++mantissa)
                    {
                        const nxDecimalOracle increment(step, stepPlaces);
                        nxDecimalOracle wanted(mantissa, places);
                        wanted.Round(increment, method);
                        nxDecimal rounded = Decimal(mantissa, places);
                        rounded.Round(Decimal(step, stepPlaces), nxRoundingMethodEnum(method));
                        claim.Check(wanted.Matches(rounded),
                                    [&] { std::printf("  %lld/%u to %lld/%u\n", mantissa, places, step, stepPlaces); });
                    }
}
}  // namespace

int main(int argumentCount, char** arguments)
{
    isLong = argumentCount == 2 && std::strcmp(arguments[1], "--long") == 0;
    EightDigits();
    if (isLong)
        TenDigits();
    PriceTexts();
    SmallSums();
    SumsAtTheBound();
    Roundings();
    return faults == 0 ? 0 : 1;
}
