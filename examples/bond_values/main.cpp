// SPDX-License-Identifier: Apache-2.0
// What a list of bonds is worth in one currency: prices in 32nds and decimals from CSV, rounded to their ticks, times a nominal
// such as 1.5M, converted by crossed rates, and valued on a pool of threads. Run it with the folder of the data files and the
// name of a file for the values.

#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "Bond.h"
#include "Market.h"
#include "core/app/nxFileHelper.h"
#include "core/thread/nxFunctorThreadPool.h"

namespace
{
constexpr nxCurrency target("EUR");

nxErrorEnum ReadBonds(const std::string& path, std::vector<Bond>& bonds)
{
    nxCSVFileReader reader;
    std::vector<std::size_t> columns;
    nxErrorEnum error = reader.Open(path);
    for (const char* const name : {"bond", "notation", "price", "nominal", "currency"})
        if (error.IsOK())
            error = reader.GetColumn(name, columns.emplace_back());
    for (bool hasRow = true; error.IsOK() && (error = reader.Next(hasRow)).IsOK() && hasRow;)
        error = bonds.emplace_back().Read(reader, columns);
    if (!error.IsOK())
        std::cerr << path << ": " << reader.GetErrorText() << '\n';
    return error;
}

// Tells for which day trading is now, and when it is paid.
nxErrorEnum ShowTradeDate(const Market& market)
{
    bool isOpen = false;
    nxDate tradeDate, settlement;
    nxErrorEnum error = market.session.IsOpen(market.moment, isOpen);
    if (error.IsOK())
        error = market.session.GetTradeDate(market.moment, tradeDate);
    if (error.IsOK())
        error = market.calendar.AddBusinessDays(tradeDate, 1, settlement);
    if (error.IsOK())
        std::cout << (isOpen ? "open" : "closed") << ", trade date " << tradeDate.GetAsISOString() << ", settlement "
                  << settlement.GetAsISOString() << '\n';
    return error;
}

// Values all bonds on two threads, each bond in its own place.
nxErrorEnum ValueBonds(const Market& market, std::vector<Bond>& bonds)
{
    const nxExchangeRateConverter converter(market.rates, {nxCurrency("USD")}, nxDateTimeSpan(1, 0));
    nxFunctorThreadPool pool;
    nxErrorEnum error = pool.Start(2, {.name = "values"});
    for (Bond& bond : bonds)
        if (error.IsOK())
            error = pool.Post([&bond, &converter, &market] { bond.Value(converter, target, market.moment); });
    if (error.IsOK())
        error = pool.WaitIdle(60);
    return error;  // the pool's destructor joins its threads
}

nxErrorEnum ShowValues(const std::vector<Bond>& bonds)
{
    nxMoney total(nxDecimal(0, 2), target);
    for (const Bond& bond : bonds)
    {
        std::cout << std::left << std::setw(14) << bond.name << std::right;
        if (!bond.error.IsOK())
        {
            std::cout << " left out: " << bond.whatFailed << ": " << bond.error << '\n';
            continue;
        }
        std::cout << std::setw(10) << bond.text << std::setw(6) << bond.nominalText << std::setw(17)
                  << bond.value.GetAsString('.') << '\n';
        if (const nxErrorEnum error = total.Add(bond.value); !error.IsOK())
            return error;
    }
    std::cout << std::left << std::setw(30) << "total" << std::right << std::setw(17) << total.GetAsString('.') << '\n';
    return nxErrorEnum();
}
// Readers of the file see the rows of the last run or of this one, and never a part of them.
nxErrorEnum WriteValues(const std::string& path, const std::vector<Bond>& bonds)
{
    std::string rows = "bond,price,value,currency\n";
    for (const Bond& bond : bonds)
        if (bond.error.IsOK())
        {
            rows.append(bond.name).append(",").append(bond.price.GetAsExactString('.')).append(",");
            rows.append(bond.value.GetAmount().GetAsExactString('.'))
                .append(",")
                .append(target.GetLetters())
                .append("\n");
        }
    return nxFileHelper::ReplaceFile(path, rows, nxFileHelper::Durability::Durable);
}
}  // namespace

int main(int count, char** arguments)
{
    if (count != 3)
    {
        std::cerr << "usage: " << arguments[0] << " FOLDER RESULT.csv\n";
        return 2;
    }
    const std::string folder = arguments[1];
    Market market;
    std::vector<Bond> bonds;
    nxErrorEnum error = market.Read(folder);
    if (error.IsOK())
        error = ReadBonds(folder + "/bonds.csv", bonds);
    if (error.IsOK())
        error = ShowTradeDate(market);
    if (error.IsOK())
        error = ValueBonds(market, bonds);
    if (error.IsOK())
        error = ShowValues(bonds);
    if (error.IsOK())
        error = WriteValues(arguments[2], bonds);
    if (!error.IsOK())
        std::cerr << error << ": " << error.GetLongDescription() << '\n';
    return error.IsOK() ? 0 : 1;
}
