#include "core/numeric/nxMoney.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

TEST(nxMoney, ReadsAnAmountAndACurrencyOrStaysAsItWas)
{
    const char* const before = "7.0 JPY";
    // What is left is printed with '.'.
    const std::tuple<const char*, char, const char*> rows[] = {
        {"12.50 EUR", '.', "12.50 EUR"},
        {"-1234,5 USD", ',', "-1234.5 USD"},
        {".5 USD", '.', "0.5 USD"},
        {"1 5 USD", ' ', "1.5 USD"},
        {"12.50", '.', before},
        {"12.50EUR", '.', before},
        {"12.50  EUR", '.', before},
        {" EUR", '.', before},
        {"EUR 12.50", '.', before},
        {"12.50 eur", '.', before},
        {"12.50 EURO", '.', before},
        {"12.50 EU", '.', before},
        {"12.50 EUR ", '.', before},
        {"12.5O EUR", '.', before},
        {"", '.', before},
    };
    for (const auto& [text, separator, after] : rows)
    {
        SCOPED_TRACE(text);
        nxMoney money(nxDecimal("7.0", '.'), "JPY");
        EXPECT_EQ(money.SetFromString(text, separator).IsOK(), after != before);
        EXPECT_EQ(money.GetAsString('.'), after);
    }
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
        std::ostringstream stream;
        stream << money;
        EXPECT_EQ(stream.str(), logText);
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
