// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXFIXMDTRADECONDITIONBITMASK_H
#define CORE_ENUM_NXFIXMDTRADECONDITIONBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The conditions of a trade in market data; the text of each includes its code in messages.
class NX_CORE_API nxFixMDTradeConditionBitMask final : public nxTypedBitMask<nxFixMDTradeConditionBitMask, nxBitMask>
{
    NX_BIT_MASK(nxFixMDTradeConditionBitMask);
};

#endif
