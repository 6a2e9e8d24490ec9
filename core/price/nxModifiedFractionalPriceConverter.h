// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXMODIFIEDFRACTIONALPRICECONVERTER_H
#define CORE_PRICE_NXMODIFIEDFRACTIONALPRICECONVERTER_H

#include <cstddef>
#include <string>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/price/inline/nxFractionText.h"
#include "core/price/nxPriceConverter.h"

/// Prices in fractions that are divided again, 110'165 for 110 and 16 1/2 32nds.
/// @code
/// typedef nxModifiedFractionalPriceConverter Modified;
/// const Modified quarters(32, 4, 1, Modified::SubDigits::CutDecimals);        // "MODIFIED:32/4"
/// const Modified cash(32, 8, 1, Modified::SubDigits::Numerals, '-');          // "MODIFIED:32/8+-"
/// nxDecimal price;
/// if (quarters.SetFromString("117'317", price, '.').IsOK())                   // 117 31 3/4 32nds: 117.9921875
///     NX_LOG(NX_LOG_LEVEL_INFO) << cash.GetAsString(price, '.');              // 117-316: 117 31 6/8 32nds
/// @endcode
///
/// - Text: digits, the mark, the numerator in its full width, and the sub digits in theirs. The sub digits may be left out
///   as a whole, which means 0; nothing else may.
/// - Sub digits are either the decimals of the part, cut to their number (0 2 5 7 for quarters, 0 1 2 3 5 6 7 8 for eighths),
///   or numerals, the number of parts, where a single '+' is half of the parts: 99-03+ is 99 and 3 1/2 32nds. The half is
///   read as its number too (99-034), and written as '+'.
/// - Cut decimals of a coarser division mean the same in every finer one, so that a finer notation reads them too. Numerals
///   do not: 5, 6 and 7 differ.
/// - Off the grid the numerator of the main fraction has decimals: 110.51 in quarters of 32nds is 110'16.32. The text reads
///   back.
/// - Notation: "MODIFIED:32/4". "/2" after it means two sub digits, '+' for numerals, and the mark is at the end when it
///   is not an apostrophe: "MODIFIED:32/16/2", "MODIFIED:32/8+-".
/// - Null, errors, threads, ownership: see nxPriceConverter.
class NX_CORE_API nxModifiedFractionalPriceConverter final : public nxPriceConverter
{
public:
    /// How the part of the fraction is written.
    enum class SubDigits : unsigned char
    {
        CutDecimals,  ///< The decimals of the part, cut.
        Numerals      ///< The number of parts, or '+' for the half.
    };

    /// Not valid when two parts would have the same digits: 16ths need two cut decimals.
    /// @param denominator of the main fraction, 2 or more.
    /// @param subDenominator the number of parts, 2 or more. It and @p denominator are products of twos and fives, and their
    ///        product is 1024 at most.
    /// @param subDigitCount 1 or 2.
    /// @param mark as for nxFractionalPriceConverter.
    nxModifiedFractionalPriceConverter(unsigned denominator, unsigned subDenominator, unsigned char subDigitCount,
                                       SubDigits subDigits, char mark = '\'');

    using nxPriceConverter::GetAsString;
    [[nodiscard]] nxErrorEnum SetFromStringView(std::string_view text, nxDecimal& price, char separator) const override;
    std::size_t GetAsString(char* buffer, const nxDecimal& price, char separator) const override;
    nxDecimal GetTickIncrement() const override;

private:
    nxModifiedFractionalPriceConverter(const nxFractionText& text, std::string notation);

    nxFractionText _text;
};

#endif
