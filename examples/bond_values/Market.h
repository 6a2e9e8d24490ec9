// SPDX-License-Identifier: Apache-2.0
#ifndef EXAMPLES_BOND_VALUES_MARKET_H
#define EXAMPLES_BOND_VALUES_MARKET_H

#include <memory>
#include <string>

#include "core/numeric/nxExchangeRateList.h"
#include "core/time/nxBusinessCalendar.h"
#include "core/time/nxTradingSession.h"

/// When the market is open, and what currencies cost.
struct Market
{
    nxBusinessCalendar calendar;
    nxTradingSession session;
    nxTimeStamp moment;  ///< To which prices and rates belong; a program that trades takes nxTimeStamp::Now().
    std::shared_ptr<const nxExchangeRateList> rates;

    /// Reads rates.csv and holidays.csv of a folder. Tells on standard error what is wrong.
    nxErrorEnum Read(const std::string& folder);

private:
    nxErrorEnum _ReadHolidays(const std::string& path);
    nxErrorEnum _SetHours();
    nxErrorEnum _ReadRates(const std::string& path);
};

#endif
