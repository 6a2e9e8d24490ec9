// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxPriceConverter.h"

#include "core/price/internal/nxValidPrices.h"

nxPriceConverter::~nxPriceConverter() = default;

std::string nxPriceConverter::GetAsString(const nxDecimal& price, char separator) const
{
    char buffer[MaxTextSize];
    return std::string(buffer, GetAsString(buffer, price, separator));
}

void nxPriceConverter::AppendAsString(std::string& text, const nxDecimal& price, char separator) const
{
    char buffer[MaxTextSize];
    text.append(buffer, GetAsString(buffer, price, separator));
}

std::string nxPriceConverter::GetAsLogString(const nxDecimal& price, char separator) const
{
    return price.IsValid() ? GetAsString(price, separator) : price.GetAsLogString(separator);
}

void nxPriceConverter::AppendAsLogString(std::string& text, const nxDecimal& price, char separator) const
{
    if (price.IsValid())
        AppendAsString(text, price, separator);
    else
        price.AppendAsLogString(text, separator);
}

bool nxPriceConverter::IsOnGrid(const nxDecimal& price) const
{
    const nxDecimal tick = GetTickIncrement();
    if (!price.IsValid() || !tick.IsValid())
        return false;
    nxDecimal shortest = price;
    shortest.Normalise(0);
    return shortest.GetDecimalPlaces() <= nxDecimal::MaxExactPlaces && nxValidPrices::IsMultiple(shortest, tick);
}
