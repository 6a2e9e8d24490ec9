// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXEXCHANGERATELIST_H
#define CORE_NUMERIC_NXEXCHANGERATELIST_H

#include <cstddef>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/inline/nxKeyIndex.h"
#include "core/numeric/nxCurrency.h"
#include "core/numeric/nxExchangeRate.h"
#include "core/nxExport.h"
#include "core/time/nxTimeStamp.h"

class nxCSVParser;

/// Exchange rates, one for each pair of currencies, whichever of the two is the base.
///
/// - Errors: returned; on failure a list keeps its rates.
/// - Threads: a plain value without a lock, like a std::vector. Fill one, then share it as
///   `std::shared_ptr<const nxExchangeRateList>`; new rates come as a new list.
/// - Ownership: a list owns its rates.
/// @code
/// nxExchangeRateList rates;
/// nxExchangeRate rate;
/// if (rate.Set(nxCurrency("EUR"), nxCurrency("USD"), nxDecimal("1.0850", '.'), nxDecimal("1.0852", '.'), now).IsOK() &&
///     rates.Set(rate).IsOK())
///     std::cout << rates.GetSize();  // 1
/// @endcode
class NX_CORE_API nxExchangeRateList
{
public:
    nxExchangeRateList() = default;  ///< Without rates.

    std::size_t GetSize() const { return _rates.size(); }  ///< How many rates there are.
    /// @return all rates, in the order in which their pairs were added. Refers into the list.
    const std::vector<nxExchangeRate>& GetRates() const { return _rates; }

    /// Adds a rate. It replaces the pair's earlier rate, and likewise one with base and quote exchanged.
    /// @return NX_ERR_OBJECT_IS_NULL for a null rate.
    [[nodiscard]] nxErrorEnum Set(const nxExchangeRate& rate);
    /// Removes the rate of a pair, whichever of the two is its base.
    /// @return NX_ERR_NOT_FOUND when there is none; NX_ERR_OBJECT_IS_NULL for a null currency.
    [[nodiscard]] nxErrorEnum Remove(nxCurrency base, nxCurrency quote);
    /// Finds the rate of a pair.
    /// @param isInverse receives whether @p b is the base of the rate, and @p a its quote.
    /// @return NX_ERR_NOT_FOUND when there is none; NX_ERR_OBJECT_IS_NULL for a null currency. @p rate and @p isInverse are
    ///         then unchanged.
    [[nodiscard]] nxErrorEnum Find(nxCurrency a, nxCurrency b, nxExchangeRate& rate, bool& isInverse) const;
    /// @return the rate of a pair, whichever of the two is its base, or nullptr. Refers into the list.
    const nxExchangeRate* Find(nxCurrency a, nxCurrency b) const;

    /// Replaces all rates by those of rows "base,quote,bid,ask" or "base,quote,bid,ask,units"; without units, or with an empty
    /// field, a rate is for one. Numbers have the dialect's decimal separator. Empty lines and comments are skipped, and so is
    /// the first row when the dialect has a header. The fields are in this order whatever the header says.
    /// @param rows reads from any source of bytes; the example of nxCSVParser reads a text in memory.
    /// @param at when the rates were given.
    /// @param failedLine receives the line of the row that is at fault, from 1, and 0 after a success.
    /// @return the parser's error; NX_ERR_INSUFFICIENT_DATA for a row of less than four fields; NX_ERR_INVALID_PARAMETER for
    ///         one of more than five, and for a field of another form; NX_ERR_DUPLICATE_MATCH when two rows have the same
    ///         pair, in whichever order; else the error of nxExchangeRate::Set().
    [[nodiscard]] nxErrorEnum SetFromCSV(nxCSVParser& rows, const nxTimeStamp& at, unsigned long long& failedLine);

private:
    nxKeyIndex _pairs;
    std::vector<nxExchangeRate> _rates;
};

#endif
