// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxScaledVolumeConverter.h"

nxScaledVolumeConverter::nxScaledVolumeConverter(unsigned char places)
    : nxVolumeConverter(places <= nxDecimal::MaxExactPlaces)
{
    if (IsValid())
        _places = places;
}
