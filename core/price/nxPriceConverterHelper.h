// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXPRICECONVERTERHELPER_H
#define CORE_PRICE_NXPRICECONVERTERHELPER_H

#include <memory>
#include <string>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/price/nxPriceConverter.h"

/// Makes price converters from the texts of their notations, which configurations hold.
///
/// | notation | prices |
/// |---|---|
/// | `DECIMAL:2` | two decimals, and more where a price has more |
/// | `DECIMAL:2*-2` | the same of the price times 10^-2 |
/// | `DECIMAL:3/0.0025` | multiples of 0.0025, cut to three decimals |
/// | `FRACTION:8` | eighths, 498'2 |
/// | `FRACTION:32-` | 32nds with the mark '-', 115-09 |
/// | `MODIFIED:32/4` | quarters of 32nds, with one digit cut from their decimals, 110'165 |
/// | `MODIFIED:32/16/2` | 16ths of 32nds, with two digits |
/// | `MODIFIED:32/8+-` | eighths of 32nds as numerals with '+' for the half, 99-03+ |
///
/// A notation has one spelling: no zeros in front of its numbers, no default written out. The classes nxDecimalPriceConverter,
/// nxFractionalPriceConverter and nxModifiedFractionalPriceConverter state which numbers there are.
/// @code
/// std::string notation;
/// if (!nxPriceConverterHelper::GetNotationOfFractions(32, 4, 3, notation).IsOK())    // of an instrument's definition
///     return;                                                                       // ask the operator for it
/// const nxPriceConverter* converter = nxPriceConverterHelper::Get(notation);         // MODIFIED:32/4
/// @endcode
/// - Threads: any number. No operation holds a lock.
class NX_CORE_API nxPriceConverterHelper
{
public:
    nxPriceConverterHelper() = delete;

    /// Gives the process's one converter of the notation, which is made at the first request. For notations that come from
    /// a configuration: each of them stays in memory.
    /// @return a converter that lives as long as the process; null when there is no such notation.
    static const nxPriceConverter* Get(const std::string& notation);

    /// Makes a converter that the caller owns.
    /// @return NX_ERR_INVALID_PARAMETER for a text that is no notation, NX_ERR_VALUE_OUT_OF_RANGE when its form is right,
    ///         but its numbers make no valid converter; @p converter is then untouched.
    [[nodiscard]] static nxErrorEnum Create(const std::string& notation,
                                            std::unique_ptr<const nxPriceConverter>& converter);

    /// Gives the notation of an instrument whose definition states its fractions as three numbers: (8, 0, 1) is FRACTION:8,
    /// (32, 2, 3) is MODIFIED:32/2.
    ///
    /// Answers only for fractions whose texts are certain: 2nds to 256ths by powers of two, halves, quarters and eighths of
    /// 32nds with one cut digit, quarters of 32nds with two, and halves of 64ths.
    /// @param mainFraction the denominator. @param subFraction the number of parts of a fraction, 0 for none.
    /// @param digits after the mark, those of the part included.
    /// @return NX_ERR_NOT_FOUND for all others; @p notation is then untouched.
    [[nodiscard]] static nxErrorEnum GetNotationOfFractions(unsigned mainFraction, unsigned subFraction,
                                                            unsigned digits, std::string& notation);

    /// Gives the notation of the code of one character by which definitions of instruments state how prices are shown.
    ///
    /// | codes | notations |
    /// |---|---|
    /// | 0 to 7 | DECIMAL:0 to DECIMAL:7 |
    /// | H Q E S T X O F | FRACTION:2, 4, 8, 16, 32, 64, 128, 256 |
    /// | U V Y Z | MODIFIED:32/2, MODIFIED:32/4, MODIFIED:64/2, MODIFIED:32/4/2 |
    /// | R | DECIMAL:4/0.00025 |
    ///
    /// @return NX_ERR_NOT_FOUND for every other text, C, K, L, W and T4 included: these codes are in use, but what their
    ///         texts mean is not certain here, and a guess would be a wrong price. @p notation is then untouched.
    [[nodiscard]] static nxErrorEnum GetNotationOfIndicator(std::string_view fractionalIndicator,
                                                            std::string& notation);
};

#endif
