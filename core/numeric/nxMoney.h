// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXMONEY_H
#define CORE_NUMERIC_NXMONEY_H

#include <cstring>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxCurrency.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxRatio.h"
#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"

/// An amount of money: a decimal in the units of a currency, and the currency's code.
///
/// - Currency: three capital letters as in "USD"; nxCurrency tells whether such a currency is known.
/// - Null and no change are those of the amount; such money has no currency.
/// - Errors: an impossible currency is never held. The constructor makes null of it; SetFromString() returns its error
///   and leaves the money as it was.
/// - Arithmetic is exact and has no operators, because a sum of two currencies is an error. See nxExchangeRateConverter.
/// - Threads: like an int. Ownership: a value of 24 bytes that owns nothing.
/// @code
/// nxMoney fee;
/// if (fee.SetFromString("12.50 EUR", '.').IsOK() && fee.Add(nxMoney(nxDecimal(5, 0), "EUR")).IsOK())
///     std::cout << fee;  // 17.50 EUR
/// @endcode
class NX_CORE_API nxMoney
{
public:
    nxMoney() : _amount(nxNullInitalizer{}) {}                              ///< Null.
    explicit nxMoney(nxNullInitalizer null) : _amount(null) {}              ///< Null.
    explicit nxMoney(nxNoChangeInitalizer noChange) : _amount(noChange) {}  ///< No change.
    /// @p amount of @p currency; null when @p currency is not three capital letters. An amount that is not valid makes
    /// null or no change, whatever the currency.
    nxMoney(const nxDecimal& amount, std::string_view currency);
    /// The same; a null pointer is an empty text.
    nxMoney(const nxDecimal& amount, const char* currency);
    /// The same; null when @p currency is null.
    nxMoney(const nxDecimal& amount, nxCurrency currency) : _amount(amount)
    {
        if (currency.IsNull() && amount.IsValid())
            _amount.SetNull();
        else if (amount.IsValid())
            std::memcpy(_currency, &currency, sizeof _currency);  // the letters and a NUL
    }

    bool IsNull() const { return _amount.IsNull(); }                 ///< There is no amount.
    bool IsNoChange() const { return _amount.IsNoChange(); }         ///< The receiver keeps its money.
    bool IsValid() const { return _amount.IsValid(); }               ///< There are an amount and a currency.
    void SetNull() { *this = nxMoney(); }                            ///< Amount and currency are forgotten.
    void SetNoChange() { *this = nxMoney(nxNoChangeInitalizer{}); }  ///< Amount and currency are forgotten.

    /// The amount in units of the currency, null or no change with the money. Refers into this object.
    const nxDecimal& GetAmount() const { return _amount; }
    /// @return three capital letters, or an empty text unless valid. Refers into this object.
    std::string_view GetCurrency() const { return std::string_view(_currency, IsValid() ? _currencySize : 0); }
    /// @return this money if it is valid, and otherwise @p fallback.
    nxMoney GetOr(const nxMoney& fallback) const { return IsValid() ? *this : fallback; }
    /// Becomes @p request, null included; keeps its value when @p request is "no change".
    void UpdateFrom(const nxMoney& request) { *this = request.IsNoChange() ? *this : request; }

    /// Reads an amount as nxDecimal does, one blank, and three capital letters: "-1234.50 USD".
    /// @return NX_ERR_INVALID_PARAMETER for any other text; the money is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text, char separator);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text, char separator);
    /// Reads what SetFromString() reads, and loses no digit.
    /// @return also NX_ERR_VALUE_OUT_OF_RANGE for an amount beyond 64 bits or with more than nxDecimal::MaxExactPlaces
    ///         decimals.
    [[nodiscard]] nxErrorEnum SetFromStringExact(std::string_view text, char separator);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromStringExact(const char* text, char separator);

    /// @return the amount with all its decimals (twelve at most), a blank and the currency: "-1234.50 USD"; an empty
    ///         text unless valid.
    std::string GetAsString(char separator) const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out, char separator) const;
    /// @return the same with every decimal of the amount, which reads back equal.
    std::string GetAsExactString(char separator) const;
    /// Appends what GetAsExactString() returns.
    void AppendAsExactString(std::string& out, char separator) const;
    /// @return what GetAsString() returns, "NULL" or "NO_CHANGE".
    std::string GetAsLogString(char separator) const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out, char separator) const;

    /// @name Arithmetic
    /// Exact, with integers. On failure nothing changes. Each returns
    /// - NX_ERR_OBJECT_IS_NULL when this money or an operand is not valid, "no change" included;
    /// - NX_ERR_INVALID_PARAMETER for an operand of another currency and for an undefined method;
    /// - NX_ERR_VALUE_OUT_OF_RANGE when an amount needs more than 64 bits or more than nxDecimal::MaxExactPlaces decimals.
    /// The rounding methods are those of nxDecimal::Round().
    /// @{

    /// Becomes the sum, with the decimals of the finer amount.
    [[nodiscard]] nxErrorEnum Add(const nxMoney& other)
    {
        return _SharesCurrency(other) ? _amount.AddExact(other._amount) : _GetMismatch(other);
    }
    /// Becomes the difference, likewise.
    [[nodiscard]] nxErrorEnum Subtract(const nxMoney& other)
    {
        return _SharesCurrency(other) ? _amount.SubtractExact(other._amount) : _GetMismatch(other);
    }
    /// Becomes the product, rounded once to @p places decimals.
    [[nodiscard]] nxErrorEnum Multiply(nxRatio factor, unsigned char places, const nxRoundingMethodEnum& method);
    /// Rounds to the smallest amount that exists, with its decimals: 12.345 JPY to 12 JPY, 12.3 USD to 12.30 USD. For steps
    /// of cash, such as 0.05 CHF, see nxDecimal::RoundExact().
    /// @return also NX_ERR_NOT_FOUND when the currency has no minor units, see nxCurrency::GetMinorUnits().
    [[nodiscard]] nxErrorEnum RoundToMinorUnit(const nxRoundingMethodEnum& method);
    /// Splits the amount by weights. The parts add up to it exactly, and each is less than one unit of the amount's last
    /// decimal away from its share. What the shares, rounded toward zero, leave over goes in single units to those that lost
    /// most, of equal ones to the earlier: 100 USD by 1, 1, 1 is 34, 33, 33. The parts of a negative amount mirror those of
    /// the positive one, and a weight of 0 gets 0.
    /// @param parts becomes one part for each weight. It may hold this money.
    /// @return also NX_ERR_INVALID_PARAMETER when there are no weights or all are 0. Throws only when memory runs out.
    [[nodiscard]] nxErrorEnum Allocate(std::span<const unsigned long long> weights, std::vector<nxMoney>& parts) const;
    /// Gives -1, 0 or 1 when this amount is less than, exactly equal to or greater than @p other of the same currency. An
    /// order over all money is CompareExact().
    [[nodiscard]] nxErrorEnum Compare(const nxMoney& other, int& order) const;
    /// @}

    /// Equal amounts of the same currency; null equals null and no change equals no change. Amounts compare as
    /// nxDecimal's do, across scales with a tolerance, so a sorted or hashed container needs the exact forms below.
    friend bool operator==(const nxMoney& a, const nxMoney& b)
    {
        return a._amount == b._amount && a.GetCurrency() == b.GetCurrency();
    }
    /// @return whether CompareExact() is 0: the same currency and exactly the same number, or the same state.
    bool EqualsExactly(const nxMoney& other) const { return CompareExact(other) == 0; }
    /// @return -1, 0 or 1 when this money comes before @p other, equals it or comes after it, without tolerance. Null comes
    ///         before no change, and both before any money. Money is sorted by currency first: across currencies the order
    ///         says nothing about worth.
    int CompareExact(const nxMoney& other) const;

    /// For sorting and sorted containers: `std::set<nxMoney, nxMoney::ExactLess>`.
    struct ExactLess
    {
        /// See CompareExact().
        bool operator()(const nxMoney& left, const nxMoney& right) const { return left.CompareExact(right) < 0; }
    };

private:
    using _AmountReader = nxErrorEnum (nxDecimal::*)(std::string_view, char);
    static bool _IsCurrency(std::string_view text);
    nxErrorEnum _SetFromString(std::string_view text, char separator, _AmountReader readAmount);
    // Money that is not valid shares the currency of no other money that is.
    bool _SharesCurrency(const nxMoney& other) const
    {
        return std::memcmp(_currency, other._currency, sizeof _currency) == 0;
    }
    // Of two that share no currency.
    nxErrorEnum _GetMismatch(const nxMoney& other) const;

    static constexpr unsigned _currencySize = 3;

    nxDecimal _amount;
    char _currency[_currencySize + 1] = {};
};

/// Writes the log form, with '.' as the decimal separator.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxMoney& money);

#endif
