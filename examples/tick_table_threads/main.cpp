// SPDX-License-Identifier: Apache-2.0
// One tick table under several threads: a shared table is safe as it is, a cursor for each thread makes it fast, and a
// whole list of prices is one call.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "core/price/nxCustomVariableTickTable.h"
#include "core/price/nxTickTableCursor.h"
#include "core/price/nxVariableTickTableContainer.h"
#include "core/thread/nxThread.h"

namespace
{
// Quotes of one market maker: a bid and an ask around a fair price that moves tick by tick through the table.
class Quoter : public nxThread
{
public:
    Quoter(const nxVariableTickTable& table, const nxDecimal& fairPrice) : _table(table), _fairPrice(fairPrice) {}

    // Read after Wait().
    const nxDecimal& GetBid() const { return _bid; }
    const nxDecimal& GetAsk() const { return _ask; }

    nxErrorEnum Run() override
    {
        const nxRoundingMethodEnum down(NX_ROUNDING_METHOD_DOWN), up(NX_ROUNDING_METHOD_UP);
        nxTickTableCursor cursor(_table);  // this thread's own place in the table; takes no lock
        for (int quote = 0; quote < 1000; ++quote)
        {
            _bid = _ask = _fairPrice;
            cursor.RoundToValidTick(down, _bid);
            cursor.RoundToValidTick(up, _ask);
            cursor.Decrement(_bid);
            cursor.Increment(_ask);
            cursor.Increment(_fairPrice, quote % 2 == 0 ? 3 : -2);
        }
        // The table itself may be asked from any thread too; each call then takes its lock.
        _table.Increment(_ask);
        return nxErrorEnum();
    }

private:
    const nxVariableTickTable& _table;
    nxDecimal _fairPrice;
    nxDecimal _bid, _ask;
};

bool QuoteFromThreads(const nxVariableTickTable& table)
{
    std::vector<std::unique_ptr<Quoter>> quoters;
    for (const char* price : {"9.9987", "49.991", "995.25", "-2.50003"})
        quoters.push_back(std::make_unique<Quoter>(table, nxDecimal(price, '.')));
    bool haveAllStarted = true;
    for (const auto& quoter : quoters)
        if (const nxErrorEnum error = quoter->Create(); !error.IsOK())
        {
            std::cerr << "no thread: " << error.GetLongDescription() << '\n';
            haveAllStarted = false;
        }
    for (const auto& quoter : quoters)
        // Before any is destroyed. For one that has not started it returns an error at once.
        static_cast<void>(quoter->Wait());
    if (!haveAllStarted)
        return false;
    for (const auto& quoter : quoters)
        std::cout << quoter->GetBid() << " / " << quoter->GetAsk() << '\n';
    return true;
}

// A regime of one's own, where the exchange has changed its ticks.
bool RoundOrderBook()
{
    nxCustomVariableTickTable::Tables tables;
    std::string reason;
    const char* file =
        "name,band,upper_bound,increment\n"
        "MY_SHARES,1,9.995,0.005\n"
        "MY_SHARES,2,,0.01\n";
    if (!nxCustomVariableTickTable::ReadText(file, tables, reason).IsOK())
    {
        std::cerr << reason << '\n';
        return false;
    }
    std::vector<nxDecimal> book;
    for (const char* price : {"9.9912", "9.9999", "10.004", "10.015"})
        book.emplace_back(price, '.');
    tables.front()->RoundToValidTick(nxRoundingMethodEnum(NX_ROUNDING_METHOD_NEAREST), book);  // one lock for all
    std::cout << tables.front()->GetName() << ':';
    for (const nxDecimal& price : book)
        std::cout << ' ' << price;
    std::cout << '\n';
    return true;
}
}  // namespace

int main()
{
    const nxVariableTickTable* table = nullptr;
    std::string reason;
    if (!nxVariableTickTableContainer::FindVariableTickTable("VTT_CHIX_FESE1", table, reason).IsOK())
    {
        std::cerr << reason << '\n';
        return 1;
    }
    return QuoteFromThreads(*table) && RoundOrderBook() ? 0 : 1;
}
