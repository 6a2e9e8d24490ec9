// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxFractionalPriceConverter.h"

#include <string>
#include <utility>

#include "core/price/internal/nxFractionTextQuick.h"

namespace
{
std::string NameFraction(unsigned denominator, char mark)
{
    std::string notation = "FRACTION:" + std::to_string(denominator);
    if (mark != '\'')
        notation += mark;
    return notation;
}
}  // namespace

nxFractionalPriceConverter::nxFractionalPriceConverter(unsigned denominator, char mark)
    : nxFractionalPriceConverter(nxFractionText(denominator, 1, 0, nxFractionText::Digits::None, mark),
                                 NameFraction(denominator, mark))
{
}

nxFractionalPriceConverter::nxFractionalPriceConverter(const nxFractionText& text, std::string notation)
    : nxPriceConverter(text.IsValid() ? std::move(notation) : std::string()), _text(text)
{
}

nxErrorEnum nxFractionalPriceConverter::SetFromStringView(std::string_view text, nxDecimal& price, char separator) const
{
    return _text.Read(text, price, separator);
}

std::size_t nxFractionalPriceConverter::GetAsString(char* buffer, const nxDecimal& price, char separator) const
{
    return _text.Write(buffer, price, separator);
}

nxDecimal nxFractionalPriceConverter::GetTickIncrement() const { return _text.GetStep(); }
