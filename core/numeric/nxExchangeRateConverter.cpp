// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxExchangeRateConverter.h"

#include <utility>

#include "core/numeric/internal/nxProductQuotient.h"

nxExchangeRateConverter::nxExchangeRateConverter(std::shared_ptr<const nxExchangeRateList> rates,
                                                 std::vector<nxCurrency> commonCurrencies,
                                                 const nxDateTimeSpan& maximumAge)
    : _rates(std::move(rates)), _commonCurrencies(std::move(commonCurrencies)), _maximumAge(maximumAge)
{
}

bool nxExchangeRateConverter::_AddLeg(nxCurrency from, nxCurrency to, _Path& path) const
{
    const nxExchangeRate* const rate = _rates->Find(from, to);
    if (rate == nullptr)
        return false;
    path.legs[path.count++] = {rate, rate->GetBase() == to};
    return true;
}

nxErrorEnum nxExchangeRateConverter::_FindPath(nxCurrency from, nxCurrency to, _Path& path) const
{
    if (from == to || _AddLeg(from, to, path))
        return nxErrorEnum();
    for (const nxCurrency common : _commonCurrencies)
    {
        path.count = 0;
        if (_AddLeg(from, common, path) && _AddLeg(common, to, path))
        {
            path.common = common;
            return nxErrorEnum();
        }
    }
    return nxErrorEnum(NX_ERR_NOT_FOUND);
}

bool nxExchangeRateConverter::_IsFresh(const nxExchangeRate& rate, const nxTimeStamp& now) const
{
    const nxDateTimeSpan age = now - rate.GetMoment();
    return age.IsValid() && age <= _maximumAge && -_maximumAge <= age;
}

void nxExchangeRateConverter::_Apply(const _Leg& leg, At at, bool isSold, nxProductQuotient& quotient)
{
    // Selling the quote currency is buying the base, at the ask.
    const nxExchangeRate& rate = *leg.rate;
    nxDecimal cost = isSold != leg.isInverse ? rate.GetBid() : rate.GetAsk();
    std::uint64_t units = rate.GetUnitCount();
    // A rate whose sum does not fit is not made.
    if (at == At::Mid && (cost = rate.GetBid()).AddExact(rate.GetAsk()).IsOK())
        units *= 2;
    const auto mantissa = static_cast<std::uint64_t>(cost.GetValue());
    const int places = cost.GetDecimalPlaces();
    quotient.Multiply(leg.isInverse ? units : mantissa);
    quotient.Divide(leg.isInverse ? mantissa : units);
    quotient.Scale(leg.isInverse ? places : -places);
}

nxErrorEnum nxExchangeRateConverter::Convert(const nxMoney& amount, nxCurrency target, At at,
                                             const nxRoundingMethodEnum& method, const nxTimeStamp& now,
                                             nxMoney& result) const
{
    if (!_IsReady())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    if (target.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (!nxDecimalQuick::IsMethod(method.GetValue()) || at > At::Dealing)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const nxCurrency source(amount.GetCurrency());
    if (!amount.IsValid() || source == target)
    {
        result = amount;
        return nxErrorEnum();
    }
    _Path path;
    nxErrorEnum error = _FindPath(source, target, path);
    if (!error.IsOK())
        return error;
    const nxDecimal& value = amount.GetAmount();
    unsigned char places = UsualPlaces;
    static_cast<void>(target.GetMinorUnits(places));  // unchanged when there are none
    nxProductQuotient quotient(nxDecimalQuick::GetMagnitude(value.GetValue()));
    quotient.Scale(places - value.GetDecimalPlaces());
    for (std::size_t i = 0; i < path.count; ++i)
    {
        if (!_IsFresh(*path.legs[i].rate, now))
            return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
        _Apply(path.legs[i], at, !value.IsNegative(), quotient);
    }
    nxDecimal converted;
    error = quotient.GetRounded(value.IsNegative(), method.GetValue(), places, converted);
    if (error.IsOK())
        result = nxMoney(converted, target);
    return error;
}

nxErrorEnum nxExchangeRateConverter::GetPath(nxCurrency from, nxCurrency to, std::string& path) const
{
    if (!_IsReady())
        return nxErrorEnum(NX_ERR_NOT_INITIALISED);
    if (from.IsNull() || to.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    _Path found;
    const nxErrorEnum error = _FindPath(from, to, found);
    if (!error.IsOK())
        return error;
    path = from.GetAsString();
    for (const nxCurrency next : {found.common, to})
        if (next.IsValid() && next != from)
            path.append(1, '-').append(next.GetLetters());
    return error;
}
