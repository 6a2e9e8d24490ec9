// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxRatio.h"

#include <cmath>

#include "tests/support/nxTest.h"

namespace
{
constexpr long long largest = INT64_MAX, smallest = INT64_MIN;
const nxRatio before(7, 5);
}  // namespace

TEST(nxRatio, IsInLowestTermsWithAPositiveDenominatorOrIsRefused)
{
    const std::tuple<long long, long long, nxErrorEnum, const char*> rows[] = {
        {6, -4, nxErrorEnum(), "-3/2"},
        {0, -7, nxErrorEnum(), "0"},
        {-5, -1, nxErrorEnum(), "5"},
        {smallest, 2, nxErrorEnum(), "-4611686018427387904"},
        {largest, largest, nxErrorEnum(), "1"},
        {smallest, smallest, nxErrorEnum(), "1"},
        {smallest, 1, nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE), "7/5"},
        {1, smallest, nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE), "7/5"},
        {1, 0, nxErrorEnum(NX_ERR_INVALID_PARAMETER), "7/5"},
    };
    for (const auto& [numerator, denominator, error, after] : rows)
    {
        nxRatio ratio = before;
        EXPECT_EQ(ratio.Set(numerator, denominator), error) << numerator << '/' << denominator;
        EXPECT_EQ(ratio.GetAsString(), after);
        EXPECT_EQ(nxRatio(numerator, denominator).IsValid(), error.IsOK());
    }
    EXPECT_EQ(nxRatio(0, 5), nxRatio(0, 7));
    EXPECT_NE(nxRatio(0, 5), nxRatio());
    EXPECT_EQ(std::hash<nxRatio>()(nxRatio(0, 5)), std::hash<nxRatio>()(nxRatio(0, 7)));
}

TEST(nxRatio, ReadsWhatItWrites)
{
    const nxErrorEnum ok, malformed(NX_ERR_INVALID_PARAMETER), tooLarge(NX_ERR_VALUE_OUT_OF_RANGE);
    const std::tuple<const char*, nxErrorEnum, const char*> rows[] = {
        {"3/2", ok, "3/2"},
        {"-2/6", ok, "-1/3"},
        {"-0", ok, "0"},
        {"0009223372036854775807/9223372036854775807", ok, "1"},
        {"9223372036854775808/2", tooLarge, "7/5"},
        {"1/99999999999999999999", tooLarge, "7/5"},
        {"99999999999999999999/x", malformed, "7/5"},
        {"99999999999999999999/0", malformed, "7/5"},
        {nullptr, malformed, "7/5"},
    };
    for (const auto& [text, error, after] : rows)
    {
        nxRatio ratio = before;
        EXPECT_EQ(ratio.SetFromString(text), error) << (text != nullptr ? text : "");
        EXPECT_EQ(Streamed(ratio), after);
    }
    for (const char* const text : {"", "-", "/", "1/", "/2", "1/-3", "1/+3", "+1", "1 /2", " 1", "1/2/3", "1.5", "--1"})
        EXPECT_EQ(nxRatio().SetFromString(text), malformed) << text;
    EXPECT_EQ(Streamed(nxRatio()) + nxRatio().GetAsString(), "NULL");
}

TEST(nxRatio, CalculatesExactlyOrKeepsItsValue)
{
    const auto calculated = [](nxRatio left, nxErrorEnum (nxRatio::*operation)(nxRatio), nxRatio right)
    {
        const nxRatio was = left;
        const nxErrorEnum error = (left.*operation)(right);
        EXPECT_TRUE(error.IsOK() || left == was);
        return error.IsOK() ? left.GetAsString() : error.GetShortDescription();
    };
    const nxRatio third(1, 3), none, zero(0, 1), most(largest, 1);
    const nxRatio least(1, largest), large((1LL << 62), 3), inverse = large.GetInverse();
    EXPECT_EQ(calculated(large, &nxRatio::Multiply, inverse), "1");
    EXPECT_EQ(calculated(third, &nxRatio::Add, nxRatio(1, 6)), "1/2");
    EXPECT_EQ(calculated(third, &nxRatio::Subtract, third), "0");
    EXPECT_EQ(calculated(most, &nxRatio::Subtract, most), "0");
    EXPECT_EQ(calculated(most, &nxRatio::Add, third), "NX_ERR_VALUE_OUT_OF_RANGE");
    EXPECT_EQ(calculated(least, &nxRatio::Multiply, third), "NX_ERR_VALUE_OUT_OF_RANGE");
    EXPECT_EQ(calculated(least, &nxRatio::Divide, nxRatio(-1, 1)), "-1/9223372036854775807");
    EXPECT_EQ(calculated(third, &nxRatio::Divide, zero), "NX_ERR_INVALID_PARAMETER");
    EXPECT_EQ(calculated(none, &nxRatio::Divide, zero), "NX_ERR_OBJECT_IS_NULL");
    EXPECT_EQ(calculated(third, &nxRatio::Add, none), "NX_ERR_OBJECT_IS_NULL");
    EXPECT_TRUE(zero.GetInverse().IsNull() && none.GetInverse().IsNull());
    EXPECT_EQ(nxRatio(-3, 2).GetInverse(), nxRatio(-2, 3));
}

TEST(nxRatio, SortsExactlyWithNullFirst)
{
    constexpr long long many = 1'000'000'000'000'000'000;
    const nxRatio ordered[] = {nxRatio(),          nxRatio(-largest, 1),    nxRatio(-1, largest),
                               nxRatio(0, 1),      nxRatio(many, many - 1), nxRatio(many - 1, many - 2),
                               nxRatio(largest, 1)};
    for (const nxRatio& a : ordered)
        for (const nxRatio& b : ordered)
            EXPECT_EQ(a <=> b, &a <=> &b) << a << ' ' << b;
}

TEST(nxRatio, IsMadeOfDoublesAndDecimals)
{
    EXPECT_EQ(nxRatio::GetNearest(0.333, 10), nxRatio(1, 3));
    EXPECT_EQ(nxRatio::GetNearest(-3.14159, 1000), nxRatio(-355, 113));
    EXPECT_EQ(nxRatio::GetNearest(0.1, largest), nxRatio(3602879701896397, 36028797018963968));
    EXPECT_EQ(nxRatio::GetNearest(5e-324, largest), nxRatio(0, 1));
    EXPECT_EQ(nxRatio::GetNearest(9223372036854774784.0, 1), nxRatio(9223372036854774784, 1));
    for (const double value : {9223372036854775808.0, -9223372036854775808.0, HUGE_VAL, -HUGE_VAL, std::nan("")})
        EXPECT_TRUE(nxRatio::GetNearest(value, 10).IsNull()) << value;
    EXPECT_TRUE(nxRatio::GetNearest(1, 0).IsNull());

    nxRatio ratio = before;
    const auto decimal = [](long long mantissa, unsigned char places)
    { return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, places); };
    EXPECT_EQ(ratio.SetFromDecimal(nxDecimal::GetNullDecimal()), NX_ERR_OBJECT_IS_NULL);
    for (const nxDecimal& unfit : {decimal(1, 28), decimal(1, 19), decimal(smallest, 0), decimal(1, 255)})
        EXPECT_EQ(ratio.SetFromDecimal(unfit), NX_ERR_VALUE_OUT_OF_RANGE) << int{unfit.GetDecimalPlaces()};
    EXPECT_EQ(ratio, before);
    for (const auto& [value, expected] : {std::pair(decimal(125, 3), nxRatio(1, 8)),
                                          {decimal(0, 255), nxRatio(0, 1)},
                                          {decimal(-1LL << 62, 27), nxRatio(-(1LL << 35), 7450580596923828125)},
                                          {decimal(smallest, 1), nxRatio(smallest / 2, 5)}})
    {
        EXPECT_TRUE(ratio.SetFromDecimal(value).IsOK());
        EXPECT_EQ(ratio, expected);
    }
}

TEST(nxRatio, AppliesItselfOrLeavesTheResult)
{
    const nxRoundingMethodEnum nearest(NX_ROUNDING_METHOD_NEAREST);
    nxDecimal result(7, 0);
    const nxDecimal large = nxDecimal::GetMaximumDecimal();
    EXPECT_EQ(nxRatio(1, 3).Apply(large, 18, nearest, result), NX_ERR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(nxRatio(1, 3).Apply(large, 19, nearest, result), NX_ERR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(nxRatio(1, 3).Apply(large, 2, nxRoundingMethodEnum(), result), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxRatio().Apply(large, 2, nearest, result), NX_ERR_OBJECT_IS_NULL);
    EXPECT_EQ(nxRatio(1, 3).Apply(nxDecimal::GetNoChangeDecimal(), 2, nearest, result), NX_ERR_OBJECT_IS_NULL);
    EXPECT_TRUE(result.EqualsExactly(nxDecimal(7, 0)));
    EXPECT_TRUE(nxRatio(largest - 1, largest).Apply(large, 0, nearest, result).IsOK());
    EXPECT_TRUE(result.EqualsExactly(nxDecimal(largest - 1, 0)));
}
