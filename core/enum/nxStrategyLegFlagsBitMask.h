// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXSTRATEGYLEGFLAGSBITMASK_H
#define CORE_ENUM_NXSTRATEGYLEGFLAGSBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How the price of a strategy's leg follows its secondary product.
class NX_CORE_API nxStrategyLegFlagsBitMask final : public nxTypedBitMask<nxStrategyLegFlagsBitMask, nxBitMask>
{
    NX_BIT_MASK(nxStrategyLegFlagsBitMask);
};

#endif
