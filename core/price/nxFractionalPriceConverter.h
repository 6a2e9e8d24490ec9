// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXFRACTIONALPRICECONVERTER_H
#define CORE_PRICE_NXFRACTIONALPRICECONVERTER_H

#include <cstddef>
#include <string>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/price/inline/nxFractionText.h"
#include "core/price/nxPriceConverter.h"

/// Prices in plain fractions, 115'09 for 115 9/32.
/// @code
/// const nxFractionalPriceConverter eighths(8);              // "FRACTION:8"
/// nxDecimal price;
/// if (eighths.SetFromString("498'2", price, '.').IsOK())    // 498.250
///     NX_LOG(NX_LOG_LEVEL_INFO) << eighths.GetAsString(price, '.');
/// @endcode
///
/// - Text: digits, the mark, and the numerator in its full width: one digit for eighths, two for 16ths to 64ths, three for
///   128ths. The width is part of the form: 110'5 in 32nds is an error, because it could mean 5 or 50.
/// - Off the grid the numerator has decimals: 110.51 in 32nds is 110'16.32. The text reads back.
/// - Notation: "FRACTION:32", with the mark at the end when it is not an apostrophe: "FRACTION:32-".
/// - Null, errors, threads, ownership: see nxPriceConverter.
class NX_CORE_API nxFractionalPriceConverter final : public nxPriceConverter
{
public:
    /// @param denominator 2 to 1024, a product of twos and fives.
    /// @param mark between the whole number and the numerator: a printable ASCII character that is no letter, digit, '+',
    ///        '*' or '/'. Only this mark is read.
    explicit nxFractionalPriceConverter(unsigned denominator, char mark = '\'');

    using nxPriceConverter::GetAsString;
    [[nodiscard]] nxErrorEnum SetFromStringView(std::string_view text, nxDecimal& price, char separator) const override;
    std::size_t GetAsString(char* buffer, const nxDecimal& price, char separator) const override;
    nxDecimal GetTickIncrement() const override;

private:
    nxFractionalPriceConverter(const nxFractionText& text, std::string notation);

    nxFractionText _text;
};

#endif
