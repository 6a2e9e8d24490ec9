// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXEXCHANGERATECONVERTER_H
#define CORE_NUMERIC_NXEXCHANGERATECONVERTER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxCurrency.h"
#include "core/numeric/nxExchangeRateList.h"
#include "core/numeric/nxMoney.h"
#include "core/nxExport.h"
#include "core/time/nxDateTimeSpan.h"
#include "core/time/nxTimeStamp.h"

class nxProductQuotient;

/// Converts money by the rates of a list, and says by which of them.
///
/// - Path: the pair's own rate, whichever of the two currencies is its base; else the rates to and from the first common
///   currency that has both. Never more than two rates.
/// - Exactness: a rate is multiplied or divided by as it is; no inverse and no cross rate is formed as a decimal. The exact
///   result is rounded once, to the minor units of the target, or to UsualPlaces decimals when it has none. Conversions by
///   rates that law fixes (bid equal to ask) thus follow the rule that such rates are neither rounded nor inverted.
/// - Age: a rate that is older than the maximum, or that far in the future, is refused. No other path is tried instead.
/// - Errors: returned; the target is then unchanged.
/// - Threads: any number may use one object, because it does not change.
/// - Ownership: shares the list, whose rates must not change any more.
/// @code
/// const nxExchangeRateConverter converter(rates, {nxCurrency("USD"), nxCurrency("EUR")}, nxDateTimeSpan(1, 0));
/// nxMoney risk;
/// const nxErrorEnum error = converter.Convert(margin, nxCurrency("JPY"), nxExchangeRateConverter::At::Mid,
///                                             nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP), nxTimeStamp::Now(), risk);
/// @endcode
class NX_CORE_API nxExchangeRateConverter
{
public:
    /// The side of a rate.
    enum class At : unsigned char
    {
        Mid,     ///< Half way between bid and ask, for valuations.
        Dealing  ///< What dealing would give: a positive amount is sold at the market's price, a negative one bought back.
    };

    static constexpr unsigned char UsualPlaces = 2;  ///< Decimals in a currency without minor units.

    /// @param rates null makes a converter that refuses everything.
    /// @param commonCurrencies tried in this order where a pair has no rate of its own.
    /// @param maximumAge of a rate; exactly as old is not too old. Null or below zero makes a converter that refuses
    ///        everything.
    nxExchangeRateConverter(std::shared_ptr<const nxExchangeRateList> rates, std::vector<nxCurrency> commonCurrencies,
                            const nxDateTimeSpan& maximumAge);

    /// Converts @p amount into @p target. Money that is in it already stays as it is, not even rounded; null and no change
    /// pass through.
    /// @param method of the four; see nxDecimal::Round().
    /// @param now against which the age of rates is measured.
    /// @param result may be the same object as @p amount.
    /// @return NX_ERR_NOT_INITIALISED for a converter that refuses everything; NX_ERR_OBJECT_IS_NULL for a null target;
    ///         NX_ERR_INVALID_PARAMETER for an undefined method or side; NX_ERR_NOT_FOUND when there is no path;
    ///         NX_ERR_INSUFFICIENT_DATA for a rate that is too old or too far in the future; NX_ERR_VALUE_OUT_OF_RANGE when
    ///         the result does not fit.
    [[nodiscard]] nxErrorEnum Convert(const nxMoney& amount, nxCurrency target, At at,
                                      const nxRoundingMethodEnum& method, const nxTimeStamp& now,
                                      nxMoney& result) const;
    /// Tells how money is converted, whatever the age of rates: "EUR-USD", "EUR-USD-JPY", or "EUR" for one currency.
    /// @return NX_ERR_NOT_INITIALISED, NX_ERR_OBJECT_IS_NULL for a null currency, or NX_ERR_NOT_FOUND as above.
    [[nodiscard]] nxErrorEnum GetPath(nxCurrency from, nxCurrency to, std::string& path) const;

private:
    // A rate and its direction.
    struct _Leg
    {
        const nxExchangeRate* rate = nullptr;
        bool isInverse = false;
    };
    struct _Path
    {
        _Leg legs[2];
        std::size_t count = 0;
        nxCurrency common;
    };

    bool _IsReady() const { return _rates != nullptr && _maximumAge >= nxDateTimeSpan(0, 0); }
    bool _AddLeg(nxCurrency from, nxCurrency to, _Path& path) const;
    nxErrorEnum _FindPath(nxCurrency from, nxCurrency to, _Path& path) const;
    bool _IsFresh(const nxExchangeRate& rate, const nxTimeStamp& now) const;
    static void _Apply(const _Leg& leg, At at, bool isSold, nxProductQuotient& quotient);

    std::shared_ptr<const nxExchangeRateList> _rates;
    std::vector<nxCurrency> _commonCurrencies;
    nxDateTimeSpan _maximumAge;
};

#endif
