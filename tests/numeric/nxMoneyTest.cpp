#include "core/numeric/nxMoney.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(nxMoney, ReadsAnAmountAndACurrencyOrStaysAsItWas)
{
    struct Row
    {
        const char* text;
        char separator;
        const char* after;  // with '.'
    };
    const char* const before = "7.0 JPY";
    const Row rows[] = {
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
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.text);
        nxMoney money(nxDecimal("7.0", '.'), "JPY");
        EXPECT_EQ(money.SetFromString(row.text, row.separator).IsOK(), row.after != before);
        EXPECT_EQ(money.GetAsString('.'), row.after);
    }
}

TEST(nxMoney, NullAndNoChangeHaveNoCurrency)
{
    struct Row
    {
        nxMoney money;
        bool isNull;
        const char* logText;
    };
    const Row rows[] = {
        {nxMoney(), true, "NULL"},
        {nxMoney(nxNullInitalizer{}), true, "NULL"},
        {nxMoney(nxNoChangeInitalizer{}), false, "NO_CHANGE"},
        {nxMoney(nxDecimal::GetNullDecimal(), "USD"), true, "NULL"},
        {nxMoney(nxDecimal::GetNoChangeDecimal(), "USD"), false, "NO_CHANGE"},
        {nxMoney(nxDecimal(1, 0), "usd"), true, "NULL"},
    };
    for (const Row& row : rows)
    {
        EXPECT_EQ(row.money.IsNull(), row.isNull);
        EXPECT_EQ(row.money.IsNoChange(), !row.isNull);
        EXPECT_EQ(row.money.GetCurrency(), "");
        EXPECT_EQ(row.money.GetAsString('.'), "");
        std::ostringstream stream;
        stream << row.money;
        EXPECT_EQ(stream.str(), row.logText);
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
