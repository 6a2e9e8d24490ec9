// SPDX-License-Identifier: Apache-2.0
#include "Market.h"

#include <iostream>

#include "core/app/nxCSVFileReader.h"
#include "core/time/nxZone.h"

namespace
{
// Opens a file and gives each row to a function, up to the first error.
template <class UseRow>
nxErrorEnum ForEachRow(const std::string& path, UseRow useRow)
{
    nxCSVFileReader reader;
    nxErrorEnum error = reader.Open(path);
    for (bool hasRow = true; error.IsOK() && (error = reader.Next(hasRow)).IsOK() && hasRow;)
        error = useRow(reader);
    if (!error.IsOK())
        std::cerr << path << ": " << reader.GetErrorText() << ' ' << error << '\n';
    return error;
}
}  // namespace

nxErrorEnum Market::Read(const std::string& folder)
{
    nxErrorEnum error = _ReadHolidays(folder + "/holidays.csv");
    if (error.IsOK())
        error = _SetHours();
    return error.IsOK() ? _ReadRates(folder + "/rates.csv") : error;
}

nxErrorEnum Market::_ReadHolidays(const std::string& path)
{
    const nxErrorEnum error = ForEachRow(path,
                                         [this](const nxCSVFileReader& row)
                                         {
                                             nxDate day;
                                             const nxErrorEnum read = row.GetField(0, day);
                                             return read.IsOK() ? calendar.AddHoliday(day) : read;
                                         });
    // The holidays are those of one year, and an answer beyond it would be a guess.
    return error.IsOK() ? calendar.SetRange(nxDate(2024, 1, 1), nxDate(2024, 12, 31)) : error;
}

nxErrorEnum Market::_SetHours()
{
    const nxZone* zone = nullptr;
    nxErrorEnum error = nxZone::Get("America/Chicago", zone);
    if (error.IsOK())
        error = session.Set(zone, calendar, nxTime(17, 0, 0), nxTime(16, 0, 0), nxTradingSession::OpenDay::Before);
    if (error.IsOK())  // the evening before a holiday: trading for the business day after it
        error = zone->GetMoment(nxDateTime(nxDate(2024, 3, 28), nxTime(17, 30, 0)), moment);
    if (!error.IsOK())
        std::cerr << "no trading hours: " << error << '\n';
    return error;
}

nxErrorEnum Market::_ReadRates(const std::string& path)
{
    const auto list = std::make_shared<nxExchangeRateList>();
    const nxErrorEnum error = ForEachRow(path,
                                         [this, &list](const nxCSVFileReader& row)
                                         {
                                             nxCurrency base, quote;
                                             nxDecimal bid, ask;
                                             nxErrorEnum read = row.GetField(0, base);
                                             if (read.IsOK())
                                                 read = row.GetField(1, quote);
                                             if (read.IsOK())
                                                 read = row.GetField(2, bid);
                                             if (read.IsOK())
                                                 read = row.GetField(3, ask);
                                             nxExchangeRate rate;
                                             if (read.IsOK())
                                                 read = rate.Set(base, quote, bid, ask, moment);
                                             return read.IsOK() ? list->Set(rate) : read;
                                         });
    rates = list;
    return error;
}
