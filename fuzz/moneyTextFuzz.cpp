// SPDX-License-Identifier: Apache-2.0
// Currencies, ratios and money: what is accepted comes back the same, what is refused changes nothing, and a split loses
// nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/numeric/nxMoney.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckCurrency(const std::string& text)
{
    nxCurrency currency("EUR");
    if (!currency.SetFromString(text).IsOK())
        return Require(currency == nxCurrency("EUR") && nxCurrency(std::string_view(text)).IsNull());
    Require(currency.GetAsString() == text && currency.IsKnown() == !currency.GetName().empty());
}

nxRatio CheckRatio(const std::string& text)
{
    nxRatio ratio(7, 5);
    if (!ratio.SetFromString(text).IsOK())
    {
        Require(ratio == nxRatio(7, 5));
        return ratio;
    }
    nxRatio back, product = ratio;
    Require(back.SetFromString(ratio.GetAsString()).IsOK() && back == ratio);
    Require(ratio.GetNumerator() == 0 || (product.Multiply(ratio.GetInverse()).IsOK() && product == nxRatio(1, 1)));
    Require(product.Subtract(product).IsOK() && product == nxRatio(0, 1));
    return ratio;
}

void CheckMoney(const std::string& text, const nxRatio& ratio)
{
    nxMoney money;
    if (!money.SetFromStringExact(text, '.').IsOK())
        return Require(money.IsNull());
    nxMoney back, sum(nxDecimal(0, 0), money.GetCurrency());
    Require(back.SetFromStringExact(money.GetAsExactString('.'), '.').IsOK() && back.EqualsExactly(money));
    const auto weight = static_cast<unsigned long long>(ratio.GetNumerator());
    const unsigned long long weights[] = {weight, text.size(), static_cast<unsigned long long>(ratio.GetDenominator()),
                                          3};
    std::vector<nxMoney> parts;
    Require(money.Allocate(weights, parts).IsOK());
    for (const nxMoney& part : parts)
        Require(sum.Add(part).IsOK());
    Require(sum.EqualsExactly(money));
    static_cast<void>(back.Multiply(ratio, 2, nxRoundingMethodEnum(NX_ROUNDING_METHOD_NEAREST)));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    // A ratio, a line end, money; either may be missing.
    const std::size_t end = text.find('\n');
    CheckCurrency(text);
    CheckMoney(end == std::string::npos ? text : text.substr(end + 1), CheckRatio(text.substr(0, end)));
    return 0;
}
