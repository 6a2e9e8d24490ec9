// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxMoney.h"
#include "core/text/nxStringHelper.h"

// The operations of nxStringHelper on decimals and money, which are above its header and only declared there.

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxDecimal& value, char separator)
{
    return value.SetFromString(text, separator);
}

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxMoney& value, char separator)
{
    return value.SetFromString(text, separator);
}

void nxStringHelper::AppendAsString(std::string& out, const nxDecimal& value) { value.AppendAsString(out, '.'); }

std::string nxStringHelper::GetAsString(const nxDecimal& value) { return value.GetAsString('.'); }
