// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXEXCHANGERATE_H
#define CORE_NUMERIC_NXEXCHANGERATE_H

#include <iosfwd>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxCurrency.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxRatio.h"
#include "core/nxExport.h"
#include "core/time/nxTimeStamp.h"

/// What a number of units of one currency, the base, costs in another, the quote: "100 JPY = 0.6712 .. 0.6715 USD".
///
/// - Bid and ask: the market buys the base at the bid and sells it at the ask, both in the quote currency for unitCount
///   units of the base.
/// - Null: a default-constructed rate is null. It has null currencies, decimals and ratios, the unit count 0 and the moment
///   1 January 1970.
/// - Errors: returned; on failure the rate keeps its value.
/// - Threads: like an int.
/// - Ownership: a value of 72 bytes that owns nothing; pass it by reference.
/// @code
/// nxExchangeRate rate;
/// const nxErrorEnum error = rate.Set(nxCurrency("EUR"), nxCurrency("USD"), nxDecimal("1.0850", '.'),
///                                    nxDecimal("1.0852", '.'), nxTimeStamp::Now());
/// rate.GetMidRatio();  // 10851/10000
/// @endcode
class NX_CORE_API nxExchangeRate
{
public:
    static constexpr unsigned MaxUnitCount = 1'000'000;  ///< The most units of the base that a rate is for.

    nxExchangeRate() = default;                   ///< Null.
    explicit nxExchangeRate(nxNullInitalizer) {}  ///< Null.

    /// Becomes the rate of @p unitCount units of @p base in @p quote.
    /// @param at when the rate was given.
    /// @return NX_ERR_OBJECT_IS_NULL for a null currency and a decimal without a number; NX_ERR_INVALID_PARAMETER when the
    ///         currencies are the same, bid or ask is not above 0, or the bid exceeds the ask; NX_ERR_VALUE_OUT_OF_RANGE for a
    ///         unit count of 0 or above MaxUnitCount, and when bid and ask have more than 18 decimals or their sum does not
    ///         fit a decimal.
    [[nodiscard]] nxErrorEnum Set(nxCurrency base, nxCurrency quote, const nxDecimal& bid, const nxDecimal& ask,
                                  const nxTimeStamp& at, unsigned unitCount = 1);
    void SetNull() { *this = nxExchangeRate(); }  ///< Becomes null.

    bool IsNull() const { return _base.IsNull(); }        ///< There is no rate.
    bool IsValid() const { return !IsNull(); }            ///< There is a rate.
    nxCurrency GetBase() const { return _base; }          ///< What is bought and sold.
    nxCurrency GetQuote() const { return _quote; }        ///< What it is paid in.
    const nxDecimal& GetBid() const { return _bid; }      ///< As it was set. Refers into this object.
    const nxDecimal& GetAsk() const { return _ask; }      ///< As it was set. Refers into this object.
    unsigned GetUnitCount() const { return _unitCount; }  ///< The units of the base to which bid and ask belong.
    const nxTimeStamp& GetMoment() const { return _at; }  ///< When the rate was given. Refers into this object.

    /// @name What one unit of the base costs
    /// Exact, unit count included; null for a null rate, and when the quotient does not fit a ratio. With up to 12 decimals
    /// it always does.
    /// @{
    nxRatio GetBidRatio() const;  ///< At the bid.
    nxRatio GetAskRatio() const;  ///< At the ask.
    nxRatio GetMidRatio() const;  ///< Half way between bid and ask.
    /// @}

    /// @return "1 EUR = 1.0850 .. 1.0852 USD" with all decimals, without the moment; an empty text for null.
    std::string GetAsString(char separator) const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out, char separator) const;
    /// @return what GetAsString() returns, or "NULL".
    std::string GetAsLogString(char separator) const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out, char separator) const;

    /// The same currencies, unit count and moment, and exactly the same numbers; null equals null.
    friend bool operator==(const nxExchangeRate& left, const nxExchangeRate& right)
    {
        return left._base == right._base && left._quote == right._quote && left._unitCount == right._unitCount &&
               left._at == right._at && left._bid.EqualsExactly(right._bid) && left._ask.EqualsExactly(right._ask);
    }

private:
    nxRatio _GetRatio(const nxDecimal& cost, unsigned divisor) const;

    nxCurrency _base, _quote;
    nxDecimal _bid = nxDecimal::GetNullDecimal(), _ask = nxDecimal::GetNullDecimal();
    nxTimeStamp _at{0, 0};
    unsigned _unitCount = 0;
};

/// Writes the log form, with '.' as the decimal separator.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxExchangeRate& rate);

#endif
