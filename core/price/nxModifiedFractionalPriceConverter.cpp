// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxModifiedFractionalPriceConverter.h"

#include <string>
#include <utility>

#include "core/price/internal/nxFractionTextQuick.h"

namespace
{
typedef nxModifiedFractionalPriceConverter::SubDigits SubDigits;

nxFractionText::Digits GetDigitsOf(SubDigits subDigits)
{
    switch (subDigits)
    {
        case SubDigits::CutDecimals:
            return nxFractionText::Digits::Cut;
        case SubDigits::Numerals:
            return nxFractionText::Digits::Numerals;
    }
    return nxFractionText::Digits::None;  // which does not go with parts
}

std::string NameModifiedFraction(unsigned denominator, unsigned subDenominator, unsigned char subDigitCount,
                                 SubDigits subDigits, char mark)
{
    std::string notation = "MODIFIED:" + std::to_string(denominator);
    (notation += '/').append(std::to_string(subDenominator));
    if (subDigitCount != 1)
        (notation += '/').append(std::to_string(subDigitCount));
    if (subDigits == SubDigits::Numerals)
        notation += '+';
    if (mark != '\'')
        notation += mark;
    return notation;
}
}  // namespace

nxModifiedFractionalPriceConverter::nxModifiedFractionalPriceConverter(unsigned denominator, unsigned subDenominator,
                                                                       unsigned char subDigitCount, SubDigits subDigits,
                                                                       char mark)
    : nxModifiedFractionalPriceConverter(
          nxFractionText(denominator, subDenominator, subDigitCount, GetDigitsOf(subDigits), mark),
          NameModifiedFraction(denominator, subDenominator, subDigitCount, subDigits, mark))
{
}

nxModifiedFractionalPriceConverter::nxModifiedFractionalPriceConverter(const nxFractionText& text, std::string notation)
    : nxPriceConverter(text.IsValid() ? std::move(notation) : std::string()), _text(text)
{
}

nxErrorEnum nxModifiedFractionalPriceConverter::SetFromStringView(std::string_view text, nxDecimal& price,
                                                                  char separator) const
{
    return _text.Read(text, price, separator);
}

std::size_t nxModifiedFractionalPriceConverter::GetAsString(char* buffer, const nxDecimal& price, char separator) const
{
    return _text.Write(buffer, price, separator);
}

nxDecimal nxModifiedFractionalPriceConverter::GetTickIncrement() const { return _text.GetStep(); }
