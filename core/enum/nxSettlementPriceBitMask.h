#ifndef CORE_ENUM_NXSETTLEMENTPRICEBITMASK_H
#define CORE_ENUM_NXSETTLEMENTPRICEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// What kind of settlement price is published.
class NX_CORE_API nxSettlementPriceBitMask final : public nxTypedBitMask<nxSettlementPriceBitMask, nxBitMask>
{
    NX_BIT_MASK(nxSettlementPriceBitMask);
};

#endif
