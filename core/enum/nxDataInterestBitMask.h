// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXDATAINTERESTBITMASK_H
#define CORE_ENUM_NXDATAINTERESTBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The bars of a product's history in a subscription: by time, by number of trades, by volume.
class NX_CORE_API nxDataInterestBitMask final : public nxTypedBitMask<nxDataInterestBitMask, nxBitMask>
{
    NX_BIT_MASK(nxDataInterestBitMask);
};

#endif
