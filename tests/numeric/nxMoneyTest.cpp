// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxMoney.h"

#include "tests/support/nxTest.h"

TEST(nxMoney, ReadsAnAmountAndACurrencyOrStaysAsItWas)
{
    nxMoney money;
    const std::tuple<const char*, char, const char*> rows[] = {{"12.50 EUR", '.', "12.50 EUR"},
                                                               {"-1234,5 USD", ',', "-1234.5 USD"},
                                                               {".5 USD", '.', "0.5 USD"},
                                                               {"1 5 USD", ' ', "1.5 USD"}};
    for (const auto& [text, separator, after] : rows)
    {
        EXPECT_TRUE(money.SetFromString(text, separator).IsOK()) << text;
        EXPECT_EQ(money.GetAsString('.'), after);
    }
    for (const char* const text : {"12.50", "12.50EUR", "12.50  EUR", " EUR", "EUR 12.50", "12.50 eur", "12.50 EURO",
                                   "12.50 EU", "12.50 EUR ", "12.5O EUR", ""})
    {
        EXPECT_FALSE(money.SetFromString(text, '.').IsOK()) << text;
        EXPECT_EQ(money.GetAsString('.'), "1.5 USD") << text;
    }
}

TEST(nxMoney, ReadsExactlyAndPrintsWhatReadsBack)
{
    nxMoney money;
    ASSERT_TRUE(money.SetFromStringExact("-0.000000000000000001 ETH", '.').IsOK());
    EXPECT_EQ(money.GetAsExactString('.'), "-0.000000000000000001 ETH");
    for (const auto& [text, error] : {std::pair("92233720368547758.08 USD", NX_ERR_VALUE_OUT_OF_RANGE),
                                      std::pair("92233720368547758.08 usd", NX_ERR_INVALID_PARAMETER)})
    {
        EXPECT_EQ(money.SetFromStringExact(text, '.'), error) << text;
        EXPECT_EQ(money.GetAsExactString('.'), "-0.000000000000000001 ETH");
    }
}

TEST(nxMoney, SortsByStateThenCurrencyThenAmount)
{
    const auto euros = [](const char* amount) { return nxMoney(nxDecimal(amount, '.'), "EUR"); };
    const nxMoney ordered[] = {nxMoney(),     nxMoney(nxNoChangeInitalizer{}),
                               euros("-1.5"), euros("1.4999999999999999"),
                               euros("1.5"),  nxMoney(nxDecimal(1, 0), "USD")};
    for (const nxMoney& a : ordered)
        for (const nxMoney& b : ordered)
            EXPECT_EQ(a.CompareExact(b), (&a > &b) - (&a < &b)) << a << ' ' << b;
    EXPECT_TRUE(euros("1.50").EqualsExactly(euros("1.5")));
}

TEST(nxMoney, NullAndNoChangeHaveNoCurrency)
{
    const std::tuple<nxMoney, bool, const char*> rows[] = {
        {nxMoney(), true, "NULL"},
        {nxMoney(nxNullInitalizer{}), true, "NULL"},
        {nxMoney(nxNoChangeInitalizer{}), false, "NO_CHANGE"},
        {nxMoney(nxDecimal::GetNullDecimal(), "USD"), true, "NULL"},
        {nxMoney(nxDecimal::GetNoChangeDecimal(), "USD"), false, "NO_CHANGE"},
        {nxMoney(nxDecimal(1, 0), "usd"), true, "NULL"},
    };
    for (const auto& [money, isNull, logText] : rows)
    {
        EXPECT_EQ(money.IsNull(), isNull);
        EXPECT_EQ(money.IsNoChange(), !isNull);
        EXPECT_EQ(money.GetCurrency(), "");
        EXPECT_EQ(money.GetAsString('.'), "");
        EXPECT_EQ(Streamed(money), logText);
    }
}

TEST(nxMoney, IsEqualOnlyInTheSameCurrency)
{
    const nxMoney money(nxDecimal("1.50", '.'), "USD");
    EXPECT_EQ(money, nxMoney(nxDecimal("1.5", '.'), "USD"));
    EXPECT_NE(money, nxMoney(nxDecimal("1.50", '.'), "EUR"));
    EXPECT_NE(money, nxMoney(nxDecimal("1.51", '.'), "USD"));
    EXPECT_NE(money, nxMoney());
    EXPECT_EQ(nxMoney(), nxMoney(nxDecimal::GetNullDecimal(), "USD"));
    EXPECT_NE(nxMoney(), nxMoney(nxNoChangeInitalizer{}));
}

namespace
{
nxMoney Money(const char* text)
{
    nxMoney money;
    EXPECT_TRUE(money.SetFromStringExact(text, '.').IsOK()) << text;
    return money;
}
}  // namespace

TEST(nxMoney, AddsAndComparesOneCurrencyExactly)
{
    nxMoney sum = Money("0.01 USD");
    int order = 7;
    for (const auto& [operand, error] : {std::pair(Money("1 EUR"), NX_ERR_INVALID_PARAMETER),
                                         {Money("92233720368547758.07 USD"), NX_ERR_VALUE_OUT_OF_RANGE},
                                         {nxMoney(), NX_ERR_OBJECT_IS_NULL}})
    {
        EXPECT_EQ(sum.Add(operand), error) << operand;
        const bool fits = error == NX_ERR_VALUE_OUT_OF_RANGE;
        EXPECT_EQ(sum.Compare(operand, order), fits ? nxErrorEnum() : nxErrorEnum(error)) << operand;
        EXPECT_EQ(order, fits ? -1 : 7);
        order = 7;
    }
    EXPECT_TRUE(sum.Add(Money("90071992547409.931 USD")).IsOK());
    EXPECT_TRUE(sum.Subtract(Money("0.0001 USD")).IsOK());
    EXPECT_EQ(sum.GetAsExactString('.'), "90071992547409.9409 USD");
    EXPECT_EQ(nxMoney().Subtract(sum), NX_ERR_OBJECT_IS_NULL);
}

TEST(nxMoney, IsMultipliedAndRoundedToWhatExists)
{
    const nxRoundingMethodEnum nearest(NX_ROUNDING_METHOD_NEAREST);
    for (const auto& [text, expected] : {std::pair("12.5 JPY", "13 JPY"),
                                         {"-12.345 USD", "-12.35 USD"},
                                         {"1 BHD", "1.000 BHD"},
                                         {"1.5 XAU", nullptr},
                                         {"1.5 QQQ", nullptr}})
    {
        nxMoney money = Money(text);
        EXPECT_EQ(money.RoundToMinorUnit(nearest), expected != nullptr ? nxErrorEnum() : nxErrorEnum(NX_ERR_NOT_FOUND));
        EXPECT_EQ(money.GetAsString('.'), expected != nullptr ? expected : text);
    }
    nxMoney fee = Money("100 EUR");
    EXPECT_TRUE(fee.Multiply(nxRatio(-2, 3), 2, nearest).IsOK());
    EXPECT_EQ(fee.GetAsString('.'), "-66.67 EUR");
    EXPECT_EQ(fee.RoundToMinorUnit(nxRoundingMethodEnum()), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxMoney().RoundToMinorUnit(nearest), NX_ERR_OBJECT_IS_NULL);
    EXPECT_EQ(nxMoney().Multiply(nxRatio(1, 2), 2, nearest), NX_ERR_OBJECT_IS_NULL);
}

TEST(nxMoney, IsAllocatedWithoutLosingAUnit)
{
    constexpr unsigned long long half = 1ULL << 63;
    const std::tuple<const char*, std::vector<unsigned long long>, const char*> rows[] = {
        {"0.05 USD", {70, 30}, "0.04 0.01 "},
        {"100 USD", {1, 1, 1}, "34 33 33 "},
        {"-100 USD", {1, 1, 1}, "-34 -33 -33 "},
        {"7 USD", {0, 1, 0}, "0 7 0 "},
        {"0.00 USD", {1, 2}, "0.00 0.00 "},
        {"9223372036854775807 USD", {half, half, half}, "3074457345618258603 3074457345618258602 3074457345618258602 "},
        {"-9223372036854775808 USD", {~0ULL}, "-9223372036854775808 "},
        {"2 USD", {1, 3, 3}, "0 1 1 "},
    };
    for (const auto& [text, weights, expected] : rows)
    {
        std::vector<nxMoney> parts = {Money(text)};
        EXPECT_TRUE(parts.front().Allocate(weights, parts).IsOK());
        std::string shown;
        for (const nxMoney& part : parts)
            shown += part.GetAmount().GetAsString('.') + ' ';
        EXPECT_EQ(shown, expected) << text;
    }
    std::vector<nxMoney> parts(2);
    EXPECT_EQ(Money("1 USD").Allocate({}, parts), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(Money("1 USD").Allocate(std::vector<unsigned long long>{0, 0, 0}, parts), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxMoney().Allocate(std::vector<unsigned long long>{1}, parts), NX_ERR_OBJECT_IS_NULL);
    EXPECT_EQ(parts.size(), 2u);
}
