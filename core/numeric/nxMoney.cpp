#include "core/numeric/nxMoney.h"

#include <algorithm>
#include <ostream>

#include "core/text/nxStringHelper.h"

nxMoney::nxMoney(const nxDecimal& amount, std::string_view currency) : _amount(amount)
{
    if (!amount.IsValid())
        return;
    const bool wellFormed = currency.size() == _currencySize &&
                            std::all_of(currency.begin(), currency.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
    if (wellFormed)
        currency.copy(_currency, _currencySize);
    else
        _amount.SetNull();
}

nxMoney::nxMoney(const nxDecimal& amount, const char* currency)
    : nxMoney(amount, currency != nullptr ? std::string_view(currency) : std::string_view())
{
}

nxErrorEnum nxMoney::SetFromString(const std::string& text, char separator)
{
    // From the right: the separator may itself be a blank.
    const std::string_view view(text);
    const std::size_t blank = view.rfind(' ');
    nxDecimal amount;
    if (blank == std::string_view::npos || !amount.SetFromStringView(view.substr(0, blank), separator).IsOK())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const nxMoney money(amount, view.substr(blank + 1));
    if (money.IsNull())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = money;
    return nxErrorEnum();
}

nxErrorEnum nxMoney::SetFromString(const char* text, char separator)
{
    return SetFromString(nxStringHelper::GetAsString(text), separator);
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
