// SPDX-License-Identifier: Apache-2.0
// Price converters: what is read and written again reads as the same price. The input is a notation, a line end, the mantissa
// of a price and its places as nine bytes, and a text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/price/nxPriceConverterHelper.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

bool IsKept(const nxDecimal& price, const nxDecimal& again)
{
    return price.GetValue() == again.GetValue() && price.GetDecimalPlaces() == again.GetDecimalPlaces();
}

// A text has to be read back, and its price is the same to the last place.
void CheckText(const nxPriceConverter& converter, std::string_view text)
{
    nxDecimal price(77, 1);
    if (!converter.SetFromStringView(text, price, '.').IsOK())
    {
        Require(IsKept(price, nxDecimal(77, 1)));
        return;
    }
    const std::string written = converter.GetAsString(price, '.');
    nxDecimal again;
    Require(converter.SetFromString(written, again, '.').IsOK());
    Require(IsKept(price, again));
    Require(written == converter.GetAsString(again, '.'));
}

// A price that fits reads back as the same number.
void CheckPrice(const nxPriceConverter& converter, const nxDecimal& price)
{
    char buffer[nxPriceConverter::MaxTextSize];
    const std::size_t size = converter.GetAsString(buffer, price, '.');
    Require(size < sizeof buffer && buffer[size] == '\0');
    nxDecimal shortest = price;
    shortest.Normalise(0);
    if (shortest.GetDecimalPlaces() > nxDecimal::MaxExactPlaces)
        return;
    nxDecimal again;
    const nxErrorEnum error = converter.SetFromStringView({buffer, size}, again, '.');
    Require(error.IsOK() ? again.EqualsExactly(price) : error == nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = input.find('\n');
    if (end == std::string_view::npos || input.size() - end < 10)
        return 0;
    std::unique_ptr<const nxPriceConverter> converter;
    if (!nxPriceConverterHelper::Create(std::string(input.substr(0, end)), converter).IsOK())
        return 0;
    long long mantissa = 0;
    std::memcpy(&mantissa, data + end + 1, sizeof mantissa);
    CheckPrice(*converter, nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, data[end + 9]));
    // Memory of its own, just large enough: a byte read beside the text is found.
    const std::string_view text = input.substr(end + 10);
    const std::vector<char> bytes(text.begin(), text.end());
    CheckText(*converter, {bytes.data(), bytes.size()});
    return 0;
}
