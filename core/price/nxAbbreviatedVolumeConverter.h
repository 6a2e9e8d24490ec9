// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXABBREVIATEDVOLUMECONVERTER_H
#define CORE_PRICE_NXABBREVIATEDVOLUMECONVERTER_H

#include <cstddef>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/price/nxVolumeConverter.h"

/// Texts of volumes for screens and order entry: "1.5M" for 1,500,000. Another converter says what a unit is.
/// @code
/// const nxLotVolumeConverter lots(100);
/// const nxAbbreviatedVolumeConverter screen(lots, nxAbbreviatedVolumeConverter::Suffixes::KMBT);
/// nxVolumeConverter::Units units;
/// nxErrorEnum error = screen.SetFromString("1.5M", units, '.');   // 15000 lots
/// std::string text = screen.GetAsString(9999, '.');               // "999.9K"; the quantity is 999,900
/// @endcode
///
/// - Suffixes: K, M, B and T are 10^3, 10^6, 10^9 and 10^12. Bond desks write M for 10^3 and MM for 10^6. One converter knows
///   one of the two ways. Small letters are read as well, never a mixture, and never written.
/// - Writing loses digits: the text is cut toward zero and never shows more than there is. It is for display alone. The
///   digits in front of the separator are all shown; zeros at the end of the decimals are not. A text of the other
///   converter that does not end in a digit is shown as it is.
/// - Reading is exact: all digits count, and "1.2345K" of whole shares is NX_ERR_NO_MATCH. The suffix may be left out.
/// - Quantities and units, null, errors, threads: see nxVolumeConverter.
/// - Ownership: refers to the other converter, which has to exist as long as this one.
class NX_CORE_API nxAbbreviatedVolumeConverter final : public nxVolumeConverter
{
public:
    /// The suffixes of thousands.
    enum class Suffixes : unsigned char
    {
        KMBT,  ///< K, M, B, T.
        MMM,   ///< M for thousands and MM for millions.
    };

    /// @param exact says what a unit is; one that is not valid makes this one not valid.
    /// @param digits that are shown at most, counted from the first one that is not 0; 0 is not valid.
    nxAbbreviatedVolumeConverter(const nxVolumeConverter& exact, Suffixes suffixes, unsigned char digits = 4);
    nxAbbreviatedVolumeConverter(const nxVolumeConverter&& exact, Suffixes, unsigned char = 4) = delete;

    using nxVolumeConverter::GetAsQuantity;
    using nxVolumeConverter::GetAsString;
    using nxVolumeConverter::GetAsUnits;
    [[nodiscard]] nxErrorEnum GetAsQuantity(const Units& units, nxDecimal& quantity) const override;
    [[nodiscard]] nxErrorEnum GetAsUnits(const nxDecimal& quantity, Units& units) const override;
    [[nodiscard]] nxErrorEnum SetFromStringView(std::string_view text, Units& units, char separator) const override;
    std::size_t GetAsString(char* buffer, const Units& units, char separator) const override;

private:
    [[gnu::visibility("hidden")]] std::size_t _TakeSuffix(std::string_view& text) const;
    [[gnu::visibility("hidden")]] std::string_view _GetSuffix(std::size_t thousands) const;
    [[gnu::visibility("hidden")]] std::size_t _CountShown(std::string_view digits, std::size_t whole) const;

    const nxVolumeConverter& _exact;
    Suffixes _suffixes;
    unsigned char _digits;
};

#endif
