// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxMoney.h"

#include <algorithm>
#include <ostream>

#include "core/text/nxStringHelper.h"

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
