#ifndef CORE_ENUM_NXFIXMDTRADECONDITIONBITMASK_H
#define CORE_ENUM_NXFIXMDTRADECONDITIONBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The conditions of a trade in market data; the code that stands for each in messages is part of its text.
class NX_CORE_API nxFixMDTradeConditionBitMask final : public nxTypedBitMask<nxFixMDTradeConditionBitMask, nxBitMask>
{
    NX_BIT_MASK(nxFixMDTradeConditionBitMask);
};

#endif
