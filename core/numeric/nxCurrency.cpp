// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxCurrency.h"

#include <ostream>

nxErrorEnum nxCurrency::SetFromString(const std::string& text)
{
    const nxCurrency currency{std::string_view(text)};
    if (currency.IsNull())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = currency;
    return nxErrorEnum();
}

nxErrorEnum nxCurrency::SetFromString(const char* text)
{
    return SetFromString(text != nullptr ? std::string(text) : std::string());
}

void nxCurrency::AppendAsLogString(std::string& out) const { out.append(IsNull() ? "NULL" : GetLetters()); }

std::string nxCurrency::GetAsLogString() const
{
    std::string text;
    AppendAsLogString(text);
    return text;
}

std::ostream& operator<<(std::ostream& stream, nxCurrency currency) { return stream << currency.GetAsLogString(); }
