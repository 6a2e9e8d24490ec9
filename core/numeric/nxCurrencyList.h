// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXCURRENCYLIST_H
#define CORE_NUMERIC_NXCURRENCYLIST_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/inline/nxKeyIndex.h"
#include "core/numeric/nxCurrency.h"
#include "core/nxExport.h"

class nxCSVParser;

/// What is known about currencies: number, minor units and name of each.
///
/// The library has a list of its own, see GetBuiltIn(). Lists change: a program that needs a currency which began since, or
/// other minor units, puts a list of its own into force.
/// - Errors: returned; on failure a list keeps its rows.
/// - Threads: a list is like a std::vector. GetCurrent() and SetCurrent() may be called by any threads at any time: a thread
///   finds the list from before or the one from after. Lists that were in force stay in memory until the process ends,
///   because names and rows refer to them. Replace the list when the program starts, not for each message.
/// - Ownership: a list owns its rows. SetCurrent() makes a copy.
/// @code
/// nxCurrencyList list = nxCurrencyList::GetBuiltIn();
/// const nxErrorEnum error = list.Set({nxCurrency("XBT"), 0, 8, "Bitcoin"});  // as some markets name it
/// if (error.IsOK())
///     nxCurrencyList::SetCurrent(list);
/// @endcode
class NX_CORE_API nxCurrencyList
{
public:
    static constexpr unsigned char NoMinorUnits = 255;  ///< There is no smallest amount, as of gold.
    static constexpr unsigned char MaxMinorUnits = 18;  ///< The most decimals of a smallest amount.
    static constexpr unsigned short MaxNumber = 999;    ///< The largest number of a currency.

    /// One currency.
    struct Row
    {
        nxCurrency currency;                      ///< Not null.
        unsigned short number = 0;                ///< 1 to MaxNumber; 0 when the currency has none.
        unsigned char minorUnits = NoMinorUnits;  ///< 0 to MaxMinorUnits, or NoMinorUnits.
        std::string name;                         ///< In UTF-8; may be empty.
    };

    nxCurrencyList() = default;  ///< Without rows.
    /// @return the library's own list: the currencies of ISO 4217 as published on 25 June 2024, those that have begun since,
    ///         and those that have ended since. It lives as long as the process.
    static const nxCurrencyList& GetBuiltIn();
    /// @return the list in force, at first GetBuiltIn(). It lives as long as the process.
    static const nxCurrencyList& GetCurrent();
    /// Puts a copy of @p list into force, for the whole process.
    static void SetCurrent(const nxCurrencyList& list);

    std::size_t GetSize() const { return _rows.size(); }       ///< How many currencies there are.
    const std::vector<Row>& GetRows() const { return _rows; }  ///< In the order in which they were added.
    /// @return the row of a currency, or nullptr. Refers into the list.
    const Row* Find(nxCurrency currency) const;

    /// Adds a currency, or replaces its row.
    /// @return NX_ERR_OBJECT_IS_NULL for a null currency; NX_ERR_VALUE_OUT_OF_RANGE for a number or minor units beyond their
    ///         range.
    [[nodiscard]] nxErrorEnum Set(const Row& row);
    /// Removes a currency.
    /// @return NX_ERR_NOT_FOUND when the list does not have it.
    [[nodiscard]] nxErrorEnum Remove(nxCurrency currency);

    /// Replaces all rows by those of "letters,number,minor units,name", such as `USD,840,2,US Dollar`. The number may be
    /// empty, and so may the minor units of a currency without any; the name may be missing. Empty lines and comments are
    /// skipped, and so is the first row when the dialect has a header. The fields are in this order whatever the header says.
    /// @param failedLine receives the line of the row that is at fault, from 1, and 0 after a success.
    /// @return the parser's error; NX_ERR_INSUFFICIENT_DATA for a row of less than three fields; NX_ERR_INVALID_PARAMETER for
    ///         one of more than four, and for a field of another form; NX_ERR_DUPLICATE_MATCH for a currency that is there
    ///         twice; else the error of Set().
    [[nodiscard]] nxErrorEnum SetFromCSV(nxCSVParser& rows, unsigned long long& failedLine);

private:
    nxKeyIndex _currencies;
    std::vector<Row> _rows;
};

#endif
