// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXPRICEINTERESTBITMASK_H
#define CORE_ENUM_NXPRICEINTERESTBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The prices of a product in a subscription.
class NX_CORE_API nxPriceInterestBitMask final : public nxTypedBitMask<nxPriceInterestBitMask, nxBitMask>
{
    NX_BIT_MASK(nxPriceInterestBitMask);
};

#endif
