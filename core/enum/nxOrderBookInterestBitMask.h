// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXORDERBOOKINTERESTBITMASK_H
#define CORE_ENUM_NXORDERBOOKINTERESTBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The events of an order book in a subscription. "Early" events come before the exchange confirms them.
class NX_CORE_API nxOrderBookInterestBitMask final : public nxTypedBitMask<nxOrderBookInterestBitMask, nxBitMask>
{
    NX_BIT_MASK(nxOrderBookInterestBitMask);
};

#endif
