// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxLotVolumeConverter.h"

#include <algorithm>

nxLotVolumeConverter::nxLotVolumeConverter(unsigned long long lotSize, unsigned long long minimumLots,
                                           unsigned long long maximumLots)
    : nxVolumeConverter(lotSize != 0 && (maximumLots == 0 || minimumLots <= maximumLots))
{
    if (!IsValid())
        return;
    _lotSize = lotSize;
    _minimum = minimumLots;
    if (maximumLots != 0)
        _maximum = std::min(_maximum, maximumLots);
}
