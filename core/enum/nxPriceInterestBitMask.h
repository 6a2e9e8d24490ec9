#ifndef CORE_ENUM_NXPRICEINTERESTBITMASK_H
#define CORE_ENUM_NXPRICEINTERESTBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// Which prices of a product somebody subscribes to.
class NX_CORE_API nxPriceInterestBitMask final : public nxTypedBitMask<nxPriceInterestBitMask, nxBitMask>
{
    NX_BIT_MASK(nxPriceInterestBitMask);
};

#endif
