// SPDX-License-Identifier: Apache-2.0
// Answers lines of three fields between tabs: "tick", "read" or "write", a notation, and a text or a price.

#include <iostream>
#include <memory>
#include <string>

#include "core/price/nxPriceConverter.h"
#include "core/price/nxPriceConverterHelper.h"

namespace
{
std::string Answer(const std::string& verb, const std::string& notation, const std::string& text)
{
    std::unique_ptr<const nxPriceConverter> made;
    const nxErrorEnum error = nxPriceConverterHelper::Create(notation, made);
    if (!error.IsOK())
        return error.GetShortDescription();
    if (verb == "tick")
        return made->GetTickIncrement().GetAsExactString('.');
    nxDecimal price;
    const nxErrorEnum result =
        verb == "read" ? made->SetFromString(text, price, '.') : price.SetFromStringExact(text, '.');
    if (!result.IsOK())
        return result.GetShortDescription();
    if (verb == "read")
        return price.GetAsExactString('.');
    return made->GetAsString(price, '.').append(made->IsOnGrid(price) ? " on" : " off");
}
}  // namespace

int main()
{
    std::ios::sync_with_stdio(false);
    std::string verb, notation, text;
    while (std::getline(std::cin, verb, '\t') && std::getline(std::cin, notation, '\t') && std::getline(std::cin, text))
        std::cout << Answer(verb, notation, text) << '\n';
}
