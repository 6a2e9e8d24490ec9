// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxMoney.h"

#include <algorithm>
#include <ostream>

#include "core/numeric/inline/nxWide.h"
#include "core/text/nxStringHelper.h"

namespace
{
// What a share lost when it was rounded toward zero.
struct LostPart
{
    nxUnsignedWide lost;
    std::size_t index;
};

nxUnsignedWide GetSum(std::span<const unsigned long long> weights)
{
    nxUnsignedWide sum = 0;
    for (const unsigned long long weight : weights)
        sum += weight;
    return sum;
}
}  // namespace

nxMoney::nxMoney(const nxDecimal& amount, std::string_view currency) : _amount(amount)
{
    if (!amount.IsValid())
        return;
    if (_IsCurrency(currency))
        currency.copy(_currency, _currencySize);
    else
        _amount.SetNull();
}

nxMoney::nxMoney(const nxDecimal& amount, const char* currency)
    : nxMoney(amount, currency != nullptr ? std::string_view(currency) : std::string_view())
{
}

bool nxMoney::_IsCurrency(std::string_view text)
{
    return text.size() == _currencySize &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

nxErrorEnum nxMoney::_SetFromString(std::string_view text, char separator, _AmountReader readAmount)
{
    // From the right: the separator may itself be a blank.
    const std::size_t blank = text.rfind(' ');
    if (blank == std::string_view::npos || !_IsCurrency(text.substr(blank + 1)))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    nxDecimal amount;
    const nxErrorEnum error = (amount.*readAmount)(text.substr(0, blank), separator);
    if (error.IsOK())
        *this = nxMoney(amount, text.substr(blank + 1));
    return error;
}

nxErrorEnum nxMoney::SetFromString(const std::string& text, char separator)
{
    return _SetFromString(text, separator, &nxDecimal::SetFromStringView);
}

nxErrorEnum nxMoney::SetFromString(const char* text, char separator)
{
    return SetFromString(nxStringHelper::GetAsString(text), separator);
}

nxErrorEnum nxMoney::SetFromStringExact(std::string_view text, char separator)
{
    return _SetFromString(text, separator, &nxDecimal::SetFromStringExact);
}

nxErrorEnum nxMoney::SetFromStringExact(const char* text, char separator)
{
    return SetFromStringExact(text != nullptr ? std::string_view(text) : std::string_view(), separator);
}

int nxMoney::CompareExact(const nxMoney& other) const
{
    const int order = IsValid() && other.IsValid() ? GetCurrency().compare(other.GetCurrency()) : 0;
    return order == 0 ? _amount.CompareExact(other._amount) : (order < 0 ? -1 : 1);
}

nxErrorEnum nxMoney::_GetMismatch(const nxMoney& other) const
{
    return nxErrorEnum(IsValid() && other.IsValid() ? NX_ERR_INVALID_PARAMETER : NX_ERR_OBJECT_IS_NULL);
}

nxErrorEnum nxMoney::Multiply(nxRatio factor, unsigned char places, const nxRoundingMethodEnum& method)
{
    return factor.Apply(_amount, places, method, _amount);
}

nxErrorEnum nxMoney::RoundToMinorUnit(const nxRoundingMethodEnum& method)
{
    unsigned char places = 0;
    const nxErrorEnum error = nxCurrency(GetCurrency()).GetMinorUnits(places);
    return error.IsOK() ? _amount.RoundExact(nxDecimal::ConstructFromValueAndDecimalPlaces(1, places), method) : error;
}

nxErrorEnum nxMoney::Allocate(std::span<const unsigned long long> weights, std::vector<nxMoney>& parts) const
{
    if (!IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    const nxUnsignedWide sum = GetSum(weights);
    if (sum == 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const std::uint64_t units = nxDecimalQuick::GetMagnitude(_amount.GetValue());
    std::vector<std::uint64_t> shares(weights.size());
    std::vector<LostPart> lost(weights.size());
    std::uint64_t left = units;
    for (std::size_t i = 0; i < weights.size(); ++i)
    {
        const nxUnsignedWide product = nxUnsignedWide{units} * weights[i];
        shares[i] = static_cast<std::uint64_t>(product / sum);
        lost[i] = {product - shares[i] * sum, i};
        left -= shares[i];
    }
    // Fewer units are left than shares lost something.
    std::nth_element(lost.begin(), lost.begin() + static_cast<std::ptrdiff_t>(left), lost.end(),
                     [](const LostPart& a, const LostPart& b)
                     { return a.lost != b.lost ? a.lost > b.lost : a.index < b.index; });
    for (std::uint64_t i = 0; i < left; ++i)
        ++shares[lost[i].index];
    std::vector<nxMoney> result(weights.size(), *this);
    for (std::size_t i = 0; i < weights.size(); ++i)
        result[i]._amount = nxDecimal::ConstructFromValueAndDecimalPlaces(
            nxDecimalQuick::Wrap(_amount.IsNegative() ? 0 - shares[i] : shares[i]), _amount.GetDecimalPlaces());
    parts.swap(result);
    return nxErrorEnum();
}

nxErrorEnum nxMoney::Compare(const nxMoney& other, int& order) const
{
    if (!_SharesCurrency(other) || !IsValid())
        return _GetMismatch(other);
    order = _amount.CompareExact(other._amount);
    return nxErrorEnum();
}

void nxMoney::AppendAsString(std::string& out, char separator) const
{
    if (IsValid())
        AppendAsLogString(out, separator);
}

std::string nxMoney::GetAsString(char separator) const
{
    std::string text;
    AppendAsString(text, separator);
    return text;
}

void nxMoney::AppendAsExactString(std::string& out, char separator) const
{
    _amount.AppendAsExactString(out, separator);
    if (IsValid())
        out.append(1, ' ').append(GetCurrency());
}

std::string nxMoney::GetAsExactString(char separator) const
{
    std::string text;
    AppendAsExactString(text, separator);
    return text;
}

void nxMoney::AppendAsLogString(std::string& out, char separator) const
{
    _amount.AppendAsLogString(out, separator);
    if (IsValid())
        out.append(1, ' ').append(GetCurrency());
}

std::string nxMoney::GetAsLogString(char separator) const
{
    std::string text;
    AppendAsLogString(text, separator);
    return text;
}

std::ostream& operator<<(std::ostream& stream, const nxMoney& money) { return stream << money.GetAsLogString('.'); }
