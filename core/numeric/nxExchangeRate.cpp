// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxExchangeRate.h"

#include <ostream>

#include "core/text/nxStringHelper.h"

nxErrorEnum nxExchangeRate::Set(nxCurrency base, nxCurrency quote, const nxDecimal& bid, const nxDecimal& ask,
                                const nxTimeStamp& at, unsigned unitCount)
{
    if (base.IsNull() || quote.IsNull() || !bid.IsValid() || !ask.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (base == quote || !bid.IsPositive() || !ask.IsPositive() || bid.CompareExact(ask) > 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    // The price half way needs the sum.
    nxDecimal sum = bid;
    if (unitCount == 0 || unitCount > MaxUnitCount || !sum.AddExact(ask).IsOK())
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    _base = base;
    _quote = quote;
    _bid = bid;
    _ask = ask;
    _at = at;
    _unitCount = unitCount;
    return nxErrorEnum();
}

nxRatio nxExchangeRate::_GetRatio(const nxDecimal& cost, unsigned divisor) const
{
    nxRatio ratio;
    const bool fits = ratio.SetFromDecimal(cost).IsOK() && ratio.Divide(nxRatio(divisor, 1)).IsOK();
    return fits ? ratio : nxRatio();
}

nxRatio nxExchangeRate::GetBidRatio() const { return _GetRatio(_bid, _unitCount); }

nxRatio nxExchangeRate::GetAskRatio() const { return _GetRatio(_ask, _unitCount); }

nxRatio nxExchangeRate::GetMidRatio() const
{
    nxDecimal sum = _bid;
    return sum.AddExact(_ask).IsOK() ? _GetRatio(sum, 2 * _unitCount) : nxRatio();
}

void nxExchangeRate::AppendAsString(std::string& out, char separator) const
{
    if (IsNull())
        return;
    nxStringHelper::AppendAsString(out, _unitCount);
    out.append(1, ' ').append(_base.GetLetters()).append(" = ");
    _bid.AppendAsExactString(out, separator);
    out.append(" .. ");
    _ask.AppendAsExactString(out, separator);
    out.append(1, ' ').append(_quote.GetLetters());
}

std::string nxExchangeRate::GetAsString(char separator) const
{
    std::string text;
    AppendAsString(text, separator);
    return text;
}

void nxExchangeRate::AppendAsLogString(std::string& out, char separator) const
{
    if (IsNull())
        out.append("NULL");
    else
        AppendAsString(out, separator);
}

std::string nxExchangeRate::GetAsLogString(char separator) const
{
    std::string text;
    AppendAsLogString(text, separator);
    return text;
}

std::ostream& operator<<(std::ostream& stream, const nxExchangeRate& rate)
{
    return stream << rate.GetAsLogString('.');
}
