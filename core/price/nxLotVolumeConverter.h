// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXLOTVOLUMECONVERTER_H
#define CORE_PRICE_NXLOTVOLUMECONVERTER_H

#include "core/nxExport.h"
#include "core/price/nxVolumeConverter.h"

/// Volumes whose units are lots: an exchange sends 3, and 300 shares are meant.
/// @code
/// const nxLotVolumeConverter lots(100, 2, 50);                 // 100 shares a lot, orders of 2 to 50 lots
/// nxVolumeConverter::Units units;
/// nxErrorEnum error = lots.SetFromString("300", units, '.');   // 3
/// error = lots.SetFromString("100", units, '.');               // NX_ERR_VALUE_OUT_OF_RANGE: one lot
/// @endcode
///
/// - Limits: they hold for quantities that become units. Units that arrive are converted whatever the limits.
/// - Null, errors, threads, ownership: see nxVolumeConverter.
class NX_CORE_API nxLotVolumeConverter final : public nxVolumeConverter
{
public:
    /// @param lotSize the quantity of one lot, 1 or more.
    /// @param minimumLots the smallest number of lots of an order; 0 and 1 mean that there is no limit.
    /// @param maximumLots the largest one, not below the smallest; 0 means that there is no limit.
    explicit nxLotVolumeConverter(unsigned long long lotSize, unsigned long long minimumLots = 1,
                                  unsigned long long maximumLots = 0);
};

#endif
