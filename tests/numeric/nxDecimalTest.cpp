// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxDecimal.h"

#include <cfenv>
#include <random>

#include "core/enum/nxValueStatusEnum.h"
#include "core/numeric/inline/nxWide.h"
#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxValueWrapper.h"
#include "tests/numeric/nxDecimalOracle.h"
#include "tests/support/nxTest.h"

namespace
{
constexpr long long smallest = std::numeric_limits<long long>::min();
constexpr long long largest = std::numeric_limits<long long>::max();

const nxDecimal null = nxDecimal::GetNullDecimal();
const nxDecimal noChange = nxDecimal::GetNoChangeDecimal();

nxDecimal Parts(long long mantissa, unsigned char places)
{
    return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, places);
}

nxDecimal Number(const char* text) { return nxDecimal(text, '.'); }

// All three fields, because `==` does not compare them all.
std::string Fields(const nxDecimal& value)
{
    return value.GetStatus().GetShortDescription() + " " + std::to_string(value.GetValue()) + "e-" +
           std::to_string(value.GetDecimalPlaces());
}
}  // namespace

TEST(nxDecimal, ConstructorsSetEveryField)
{
    const std::pair<nxDecimal, const char*> rows[] = {{nxDecimal(), "VALID 0e-0"},
                                                      {nxDecimal(nxNullInitalizer{}), "NULL 0e-0"},
                                                      {nxDecimal(nxNoChangeInitalizer{}), "NOCHANGE 0e-0"},
                                                      {nxDecimal(-5L, 2), "VALID -500e-2"},
                                                      {nxDecimal(static_cast<short>(5), 0), "VALID 5e-0"},
                                                      {nxDecimal(5ULL, 1), "VALID 50e-1"},
                                                      {nxDecimal(1.25, 1), "VALID 13e-1"},
                                                      {nxDecimal(1.5F, 2), "VALID 150e-2"},
                                                      {nxDecimal("12,5", ','), "VALID 125e-1"},
                                                      {nxDecimal("12.5", ','), "NULL 0e-0"},
                                                      {nxDecimal("+5", '+'), "VALID 5e-0"},
                                                      {nxDecimal("-5", '-'), "VALID -5e-0"},
                                                      {nxDecimal(std::string("12,5"), ','), "VALID 125e-1"},
                                                      {nxDecimal(std::string("1\0", 2), '.'), "NULL 0e-0"},
                                                      {nxDecimal::GetMaximumDecimal(), "VALID 9223372036854775807e-0"}};
    for (const auto& [value, fields] : rows)
    {
        EXPECT_EQ(Fields(value), fields);
        EXPECT_EQ(&value.GetStatus(), &nxDecimal(value).GetStatus());  // one object for each state
    }
    nxDecimal value(7, 3);
    value.SetNull();
    EXPECT_EQ(Fields(value), "NULL 0e-0");
    value = nxDecimal(7, 3);
    value.SetNoChange();
    EXPECT_EQ(Fields(value), "NOCHANGE 0e-0");
}

TEST(nxDecimal, PlacesBeyondThoseOfTheNumbersCountModulo256)
{
    EXPECT_EQ(nxPowersOfTen::GetInteger(256), 1U);
    EXPECT_EQ(nxPowersOfTen::GetDouble(258), 100.0);
}

TEST(nxDecimal, EncodesItsStatusInTheValue)
{
    const std::tuple<nxDecimal, long long, unsigned char, const char*> rows[] = {
        {null, largest, 0, "NULL 0e-0"},
        {noChange, largest - 1, 0, "NOCHANGE 0e-0"},
        {Parts(largest - 2, 3), largest - 2, 3, "VALID 9223372036854775805e-3"},
        {Parts(largest, 3), largest, 3, "NULL 0e-0"},  // cannot be told apart
        {Parts(largest - 1, 3), largest - 1, 3, "NOCHANGE 0e-0"}};
    for (const auto& [value, mantissa, exponent, back] : rows)
    {
        long long encoded = 1;
        std::int64_t other = 1;  // another type of the same size on some systems
        unsigned char places = 1;
        value.GetAsEncodedValues(encoded, places);
        value.GetAsEncodedValues(other, places);
        EXPECT_EQ((std::tuple{encoded, other, places}), (std::tuple{mantissa, mantissa, exponent}));
        nxDecimal decoded(1, 1);
        decoded.SetFromEncodedValues(encoded, places);
        EXPECT_EQ(Fields(decoded), back);
    }
}

TEST(nxDoubleHelper, InfinitiesAreNoFiniteNumbers)
{
    using Limits = std::numeric_limits<double>;
    EXPECT_TRUE(nxDoubleHelper::IsFinite(-Limits::max()) && !nxDoubleHelper::IsFinite(-Limits::infinity()));
}

// The results do not depend on the rounding direction of the thread.
TEST(nxDecimal, CalculatesInEveryDirectionOfRounding)
{
    const auto results = [](double number, unsigned char places)
    {
        const nxDecimal a(number, places), b = Parts(1499999999999999, 15), c = Parts(largest, 3);
        return std::to_string(a == b) + std::to_string(a < c) + Fields(a) + Fields(a * Number("1.15")) +
               Fields(Number("2.05") / a) + Fields(a + c) + Fields(c - a) + Fields(nxDecimal(a.GetValue(), 30, places));
    };
    constexpr unsigned char scales[] = {0, 1, 2, 17};
    for (const unsigned char places : scales)
        for (const double number : {1.3, -2.3, 0.045, 1.005, -0.125, 2.5, 8.35, 9e15 + 0.5, 1e300})
        {
            const std::string expected = results(number, places);
            for (const int direction : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
            {
                std::fesetround(direction);
                const std::string found = results(number, places);
                EXPECT_EQ(std::fegetround(), direction);
                std::fesetround(FE_TONEAREST);
                EXPECT_EQ(found, expected) << number << " with " << int{places} << " places, direction " << direction;
            }
        }
}

// Around the numbers that the quick products and quotients take, where a wrong direction would be seen.
TEST(nxDecimal, ProductsAndQuotientsAgreeWithTheOracleInAllDirections)
{
    std::mt19937_64 random(20260301);
    const auto mantissa = [&random]
    {
        const long long near = (1LL << (random() % 54)) + static_cast<long long>(random() % 64) - 32;
        return random() % 2 == 0 ? near : -static_cast<long long>(random() >> (random() % 63 + 1));
    };
    for (int i = 0; i < 400'000; ++i)
    {
        const nxDecimalOracle x(mantissa(), static_cast<unsigned>(random() % 17)),
            y(mantissa(), static_cast<unsigned>(random() % 17));
        nxDecimalOracle product(x), quotient(x);
        product.Calculate('*', y);
        quotient.Calculate('/', y);
        const nxDecimal a = Parts(x.mantissa, static_cast<unsigned char>(x.places));
        const nxDecimal b = Parts(y.mantissa, static_cast<unsigned char>(y.places));
        constexpr int directions[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
        std::fesetround(directions[i % 4]);
        const nxDecimal foundProduct = a * b, foundQuotient = a / b;
        std::fesetround(FE_TONEAREST);
        ASSERT_TRUE(product.Matches(foundProduct) && quotient.Matches(foundQuotient))
            << x << " and " << y << " gave " << foundProduct << " and " << foundQuotient;
    }
}

TEST(nxDecimal, QuotientsByPowersOfTenAreExact)
{
    for (unsigned places = 0; places <= nxPowerQuotient::MaxPlaces; ++places)
        for (const std::uint64_t power = nxDecimalOracle::Power(places);
             const std::uint64_t near : {power, 9 * power, nxPowerQuotient::MaxDividend / power * power})
            for (const std::uint64_t dividend : {near - 1, near, nxPowerQuotient::MaxDividend})
                EXPECT_EQ(nxPowerQuotient::Get(dividend, places), dividend / power) << dividend << ", " << places;
}

// Spans of all lengths around a block, with one number in the middle that differs from the others.
TEST(nxDecimal, SumsOfSpans)
{
    const nxDecimal odd[] = {
        Parts(5, 2),  Parts(5, 1), Parts(1, 0), Parts(smallest, 2), Parts(largest, 2), Parts(3, 18), Parts(3, 19),
        Parts(7, 40), null,        noChange};
    for (std::size_t size = 0; size < 200; ++size)
        for (const nxDecimal& other : odd)
        {
            std::vector<nxDecimal> values(size, Parts(1234567 + static_cast<long long>(size), 2));
            if (size > 0)
                values[size * 7 / 11] = other;
            nxDecimal expected = null, exact(-1, 0);
            nxErrorEnum error;
            nxWide units = 0;  // of 10^-18
            unsigned char places = 0;
            for (const nxDecimal& value : values)
            {
                expected = expected.IsValid() ? expected + value : value;
                places = std::max(places, value.GetDecimalPlaces());
                if (!value.IsValid())
                    error = NX_ERR_OBJECT_IS_NULL;
                else if (value.GetDecimalPlaces() <= 18)
                    units += nxWide{value.GetValue()} *
                             static_cast<long long>(nxDecimalOracle::Power(18U - value.GetDecimalPlaces()));
            }
            EXPECT_EQ(Fields(nxDecimal::GetSum(values)), Fields(expected.IsValid() ? expected : nxDecimal()));
            const auto unit = places <= 18 ? static_cast<long long>(nxDecimalOracle::Power(18U - places)) : 1;
            if (error.IsOK() && (places > 18 || units / unit != static_cast<long long>(units / unit)))
                error = NX_ERR_VALUE_OUT_OF_RANGE;
            EXPECT_EQ(exact.SetFromSumExact(values), error) << size << ", " << other;
            EXPECT_EQ(Fields(exact),
                      Fields(error.IsOK() ? Parts(static_cast<long long>(units / unit), places) : nxDecimal(-1, 0)));
        }
    // Only the sum has to fit.
    const nxDecimal beyond[] = {Parts(largest, 0), Parts(largest, 0), Parts(smallest, 0), Parts(smallest, 0),
                                Parts(2, 0)};
    nxDecimal sum;
    EXPECT_TRUE(sum.SetFromSumExact(beyond).IsOK());
    EXPECT_EQ(Fields(sum), Fields(Parts(0, 0)));
}

TEST(nxDecimal, Compares)
{
    // In ascending order. The two numbers of a pair are equal.
    const std::pair<nxDecimal, nxDecimal> order[] = {
        {null, null},
        {noChange, noChange},
        {Parts(smallest, 0), Parts(smallest, 0)},
        {Parts(0, 17), Parts(0, 17)},
        {Parts(1, 17), Parts(1, 17)},                                  // of one scale there is no tolerance
        {Number("1"), Number("1.0000000000000002")},                   // 1 + 2^-52 is equal to 1,
        {Number("1.0000000000000004"), Number("1.0000000000000004")},  // and the next double is not
        {Number("1.50"), Number("1.5")},
    };
    for (std::size_t i = 0; i < std::size(order); ++i)
        for (std::size_t j = 0; j < std::size(order); ++j)
        {
            const nxDecimal &a = order[i].first, &b = order[j].second;
            SCOPED_TRACE(testing::Message() << a << " and " << b);
            EXPECT_EQ(a == b, i == j);
            EXPECT_EQ(a != b, i != j);
            EXPECT_EQ(a < b, i < j);
            EXPECT_EQ(a <= b, i <= j);
            EXPECT_EQ(a > b, i > j);
            EXPECT_EQ(a >= b, i >= j);
        }
}

TEST(nxDecimal, ExactEqualityHasNoToleranceAndAHash)
{
    const std::unordered_set<nxDecimal, nxDecimal::ExactHash, nxDecimal::ExactEqual> set = {
        Number("1.5"), Number("1.50"), Number("1.500000000000000001"), nxDecimal(), Parts(0, 255), null, noChange,
        null};
    EXPECT_EQ(set.size(), 5U);
    std::unordered_set<std::size_t> hashes;  // neighbouring prices of several scales do not collide
    for (int mantissa = 1; mantissa < 100; ++mantissa)
        for (unsigned char places = 0; places < 4 && mantissa % 10 != 0; ++places)
            hashes.insert(Parts(mantissa, places).GetExactHash());
    EXPECT_EQ(hashes.size(), 360U);
}

TEST(nxDecimal, ExactFormsRefuseWhatTheOthersLoseAndKeepTheValue)
{
    const nxErrorEnum tooLarge(NX_ERR_VALUE_OUT_OF_RANGE), wrong(NX_ERR_INVALID_PARAMETER),
        isNull(NX_ERR_OBJECT_IS_NULL);
    using Change = nxErrorEnum (*)(nxDecimal&);
    const std::tuple<nxDecimal, Change, nxErrorEnum> rows[] = {
        {Parts(largest, 0), [](nxDecimal& d) { return d.AddExact(nxDecimal(1, 0)); }, tooLarge},
        {nxDecimal(4294967296, 0), [](nxDecimal& d) { return d.MultiplyExact(d); }, tooLarge},
        {nxDecimal(3037000500, 0), [](nxDecimal& d) { return d.MultiplyExact(d); }, tooLarge},
        {Parts(1, 10), [](nxDecimal& d) { return d.MultiplyExact(d); }, tooLarge},  // 20 places
        {nxDecimal(7, 2), [](nxDecimal& d) { return d.DivideExact(nxDecimal(), 2, NX_ROUNDING_METHOD_UP); }, wrong},
        {nxDecimal(10'000'000'000, 2),
         [](nxDecimal& d) { return d.DivideExact(Parts(1, 10), 10, NX_ROUNDING_METHOD_UP); }, tooLarge},
        {nxDecimal(7, 0), [](nxDecimal& d) { return d.SetFromDoubleExact(1e19, 0); }, tooLarge},
        {nxDecimal(7, 0), [](nxDecimal& d) { return d.SetFromDoubleExact(1e17, 2); }, tooLarge},
        {Parts(largest, 2), [](nxDecimal& d) { return d.SetDecimalPlacesExact(4); }, tooLarge},
        {Parts(largest, 0), [](nxDecimal& d) { return d.RoundExact(nxDecimal(10, 0), NX_ROUNDING_METHOD_UP); },
         tooLarge},
        {nxDecimal(100, 0), [](nxDecimal& d) { return d.AddExact(nxDecimal("n/a", '.')); }, isNull},
        {noChange, [](nxDecimal& d) { return d.SubtractExact(nxDecimal()); }, isNull},
        {Number("1.234"), [](nxDecimal& d) { return d.RoundExact(nxDecimal(1, 0), nxRoundingMethodEnum()); }, wrong},
        {Number("1.234"), [](nxDecimal& d) { return d.RoundExact(nxDecimal(), NX_ROUNDING_METHOD_UP); }, wrong},
        {Number("1.234"), [](nxDecimal& d) { return d.RoundExact(null, NX_ROUNDING_METHOD_UP); }, isNull},
        {nxDecimal(7, 0), [](nxDecimal& d) { return d.SetFromStringExact("99999999999999999999x", '.'); }, wrong},
        {nxDecimal(7, 0), [](nxDecimal& d) { return d.SetFromStringExact(nullptr, '.'); }, wrong}};
    for (const auto& [before, change, expected] : rows)
    {
        nxDecimal value = before;
        EXPECT_EQ(change(value), expected);
        EXPECT_EQ(Fields(value), Fields(before));
    }
    long long encoded = 7;
    unsigned char places = 7;
    EXPECT_EQ(nxDecimal::GetMaximumDecimal().GetAsEncodedValuesExact(encoded, places), tooLarge);
    EXPECT_EQ(encoded, 7);
    EXPECT_TRUE(noChange.GetAsEncodedValuesExact(encoded, places).IsOK());
    EXPECT_EQ(encoded, largest - 1);
    nxDecimal value;
    for (const char* text :
         {"9223372036854775808", "92233720368547758.08", "18446744073709551621", "0.12345678901234567891234"})
        EXPECT_EQ(value.SetFromStringExact(text, '.'), tooLarge) << text;
}

TEST(nxDecimal, KeepsTheStateOfWrappersAndRequests)
{
    using Huge = nxValueWrapper<unsigned long long>;
    using Volume = nxValueWrapper<unsigned>;
    using Double = nxDoubleValueWrapper;
    const std::pair<nxDecimal, const char*> rows[] = {{nxDecimal(Volume(300), 2), "VALID 30000e-2"},
                                                      {nxDecimal(Volume(), 0), "NULL 0e-0"},
                                                      {nxDecimal(Volume::GetNoChangeInstance(), 0), "NOCHANGE 0e-0"},
                                                      {nxDecimal(Huge(1ULL << 63), 0), "NULL 0e-0"},
                                                      {nxDecimal(Huge(1ULL << 60), 1), "NULL 0e-0"},
                                                      {nxDecimal(Double(-1.25), 1), "VALID -12e-1"},
                                                      {nxDecimal(Double(), 2), "NULL 0e-0"},
                                                      {nxDecimal(Double::GetNoChangeInstance(), 2), "NOCHANGE 0e-0"},
                                                      {nxDecimal(Double(1e19), 0), "NULL 0e-0"},
                                                      {null.GetOr(nxDecimal(1, 1)), "VALID 10e-1"},
                                                      {nxDecimal(2, 1).GetOr(null), "VALID 20e-1"},
                                                      {nxDecimal::Negate(Number("-1.5")), "VALID 15e-1"},
                                                      {nxDecimal::Negate(noChange), "NOCHANGE 0e-0"}};
    for (const auto& [value, fields] : rows)
        EXPECT_EQ(Fields(value), fields);
    nxDecimal stored(5, 0);
    stored.UpdateFrom(noChange);
    EXPECT_EQ(Fields(stored), "VALID 5e-0");
    stored.UpdateFrom(null);
    EXPECT_EQ(Fields(stored), "NULL 0e-0");
}
