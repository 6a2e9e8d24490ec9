// SPDX-License-Identifier: Apache-2.0
// Answers lines of five fields between blanks: "read", "write", "units" or "quantity", lot size, minimum and maximum of lots
// or places ("100,1,0", "8"), "exact" or a way of abbreviation with its digits ("K4", "M4"), and a text or a number.

#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "core/price/nxAbbreviatedVolumeConverter.h"
#include "core/price/nxLotVolumeConverter.h"
#include "core/price/nxScaledVolumeConverter.h"

namespace
{
typedef nxVolumeConverter::Units Units;

std::unique_ptr<const nxVolumeConverter> MakeExact(const std::string& kind)
{
    if (kind == "plain")
        return std::make_unique<const nxVolumeConverter>();
    if (kind.find(',') == std::string::npos)
        return std::make_unique<const nxScaledVolumeConverter>(static_cast<unsigned char>(std::stoi(kind)));
    std::istringstream fields(kind);
    unsigned long long size, minimum, maximum;
    char comma;
    if (!(fields >> size >> comma >> minimum >> comma >> maximum))
        std::abort();
    return std::make_unique<const nxLotVolumeConverter>(size, minimum, maximum);
}

std::string Answer(const nxVolumeConverter& converter, const std::string& verb, const std::string& text)
{
    Units units;
    nxDecimal quantity;
    nxErrorEnum error;
    if (verb == "write" || verb == "quantity")
        error = units.SetFromStringExact(text);
    if (verb == "units")
        error = quantity.SetFromStringExact(text, '.');
    if (!error.IsOK())
        return "not a number of the test";
    if (verb == "write")
        return converter.GetAsString(units, '.');
    if (verb == "quantity")
        error = converter.GetAsQuantity(units, quantity);
    else
        error = verb == "read" ? converter.SetFromString(text, units, '.') : converter.GetAsUnits(quantity, units);
    if (!error.IsOK())
        return error.GetShortDescription();
    return verb == "quantity" ? quantity.GetAsExactString('.') : units.GetAsString();
}
}  // namespace

int main()
{
    using Short = nxAbbreviatedVolumeConverter;
    std::ios::sync_with_stdio(false);
    std::string verb, kind, form, text;
    while (std::cin >> verb >> kind >> form >> text)
    {
        const std::unique_ptr<const nxVolumeConverter> exact = MakeExact(kind);
        if (form == "exact")
        {
            std::cout << Answer(*exact, verb, text) << '\n';
            continue;
        }
        const auto digits = static_cast<unsigned char>(std::stoi(form.substr(1)));
        const Short converter(*exact, form[0] == 'K' ? Short::Suffixes::KMBT : Short::Suffixes::MMM, digits);
        std::cout << Answer(converter, verb, text) << '\n';
    }
}
