// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxExchangeRateList.h"

#include <algorithm>

namespace
{
// The same number for both orders of a pair.
std::uint64_t GetPair(nxCurrency a, nxCurrency b)
{
    const auto number = [](nxCurrency currency)
    {
        std::uint64_t letters = 0;
        for (const char letter : currency.GetLetters())
            letters = letters << 8 | static_cast<unsigned char>(letter);
        return letters;
    };
    const std::uint64_t first = number(a), second = number(b);
    return std::min(first, second) << 32 | std::max(first, second);
}
}  // namespace

std::size_t nxExchangeRateList::_GetIndex(std::uint64_t pair) const
{
    return static_cast<std::size_t>(std::lower_bound(_pairs.begin(), _pairs.end(), pair) - _pairs.begin());
}

nxErrorEnum nxExchangeRateList::Set(const nxExchangeRate& rate)
{
    if (rate.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const std::uint64_t pair = GetPair(rate.GetBase(), rate.GetQuote());
    const std::size_t index = _GetIndex(pair);
    if (index < _pairs.size() && _pairs[index] == pair)
    {
        _rates[index] = rate;
        return nxErrorEnum();
    }
    const auto offset = static_cast<std::ptrdiff_t>(index);
    // Room first, so that a lack of memory changes neither.
    if (_pairs.size() == _pairs.capacity())
        _pairs.reserve(2 * _pairs.size() + 1);
    _rates.insert(_rates.begin() + offset, rate);
    _pairs.insert(_pairs.begin() + offset, pair);
    return nxErrorEnum();
}

nxErrorEnum nxExchangeRateList::Remove(nxCurrency base, nxCurrency quote)
{
    if (base.IsNull() || quote.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const std::uint64_t pair = GetPair(base, quote);
    const std::size_t index = _GetIndex(pair);
    if (index == _pairs.size() || _pairs[index] != pair)
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    _pairs.erase(_pairs.begin() + static_cast<std::ptrdiff_t>(index));
    _rates.erase(_rates.begin() + static_cast<std::ptrdiff_t>(index));
    return nxErrorEnum();
}

const nxExchangeRate* nxExchangeRateList::Find(nxCurrency a, nxCurrency b) const
{
    const std::uint64_t pair = GetPair(a, b);
    const std::size_t index = _GetIndex(pair);
    return index < _pairs.size() && _pairs[index] == pair ? &_rates[index] : nullptr;
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
