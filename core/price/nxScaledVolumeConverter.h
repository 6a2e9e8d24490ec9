// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXSCALEDVOLUMECONVERTER_H
#define CORE_PRICE_NXSCALEDVOLUMECONVERTER_H

#include "core/nxExport.h"
#include "core/price/nxVolumeConverter.h"

/// Volumes whose units are 10^-n of the quantity: an exchange sends 10000000, and 0.1 coins are meant.
/// @code
/// const nxScaledVolumeConverter coins(8);
/// nxVolumeConverter::Units units;
/// nxErrorEnum error = coins.SetFromString("0.1", units, '.');  // 10000000
/// std::string text = coins.GetAsString(units, '.');            // "0.10000000"
/// @endcode
///
/// - Null, errors, threads, ownership: see nxVolumeConverter.
class NX_CORE_API nxScaledVolumeConverter final : public nxVolumeConverter
{
public:
    /// @param places decimals of the quantity, nxDecimal::MaxExactPlaces at most.
    explicit nxScaledVolumeConverter(unsigned char places);
};

#endif
