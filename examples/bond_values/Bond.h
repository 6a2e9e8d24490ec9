// SPDX-License-Identifier: Apache-2.0
#ifndef EXAMPLES_BOND_VALUES_BOND_H
#define EXAMPLES_BOND_VALUES_BOND_H

#include <string>
#include <vector>

#include "core/app/nxCSVFileReader.h"
#include "core/numeric/nxExchangeRateConverter.h"

/// One row of bonds.csv, and what comes of it.
struct Bond
{
    std::string name, notation, priceText, nominalText;
    nxCurrency currency;

    nxDecimal price;         ///< On the grid of the notation; percent of the nominal.
    nxMoney value;           ///< In the target currency; null after an error.
    std::string text;        ///< The price as its market writes it.
    std::string whatFailed;  ///< What of the row cannot be used; empty without an error.
    nxErrorEnum error;

    /// Reads the fields of a row.
    nxErrorEnum Read(const nxCSVFileReader& row, const std::vector<std::size_t>& columns);
    /// Fills in the results. Any number of threads may value bonds of their own with one converter.
    void Value(const nxExchangeRateConverter& converter, nxCurrency target, const nxTimeStamp& now);

private:
    nxErrorEnum _ReadPrice();
    nxErrorEnum _GetNominal(nxDecimal& nominal) const;
    nxErrorEnum _GetLocalValue(const nxDecimal& nominal, nxMoney& local) const;
};

#endif
