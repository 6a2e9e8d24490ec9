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
