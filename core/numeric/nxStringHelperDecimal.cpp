// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxCurrency.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxMoney.h"
#include "core/numeric/nxRatio.h"
#include "core/text/nxStringHelper.h"

// The operations of nxStringHelper on decimals, money, currencies and ratios, which are above its header and only declared there.

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

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxCurrency& value)
{
    return value.SetFromString(text);
}

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxRatio& value) { return value.SetFromString(text); }

void nxStringHelper::AppendAsString(std::string& out, const nxCurrency& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxCurrency& value) { return value.GetAsString(); }

void nxStringHelper::AppendAsString(std::string& out, const nxRatio& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxRatio& value) { return value.GetAsString(); }
