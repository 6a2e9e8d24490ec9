// SPDX-License-Identifier: Apache-2.0
// Lists of currencies and of exchange rates, read from CSV.
#include "core/numeric/nxCurrencyList.h"
#include "core/numeric/nxExchangeRateList.h"
#include "core/text/nxCSVParser.h"
#include "tests/support/nxTest.h"

namespace
{
const nxTimeStamp noon(1'700'000'000, 0);

nxErrorEnum Give(void* context, char* buffer, std::size_t size, std::size_t& read)
{
    auto& text = *static_cast<std::string_view*>(context);
    read = text.copy(buffer, size);
    text.remove_prefix(read);
    return nxErrorEnum();
}

// The rates or currencies, or the error's name and the line at fault when the list was left alone.
template <class List, class Read, class Show>
std::string ReadText(std::string_view text, const nxCSVDialect& dialect, List list, Read read, Show show)
{
    nxCSVParser parser(&Give, &text, dialect);
    const std::size_t before = list.GetSize();
    unsigned long long line = 7;
    const nxErrorEnum error = read(list, parser, line);
    EXPECT_EQ(error.IsOK(), line == 0);
    EXPECT_TRUE(error.IsOK() || list.GetSize() == before);
    return error.IsOK() ? show(list) : error.GetShortDescription() + ' ' + std::to_string(line);
}

std::string Rates(std::string_view text, const nxCSVDialect& dialect = {})
{
    nxExchangeRateList list;
    nxExchangeRate rate;
    EXPECT_TRUE(rate.Set(nxCurrency("EUR"), nxCurrency("CHF"), nxDecimal(1, 0), nxDecimal(1, 0), noon).IsOK());
    EXPECT_TRUE(list.Set(rate).IsOK());
    return ReadText(
        text, dialect, list,
        [](nxExchangeRateList& rates, nxCSVParser& parser, unsigned long long& line)
        { return rates.SetFromCSV(parser, noon, line); },
        [](const nxExchangeRateList& rates)
        {
            std::string shown;
            for (const nxExchangeRate& each : rates.GetRates())
                shown += each.GetAsString('.') + '|';
            return shown;
        });
}

std::string Currencies(std::string_view text)
{
    return ReadText(
        text, {}, nxCurrencyList::GetBuiltIn(),
        [](nxCurrencyList& list, nxCSVParser& parser, unsigned long long& line)
        { return list.SetFromCSV(parser, line); },
        [](const nxCurrencyList& list)
        {
            std::string shown;
            for (const nxCurrencyList::Row& row : list.GetRows())
                shown += row.currency.GetAsString() + ' ' + std::to_string(row.number) + ' ' +
                         std::to_string(row.minorUnits) + ' ' + row.name + '|';
            return shown;
        });
}
}  // namespace

TEST(nxExchangeRateList, IsReadFromRowsOrStaysAsItWas)
{
    const std::pair<const char*, const char*> rows[] = {
        {"base,quote,bid,ask\nEUR,USD,1.0850,1.0852\n\nJPY,USD,0.6712,0.6715,100",
         "1 EUR = 1.0850 .. 1.0852 USD|100 JPY = 0.6712 .. 0.6715 USD|"},
        {"base,quote,bid,ask,units\r\n\"EUR\",USD,1,1,\r\n", "1 EUR = 1 .. 1 USD|"},
        {"base,quote,bid,ask", ""},
        {"h\nEUR,USD,1,1\nUSD,EUR,1,1", "NX_ERR_DUPLICATE_MATCH 3"},
        {"h\nEUR,USD,1", "NX_ERR_INSUFFICIENT_DATA 2"},
        {"h\nEUR,USD,1,1,1,1", "NX_ERR_INVALID_PARAMETER 2"},
        {"h\n\nEUR,usd,1,1", "NX_ERR_INVALID_PARAMETER 3"},
        {"h\nEUR,USD,1,,1", "NX_ERR_INVALID_PARAMETER 2"},
        {"h\nEUR,USD,2,1", "NX_ERR_INVALID_PARAMETER 2"},
        {"h\nEUR,USD,1,1,4294967296", "NX_ERR_VALUE_OUT_OF_RANGE 2"},
        {"h\nEUR,USD,1,99999999999999999999", "NX_ERR_VALUE_OUT_OF_RANGE 2"},
        {"h\nEUR,USD,1,1\n\"GBP,USD,1,1", "NX_ERR_CSV_FILE_READ_ERROR 3"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(Rates(text), expected) << text;
    nxCSVDialect dialect;
    dialect.separator = ';';
    dialect.decimalSeparator = ',';
    dialect.hasHeader = false;
    EXPECT_EQ(Rates("EUR;USD;1,0850;1,0852", dialect), "1 EUR = 1.0850 .. 1.0852 USD|");
}

TEST(nxCurrencyList, IsReadFromRowsOrStaysAsItWas)
{
    const std::pair<const char*, const char*> rows[] = {
        {"letters,number,minor units,name\nUSD,840,2,US Dollar\nXAU,959,,Gold\nXBT,,8",
         "USD 840 2 US Dollar|XAU 959 255 Gold|XBT 0 8 |"},
        {"h\nUSD,840", "NX_ERR_INSUFFICIENT_DATA 2"},
        {"h\nUSD,840,2,US Dollar,", "NX_ERR_INVALID_PARAMETER 2"},
        {"h\nusd,99999,2,", "NX_ERR_INVALID_PARAMETER 2"},
        {"h\nUSD,84O,2,", "NX_ERR_INVALID_PARAMETER 2"},
        {"h\nUSD,99999,x,", "NX_ERR_INVALID_PARAMETER 2"},
        {"h\nUSD,1000,2,", "NX_ERR_VALUE_OUT_OF_RANGE 2"},
        {"h\nUSD,840,255,", "NX_ERR_VALUE_OUT_OF_RANGE 2"},
        {"h\nUSD,840,258,", "NX_ERR_VALUE_OUT_OF_RANGE 2"},
        {"h\nUSD,840,2,\nUSD,840,2,", "NX_ERR_DUPLICATE_MATCH 3"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(Currencies(text), expected) << text;
}
