// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxExchangeRateList.h"

#include <algorithm>
#include <utility>

#include "core/numeric/internal/nxListedRows.h"
#include "core/text/nxStringHelper.h"

namespace
{
// The same number for both orders of a pair.
std::uint64_t GetPair(nxCurrency a, nxCurrency b)
{
    const std::uint64_t first = a.GetKey(), second = b.GetKey();
    return std::min(first, second) << 32 | std::max(first, second);
}

nxErrorEnum ReadRate(nxListedRows& row, const nxTimeStamp& at, nxExchangeRate& rate)
{
    nxDecimal bid, ask;
    nxErrorEnum error = bid.SetFromStringExact(row.GetField(2), row.GetDecimalSeparator());
    if (error.IsOK())
        error = ask.SetFromStringExact(row.GetField(3), row.GetDecimalSeparator());
    unsigned units = 1;
    const std::string_view unitText = row.GetField(4);
    if (error.IsOK() && !unitText.empty())
        error = nxStringHelper::SetFromStringExact(unitText, units);
    const nxCurrency base(row.GetField(0));
    const nxCurrency quote(row.GetField(1));
    if (base.IsNull() || quote.IsNull())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return error.IsOK() ? rate.Set(base, quote, bid, ask, at, units) : error;
}
}  // namespace

nxErrorEnum nxExchangeRateList::Set(const nxExchangeRate& rate)
{
    if (rate.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const std::uint64_t pair = GetPair(rate.GetBase(), rate.GetQuote());
    if (const std::size_t place = _pairs.Find(pair); place != nxKeyIndex::None)
    {
        _rates[place] = rate;
        return nxErrorEnum();
    }
    // Room first, so that a lack of memory changes neither.
    if (_rates.size() == _rates.capacity())
        _rates.reserve(2 * _rates.size() + 1);
    _pairs.Append(pair, _rates.size());
    _rates.push_back(rate);
    return nxErrorEnum();
}

nxErrorEnum nxExchangeRateList::Remove(nxCurrency base, nxCurrency quote)
{
    if (base.IsNull() || quote.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const std::size_t place = _pairs.Find(GetPair(base, quote));
    if (place == nxKeyIndex::None)
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    nxExchangeRateList rest;
    for (std::size_t i = 0; i < _rates.size(); ++i)
        if (i != place)
            static_cast<void>(rest.Set(_rates[i]));  // none of them is null
    *this = std::move(rest);
    return nxErrorEnum();
}

const nxExchangeRate* nxExchangeRateList::Find(nxCurrency a, nxCurrency b) const
{
    const std::size_t place = _pairs.Find(GetPair(a, b));
    return place != nxKeyIndex::None ? &_rates[place] : nullptr;
}

nxErrorEnum nxExchangeRateList::Find(nxCurrency a, nxCurrency b, nxExchangeRate& rate, bool& isInverse) const
{
    if (a.IsNull() || b.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const nxExchangeRate* const found = Find(a, b);
    if (found == nullptr)
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    isInverse = found->GetBase() == b;
    rate = *found;
    return nxErrorEnum();
}

nxErrorEnum nxExchangeRateList::SetFromCSV(nxCSVParser& rows, const nxTimeStamp& at, unsigned long long& failedLine)
{
    constexpr std::size_t fewestFields = 4, mostFields = 5;
    const auto readRow = [&at](nxListedRows& listed, nxExchangeRateList& list)
    {
        nxExchangeRate rate;
        const nxErrorEnum error = ReadRate(listed, at, rate);
        if (!error.IsOK())
            return error;
        const bool isNew = list.Find(rate.GetBase(), rate.GetQuote()) == nullptr;
        return isNew ? list.Set(rate) : nxErrorEnum(NX_ERR_DUPLICATE_MATCH);
    };
    return nxListedRows::ReadAll(rows, fewestFields, mostFields, readRow, *this, failedLine);
}
