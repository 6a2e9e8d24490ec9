// SPDX-License-Identifier: Apache-2.0
// Values and errors: exact prices, values that may be missing, and operations that say how they ended.

#include <iostream>
#include <string>

#include "core/nxCore.h"

namespace
{
// An operation that can fail returns an nxErrorEnum and writes its result through a reference, which it leaves alone on
// failure. The compiler warns of a call whose error is ignored.
nxErrorEnum ReadOrder(const std::string& priceText, const std::string& volumeText, nxDecimal& price,
                      nxValueWrapper<unsigned int>& volume)
{
    nxDecimal newPrice;
    if (const nxErrorEnum error = newPrice.SetFromStringExact(priceText, '.'); !error.IsOK())
        return error;
    nxValueWrapper<unsigned int> newVolume;  // null: a market maker's "any volume"
    if (!volumeText.empty())
        if (const nxErrorEnum error = newVolume.SetFromStringExact(volumeText); !error.IsOK())
            return error;
    if (!newPrice.IsPositive())
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    price = newPrice;
    volume = newVolume;
    return nxErrorEnum();  // success
}

void Decimals()
{
    // A decimal keeps the places it is written with, and sums of one scale are exact.
    nxDecimal total("0.00", '.');
    for (int i = 0; i < 10; ++i)
        total += nxDecimal("0.10", '.');
    std::cout << "ten times 0.10 is " << total << '\n';

    // Rounding to a price step, on both sides of zero.
    for (const char* const text : {"99.87", "-36.98"})
    {
        nxDecimal price(text, '.');
        price.Round(nxDecimal("0.05", '.'), NX_ROUNDING_METHOD_DOWN);
        std::cout << text << " down to a step of 0.05 is " << price << '\n';
    }

    // A value may be missing. Null is not zero, and arithmetic leaves it null.
    nxDecimal settlement = nxDecimal::GetNullDecimal();
    settlement += nxDecimal(1, 0);
    std::cout << "no settlement price yet: " << settlement.GetAsLogString('.') << '\n';
}

void Orders()
{
    const std::string orders[][2] = {{"12.50", "300"}, {"12.50", ""}, {"12,50", "300"}, {"-1", "300"}};
    for (const auto& [priceText, volumeText] : orders)
    {
        nxDecimal price;
        nxValueWrapper<unsigned int> volume;
        const nxErrorEnum error = ReadOrder(priceText, volumeText, price, volume);
        std::cout << "order '" << priceText << "' '" << volumeText << "': ";
        if (error.IsOK())
            std::cout << volume.GetAsLogString() << " at " << price << '\n';
        else  // the identifier for programs and logs, the wording for people
            std::cout << error << ", " << error.GetLongDescription() << '\n';
    }
}

// An enumeration of one's own is a list of values; the class takes constants, texts and parsing from it.
#define NX_VALUES_SideEnum(VALUE) VALUE(BUY, 3000001, "MY_SIDE_BUY", "Buy") VALUE(SELL, 3000002, "MY_SIDE_SELL", "Sell")

class SideEnum final : public nxTypedEnum<SideEnum, 3000000, 3000003>
{
    NX_ENUM(SideEnum);
};
NX_ENUM_SOURCE(SideEnum)

void Enumerations()
{
    nxRoundingMethodEnum method;
    if (nxStringHelper::SetFromStringExact("NX_ROUNDING_METHOD_UP", method).IsOK())
        std::cout << method << " means " << method.GetLongDescription() << '\n';
    method = NX_LOG_LEVEL_INFO;  // belongs to another enumeration: not accepted
    std::cout << "a value of another enumeration becomes " << method << '\n';

    SideEnum side = SideEnum::BUY, request;
    if (nxStringHelper::SetFromStringExact("MY_SIDE_SELL", request).IsOK())
        side.UpdateFrom(request);  // a request that is "no change" would keep the value
    std::cout << side << " means " << side.GetLongDescription() << '\n';
}
}  // namespace

int main()
{
    Decimals();
    Orders();
    Enumerations();
}
