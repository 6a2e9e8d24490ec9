// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXDECIMALPRICECONVERTER_H
#define CORE_PRICE_NXDECIMALPRICECONVERTER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/price/nxPriceConverter.h"

/// Prices in decimals, perhaps shown in another unit than they are kept in, perhaps with digits of the tick cut off.
/// @code
/// const nxDecimalPriceConverter cents(2, -2);                              // "DECIMAL:2*-2": kept in cents
/// nxDecimal price;
/// if (cents.SetFromString("1137.00", price, '.').IsOK())                   // 113700
///     NX_LOG(NX_LOG_LEVEL_INFO) << cents.GetAsString(price, '.');          // 1137.00
/// const nxDecimalPriceConverter cut(3, 0, nxDecimal("0.0025", '.'));       // "DECIMAL:3/0.0025"
/// if (cut.SetFromString("98.862", price, '.').IsOK())                      // 98.8625
///     NX_LOG(NX_LOG_LEVEL_INFO) << cut.GetAsString(price, '.');            // 98.862
/// @endcode
///
/// - Unit: the number that is shown is the price times 10^displayShift.
/// - Without a tick a text shows @p places decimals, and more when the number has more. Any number of decimals is read.
/// - With a tick the multiples of the tick are cut to @p places decimals, and completed when they are read. Every other
///   number is written with one decimal more at least, and a text with more decimals is taken literally: off a grid of
///   0.0025, 98.862 itself is 98.8620. A text with fewer decimals is NX_ERR_INVALID_PARAMETER, because 98.86 could be cut
///   too; one with as many that no multiple is cut to is NX_ERR_VALUE_OUT_OF_RANGE.
/// - Digits: as nxDecimal::SetFromString() reads them, ".5" and "5." included.
/// - Notation: "DECIMAL:2", "DECIMAL:2*-2" with a shift, "DECIMAL:3/0.0025" with a tick, the shift before the tick.
/// - Null, errors, threads, ownership: see nxPriceConverter.
class NX_CORE_API nxDecimalPriceConverter final : public nxPriceConverter
{
public:
    /// @param places decimals that are shown, 18 at most.
    /// @param displayShift -18 to 18; the sum of it and @p places likewise.
    /// @param tick of the price itself, whatever the shift: null for none, and otherwise positive. Its places, without zeros
    ///        at the end, are 18 at most, and differ from those of the last decimal shown by 18 at most. Shown it is at least one
    ///        unit of the last decimal, because otherwise two multiples would be cut to one text.
    explicit nxDecimalPriceConverter(unsigned char places, int displayShift = 0,
                                     const nxDecimal& tick = nxDecimal::GetNullDecimal());

    using nxPriceConverter::GetAsString;
    [[nodiscard]] nxErrorEnum SetFromStringView(std::string_view text, nxDecimal& price, char separator) const override;
    std::size_t GetAsString(char* buffer, const nxDecimal& price, char separator) const override;
    nxDecimal GetTickIncrement() const override;

private:
    // A number as it is shown: mantissa * 10^-places, where the places may be negative.
    struct _Shown
    {
        std::uint64_t mantissa = 0;
        int places = 0;
    };

    bool _IsCut(const nxDecimal& price) const;
    nxErrorEnum _Complete(bool isNegative, const _Shown& shown, nxDecimal& price) const;
    nxErrorEnum _Keep(bool isNegative, _Shown shown, nxDecimal& price) const;

    nxDecimal _tick;      // of the price, without zeros at the end; null for none
    int _places;          // that are shown
    int _shift;           // from price to number
    int _gridPlaces = 0;  // of prices that are read, at least
};

#endif
