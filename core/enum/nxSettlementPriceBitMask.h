// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXSETTLEMENTPRICEBITMASK_H
#define CORE_ENUM_NXSETTLEMENTPRICEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The kind of a published settlement price.
class NX_CORE_API nxSettlementPriceBitMask final : public nxTypedBitMask<nxSettlementPriceBitMask, nxBitMask>
{
    NX_BIT_MASK(nxSettlementPriceBitMask);
};

#endif
