// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxCurrencyList.h"

#include <set>

#include "tests/support/nxTest.h"

TEST(nxCurrency, IsThreeCapitalLettersOrNull)
{
    static_assert(nxCurrency("USD").GetLetters() == "USD" && nxCurrency("USD") < nxCurrency("USE"));
    nxCurrency currency("EUR");
    for (const char* const text :
         {"", "US", "USDT", "usd", "US ", "U1D", "\xC3\x84Z", static_cast<const char*>(nullptr)})
    {
        EXPECT_TRUE(nxCurrency(text).IsNull());
        EXPECT_EQ(currency.SetFromString(text), NX_ERR_INVALID_PARAMETER);
    }
    EXPECT_EQ(Streamed(currency) + Streamed(nxCurrency()) + nxCurrency().GetAsString(), "EURNULL");
    EXPECT_TRUE(currency.SetFromString("JPY").IsOK());
    EXPECT_EQ(currency, nxCurrency("JPY"));
    EXPECT_LT(nxCurrency(), nxCurrency("AAA"));
    EXPECT_LT(nxCurrency("BAA"), nxCurrency("BAB"));
}

TEST(nxCurrency, KnowsItsSmallestAmount)
{
    const std::tuple<const char*, nxErrorEnum, int, unsigned> rows[] = {
        {"JPY", nxErrorEnum(), 0, 392},
        {"USD", nxErrorEnum(), 2, 840},
        {"BHD", nxErrorEnum(), 3, 48},
        {"CLF", nxErrorEnum(), 4, 990},
        {"UGX", nxErrorEnum(), 0, 800},
        {"XAU", nxErrorEnum(NX_ERR_NOT_FOUND), 9, 959},
        {"CNH", nxErrorEnum(NX_ERR_NOT_FOUND), 9, 0},
        {"", nxErrorEnum(NX_ERR_OBJECT_IS_NULL), 9, 0},
    };
    for (const auto& [letters, error, expected, number] : rows)
    {
        unsigned char places = 9;
        EXPECT_EQ(nxCurrency(letters).GetMinorUnits(places), error) << letters;
        EXPECT_EQ(places, expected) << letters;
        EXPECT_EQ(nxCurrency(letters).GetNumericCode(), number) << letters;
        EXPECT_EQ(nxCurrency(letters).IsKnown(), number != 0) << letters;
        EXPECT_EQ(nxCurrency(letters).GetName().empty(), number == 0) << letters;
    }
    EXPECT_EQ(nxCurrency("USD").GetName(), "US Dollar");
}

TEST(nxCurrencyList, HoldsEachCurrencyOnceInOrder)
{
    std::set<nxCurrency> seen;
    for (const nxCurrencyList::Row& row : nxCurrencyList::GetBuiltIn().GetRows())
    {
        EXPECT_TRUE(seen.empty() || *seen.rbegin() < row.currency) << row.currency;
        seen.insert(row.currency);
        EXPECT_TRUE(row.number > 0 && !row.name.empty()) << row.currency;
    }
    EXPECT_EQ(seen.size(), 181u);
}

TEST(nxCurrencyList, ReplacesTheRowsOfTheLibraryAndKeepsItsNames)
{
    const std::string_view name = nxCurrency("USD").GetName();
    nxCurrencyList list = nxCurrencyList::GetBuiltIn();
    EXPECT_EQ(list.Set({nxCurrency(), 1, 2, ""}), NX_ERR_OBJECT_IS_NULL);
    EXPECT_EQ(list.Set({nxCurrency("USD"), 1000, 2, ""}), NX_ERR_VALUE_OUT_OF_RANGE);
    EXPECT_EQ(list.Set({nxCurrency("USD"), 840, 19, ""}), NX_ERR_VALUE_OUT_OF_RANGE);
    EXPECT_TRUE(list.Set({nxCurrency("XBT"), 0, 8, "Bitcoin"}).IsOK());
    EXPECT_TRUE(list.Set({nxCurrency("USD"), 840, 4, "Dollar"}).IsOK());
    EXPECT_TRUE(list.Remove(nxCurrency("EUR")).IsOK());
    EXPECT_EQ(list.Remove(nxCurrency("EUR")), NX_ERR_NOT_FOUND);
    nxCurrencyList::SetCurrent(list);
    unsigned char places = 0;
    EXPECT_TRUE(nxCurrency("XBT").GetMinorUnits(places).IsOK());
    EXPECT_EQ(places, 8);
    EXPECT_EQ(nxCurrency("USD").GetName(), "Dollar");
    EXPECT_FALSE(nxCurrency("EUR").IsKnown());
    nxCurrencyList::SetCurrent(nxCurrencyList::GetBuiltIn());
    EXPECT_EQ(nxCurrencyList::GetCurrent().GetSize(), 181u);
    EXPECT_EQ(name, "US Dollar");
}
