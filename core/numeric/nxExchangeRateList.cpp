// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxExchangeRateList.h"

#include <algorithm>
#include <utility>

namespace
{
// The same number for both orders of a pair.
std::uint64_t GetPair(nxCurrency a, nxCurrency b)
{
    const std::uint64_t first = a.GetKey(), second = b.GetKey();
    return std::min(first, second) << 32 | std::max(first, second);
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
    _pairs.Append(pair);
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
